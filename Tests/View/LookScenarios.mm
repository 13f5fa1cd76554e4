// How the window looks: what has room, and what keeps its place.

#include <algorithm>
#include <cmath>

#include "Timecode/RateTables.h"
#import "View/Checks.h"
#import "View/Driver.h"
#import "View/Material.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

// As small as the user can pull it, or as it was.
void SetWindowSize(NSSize size) {
  OnMain([&] {
    NSRect frame = [Window() frame];
    frame.size = size;
    [Window() setFrame:frame display:YES];
  });
  Pause(0.5);
}

NSSize WindowSize() {
  return Ask([] { return [Window() frame].size; });
}

NSSize LeastWindowSize() {
  return Ask([] { return [Window() minSize]; });
}

CGFloat WidthOf(NSString* text, NSFont* font) {
  return [text sizeWithAttributes:[NSDictionary dictionaryWithObject:font
                                                              forKey:NSFontAttributeName]]
      .width;
}

// The width of the widest stamp that keeps its sixteen characters on the screen.
CGFloat WidestStamp(NSFont* font) {
  CGFloat widest = 0;
  for (const SampleRateMark& rate : kSampleRateMarks) {
    NSString* stamp = [NSString stringWithFormat:@"00.00:00:00%c0000", rate.mark];
    widest = std::max(widest, WidthOf(stamp, font));
  }
  return widest;
}

// A stamp is drawn in full and stands apart from what follows it.
void FitsStamps() {
  constexpr CGFloat kApart = 10;
  const test::TemporaryFolder folder;
  StartShellWith(CopyOfExample(folder, "Ferry/Ferry.adl"));
  Check("a stamp at 44.1 kHz shows its sixteen characters", "01.00:01:00|0000",
        CellText(TrackTable(), @"Start", 0));
  struct Column {
    NSTableView* table;
    NSString* name;
  };
  const Column columns[] = {{TrackTable(), @"Start"},
                            {TrackTable(), @"End"},
                            {EventTable(), @"In"},
                            {EventTable(), @"Out"}};
  for (const NSSize size : {WindowSize(), LeastWindowSize()}) {
    SetWindowSize(size);
    for (const Column& each : columns) {
      const CGFloat left = Ask([&] {
        NSTableColumn* const column = [each.table tableColumnWithIdentifier:each.name];
        return [column width] - WidestStamp([[column dataCell] font]);
      });
      CheckTrue(TextOf(each.name) + " has room for a stamp at " + Shown(size.width) + ", left " +
                    Shown(left),
                left >= kApart);
    }
    for (NSTextField* field :
         {[Controller() totalStartTimeTextField], [Controller() totalEndTimeTextField]}) {
      CheckTrue("so has the project's time",
                Ask([&] { return NSWidth([field bounds]) >= WidestStamp([field font]); }));
    }
    Screenshot(Window(), size.width > 1000 ? "stamps" : "stamps-least-size");
  }
}

// The pixels of a row's cell, from the row's upper edge to its lower.
std::string PixelsOfCell(NSTableView* table, NSString* column, NSInteger row) {
  return Ask([&] {
    NSBitmapImageRep* const pixels = [DrawnPixels(table) autorelease];
    const NSRect cell = NSIntersectionRect(
        [table rectOfRow:row], [table rectOfColumn:[table columnWithIdentifier:column]]);
    std::string text;
    for (CGFloat y = NSMinY(cell); y < NSMaxY(cell); ++y) {
      for (CGFloat x = NSMinX(cell); x < NSMaxX(cell); ++x) {
        NSUInteger pixel[4] = {};
        [pixels getPixel:pixel atX:static_cast<NSInteger>(x) y:static_cast<NSInteger>(y)];
        text += pixel[0] + pixel[1] + pixel[2] < 3 * 160 ? '#' : '.';
      }
      text += '\n';
    }
    return text;
  });
}

// The rows of the project's table are hardly higher than a line of text. What reached beyond a
// row's upper edge would be cut off in the first row, and painted over in the others.
void DrawsWholeLines() {
  const test::TemporaryFolder folder;
  test::ProjectBuilder project;
  project.Constant("PROJECT", "PROJ_TITLE", "Tjgd|").Constant("PROJECT", "PROJ_NOTES", "Tjgd|");
  project.Silence();
  StartShellWith(project.WriteTo(folder));
  for (const NSInteger row : {0, 3}) {
    const std::string pixels = PixelsOfCell(ProjectTable(), @"Data", row);
    const std::size_t width = pixels.find('\n') + 1;
    const std::string line = "the line in row " + Shown(row);
    CheckTrue(line + " is drawn", pixels.find('#') != std::string::npos);
    CheckTrue(line + " begins below its upper edge", pixels.find('#') >= width);
    CheckTrue(line + " ends above its lower edge", pixels.rfind('#') < pixels.size() - width);
  }
  const auto rows = [](NSTableView* table) {
    return Ask([&] {
      const NSRect last = [table rectOfRow:[table numberOfRows] - 1];
      return NSContainsRect([table visibleRect], last) == YES;
    });
  };
  CheckTrue("the last line of the project is on view", rows(ProjectTable()));
  CheckTrue("and the last width", rows(WidthTable()));
}

// A window that was small for a while looks afterwards as it did before.
void KeepsDivider() {
  StartShell();
  const NSSize size = WindowSize();
  const auto height = [] { return Ask([] { return NSHeight([Timeline() frame]); }); };
  const auto shrinkAndGrow = [&] {
    SetWindowSize(LeastWindowSize());
    SetWindowSize(size);
  };
  const CGFloat before = height();
  shrinkAndGrow();
  Check("the timeline has its height again", before, height());

  NSSplitView* const split = Variable<NSSplitView*>(Shell(), "split");
  const NSPoint grip = Ask([&] {
    const NSRect lower = [Timeline() frame];
    return NSMakePoint(NSMidX(lower), NSMinY(lower) - [split dividerThickness] / 2);
  });
  Drag(split, grip, NSMakePoint(grip.x, grip.y + 60));
  WaitFor("the divider can be dragged",
          [&] { return std::abs(before - 60 - NSHeight([Timeline() frame])) < 2; });
  const CGFloat dragged = height();
  shrinkAndGrow();
  Check("and stays where it was left", dragged, height());
}

}  // namespace

std::vector<Scenario> LookScenarios() {
  return {{"fits-stamps", FitsStamps},
          {"draws-whole-lines", DrawsWholeLines},
          {"keeps-divider", KeepsDivider}};
}

}  // namespace velmora::view
