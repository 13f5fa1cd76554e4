// What the shell shows beside the view, and how quick both are.

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <functional>

#include "Timeline/TimeScale.h"
#import "View/Checks.h"
#import "View/Driver.h"
#import "View/FindingsStage.h"
#import "View/Material.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

TimelineView* Lanes() {
  return [Timeline() timeline];
}

std::string Facts() {
  return FieldText(Variable<NSTextField*>(Timeline(), "factsField"));
}

double SamplesPerPixel() {
  return Ask([] { return [Lanes() scale].SamplesPerPixel(); });
}

std::int64_t Origin() {
  return Ask([] { return [Lanes() scale].Origin(); });
}

// Where a piece of a lane is drawn.
NSRect PlaceOf(std::size_t lane, std::size_t piece) {
  return Ask([&] {
    const velmora::host::VisiblePiece visible = [Lanes() model].LaneAt(lane).pieces.at(piece);
    const NSRect row = [Lanes() rectOfLane:lane];
    const double left = [Lanes() scale].ToX(visible.position);
    const double right = [Lanes() scale].ToX(visible.end);
    return NSMakeRect(NSMinX(row) + left, NSMinY(row), right - left, NSHeight(row));
  });
}

void SpotStorm(const test::TemporaryFolder& folder) {
  StartShellWith(CopyOfExample(folder, "Storm.adl"));
  Choose([Controller() fadeDataMatrix], 1);
  Choose([Controller() gainDataMatrix], 1);
  PressSpot();
  WaitFor("the spot has come to its end", [] {
    return [[Controller() spotButton] tag] == 0 && [Lanes() model].Regions().size() == 23;
  });
}

void FillsTimeline() {
  const test::TemporaryFolder folder;
  SpotStorm(folder);
  Check("there are four lanes", std::size_t{4}, Ask([] { return [Lanes() model].LaneCount(); }));
  const auto kinds = Ask([] {
    std::vector<int> counts(4);
    for (const auto& region : [Lanes() model].Regions()) {
      ++counts[static_cast<std::size_t>(timeline::KindOfRegion(region))];
    }
    return counts;
  });
  // An out-fade that runs into a crossfade lands too, and is covered.
  Check("regions, fades in, crossfades and fades out", std::vector<int>{10, 3, 3, 7}, kinds);
  WaitFor("the bar sums up", [] {
    return TextOf([Variable<NSTextField*>(Bar(), "summaryField") stringValue])
               .find("23 regions on 4 tracks") != std::string::npos;
  });
  Screenshot(Window(), "timeline");

  const NSRect region = PlaceOf(0, 0);
  Click(Lanes(), region);
  CheckContains("a click tells the region's name", "ada", Facts());
  CheckContains("and its track", "on track 1", Facts());
  CheckContains("and its place", "01:00:01:20", Facts());
  CheckContains("and its file", "ada.wav", Facts());
  Screenshot(Window(), "timeline-facts");

  const NSRect lane = Ask([] { return [Lanes() rectOfLane:1]; });
  const NSPoint middle = NSMakePoint(NSMidX(lane), NSMidY(lane));
  Key("plus");
  const std::int64_t still = Origin();
  Drag(Lanes(), middle, NSMakePoint(middle.x - 100, middle.y));
  CheckTrue("dragging scrolls", Origin() > still);

  Click(Variable<NSView*>(Bar(), "clearButton"));
  WaitFor("the session is empty", [] { return [Lanes() model].Regions().empty(); });
}

// How often a file is opened while `work` is done.
int OpensOf(const std::string& path, const std::function<void()>& work) {
  // Closing is watched too: equal events in a row would come as one.
  const int watcher = inotify_init1(IN_NONBLOCK);
  CheckTrue("the file is watched",
            inotify_add_watch(watcher, path.c_str(), IN_OPEN | IN_CLOSE) >= 0);
  work();
  int opens = 0;
  inotify_event event;
  while (read(watcher, &event, sizeof event) == sizeof event) opens += event.mask & IN_OPEN ? 1 : 0;
  close(watcher);
  return opens;
}

// The reason is the view's own: the file is not loaded again for it.
void TellsFailure() {
  const test::TemporaryFolder folder;
  const std::string bad = folder.Write(
      "bad.adl", "<ADL>\n<EVENT_LIST>\n(Entry) 1 (Cut) I 1 1 1 x\n</EVENT_LIST>\n</ADL>\n");
  StartShell();
  const auto gate = SlowChecks("bad.adl");  // which reads the file for itself
  const int opens = OpensOf(bad, [&] { LoadPath(bad); });
  CheckContains("line and section are told", "bad.adl does not load: line 3: <EVENT_LIST>",
                StatusText());
  Check("the file was read once", 1, opens);
  gate->Open();
  WaitForCheck();
  CheckContains("they are told after the check too", "line 3: <EVENT_LIST>", StatusText());
}

// Text that is no UTF-8 is read as Shift-JIS, as in the view.
void ReadsShiftJis() {
  const test::TemporaryFolder folder;
  desktop::ShellOptions options;
  options.project = folder.Path("\x83\x65\x83\x58\x83\x67.adl");
  StartShell(options);
  WaitFor("the load has ended",
          [] { return !TextOf([[Controller() errorMessageLabel] stringValue]).empty(); });
  CheckContains("the status line has the name", "\u30c6\u30b9\u30c8.adl does not load",
                StatusText());
  Check("the field has it too", folder.Path("\u30c6\u30b9\u30c8.adl"),
        FieldText([Controller() FileNameTextField]));
}

void ObeysKeys() {
  const test::TemporaryFolder folder;
  SpotStorm(folder);
  const NSRect lane = Ask([] { return [Lanes() rectOfLane:1]; });
  Click(Lanes(), NSMakeRect(NSMidX(lane), NSMidY(lane), 2, 2));
  const double all = SamplesPerPixel();
  const auto showsAll = [&] {
    return std::abs([Lanes() scale].SamplesPerPixel() / all - 1) < 0.01;
  };

  // A menu lights up for a moment before it acts: hence the waiting.
  for (const char* in : {"plus", "equal", "KP_Add", "ctrl+plus", "ctrl+equal"}) {
    Key(in);
    WaitFor(std::string(in) + " zooms in",
            [&] { return [Lanes() scale].SamplesPerPixel() < all * 0.9; });
    Key("minus");
    WaitFor("minus zooms out again", showsAll);
  }
  for (const char* out : {"KP_Subtract", "ctrl+minus"}) {
    Keys({"plus", out});
    WaitFor(std::string(out) + " zooms out", showsAll);
  }
  for (const char* whole : {"0", "f", "ctrl+0"}) {
    Keys({"plus", "plus", "plus", whole});
    WaitFor(std::string(whole) + " shows all", showsAll);
  }

  Keys({"plus", "plus", "plus", "Home"});
  const std::int64_t start = Origin();
  struct Way {
    const char* there;
    const char* back;
  };
  for (const Way way : {Way{"Right", "Left"}, {"Next", "Prior"}, {"End", "Home"}}) {
    Key(way.there);
    CheckTrue(std::string(way.there) + " scrolls on", Origin() > start);
    Key(way.back);
    Check(std::string(way.back) + " scrolls back", start, Origin());
  }
}

void ObeysWheel() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 60, 30));
  PressSpot();
  WaitFor("all regions have landed", [] { return [Lanes() model].Regions().size() == 60; });
  const NSRect lanes = Ask([] { return [Lanes() lanesRect]; });
  const NSPoint middle = NSMakePoint(NSMidX(lanes), NSMidY(lanes));
  const auto firstLane = [] { return Ask([] { return [Lanes() visibleLanes].location; }); };

  TurnWheel(Lanes(), middle, -5);
  CheckTrue("the wheel scrolls down", firstLane() > 0);
  TurnWheel(Lanes(), middle, 5);
  Check("and up", NSUInteger{0}, firstLane());

  const double before = SamplesPerPixel();
  const auto pointed = [&] {
    return Ask([&] { return [Lanes() scale].ToSample(middle.x - NSMinX(lanes)); });
  };
  const std::int64_t sample = pointed();
  TurnWheelWith("ctrl", Lanes(), middle, 3);
  CheckTrue("with Ctrl it zooms in", SamplesPerPixel() < before * 0.6);
  CheckTrue("around the pointer", std::abs(static_cast<double>(pointed() - sample)) < before * 2);

  const std::int64_t origin = Origin();
  TurnWheelWith("shift", Lanes(), middle, -2);
  CheckTrue("with Shift it scrolls on", Origin() > origin);
  TurnWheelWith("shift", Lanes(), middle, 2);
  Check("and back", origin, Origin());
}

void ScrollsLanes() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 60, 30));
  PressSpot();
  WaitFor("all regions have landed", [] { return [Lanes() model].Regions().size() == 60; });
  Check("there are thirty lanes", std::size_t{30}, Ask([] { return [Lanes() model].LaneCount(); }));
  const auto firstLane = [] { return Ask([] { return [Lanes() visibleLanes].location; }); };
  const NSRect lanes = Ask([] { return [Lanes() lanesRect]; });
  Check("the first lane is on view", NSUInteger{0}, firstLane());
  TurnWheel(Lanes(), NSMakePoint(NSMidX(lanes), NSMidY(lanes)), -5);
  CheckTrue("the wheel scrolls down", firstLane() > 0);
  Click(Lanes(), NSMakeRect(NSMidX(lanes), NSMidY(lanes), 2, 2));
  for (int i = 0; i < 30; ++i) Key("Down");
  Check("the arrow leads to the last lane", std::size_t{30}, Ask([] {
          const NSRange range = [Lanes() visibleLanes];
          return static_cast<std::size_t>(NSMaxRange(range));
        }));
  Screenshot(Window(), "timeline-scrolled");
}

class StopWatch {
 public:
  double Wall() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - wall_).count();
  }
  double Processor() const {
    return static_cast<double>(std::clock() - processor_) / CLOCKS_PER_SEC;
  }

 private:
  std::chrono::steady_clock::time_point wall_ = std::chrono::steady_clock::now();
  std::clock_t processor_ = std::clock();
};

void NoteTime(const std::string& what, const StopWatch& watch) {
  Note("time " + what + ": " + Shown(watch.Wall()) + " s, of the processor " +
       Shown(watch.Processor()) + " s");
}

NSRange ShownRows(NSTableView* table) {
  return Ask([&] { return [table rowsInRect:[table visibleRect]]; });
}

void ShowsManyEvents() {
  constexpr NSInteger kEvents = 100000;
  const test::TemporaryFolder folder;
  const std::string path = SimpleProject(folder, kEvents, 8);
  const StopWatch start;
  StartShell();
  OnMain([] { [Window() display]; });
  NoteTime("from the call of the shell to keys in the window", start);

  const StopWatch load;
  LoadPath(path);
  OnMain([] { [Window() display]; });
  NoteTime("until 100,000 cuts were loaded and drawn", load);
  Check("all are listed", kEvents, Rows(EventTable()));
  Screenshot(Window(), "many-events");

  double worst = 0;
  double worstProcessor = 0;
  for (const NSInteger row : {50000, 99999, 0, 12345, 99999, 33333, 77777, 1}) {
    const StopWatch scroll;
    OnMain([&] {
      [EventTable() scrollRowToVisible:row];
      [EventTable() display];
    });
    worst = std::max(worst, scroll.Wall());
    worstProcessor = std::max(worstProcessor, scroll.Processor());
    CheckTrue("row " + Shown(row) + " comes into view",
              NSLocationInRange(static_cast<NSUInteger>(row), ShownRows(EventTable())));
  }
  Note("time of the slowest jump and redraw: " + Shown(worst) + " s, of the processor " +
       Shown(worstProcessor) + " s");

  const NSRect visible = Ask([] { return [EventTable() visibleRect]; });
  const NSPoint middle = NSMakePoint(NSMidX(visible), NSMidY(visible));
  const NSUInteger before = ShownRows(EventTable()).location;
  TurnWheel(EventTable(), middle, -3);
  CheckTrue("the wheel scrolls down", ShownRows(EventTable()).location > before);

  NSScroller* const scroller =
      Ask([] { return [[EventTable() enclosingScrollView] verticalScroller]; });
  const NSRect knob = Ask([&] { return [scroller rectForPart:NSScrollerKnob]; });
  const NSRect slot = Ask([&] { return [scroller bounds]; });
  const bool flipped = Ask([&] { return [scroller isFlipped] == YES; });
  const NSPoint grip = NSMakePoint(NSMidX(knob), NSMidY(knob));
  Drag(scroller, grip, NSMakePoint(grip.x, flipped ? NSMaxY(slot) + 20 : NSMinY(slot) - 20));
  WaitFor("the knob leads to the last row", [] {
    return NSMaxRange([EventTable() rowsInRect:[EventTable() visibleRect]]) == kEvents;
  });
  ClickCell(EventTable(), @"Space", kEvents - 1);
  WaitFor("its box works", [] { return [Controller() project]->events.back().eventOn == 0; });
  Screenshot(Window(), "many-events-end");
}

void StaysAliveDuringLongSpot() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 2000, 8));
  const StopWatch spot;
  PressSpot();
  double worst = 0;
  int answers = 0;
  while (SpotTag() == 1) {
    const StopWatch answer;
    OnMain([] {});
    worst = std::max(worst, answer.Wall());
    ++answers;
    Pause(0.02);
  }
  Note("time of 2,000 regions: " + Shown(spot.Wall()) + " s, slowest answer of the window " +
       Shown(worst) + " s of " + Shown(answers));
  CheckTrue("the window answered meanwhile", answers >= 3);
  WaitFor("all regions have landed", [] { return [Lanes() model].Regions().size() == 2000; });
}

// Whether the parts of the window lie beside each other, all inside it.
std::string Overlaps() {
  return Ask([]() -> std::string {
    NSView* const content = [[Window() contentView] superview];
    struct Part {
      const char* name;
      NSView* view;
    };
    const Part parts[] = {{"bar", Bar()},
                          {"path", [Controller() FileNameTextField]},
                          {"folder", [Controller() CopyFolderNameTextField]},
                          {"project", [ProjectTable() enclosingScrollView]},
                          {"tracks", [TrackTable() enclosingScrollView]},
                          {"widths", [WidthTable() enclosingScrollView]},
                          {"events", [EventTable() enclosingScrollView]},
                          {"entries", [Controller() timeCodeSetBaseBox]},
                          {"depth", [Controller() depthMatrix]},
                          {"fades", [Controller() fadeDataMatrix]},
                          {"gain", [Controller() gainDataMatrix]},
                          {"start", [Controller() totalStartTimeTextField]},
                          {"progress", [Controller() spotProgressIndicator]},
                          {"spot", [Controller() spotButton]},
                          {"timeline", Timeline()}};
    std::string faults;
    for (const Part& part : parts) {
      const NSRect place = [part.view convertRect:[part.view bounds] toView:content];
      if (NSIsEmptyRect(place)) faults += std::string(part.name) + " is empty; ";
      if (!NSContainsRect([content bounds], place)) faults += std::string(part.name) + " is cut; ";
      for (const Part* other = &part + 1; other != std::end(parts); ++other) {
        const NSRect there = [other->view convertRect:[other->view bounds] toView:content];
        if (NSIntersectsRect(NSInsetRect(place, 1, 1), NSInsetRect(there, 1, 1))) {
          faults += std::string(part.name) + " lies over " + other->name + "; ";
        }
      }
    }
    return faults;
  });
}

void Resizes() {
  const test::TemporaryFolder folder;
  SpotStorm(folder);
  Check("at first all parts have their places", "", Overlaps());
  for (const CGFloat width : {400, 1400}) {
    OnMain([&] {
      NSRect frame = [Window() frame];
      frame.size = NSMakeSize(width, width * 0.67);
      const NSSize least = [Window() minSize];  // below which the user cannot pull the window
      frame.size.width = std::max(frame.size.width, least.width);
      frame.size.height = std::max(frame.size.height, least.height);
      [Window() setFrame:frame display:YES];
    });
    Pause(0.5);
    Check("and at " + Shown(width), "", Overlaps());
    Screenshot(Window(), width < 1000 ? "least-size" : "large-size");
  }
}

// What the display sends while it is asked something is read with its answer. It is taken at once
// all the same, not when the mouse next moves.
void TakesPressReadWithAnswer() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 1, 1));
  NSButton* const box = [Controller() cpoySourcecheckBox];
  const auto ticked = [box] { return [box state] == NSOnState; };
  Click(box);
  WaitFor("a click ticks it", ticked);
  ClickReadWithAnswer(box);
  WaitFor("the next click clears it", [&] { return !ticked(); });
}

}  // namespace

std::vector<Scenario> ShellScenarios() {
  return {{"fills-timeline", FillsTimeline},
          {"tells-failure", TellsFailure},
          {"reads-shift-jis", ReadsShiftJis},
          {"takes-press-read-with-answer", TakesPressReadWithAnswer},
          {"obeys-keys", ObeysKeys},
          {"obeys-wheel", ObeysWheel},
          {"scrolls-lanes", ScrollsLanes},
          {"many-events", ShowsManyEvents},
          {"long-spot", StaysAliveDuringLongSpot},
          {"resizes", Resizes}};
}

}  // namespace velmora::view
