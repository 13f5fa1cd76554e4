// The window in use for a long time: what it holds must not grow. ./test lets it go through twice
// as many rounds as it takes to do everything. For an hour:
//
//   VELMORA_SOAK_MINUTES=60
//     Tests/View/under-xvfb --timeout 4000 build/release/Tests/View/view_tests soaks
//
// A line for each sample tells memory, descriptors, threads, and what the X server keeps for this
// program (where libXRes is installed).

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <set>

#import "View/Checks.h"
#import "View/Driver.h"
#import "View/FindingsStage.h"
#import "View/Material.h"
#import "View/Panels.h"
#import "View/Scenarios.h"
#import "View/Stage.h"
#import "View/XResources.h"

#if defined(__SANITIZE_ADDRESS__)
#define VELMORA_MEMORY_IS_GIVEN_BACK 0
#elif defined(__has_feature)
#define VELMORA_MEMORY_IS_GIVEN_BACK !__has_feature(address_sanitizer)
#else
#define VELMORA_MEMORY_IS_GIVEN_BACK 1
#endif

namespace velmora::view {

namespace {

namespace fs = std::filesystem;
constexpr bool kMemoryIsGivenBack = VELMORA_MEMORY_IS_GIVEN_BACK;
using Clock = std::chrono::steady_clock;

// In this many rounds everything is done at least once, and after them it begins anew: what is
// measured at the ends of such cycles can be compared.
constexpr int kCycle = 6;

struct Sample {
  long kilobytes = 0;
  long descriptors = 0;
  long threads = 0;
  std::map<std::string, long> resources;
  long pixmapKilobytes = 0;
};

long EntriesOf(const char* folder) {
  return static_cast<long>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

Sample Measure(const XResources& server) {
  Pause(0.5);  // a thread that is done takes a moment to go
  Sample sample;
  OnMain([&] {
    sample.resources = server.Counts();
    sample.pixmapKilobytes = server.PixmapKilobytes();
  });
  long pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  sample.kilobytes = pages * (sysconf(_SC_PAGESIZE) / 1024);
  sample.descriptors = EntriesOf("/proc/self/fd");
  sample.threads = EntriesOf("/proc/self/task");
  return sample;
}

double ProcessorSeconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

class SoakRounds {
 public:
  explicit SoakRounds(const test::TemporaryFolder& folder)
      : folder_(folder),
        projects_{SimpleProject(folder, 40, 4, "short.adl"),
                  SimpleProject(folder, 2000, 12, "long.adl"), MovedToneProject(folder)} {}

  const std::string& First() const { return projects_[0]; }
  int Done() const { return done_; }

  /// A file panel shows a picture for each name, and the system's folder for temporary files is
  /// others' too. So it opens where only this has names, with folders of its own in all columns.
  void OpenPanelsInQuietPlace() const {
    const fs::path quiet = fs::path(folder_.Path()) / "of" / "our" / "own";
    fs::create_directories(quiet);
    OnMain([&] {
      [[NSUserDefaults standardUserDefaults] setObject:StringOf(quiet.string())
                                                forKey:@"NSDefaultOpenDirectory"];
    });
  }

  void Round() {
    const int number = done_++;
    LoadPath(projects_[static_cast<std::size_t>(number) % projects_.size()]);
    WaitForCheck();
    LookThrough(number);
    if (number % 3 == 2) OpenPanels();
    if (number % kCycle == 1) CancelFilePanel();
    Spot(number % 2 == 1);
    ZoomAndScroll();
    if (number % kCycle == 4) CancelSavePanel();
    Resize();
    EmptySession();
    RemoveMadeFiles();
  }

 private:
  static void LookThrough(int number) {
    OnMain([&] {
      NSTableView* const table = EventTable();
      const NSInteger rows = [table numberOfRows];
      for (int i = 0; i < 8 && rows > 0; ++i) {
        [table scrollRowToVisible:rows * ((i * 7 + number) % 11) / 11];
        [Window() displayIfNeeded];
      }
    });
    TurnWheel(EventTable(), NSMakePoint(20, NSMinY([EventTable() visibleRect]) + 20), -3);
  }

  static void OpenPanels() {
    OnMain([] { [Desk() showFindings:nil]; });
    WaitFor("the list opens", [] { return [FindingsWindow() isKeyWindow]; });
    Key("Escape");
    WaitFor("the list closes", [] { return ![FindingsWindow() isVisible]; });
    Click(StatusButton("prepareButton"));
    WaitFor("the form opens", [] { return [PrepareWindow() isKeyWindow]; });
    Key("Escape");
    WaitFor("the form closes", [] { return ![PrepareWindow() isVisible]; });
    WaitFor("the window has the keys", [] { return [Window() isKeyWindow]; });
  }

  void CancelFilePanel() const {
    Click([Controller() selectFileButton]);
    NSWindow* const panel = WaitForPanel("the file panel opens");
    SelectInPanel(panel, First());
    ClickButton(panel, "Cancel");
    WaitForNoPanel("the file panel closes");
  }

  static void CancelSavePanel() {
    Key("ctrl+b");
    NSWindow* const panel = WaitForPanel("the panel for a bounce opens");
    ClickButton(panel, "Cancel");
    WaitForNoPanel("the panel for a bounce closes");
  }

  static void Spot(bool cancel) {
    PressSpot();
    if (cancel) {
      OnMain([] {
        if ([[Controller() spotButton] tag] == 1) [Controller() DoSpot:nil];
      });
    }
    WaitFor("the spot is over", [] { return [[Controller() spotButton] tag] == 0; });
  }

  static void ZoomAndScroll() {
    OnMain([] {
      TimelineView* const lanes = [Timeline() timeline];
      [lanes fit:nil];
      for (int i = 0; i < 12; ++i) {
        [lanes zoomIn:nil];
        [lanes scrollPixels:(i % 2 == 0 ? 48 : -40) lanes:i % 3 - 1];
        [Window() displayIfNeeded];
      }
      [lanes fit:nil];
      [Window() displayIfNeeded];
    });
    WaitFor("the waveforms have come", [] { return ![[Timeline() timeline] isReadingWaveforms]; });
  }

  static void Resize() {
    const NSRect frame = Ask([] { return [Window() frame]; });
    for (const CGFloat less : {120, 0}) {
      OnMain([&] {
        NSRect other = frame;
        other.size = NSMakeSize(NSWidth(frame) - less, NSHeight(frame) - less);
        [Window() setFrame:other display:YES];
      });
      Pause(0.2);
    }
  }

  /// The worker of a cancelled spot may still be at its last event, whose region lands afterwards.
  static void EmptySession() {
    constexpr int kMostTries = 20;
    for (int tries = 0; tries < kMostTries; ++tries) {
      Click(Variable<NSView*>(Bar(), "clearButton"));
      Pause(0.2);
      if (LandedRegions() == 0) return;
    }
    CheckTrue("the session is empty", false);
  }

  void RemoveMadeFiles() const {
    for (const auto& entry : fs::recursive_directory_iterator(folder_.Path())) {
      const std::string name = entry.path().filename().string();
      if (name.find("_24bit") != std::string::npos) fs::remove(entry.path());
    }
  }

  const test::TemporaryFolder& folder_;
  const std::vector<std::string> projects_;
  int done_ = 0;
};

using Figure = std::function<long(const Sample&)>;

/// By how much a figure has grown from the second quarter of the samples to the last one. The first
/// is when everything is there for the first time. The least of a quarter counts: what is forgotten
/// is there in every sample, while a file panel keeps pictures of whatever it showed last.
long Growth(const std::vector<Sample>& samples, const Figure& figure) {
  const auto least = [&](std::size_t quarter) {
    std::size_t i = samples.size() * quarter / 4;
    long smallest = figure(samples[i]);
    for (; i < samples.size() * (quarter + 1) / 4; ++i)
      smallest = std::min(smallest, figure(samples[i]));
    return smallest;
  };
  return least(3) - least(1);
}

void CheckGrowth(const std::string& what, long grown, long allowed) {
  CheckTrue(what + " grew by " + Shown(grown) + ", at most " + Shown(allowed), grown <= allowed);
}

void CheckFlat(const std::vector<Sample>& samples) {
  CheckGrowth("descriptors", Growth(samples, [](const Sample& s) { return s.descriptors; }), 0);
  CheckGrowth("threads", Growth(samples, [](const Sample& s) { return s.threads; }), 0);

  // At least a cycle lies between the samples that are compared, so that one thing forgotten in
  // each round is more than this. The drawing library fills its stores of colours by and by.
  constexpr long kFewerThanRounds = kCycle - 1;
  std::set<std::string> kinds;
  for (const Sample& sample : samples) {
    for (const auto& [kind, count] : sample.resources) kinds.insert(kind);
  }
  for (const std::string& kind : kinds) {
    const auto count = [&](const Sample& sample) {
      const auto found = sample.resources.find(kind);
      return found != sample.resources.end() ? found->second : 0;
    };
    CheckGrowth("the X server's count of " + kind, Growth(samples, count), kFewerThanRounds);
  }

  constexpr long kMegabyte = 1024;
  CheckGrowth("kilobytes of pixmaps",
              Growth(samples, [](const Sample& s) { return s.pixmapKilobytes; }), kMegabyte / 2);
  // AddressSanitizer keeps for a while what was given back.
  if (kMemoryIsGivenBack) {
    const Figure memory = [](const Sample& s) { return s.kilobytes; };
    CheckGrowth("kilobytes of memory", Growth(samples, memory),
                std::max(kMegabyte, memory(samples.front()) / 50));
  }
}

std::string Text(const Sample& sample) {
  std::string text = "memory " + Shown(sample.kilobytes) + " kB, descriptors " +
                     Shown(sample.descriptors) + ", threads " + Shown(sample.threads) +
                     ", pixmaps of " + Shown(sample.pixmapKilobytes) + " kB, in the X server";
  for (const auto& [kind, count] : sample.resources) text += " " + kind + " " + Shown(count);
  return text;
}

void Soaks() {
  const char* const text = std::getenv("VELMORA_SOAK_MINUTES");
  const std::chrono::duration<double> wanted(text != nullptr ? 60 * std::atof(text) : 0);
  constexpr int kLeastRounds = 2 * kCycle;
  const test::TemporaryFolder folder;
  SoakRounds rounds(folder);
  StartShellWith(rounds.First());
  rounds.OpenPanelsInQuietPlace();
  const XResources server;
  if (!server.AreKnown()) Note("libXRes is not there: what the X server keeps is not counted");

  std::vector<Sample> samples;
  const auto begin = Clock::now();
  while (rounds.Done() < kLeastRounds || Clock::now() - begin < wanted) {
    for (int i = 0; i < kCycle; ++i) rounds.Round();
    samples.push_back(Measure(server));
    const std::chrono::duration<double> passed = Clock::now() - begin;
    Note("after " + Shown(passed.count()) + " s, " + Shown(ProcessorSeconds()) +
         " s of the processor, round " + Shown(rounds.Done()) + ": " + Text(samples.back()));
  }
  CheckFlat(samples);
}

}  // namespace

std::vector<Scenario> SoakScenarios() {
  return {{"soaks", Soaks}};
}

}  // namespace velmora::view
