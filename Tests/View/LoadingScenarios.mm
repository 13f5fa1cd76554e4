// Projects come in through the file panel, folders through the other.

#include "ADL/LoadFailure.h"
#import "View/Checks.h"
#import "View/Driver.h"
#import "View/Material.h"
#import "View/Panels.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

// Notes what the view says and shows at the moment when it tells of a load.
@interface LoadListener : NSObject {
 @public
  int loads;
  bool onMainThread;
  id teller;
  std::string message;
}
- (void)didLoad:(NSNotification*)notification;
@end

@implementation LoadListener

- (void)didLoad:(NSNotification*)notification {
  ++loads;
  onMainThread = [NSThread isMainThread];
  teller = [notification object];
  message = velmora::view::TextOf([[velmora::view::Controller() errorMessageLabel] stringValue]);
}

@end

namespace velmora::view {

namespace {

void PickThroughPanel(NSButton* button, const std::string& path, const std::string& screenshot) {
  Click(button);
  NSWindow* panel = WaitForPanel("the panel opens");
  SelectInPanel(panel, path);
  if (!screenshot.empty()) Screenshot(panel, screenshot);
  ClickButton(panel, "OK");
  WaitForNoPanel("the panel closes");
}

void CancelPanel(NSButton* button, const std::string& path) {
  Click(button);
  NSWindow* panel = WaitForPanel("the panel opens");
  SelectInPanel(panel, path);
  ClickButton(panel, "Cancel");
  WaitForNoPanel("the panel closes");
}

// Everything that a load could change.
std::string WholeView() {
  return FieldText([Controller() FileNameTextField]) + "\n" +
         FieldText([Controller() CopyFolderNameTextField]) + "\n" +
         FieldText([Controller() totalStartTimeTextField]) + "\n" +
         FieldText([Controller() totalEndTimeTextField]) + "\n" + Message() + "\n" + StatusText() +
         "\n" + TableText(ProjectTable()) + TableText(TrackTable()) + TableText(EventTable()) +
         TableText(WidthTable());
}

void StartsEmpty() {
  StartShell();
  Check("the project table has its 13 rows", NSInteger{13}, Rows(ProjectTable()));
  Check("the first title stands", "Project Title", CellText(ProjectTable(), @"Title", 0));
  Check("its data is empty", "", CellText(ProjectTable(), @"Data", 0));
  Check("the width table has 8 rows", NSInteger{8}, Rows(WidthTable()));
  Check("no track counts as mono", "0", CellText(WidthTable(), @"Number", 0));
  Check("there is no track row", NSInteger{0}, Rows(TrackTable()));
  Check("there is no event row", NSInteger{0}, Rows(EventTable()));
  Check("the offset takes a sign", "+00:00:00:00", EntryText(OffsetEntry()));
  Check("the start time takes none", " 00:00:00:00", EntryText(StartEntry()));
  Check("item 3 of the combo box is chosen", NSInteger{3},
        Ask([] { return [[Controller() trackOffsetComboBox] indexOfSelectedItem]; }));
  // Half of the start went there: see Theme/ToolkitSetup.
  const std::string mapped = test::TemporaryFolder::Read("/proc/self/maps");
  CheckContains("what is loaded can be told", "libgnustep-gui", mapped);
  CheckTrue("no readers of rare pictures are loaded", mapped.find("/coders/") == std::string::npos);
  Check("the status line invites", "Choose an ADL file to begin", StatusText());
  PressSpot();
  Pause(0.3);
  Check("a spot without a project does nothing", NSInteger{0}, SpotTag());
  Check("and says nothing", "", Message());
  Screenshot(Window(), "empty");
}

void PicksFile() {
  const test::TemporaryFolder folder;
  const std::string storm = CopyOfExample(folder, "Storm.adl");
  StartShell();
  PickThroughPanel([Controller() selectFileButton], storm, "file-panel");

  WaitFor("the project is loaded", [] { return [Controller() project] != nullptr; });
  Check("the whole path stands in the field", storm, FieldText([Controller() FileNameTextField]));
  Check("the silence, which has no file, raises the message",
        "Some files not found. Check event list.", Message());
  Check("there are four tracks", NSInteger{4}, Rows(TrackTable()));
  Check("there are eleven events", NSInteger{11}, Rows(EventTable()));
  Check("the title is read as Shift-JIS", "\"嵐の予報\"", CellText(ProjectTable(), @"Data", 0));
  Check("four tracks count as mono", "4", CellText(WidthTable(), @"Number", 0));
  Check("the material starts", "01|00:00:00", FieldText([Controller() totalStartTimeTextField]));
  Check("and ends", "01|00:14:00", FieldText([Controller() totalEndTimeTextField]));
  Check("the track table shows spans", "01|00:04:10", CellText(TrackTable(), @"Start", 1));
  Check("the event table shows names", "ada.wav", CellText(EventTable(), @"Name", 0));
  CheckContains("the status line counts", "10 cuts from 6 audio files, all found", StatusText());
  Screenshot(Window(), "storm");
}

void PicksFileAgain() {
  const test::TemporaryFolder folder;
  const std::string storm = CopyOfExample(folder, "Storm.adl");
  StartShellWith(storm);
  ClickCell(TrackTable(), @"Space", 3);
  WaitFor("a track is off", [] { return [EventTable() numberOfRows] == 9; });
  PickThroughPanel([Controller() selectFileButton], storm, "");
  Check("all events are back", NSInteger{11}, Rows(EventTable()));
  Check("all tracks are on", std::vector<std::string>(4, "1"), ColumnTexts(TrackTable(), @"Space"));
  Check("all events are on", std::vector<std::string>(11, "1"),
        ColumnTexts(EventTable(), @"Space"));
}

void CancelsPanels() {
  const test::TemporaryFolder folder;
  const std::string storm = CopyOfExample(folder, "Storm.adl");
  StartShellWith(storm);
  ClickCell(EventTable(), @"Space", 2);
  WaitFor("an event is off", [] { return [Controller() project]->events[2].eventOn == 0; });
  const std::string before = WholeView();
  const auto* const project = Ask([] { return [Controller() project]; });

  CancelPanel([Controller() selectFileButton], folder.Path("Examples/Ferry/Ferry.adl"));
  Check("a cancelled file panel changes nothing", before, WholeView());
  CheckTrue("the project is the same", project == Ask([] { return [Controller() project]; }));
  CancelPanel([Controller() selectFolderButton], folder.Path("Examples/Ferry"));
  Check("a cancelled folder panel changes nothing", before, WholeView());
}

void PicksFolder() {
  const test::TemporaryFolder folder;
  const std::string target = folder.Path("Kopien für die 嵐");
  std::filesystem::create_directory(target);
  StartShellWith(CopyOfExample(folder, "Storm.adl"));
  const std::string before = TableText(EventTable());
  PickThroughPanel([Controller() selectFolderButton], target, "folder-panel");
  Check("the folder's whole path stands in its field", target,
        FieldText([Controller() CopyFolderNameTextField]));
  Check("nothing else happens", before, TableText(EventTable()));

  Click([Controller() cpoySourcecheckBox]);
  PressSpot();
  WaitFor("the spot has come to its end", [] {
    return [[Controller() spotButton] tag] == 0 &&
           [[Timeline() timeline] model].Regions().size() == 10;
  });
  CheckTrue("copies lie in the folder", std::filesystem::exists(target + "/ada.wav"));
}

// What the view offers to shells: word of each load, and the reason of one that failed.
void TellsOfLoads() {
  const test::TemporaryFolder folder;
  const std::string storm = CopyOfExample(folder, "Storm.adl");
  const std::string bad = folder.Write(
      "bad.adl", "<ADL>\n<EVENT_LIST>\n(Entry) 1 (Cut) I 1 1 1 x\n</EVENT_LIST>\n</ADL>\n");
  StartShell();
  const auto failure = [] {
    return Ask([] {
      const LoadFailure* const reason = [Controller() loadFailure];
      return reason == nullptr ? std::string("none") : Shown(reason->line) + " " + reason->section;
    });
  };
  LoadListener* const listener = [[LoadListener new] autorelease];
  OnMain([&] {
    [[NSNotificationCenter defaultCenter] addObserver:listener
                                             selector:@selector(didLoad:)
                                                 name:VelmoraDidLoadFileNotification
                                               object:nil];
  });
  Check("before the first load there is no failure", "none", failure());

  PickThroughPanel([Controller() selectFileButton], storm, "");
  Check("a good load is told once", 1, listener->loads);
  CheckTrue("on the main thread", listener->onMainThread);
  CheckTrue("by the view controller", listener->teller == Controller());
  Check("when the view shows its outcome", "Some files not found. Check event list.",
        listener->message);
  Check("it has no failure", "none", failure());

  LoadPath(bad);
  Check("a failed load is told too", 2, listener->loads);
  Check("when the view shows it", "File NG.", listener->message);
  Check("its failure says where", "3 EVENT_LIST", failure());
  LoadPath(storm);
  Check("a good load takes the failure away", "none", failure());
}

}  // namespace

std::vector<Scenario> LoadingScenarios() {
  return {{"starts-empty", StartsEmpty},        {"picks-file", PicksFile},
          {"picks-file-again", PicksFileAgain}, {"cancels-panels", CancelsPanels},
          {"picks-folder", PicksFolder},        {"tells-loads", TellsOfLoads}};
}

}  // namespace velmora::view
