// The window in use for a long time: what it holds must not grow. ./test lets it go through a few
// rounds, so that it goes on working. For an hour:
//
//   VELMORA_SOAK_MINUTES=60
//     Tests/View/under-xvfb --timeout 4000 build/release/Tests/View/view_tests soaks
//
// A line for each sample tells memory, descriptors, threads, and what the X server keeps for this
// program (where libXRes is installed).

#import <GNUstepGUI/GSDisplayServer.h>
#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#import "View/Checks.h"
#import "View/Driver.h"
#import "View/FindingsStage.h"
#import "View/Material.h"
#import "View/Panels.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// What the X server keeps for this program: windows, pixmaps, cursors, fonts and the like.
class ServerSide {
 public:
  ServerSide() {
    void* const library = dlopen("libXRes.so.1", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return;
    resources_ = reinterpret_cast<Resources>(dlsym(library, "XResQueryClientResources"));
    pixmaps_ = reinterpret_cast<Pixmaps>(dlsym(library, "XResQueryClientPixmapBytes"));
  }
  [[nodiscard]] bool IsKnown() const { return resources_ != nullptr && pixmaps_ != nullptr; }

  /// Both are asked for on the main thread. 0 where they cannot be known.
  [[nodiscard]] long Count() const {
    if (!IsKnown()) return 0;
    int kinds = 0;
    Kind* list = nullptr;
    if (resources_(Display(), Client(), &kinds, &list) == 0) return 0;
    long count = 0;
    for (int i = 0; i < kinds; ++i) count += list[i].count;
    std::free(list);  // as XFree does it
    return count;
  }
  [[nodiscard]] long PixmapKilobytes() const {
    unsigned long bytes = 0;
    if (!IsKnown() || pixmaps_(Display(), Client(), &bytes) == 0) return 0;
    return static_cast<long>(bytes / 1024);
  }

 private:
  struct Kind {
    unsigned long type;
    unsigned int count;
  };
  using Resources = int (*)(void* display, unsigned long client, int* kinds, Kind** list);
  using Pixmaps = int (*)(void* display, unsigned long client, unsigned long* bytes);

  static void* Display() { return [GSServerForWindow(Window()) serverDevice]; }
  /// Any of a client's numbers stands for the client.
  static unsigned long Client() {
    return reinterpret_cast<unsigned long>(
        [GSServerForWindow(Window()) windowDevice:static_cast<int>([Window() windowNumber])]);
  }

  Resources resources_ = nullptr;
  Pixmaps pixmaps_ = nullptr;
};

struct Sample {
  long kilobytes = 0;
  long descriptors = 0;
  long threads = 0;
  long resources = 0;
  long pixmapKilobytes = 0;
};

long EntriesOf(const char* folder) {
  return static_cast<long>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

Sample Measure(const ServerSide& server) {
  Sample sample;
  OnMain([&] {
    sample.resources = server.Count();
    sample.pixmapKilobytes = server.PixmapKilobytes();
  });
  long pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  sample.kilobytes = pages * (sysconf(_SC_PAGESIZE) / 1024);
  sample.descriptors = EntriesOf("/proc/self/fd");
  sample.threads = EntriesOf("/proc/self/task");
  return sample;
}

class SoakRounds {
 public:
  explicit SoakRounds(const test::TemporaryFolder& folder)
      : folder_(folder),
        projects_{SimpleProject(folder, 40, 4, "short.adl"),
                  SimpleProject(folder, 2000, 12, "long.adl"), MovedToneProject(folder)} {}

  const std::string& First() const { return projects_[0]; }
  int Done() const { return done_; }

  void Round() {
    const int number = done_++;
    LoadPath(projects_[static_cast<std::size_t>(number) % projects_.size()]);
    WaitForCheck();
    LookThrough(number);
    if (number % 3 == 2) OpenPanels();
    if (number % 5 == 4) CancelFilePanel();
    Spot(number % 2 == 1);
    ZoomAndScroll();
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

/// The largest of a quarter of the samples, from 0 to 3.
long Most(const std::vector<Sample>& samples, std::size_t quarter, long Sample::*what) {
  long most = 0;
  for (std::size_t i = samples.size() * quarter / 4; i < samples.size() * (quarter + 1) / 4; ++i) {
    most = std::max(most, samples[i].*what);
  }
  return most;
}

/// Held against the second quarter: the first is when everything is there for the first time.
void CheckFlat(const std::vector<Sample>& samples) {
  constexpr long kMegabyte = 1024;
  const auto grown = [&](long Sample::*what) {
    return Most(samples, 3, what) - Most(samples, 1, what);
  };
  const long memory = grown(&Sample::kilobytes);
  const long allowed = std::max(kMegabyte, Most(samples, 1, &Sample::kilobytes) / 50);
  CheckTrue("memory has grown by " + Shown(memory) + " kB, at most " + Shown(allowed),
            memory <= allowed);
  CheckTrue("descriptors are as many as before", grown(&Sample::descriptors) <= 0);
  CheckTrue("threads are as many as before", grown(&Sample::threads) <= 0);
  CheckTrue("the X server keeps as many things as before", grown(&Sample::resources) <= 0);
  CheckTrue("and as much for pictures", grown(&Sample::pixmapKilobytes) <= 0);
}

void Soaks() {
  const char* const text = std::getenv("VELMORA_SOAK_MINUTES");
  const std::chrono::duration<double> wanted(text != nullptr ? 60 * std::atof(text) : 0);
  constexpr int kLeastRounds = 4;
  constexpr std::size_t kSamples = 60;
  const test::TemporaryFolder folder;
  SoakRounds rounds(folder);
  StartShellWith(rounds.First());
  const ServerSide server;
  if (!server.IsKnown()) Note("libXRes is not there: what the X server keeps is not counted");

  std::vector<Sample> samples;
  const auto begin = Clock::now();
  auto next = begin;
  while (rounds.Done() < kLeastRounds || Clock::now() - begin < wanted) {
    rounds.Round();
    if (Clock::now() < next) continue;
    next = Clock::now() + std::chrono::duration_cast<Clock::duration>(wanted / kSamples);
    const Sample sample = Measure(server);
    samples.push_back(sample);
    const std::chrono::duration<double> passed = Clock::now() - begin;
    Note("after " + Shown(passed.count()) + " s, round " + Shown(rounds.Done()) + ": memory " +
         Shown(sample.kilobytes) + " kB, descriptors " + Shown(sample.descriptors) + ", threads " +
         Shown(sample.threads) + ", things of the X server " + Shown(sample.resources) +
         ", its pictures " + Shown(sample.pixmapKilobytes) + " kB");
  }
  CheckTrue("the window went through its rounds", rounds.Done() >= kLeastRounds);
  if (text != nullptr) CheckFlat(samples);
}

}  // namespace

std::vector<Scenario> SoakScenarios() {
  return {{"soaks", Soaks}};
}

}  // namespace velmora::view
