// Projects as they come: what the shell finds in them, and how it prepares them.

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#import "View/Checks.h"
#import "View/Driver.h"
#import "View/FindingsStage.h"
#import "View/GatedHost.h"
#import "View/Material.h"
#import "View/Panels.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

namespace fs = std::filesystem;

// A spot of the project that is on view, whole.
void SpotAll(std::size_t regions) {
  Click([Controller() spotButton]);
  WaitFor("all events have landed", [&] {
    return [[Controller() spotButton] tag] == 0 &&
           [[Timeline() timeline] model].Regions().size() == regions;
  });
}

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> FirstGravities(NSInteger rows) {
  std::vector<std::string> texts;
  for (NSInteger row = 0; row < rows; ++row) texts.push_back(FindingText(@"Gravity", row));
  return texts;
}

void FindsAndPrepares() {
  const test::TemporaryFolder folder;
  const std::string path = FadeMarkProject(folder, "fades.adl", 3);
  StartShell();
  LoadPath(path);
  WaitForCheck();
  Check("the failure stands first", std::size_t{0}, StatusText().find("fades.adl does not load "));
  CheckContains("then how many findings", "3 findings", StatusText());
  CheckContains("and what", "Fade lengths", StatusText());
  Check("both buttons are there", "Show Findings, Prepare\u2026", OfferedButtons());
  Screenshot(Window(), "findings-status");

  Click(StatusButton("findingsButton"));
  WaitFor("the list opens", [] { return [FindingsWindow() isKeyWindow]; });
  Check("a row for each finding, the worst first", std::vector<std::string>(3, "Fails"),
        FirstGravities(3));
  CheckTrue("and no more of them", FindingText(@"Gravity", 3) != "Fails");
  Check("its gravity", "Fails", FindingText(@"Gravity", 0));
  Check("its line", "8", FindingText(@"Line", 0));
  Check("its event", "1", FindingText(@"Event", 0));
  CheckTrue("its effect", !FindingText(@"Effect", 0).empty());
  CheckTrue("its remedy", !FindingText(@"Remedy", 0).empty());
  CheckContains("the first stands in full", "Line 8, event 1", DetailText());
  Key("Down");
  CheckContains("the arrow leads to the next", "event 2", DetailText());
  Screenshot(FindingsWindow(), "findings");
  Key("ctrl+c");
  WaitFor("the row is copied",
          [] { return TextOf(ClipboardText()).find("event 2") != std::string::npos; });
  Check("and no other", std::string::npos,
        Ask([] { return TextOf(ClipboardText()); }).find("event 1"));
  Click(PanelButton(FindingsWindow(), "Copy All"));
  const std::string all = Ask([] { return TextOf(ClipboardText()); });
  CheckContains("the button copies all", "event 1", all);
  CheckContains("to the last", "event 3", all);
  Key("Escape");
  WaitFor("Escape closes the list", [] { return ![FindingsWindow() isVisible]; });

  Click(StatusButton("prepareButton"));
  WaitFor("the panel opens", [] { return [PrepareWindow() isKeyWindow]; });
  Check("a target stands there", folder.Path("fades prepared"), FieldText(TargetField()));
  Screenshot(PrepareWindow(), "prepare-form");
  Keys({"Tab", "Tab"});  // past the list; the button that removes has nothing to do
  WaitFor("Tab leads to the target", [] { return [TargetField() currentEditor] != nil; });
  Key("ctrl+a");
  TypeText("clean");
  Key("Return");
  WaitFor("it comes to its end", [] { return PanelHas(PrepareWindow(), "Close"); });
  CheckContains("what was done is said", "Prepared: ", PrepareMessage());
  CheckContains("and that it is loaded", "It is loaded in the window.", PrepareMessage());
  CheckContains("each change is listed", "event 3", ResultText());
  CheckContains("and each file", "linked from", ResultText());
  Screenshot(PrepareWindow(), "prepare-result");
  Click(PanelButton(PrepareWindow(), "Copy Text"));
  CheckContains("it is copied with the project's place", folder.Path("clean/fades.adl"),
                Ask([] { return TextOf(ClipboardText()); }));
  Key("Escape");
  WaitFor("Escape closes the panel", [] { return ![PrepareWindow() isVisible]; });
  Check("the prepared project is on view", folder.Path("clean/fades.adl"),
        FieldText([Controller() FileNameTextField]));
  WaitForCheck();
  Check("nothing is offered any more", "", OfferedButtons());
  SpotAll(3);
}

void CleanOffersNothing() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 4, 2));
  WaitForCheck();
  Check("no button", "", OfferedButtons());
  Check("all is well", "4 cuts from 1 audio file, all found", StatusText());
  Key("ctrl+i");
  Key("ctrl+p");
  Key("ctrl+c");  // with no focus
  ClickRow(EventTable(), 1);
  Key("ctrl+c");  // and with one that has nothing to copy
  Pause(0.3);
  CheckTrue("the menu opens no list", Ask([] { return ![FindingsWindow() isVisible]; }));
  CheckTrue("and no panel", Ask([] { return ![PrepareWindow() isVisible]; }));
}

void LoadsDuringCheck() {
  const test::TemporaryFolder folder;
  const std::string slow = FadeMarkProject(folder, "slow.adl", 2);
  const std::string quick = FadeMarkProject(folder, "quick.adl", 5);
  StartShell();
  const auto gate = SlowChecks("slow.adl");
  LoadPath(slow);
  WaitFor("it is told that the check goes on",
          [] { return StatusText().find("Checking the project") != std::string::npos; });
  CheckTrue("the window answers", Ask([] { return [Desk() isChecking]; }));
  Check("nothing is offered yet", "", OfferedButtons());
  LoadPath(quick);
  WaitForCheck();
  CheckContains("the second project's findings", "5 findings", StatusText());
  gate->Open();
  Pause(0.5);
  CheckContains("and they stay", "5 findings", StatusText());
  LoadPath(slow);
  WaitForCheck();
  CheckContains("the first one's come with its load", "2 findings", StatusText());
}

// No memory for a check is no reason to end, and no reason to keep silent.
void CheckFails() {
  const test::TemporaryFolder folder;
  StartShell();
  BrokenChecks();
  LoadPath(SimpleProject(folder, 2, 1));
  WaitFor("it is told", [] {
    return StatusText().find("The project could not be checked") != std::string::npos;
  });
  Check("nothing is offered", "", OfferedButtons());
  SpotAll(2);
}

void CancelsPreparation() {
  const test::TemporaryFolder folder;
  const std::string path = BigFloatProject(folder);
  StartShell();
  LoadPath(path);
  WaitForCheck();
  const std::vector<std::string> before = NamesIn(folder.Path());
  Click(StatusButton("prepareButton"));
  WaitFor("the panel opens", [] { return [PrepareWindow() isKeyWindow]; });
  Click(PanelButton(PrepareWindow(), "Prepare"));
  WaitFor("it is under way", [] { return PreparedShare() > 0; });
  WaitFor("what is made is said", [] { return PrepareMessage().find("big") != std::string::npos; });
  Screenshot(PrepareWindow(), "prepare-progress");
  Click(PanelButton(PrepareWindow(), "Cancel"));
  WaitFor("it is cancelled", [] { return PrepareMessage().find("Cancelled.") == 0; });
  Check("nothing is there that was not before", before, NamesIn(folder.Path()));
  Check("the project stays on view", path, FieldText([Controller() FileNameTextField]));
  CheckTrue("the form takes input again", Ask([] { return [TargetField() isEnabled]; }));
  Click(PanelButton(PrepareWindow(), "Cancel"));
  WaitFor("Cancel closes it now", [] { return ![PrepareWindow() isVisible]; });
}

void PreparesWithMediaFolder() {
  const test::TemporaryFolder folder;
  const test::TemporaryFolder media;
  const std::string path = SimpleProject(folder, 3, 1, "moved.adl");
  fs::create_directories(media.Path("Sounds"));
  fs::rename(folder.Path("tone.wav"), media.Path("Sounds/tone.wav"));
  StartShell();
  LoadPath(path);
  WaitForCheck();
  CheckContains("the missing file is found out", "Audio files that are nowhere", StatusText());
  Click(StatusButton("prepareButton"));
  WaitFor("the panel opens", [] { return [PrepareWindow() isKeyWindow]; });

  const auto addFolder = [](const std::string& chosen) {
    Click(PanelButton(PrepareWindow(), "Add\u2026"));
    NSWindow* panel = WaitForPanel("folders are offered");
    SelectInPanel(panel, chosen);
    ClickButton(panel, "OK");
    WaitForNoPanel("the panel closes");
  };
  addFolder(folder.Path());
  addFolder(media.Path());
  addFolder(media.Path());
  Check("each stands there once", NSInteger{2}, Rows(MediaTable()));
  ClickRow(MediaTable(), 0);
  Click(PanelButton(PrepareWindow(), "Remove"));
  Check("one is taken out", NSInteger{1}, Rows(MediaTable()));
  Screenshot(PrepareWindow(), "prepare-media");
  Click(PanelButton(PrepareWindow(), "Prepare"));
  WaitFor("it comes to its end", [] { return PanelHas(PrepareWindow(), "Close"); });
  CheckContains("nothing is left", "Nothing is left to mend.", PrepareMessage());
  Click(PanelButton(PrepareWindow(), "Close"));
  WaitForCheck();
  SpotAll(3);
}

// What cannot be made says why, and leaves nothing.
void PreparationFails() {
  const test::TemporaryFolder folder;
  const std::string path = FadeMarkProject(folder, "fades.adl", 2);
  folder.Write("taken/file", "x");
  StartShell();
  LoadPath(path);
  WaitForCheck();
  Click(StatusButton("prepareButton"));
  WaitFor("the panel opens", [] { return [PrepareWindow() isKeyWindow]; });
  const std::vector<std::string> before = NamesIn(folder.Path());
  const auto tryTarget = [&](const std::string& target, const std::string& words) {
    OnMain([&] { [TargetField() setStringValue:StringOf(target)]; });
    Click(PanelButton(PrepareWindow(), "Prepare"));
    WaitFor("it is refused: " + words,
            [&] { return PrepareMessage().find(words) != std::string::npos; });
    Check("nothing is there that was not before", before, NamesIn(folder.Path()));
    CheckTrue("the form stays", Ask([] { return [TargetField() isEnabled]; }));
  };
  tryTarget("", "Name the folder");
  tryTarget(folder.Path("taken"), folder.Path("taken"));
  tryTarget("taken", folder.Path("taken"));  // a bare name stands beside the project
  tryTarget(folder.Path("taken/file/below"), folder.Path("taken/file/below"));
  tryTarget(folder.Path(std::string(300, 'x')), "xxx");
  Screenshot(PrepareWindow(), "prepare-fails");
  Check("the project stays on view", path, FieldText([Controller() FileNameTextField]));
}

void WaitsForSpot() {
  const test::TemporaryFolder folder;
  const std::string path = MovedToneProject(folder);
  StartShell();
  LoadPath(path);
  WaitForCheck();
  Click(StatusButton("prepareButton"));
  WaitFor("the panel opens", [] { return [PrepareWindow() isKeyWindow]; });
  OnMain([] { [PrepareWindow() setFrameOrigin:NSMakePoint(0, 0)]; });  // off the spot button
  Pause(0.3);
  GatedHost& gate = GatedHost::Install();
  Click([Controller() spotButton]);
  WaitFor("a spot runs", [] { return [[Controller() spotButton] tag] == 1; });
  gate.WaitForArrival(1);
  OnMain([] { [PrepareWindow() makeKeyAndOrderFront:nil]; });
  Click(PanelButton(PrepareWindow(), "Prepare"));
  WaitFor("it comes to its end", [] { return PanelHas(PrepareWindow(), "Close"); });
  CheckContains("it waits for the spot", "when the window is free again", PrepareMessage());
  Pause(0.6);
  Check("the spot's project stays on view", path, FieldText([Controller() FileNameTextField]));
  Check("its spot runs on", NSInteger{1}, SpotTag());
  gate.Open();
  WaitFor("then it is loaded", [&] {
    return TextOf([[Controller() FileNameTextField] stringValue]).find("prepared/") !=
           std::string::npos;
  });
}

void AnotherIsLoadedMeanwhile() {
  const test::TemporaryFolder folder;
  const std::string path = FadeMarkProject(folder, "fades.adl", 2);
  const std::string other = SimpleProject(folder, 2, 1, "other.adl");
  StartShell();
  LoadPath(path);
  WaitForCheck();
  const auto gate = SlowPreparations();
  Click(StatusButton("prepareButton"));
  WaitFor("the panel opens", [] { return [PrepareWindow() isKeyWindow]; });
  Click(PanelButton(PrepareWindow(), "Prepare"));
  WaitFor("it is under way", [] { return [PrepareControl() isRunning]; });
  LoadPath(other);
  gate->Open();
  WaitFor("it comes to its end", [] { return PanelHas(PrepareWindow(), "Close"); });
  CheckContains("it is told where it stands", folder.Path("fades prepared/fades.adl"),
                PrepareMessage());
  Check("the other project stays on view", other, FieldText([Controller() FileNameTextField]));

  LoadPath(path);
  WaitForCheck();
  Click(StatusButton("prepareButton"));
  WaitFor("the form is there again", [] { return [TargetField() isEnabled]; });
  Check("under the next free name", folder.Path("fades prepared 2"), FieldText(TargetField()));
  LoadPath(other);
  WaitFor("a form of another project goes", [] { return ![PrepareWindow() isVisible]; });
}

// What the process leaves when it ends, told by the process itself.
std::string folderAtExit;
std::vector<std::string> namesAtExit;

void CheckExit() {
  Check("nothing is there that was not before", namesAtExit, NamesIn(folderAtExit));
  fs::remove_all(folderAtExit);
  _exit(FailureCount() == 0 ? 0 : 1);
}

void QuitsDuringPreparation() {
  const test::TemporaryFolder folder;
  const std::string path = BigFloatProject(folder);
  StartShell();
  LoadPath(path);
  WaitForCheck();
  folderAtExit = folder.Path();
  namesAtExit = NamesIn(folderAtExit);
  Click(StatusButton("prepareButton"));
  WaitFor("the panel opens", [] { return [PrepareWindow() isKeyWindow]; });
  Click(PanelButton(PrepareWindow(), "Prepare"));
  WaitFor("it is under way", [] { return PreparedShare() > 0; });
  std::atexit(CheckExit);
  PostToMain([] { [NSApp terminate:nil]; });
  Pause(kPatienceSeconds);
  CheckTrue("quitting ends the program", false);
}

void ClosesDuringCheck() {
  const test::TemporaryFolder folder;
  const std::string path = FadeMarkProject(folder, "slow.adl", 2);
  StartShell();
  const auto gate = SlowChecks("slow.adl");
  LoadPath(path);
  CheckTrue("a check runs", Ask([] { return [Desk() isChecking]; }));
  folderAtExit = folder.Path();
  namesAtExit = NamesIn(folderAtExit);
  std::atexit(CheckExit);
  PostToMain([] { [Window() performClose:nil]; });
  Pause(kPatienceSeconds);
  CheckTrue("closing the window ends the program", false);
}

void ListsMany() {
  const test::TemporaryFolder folder;
  StartShell();
  ShowHandMade(folder, 20001);
  Click(StatusButton("findingsButton"));
  WaitFor("the list opens", [] { return [FindingsWindow() isKeyWindow]; });
  Check("all are listed", NSInteger{20001}, Rows(FindingsTable()));
  Screenshot(FindingsWindow(), "findings-many");
  Check("the worst first", "Fails", FindingText(@"Gravity", 0));
  ClickHeading(@"Line");
  Check("a heading sorts", "", FindingText(@"Line", 0));
  const std::string detail = DetailText();
  ClickHeading(@"Line");
  Check("and once more the other way round", "20001", FindingText(@"Line", 0));
  Check("the selected finding stays", detail, DetailText());
  Key("End");
  Key("ctrl+a");
  Key("ctrl+c");
  WaitFor("all rows are copied", [] { return [ClipboardText() length] > 1000000; });
  Resize(FindingsWindow(), NSMakeSize(300, 200));
  Screenshot(FindingsWindow(), "findings-small");
  Resize(FindingsWindow(), NSMakeSize(1400, 900));
  Screenshot(FindingsWindow(), "findings-large");
}

void ShowsLongTexts() {
  const test::TemporaryFolder folder;
  StartShell();
  ShowHandMade(folder, 12);
  Screenshot(Window(), "findings-status-long");
  Click(StatusButton("findingsButton"));
  WaitFor("the list opens", [] { return [FindingsWindow() isKeyWindow]; });
  Key("Down");
  CheckContains("Japanese stands in full", "\u97f3\u58f0", DetailText());
  Screenshot(FindingsWindow(), "findings-japanese");
  Resize(FindingsWindow(), NSMakeSize(300, 200));
  Screenshot(FindingsWindow(), "findings-japanese-small");
  Click(PanelButton(FindingsWindow(), "Prepare\u2026"));
  WaitFor("the panel opens", [] { return [PrepareWindow() isKeyWindow]; });
  Screenshot(PrepareWindow(), "prepare-japanese");
  Resize(PrepareWindow(), NSMakeSize(200, 200));
  Screenshot(PrepareWindow(), "prepare-small");
  Resize(PrepareWindow(), NSMakeSize(1200, 800));
  Screenshot(PrepareWindow(), "prepare-large");
}

}  // namespace

std::vector<Scenario> FindingsScenarios() {
  return {{"finds-and-prepares", FindsAndPrepares},
          {"clean-offers-nothing", CleanOffersNothing},
          {"loads-during-check", LoadsDuringCheck},
          {"check-fails", CheckFails},
          {"cancels-preparation", CancelsPreparation},
          {"prepares-with-media", PreparesWithMediaFolder},
          {"preparation-fails", PreparationFails},
          {"prepared-waits-for-spot", WaitsForSpot},
          {"loads-during-preparation", AnotherIsLoadedMeanwhile},
          {"quits-during-preparation", QuitsDuringPreparation},
          {"closes-during-check", ClosesDuringCheck},
          {"lists-many-findings", ListsMany},
          {"shows-long-findings", ShowsLongTexts}};
}

}  // namespace velmora::view
