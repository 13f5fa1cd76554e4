// Projects and resources that are not as they should be.

#include <sys/stat.h>

#include <filesystem>

#import "View/Checks.h"
#import "View/Driver.h"
#include "View/GatedHost.h"
#import "View/Material.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

void FailedLoadAfterGoodOne() {
  const test::TemporaryFolder folder;
  const std::string bad = folder.Write(
      "bad.adl", "<ADL>\n<EVENT_LIST>\n(Entry) 1 (Cut) I 1 1 1 x\n</EVENT_LIST>\n</ADL>\n");
  StartShellWith(CopyOfExample(folder, "Storm.adl"));
  ClickCell(EventTable(), @"Space", 0);
  WaitFor("an event is off", [] { return [Controller() project]->events[0].eventOn == 0; });
  const std::string events = TableText(EventTable());
  const std::string project = TableText(ProjectTable());
  const auto starts = ColumnTexts(TrackTable(), @"Start");
  const std::string start = FieldText([Controller() totalStartTimeTextField]);

  LoadPath(bad);
  Check("the view says so", "File NG.", Message());
  Check("the bad path stays in its field", bad, FieldText([Controller() FileNameTextField]));
  CheckTrue("there is no project", !HasProject());
  Check("the event table is as it was", events, TableText(EventTable()));
  Check("the project table is", project, TableText(ProjectTable()));
  Check("the track table is", starts, ColumnTexts(TrackTable(), @"Start"));
  Check("its boxes have no value", std::vector<std::string>(4, "none"),
        ColumnTexts(TrackTable(), @"Space"));
  Check("the total times are", start, FieldText([Controller() totalStartTimeTextField]));
  const std::string status = StatusText();
  CheckContains("the status line names the file", "bad.adl does not load", status);
  CheckContains("and the line", "line 3", status);
  CheckContains("and the section", "EVENT_LIST", status);
  OnMain([] { [Window() display]; });
  Screenshot(Window(), "failed-load");

  ClickCell(TrackTable(), @"Space", 0);
  ClickCell(EventTable(), @"Space", 1);
  Pause(0.2);
  Check("an edit of what is shown is dropped", events, TableText(EventTable()));
  PressSpot();
  Pause(0.3);
  Check("a spot does nothing", NSInteger{0}, SpotTag());
  Check("the message stands", "File NG.", Message());

  LoadPath(folder.Path("Examples/Storm.adl"));
  Check("a good load mends all", std::vector<std::string>(11, "1"),
        ColumnTexts(EventTable(), @"Space"));
}

void ProjectWithoutCuts() {
  const test::TemporaryFolder folder;
  test::ProjectBuilder silences;
  silences.Constant("PROJECT", "PROJ_TITLE", "\"Silence\"").Silence().Silence();
  const std::string path = silences.WriteTo(folder, "silence.adl");
  const std::string empty = test::ProjectBuilder().WriteTo(folder, "empty.adl");
  StartShellWith(path);
  Check("its title is shown", "\"Silence\"", CellText(ProjectTable(), @"Data", 0));
  CheckContains("the status line tells the truth", "silence.adl has no cut", StatusText());
  Check("no event is listed", NSInteger{0}, Rows(EventTable()));
  PressSpot();
  Pause(0.3);
  Check("a spot does nothing", NSInteger{0}, SpotTag());
  Screenshot(Window(), "no-cuts");

  LoadPath(CopyOfExample(folder, "Storm.adl"));
  Check("a project with cuts is listed", NSInteger{11}, Rows(EventTable()));
  LoadPath(empty);
  OnMain([] { [Window() display]; });
  CheckTrue("every table still draws", Ask([] { return [Window() isVisible] == YES; }));
  Check("a spot of it does nothing either", NSInteger{0}, (PressSpot(), Pause(0.3), SpotTag()));
}

// In, out and track have no entries for events that are no cuts.
void RowsPastAnArraysEnd() {
  const test::TemporaryFolder folder;
  folder.Write("tone.wav", ShortWave());
  test::ProjectBuilder project;
  project.Source(1, "tone.wav").Silence().Cut({.track = 7, .destOut = test::Stamp(48000)});
  StartShellWith(project.WriteTo(folder));
  Check("both are listed", std::vector<std::string>{"Silence", "Cut"},
        ColumnTexts(EventTable(), @"Type"));
  using Texts = std::vector<std::string>;
  Check("the first row shows the cut's start", Texts{"00.00:00:00", "none"},
        ColumnTexts(EventTable(), @"In"));
  Check("and its end", Texts{"00.00:01:00", "none"}, ColumnTexts(EventTable(), @"Out"));
  Check("and its track", Texts{"7", "none"}, ColumnTexts(EventTable(), @"Track"));
  OnMain([] { [Window() display]; });
  Screenshot(Window(), "rows-past-end");
  ClickCell(EventTable(), @"Space", 1);
  WaitFor("the cut's own box works", [] { return [Controller() project]->events[1].eventOn == 0; });
}

void PathsThatCannotBeRead() {
  const test::TemporaryFolder folder;
  const std::string fifo = folder.Path("fifo.adl");
  CheckTrue("a FIFO stands", mkfifo(fifo.c_str(), 0600) == 0);
  const std::string binary = folder.Write("binary.adl", std::string("<ADL>\0\x80\xff<<>>(", 14));
  StartShell();
  const std::string bad[] = {folder.Path("nothing.adl"),
                             folder.Path(),
                             "/dev/zero",
                             fifo,

                             "",
                             "no/slash/here",
                             std::string(5000, 'x')};
  for (const std::string& path : bad) {
    LoadPath(path);
    const std::string shown = path.size() > 80 ? "a long path" : "\"" + path + "\"";
    Check("the view refuses " + shown, "File NG.", Message());
    CheckTrue("there is no project of " + shown, !HasProject());
    CheckTrue("the status line says something of " + shown, !StatusText().empty());
  }
  LoadPath(bad[0]);
  CheckContains("the status line tells the reason", "nothing.adl does not load", StatusText());
  LoadPath(binary);
  CheckTrue("the window lives on", Ask([] { return [Window() isVisible] == YES; }));
}

struct Colour {
  double red = 0;
  double green = 0;
  double blue = 0;
};

std::ostream& operator<<(std::ostream& out, const Colour& colour) {
  return out << '(' << colour.red << ' ' << colour.green << ' ' << colour.blue << ')';
}

bool Near(const Colour& a, const Colour& b) {
  constexpr double kRounding = 1.5 / 255;
  return std::abs(a.red - b.red) < kRounding && std::abs(a.green - b.green) < kRounding &&
         std::abs(a.blue - b.blue) < kRounding;
}

// The colour that is drawn in a cell, beside what stands in it.
Colour DrawnBackground(NSTableView* table, NSString* column, NSInteger row) {
  return Ask([&] {
    [table scrollRowToVisible:row];
    NSBitmapImageRep* const pixels = [DrawnPixels(table) autorelease];
    const NSRect visible = [table visibleRect];
    const NSRect cell = [table frameOfCellAtColumn:[table columnWithIdentifier:column] row:row];
    const auto x = static_cast<NSInteger>(NSMaxX(cell) - NSMinX(visible) - 3);
    const auto y = static_cast<NSInteger>(NSMidY(cell) - NSMinY(visible));
    NSColor* const color = [[pixels colorAtX:x
                                           y:y] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    return Colour{[color redComponent], [color greenComponent], [color blueComponent]};
  });
}

void CheckColour(const std::string& what, const Colour& expected, const Colour& got) {
  Report(Near(expected, got), what, Shown(expected), Shown(got));
}

void DrawsMissingFilesRed() {
  const test::TemporaryFolder folder;
  folder.Write("tone.wav", ShortWave());
  test::ProjectBuilder project;
  project.Source(1, "tone.wav").Source(2, "gone.wav");
  for (const int source : {1, 1, 2, 2, 1, 1}) project.Cut({.source = source});
  StartShellWith(project.WriteTo(folder));
  const Colour white{1, 1, 1};
  const Colour stripe{0.95, 0.95, 0.95};
  const Colour red{1, 0, 0};
  const Colour rows[] = {white, stripe, red, red, white, stripe};
  for (NSString* column : {@"Space", @"Type", @"Event", @"Ch", @"In", @"Out", @"Track", @"Name"}) {
    for (int row = 0; row < 6; ++row) {
      CheckColour("row " + Shown(row) + " of " + TextOf(column), rows[row],
                  DrawnBackground(EventTable(), column, row));
    }
  }
  CheckColour("a track's row is never red", white, DrawnBackground(TrackTable(), @"Type", 0));
  CheckContains("the status line counts", "1 of 2 audio files missing: gone.wav", StatusText());
  Screenshot(Window(), "missing");

  ClickCell(EventTable(), @"Space", 2);
  WaitFor("the row is unticked", [] { return [Controller() project]->events[2].eventOn == 0; });
  CheckColour("an unticked row stays red", red, DrawnBackground(EventTable(), @"Name", 2));

  // The list of missing files is a click away.
  Click(Variable<NSView*>(Shell(), "status"));
  WaitFor("a list of the missing files opens", [] {
    for (NSUInteger i = 0; i < [[NSApp windows] count]; ++i) {
      NSWindow* window = [[NSApp windows] objectAtIndex:i];
      if ([window isVisible] && [[window title] isEqual:@"Missing audio files"]) return true;
    }
    return false;
  });
}

// A copy of the bundle, to take something from.
std::string DamagedBundle(const test::TemporaryFolder& folder, const std::string& missing) {
  const std::string copy = folder.Path("Damaged.bundle");
  std::filesystem::copy(std::filesystem::canonical(VELMORA_BUNDLE), copy,
                        std::filesystem::copy_options::recursive);
  CheckTrue(missing + " is taken from the bundle",
            std::filesystem::remove_all(copy + "/Resources/" + missing) > 0);
  return copy;
}

void PictureIsMissing() {
  const test::TemporaryFolder folder;
  desktop::ShellOptions options;
  options.project = SimpleProject(folder, 3, 1);
  options.bundle = DamagedBundle(folder, "KestaneGUI.bundle/Resources/Cancel_Off.png");
  StartShell(options);
  WaitFor("the project is loaded", [] { return [Controller() project] != nullptr; });
  GatedHost& gate = GatedHost::Install();
  PressSpot();
  gate.WaitForArrival(1);
  Check("the spot runs", NSInteger{1}, SpotTag());
  Check("the button has no picture", "", SpotPicture());
  Screenshot(Window(), "picture-missing");
  gate.Open();
  WaitFor("the spot has come to its end", [] { return [[Controller() spotButton] tag] == 0; });
  Check("the other picture is there", "Spot_Off.png", SpotPicture());
}

}  // namespace

std::vector<Scenario> TroubleScenarios() {
  return {{"failed-load", FailedLoadAfterGoodOne}, {"no-cuts", ProjectWithoutCuts},
          {"rows-past-end", RowsPastAnArraysEnd},  {"unreadable-paths", PathsThatCannotBeRead},
          {"missing-files", DrawsMissingFilesRed}, {"picture-missing", PictureIsMissing}};
}

}  // namespace velmora::view
