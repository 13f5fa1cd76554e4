// Texts that are typed and not confirmed by Return: whatever is pressed next takes what the fields
// show.

#import "View/Checks.h"
#import "View/Driver.h"
#include "View/GatedHost.h"
#import "View/Material.h"
#import "View/Panels.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

// Replaces what a text field holds, by mouse and keyboard, and stays in it.
void TypeInto(NSTextField* field, const std::string& text) {
  Click(field);
  WaitFor("the field takes keys", [&] { return [field currentEditor] != nil; });
  Key("ctrl+a");
  TypeText(text);
  WaitFor("the typed text is on view",
          [&] { return TextOf([[field currentEditor] string]) == text; });
}

bool IsBeingEdited(NSTextField* field) {
  return Ask([&] { return [field currentEditor] != nil; });
}

void WaitForEnd(std::size_t regions) {
  WaitFor("the spot has come to its end", [] { return [[Controller() spotButton] tag] == 0; });
  WaitFor(Shown(regions) + " regions have landed",
          [&] { return [[Timeline() timeline] model].Regions().size() == regions; });
}

std::string LandedPath(std::size_t index) {
  return Ask([&] { return [[Timeline() timeline] model].Regions().at(index).path; });
}

std::string NewFolder(const test::TemporaryFolder& folder, const std::string& name) {
  const std::string path = folder.Path(name);
  std::filesystem::create_directory(path);
  return path;
}

void SpotsIntoTypedFolder() {
  const test::TemporaryFolder folder;
  const std::string target = NewFolder(folder, "copies");
  StartShellWith(SimpleProject(folder, 1, 1));
  NSTextField* const field = [Controller() CopyFolderNameTextField];
  Click([Controller() cpoySourcecheckBox]);
  TypeInto(field, target);
  GatedHost& gate = GatedHost::Install();
  PressSpot();
  gate.WaitForArrival(1);
  Check("the text stands in its field during the spot", target, FieldText(field));
  gate.Open();
  WaitForEnd(1);
  Check("and after it", target, FieldText(field));
  Check("what lands is the copy", target + "/tone.wav", LandedPath(0));
}

void SpotsTypedEntries() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 1, 1));
  const auto landed = [](std::size_t index) {
    return Ask([&] { return [[Timeline() timeline] model].Regions().at(index).position; });
  };
  Choose([Controller() spotPsitionMatrix], 1);
  Click(OffsetEntry());
  Keys({"1", "0", "0"});
  PressSpot();
  WaitForEnd(1);
  Check("the region lands at the offset", std::int64_t{48000}, landed(0));

  Choose([Controller() spotPsitionMatrix], 2);
  Click(StartEntry());
  Keys({"2", "0", "0"});
  PressSpot();
  WaitForEnd(2);
  Check("the next one at the start time", std::int64_t{96000}, landed(1));
}

void WarnsBeforeTypedFolder() {
  const test::TemporaryFolder folder;
  const std::string target = NewFolder(folder, "copies");
  StartShellWith(SimpleProject(folder, 1, 1));
  OnMain([] {
    const host::SessionRates rates{44100, 0};
    [Bar() setRates:rates];
    [NSApp sendAction:@selector(ratesChanged:) to:Shell() from:nil];
  });
  Click([Controller() cpoySourcecheckBox]);
  TypeInto([Controller() CopyFolderNameTextField], target);
  PressSpot();
  WaitForPanel("the alert stands");
  CheckTrue("no edit is open while it does",
            !IsBeingEdited([Controller() CopyFolderNameTextField]));
  ReadAlert("the alert is read");
  WaitForEnd(1);
  Check("what lands is the copy", target + "/tone.wav", LandedPath(0));
}

// Typing a path loads nothing; it only must not vanish.
void KeepsTypedPath() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 1, 1));
  NSTextField* const field = [Controller() FileNameTextField];
  TypeInto(field, "/some/other.adl");
  GatedHost& gate = GatedHost::Install();
  PressSpot();
  gate.WaitForArrival(1);
  Check("the text stands in its field during the spot", "/some/other.adl", FieldText(field));
  gate.Open();
  WaitForEnd(1);
  Check("and after it", "/some/other.adl", FieldText(field));
}

// The cancel control frees the fields while its worker may still run, and the button aborts then.
void AbortsWhileTyping() {
  const test::TemporaryFolder folder;
  const std::string target = NewFolder(folder, "copies");
  StartShellWith(SimpleProject(folder, 1, 1));
  NSTextField* const field = [Controller() CopyFolderNameTextField];
  GatedHost& gate = GatedHost::Install();
  PressSpot();
  gate.WaitForArrival(1);
  OnMain([] { [Controller() SpotCancelButton_Click:nil]; });
  Click([Controller() cpoySourcecheckBox]);
  TypeInto(field, target);
  PressSpot();
  Check("the press aborts", NSInteger{0}, SpotTag());
  Check("the text stands in its field", target, Ask([&] { return TextOf([field stringValue]); }));
  gate.Open();
  PressSpot();
  WaitForEnd(2);
  Check("the next spot takes it", target + "/tone.wav", LandedPath(1));
}

void PicksWhileTyping() {
  const test::TemporaryFolder folder;
  const std::string typed = NewFolder(folder, "typed");
  const std::string picked = NewFolder(folder, "picked");
  const std::string project = SimpleProject(folder, 1, 1);
  StartShell();
  NSTextField* const copyField = [Controller() CopyFolderNameTextField];
  NSTextField* const fileField = [Controller() FileNameTextField];
  const auto answerPanel = [](NSButton* button, const std::string& path, const char* answer) {
    Click(button);
    NSWindow* panel = WaitForPanel("the panel opens");
    SelectInPanel(panel, path);
    ClickButton(panel, answer);
    WaitForNoPanel("the panel closes");
  };

  TypeInto(copyField, typed);
  answerPanel([Controller() selectFileButton], project, "OK");
  WaitFor("the project is loaded", [] { return [Controller() project] != nullptr; });
  Check("picking a file keeps the typed folder", typed, FieldText(copyField));

  TypeInto(copyField, typed);
  answerPanel([Controller() selectFolderButton], picked, "Cancel");
  Check("so does a folder panel that is cancelled", typed, FieldText(copyField));

  TypeInto(copyField, "/half/typ");
  answerPanel([Controller() selectFolderButton], picked, "OK");
  Check("a picked folder replaces it", picked, FieldText(copyField));
  CheckTrue("and no edit of the old one is open", !IsBeingEdited(copyField));

  TypeInto(fileField, "/half/typ");
  answerPanel([Controller() selectFileButton], project, "OK");
  Check("a picked file replaces a typed path", project, FieldText(fileField));
  CheckTrue("which is no longer edited", !IsBeingEdited(fileField));
  Check("and loads", "", Message());

  // A shell's own way of opening files.
  TypeInto(fileField, "/half/typ");
  LoadPath(project);
  Check("a path from the shell replaces a typed one", project, FieldText(fileField));
  Check("and loads", "", Message());
  Click([Controller() cpoySourcecheckBox]);
  Check("for good", project, FieldText(fileField));
  TypeInto(fileField, folder.Path("missing.adl"));
  OnMain([] { [Controller() LoadFile]; });
  Check("a load takes a path that is still being typed", "File NG.", Message());
  Check("which stays", folder.Path("missing.adl"), FieldText(fileField));
  LoadPath(project);
  Check("a good path loads again", "", Message());

  PressSpot();
  WaitForEnd(1);
  Check("the spot takes the picked folder", picked + "/tone.wav", LandedPath(0));
}

}  // namespace

std::vector<Scenario> EditScenarios() {
  return {{"spots-typed-folder", SpotsIntoTypedFolder},
          {"spots-typed-entries", SpotsTypedEntries},
          {"warns-before-typed-folder", WarnsBeforeTypedFolder},
          {"keeps-typed-path", KeepsTypedPath},
          {"aborts-while-typing", AbortsWhileTyping},
          {"picks-while-typing", PicksWhileTyping}};
}

}  // namespace velmora::view
