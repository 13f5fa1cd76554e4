// How fast the window is: figures for people, no limits. ./test runs it with little material, so
// that it goes on working. With much of it:
//
//   VELMORA_SPEED_CUTS=100000 VELMORA_SPEED_REGIONS=10000 VELMORA_SPEED_FRAMES=200
//   VELMORA_SPEED_STARTS=8
//     Tests/View/under-xvfb build/release/Tests/View/view_tests measures-window
//
// The last line is JSON: medians in seconds, by the clock and as `..._processor` of the main thread
// (of the whole process for `up` and `bare_up`, an empty window).

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#import "View/Checks.h"
#import "View/Driver.h"
#import "View/Material.h"
#import "View/Scenarios.h"
#import "View/Stage.h"
#include "View/StartClock.h"

namespace velmora::view {

namespace {

/// How much there is to do: the variable's number, or little.
int Amount(const char* variable, int little) {
  const char* const text = std::getenv(variable);
  return text != nullptr ? std::max(1, std::atoi(text)) : little;
}

/// Times of one kind of work, in milliseconds by the clock and of the main thread's processor time.
class Times {
 public:
  void Add(double wall, double processor) {
    wall_.push_back(wall);
    processor_.push_back(processor);
  }
  [[nodiscard]] std::string Text() const {
    return Line(wall_) + "; of the processor " + Line(processor_);
  }
  /// The median, in seconds.
  [[nodiscard]] double Wall() const { return At(wall_, 0.5) / 1000; }
  [[nodiscard]] double Processor() const { return At(processor_, 0.5) / 1000; }
  [[nodiscard]] double SlowestWall() const { return At(wall_, 1) / 1000; }
  [[nodiscard]] double SlowestProcessor() const { return At(processor_, 1) / 1000; }

 private:
  static double At(std::vector<double> times, double share) {
    if (times.empty()) return 0;
    std::sort(times.begin(), times.end());
    return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
  }
  static std::string Line(const std::vector<double>& times) {
    char text[120];
    std::snprintf(text, sizeof text, "%.3f ms, 95 of 100 within %.3f, the slowest %.3f",
                  At(times, 0.5), At(times, 0.95), At(times, 1));
    return text;
  }
  std::vector<double> wall_;
  std::vector<double> processor_;
};

/// Work on the main thread, with its time. The display's answer is waited for.
void AddTime(Times& times, const std::function<void()>& work) {
  OnMain([&] {
    const std::int64_t wall = Nanoseconds(CLOCK_MONOTONIC);
    const std::int64_t processor = Nanoseconds(CLOCK_THREAD_CPUTIME_ID);
    work();
    [Window() mouseLocationOutsideOfEventStream];  // which the display answers after its drawing
    times.Add(static_cast<double>(Nanoseconds(CLOCK_MONOTONIC) - wall) / 1e6,
              static_cast<double>(Nanoseconds(CLOCK_THREAD_CPUTIME_ID) - processor) / 1e6);
  });
}

std::string json;  // of the figures, without its braces

void AddNumber(const std::string& name, double number) {
  char text[100];
  std::snprintf(text, sizeof text, "%s\"%s\": %.6f", json.empty() ? "" : ", ", name.c_str(),
                number);
  json += text;
}

/// `name` is the one in the line of JSON at the end, in seconds; a member of its own says how much
/// of it is processor time.
void NoteTimes(const std::string& what, const std::string& name, const Times& times) {
  Note("time of " + what + ": " + times.Text());
  AddNumber(name, times.Wall());
  AddNumber(name + "_processor", times.Processor());
}

/// The child of MeasureStart: tells when its window stands.
void OpensWindow() {
  StartShellAtOnce({});
  OnMain([] {
    [Window() displayIfNeeded];
    [Window() mouseLocationOutsideOfEventStream];
  });
  TellStart();
}

/// Starts a program that ends with TellStart.
void AddStart(Times& times, const std::string& command) {
  setenv(kStarted, std::to_string(Nanoseconds(CLOCK_MONOTONIC)).c_str(), 1);
  FILE* const child = popen(("exec " + command + " 2>/dev/null").c_str(), "r");
  double wall = 0;
  double processor = 0;
  const bool told = child != nullptr && std::fscanf(child, "%lf %lf", &wall, &processor) == 2;
  if (child != nullptr) pclose(child);
  CheckTrue("a window stands", told);
  times.Add(wall, processor);
}

void MeasureStart(int starts) {
  const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
  const std::string window = "'" + self + "' opens-window";
  const std::string bareWindow = "'" VELMORA_BARE_WINDOW "'";
  Times first;  // which also starts the toolkit's daemons
  AddStart(first, window);
  Times times;
  Times bare;
  for (int i = 1; i < starts; ++i) {
    AddStart(times, window);
    AddStart(bare, bareWindow);
  }
  Note("time until the first window stands: " + Shown(first.Wall()) + " s");
  NoteTimes("a start until the window stands", "up", times);
  NoteTimes("the same of an empty window", "bare_up", bare);
}

void MeasureLoad(const std::string& path, int times) {
  Times load;
  for (int i = 0; i < times; ++i) {
    AddTime(load, [&] {
      [[Controller() FileNameTextField] setStringValue:StringOf(path)];
      [Controller() LoadFile];
      [Window() displayIfNeeded];
    });
  }
  NoteTimes("a load until the rows are drawn", "load", load);
}

/// Scrolls by pieces of less than a page, as the wheel does, and by jumps.
void MeasureTable(int frames) {
  NSTableView* const table = EventTable();
  const NSInteger rows = Rows(table);
  Times wheel;
  Times jumps;
  for (int i = 0; i < frames; ++i) {
    AddTime(wheel, [&] {
      NSRect visible = [table visibleRect];
      visible.origin.y += 3 * [table rowHeight];
      [table scrollPoint:visible.origin];
      [Window() displayIfNeeded];
    });
  }
  NoteTimes("a frame of the events, scrolled by three rows", "events_frame", wheel);
  for (int i = 0; i < frames; ++i) {
    AddTime(jumps, [&] {
      [table scrollRowToVisible:rows * ((i * 7) % 11) / 11];
      [Window() displayIfNeeded];
    });
  }
  NoteTimes("a frame of the events, scrolled by jumps", "events_jump", jumps);
}

void MeasureTimeline(int frames) {
  TimelineView* const lanes = [Timeline() timeline];
  const auto measure = [&](const std::string& what, const std::string& name,
                           const std::function<void(int)>& work) {
    Times times;
    for (int i = 0; i < frames; ++i) {
      AddTime(times, [&] {
        work(i);
        [Window() displayIfNeeded];
      });
    }
    NoteTimes("a frame of the timeline, " + what, name, times);
  };
  OnMain([&] { [lanes fit:nil]; });
  measure("all regions on view", "timeline_all", [&](int) { [lanes setNeedsDisplay:YES]; });
  for (const int visible : {1000, 100, 10}) {
    OnMain([&] {
      const auto all = static_cast<int>([lanes model].Regions().size());
      [lanes fit:nil];
      for (double shown = all; shown > visible; shown /= 1.5) [lanes zoomIn:nil];
      [Window() displayIfNeeded];
    });
    measure("about " + Shown(visible) + " regions on view, scrolled", "timeline_" + Shown(visible),
            [&](int i) { [lanes scrollPixels:(i % 2 == 0 ? 48 : 40) lanes:0]; });
  }
  OnMain([&] { [lanes fit:nil]; });
}

/// While regions arrive, the window is asked over and over.
void MeasureArrival(int regions) {
  using Clock = std::chrono::steady_clock;
  Times answers;
  clockid_t mainClock = 0;
  OnMain([&] { pthread_getcpuclockid(pthread_self(), &mainClock); });
  const auto begin = Clock::now();
  const std::int64_t processorBegin = Nanoseconds(mainClock);
  OnMain([] { [Controller() DoSpot:nil]; });
  bool runs = true;
  std::int64_t lastAnswer = Nanoseconds(mainClock);
  while (runs) {
    const std::int64_t asked = Nanoseconds(CLOCK_MONOTONIC);
    std::int64_t answered = 0;
    OnMain([&] {
      answered = Nanoseconds(mainClock);
      runs = [[Controller() spotButton] tag] == 1;
    });
    answers.Add(static_cast<double>(Nanoseconds(CLOCK_MONOTONIC) - asked) / 1e6,
                static_cast<double>(answered - lastAnswer) / 1e6);
    lastAnswer = answered;
    Pause(0.001);
  }
  const std::chrono::duration<double> took = Clock::now() - begin;
  const double processor = static_cast<double>(Nanoseconds(mainClock) - processorBegin) / 1e9;
  Note("time of a spot of " + Shown(regions) + " regions: " + Shown(took.count()) +
       " s, of the main thread's processor time " + Shown(processor) + " s");
  AddNumber("arrival", took.count());
  AddNumber("arrival_processor", processor);
  NoteTimes("an answer while they arrive", "answer", answers);
  AddNumber("slowest_answer", answers.SlowestWall());
  AddNumber("slowest_answer_processor", answers.SlowestProcessor());
  WaitFor("all regions have landed",
          [=] { return LandedRegions() == static_cast<std::size_t>(regions); });
}

void MeasuresWindow() {
  const int cuts = Amount("VELMORA_SPEED_CUTS", 2000);
  const int regions = Amount("VELMORA_SPEED_REGIONS", 300);
  const int frames = Amount("VELMORA_SPEED_FRAMES", 20);
  const int starts = Amount("VELMORA_SPEED_STARTS", 2);
  MeasureStart(starts);
  const test::TemporaryFolder folder;
  const std::string many = SimpleProject(folder, cuts, 8, "many.adl");
  const std::string spotted = SimpleProject(folder, regions, 8, "spotted.adl");
  StartShell();
  MeasureLoad(many, starts);
  Check("all are listed", static_cast<NSInteger>(cuts), Rows(EventTable()));
  MeasureTable(frames);
  LoadPath(spotted);
  MeasureArrival(regions);
  MeasureTimeline(frames);
  Note("{" + json + "}");
}

}  // namespace

std::vector<Scenario> SpeedScenarios() {
  return {{"measures-window", MeasuresWindow}, {"opens-window", OpensWindow}};
}

}  // namespace velmora::view
