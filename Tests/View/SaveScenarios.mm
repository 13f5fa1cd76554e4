// The session saved as each target, and what stands in the way.

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#import "Desktop/Shell/SaveDesk.h"
#include "Destinations/Destinations.h"
#include "Support/SystemConditions.h"
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

SaveDesk* Saves() {
  return Variable<SaveDesk*>(Shell(), "saveDesk");
}

NSWindow* SaveWindow() {
  return Variable<NSWindow*>(Variable<id>(Saves(), "panel"), "panel");
}

std::string SaveMessage() {
  return FieldText(Variable<NSTextField*>(Variable<id>(Saves(), "panel"), "message"));
}

std::string SaveText() {
  return Ask([] {
    NSScrollView* scroll = Variable<NSScrollView*>(Variable<id>(Saves(), "panel"), "resultScroll");
    return TextOf([(NSTextView*)[scroll documentView] string]);
  });
}

NSMenu* FileMenu() {
  return [[[NSApp mainMenu] itemWithTitle:@"File"] submenu];
}

NSMenu* SaveMenu() {
  return [[FileMenu() itemWithTitle:@"Save Session As"] submenu];
}

bool IsOffered(NSMenu* menu, NSString* title) {
  return Ask([&] { return [Saves() validateMenuItem:(NSMenuItem*)[menu itemWithTitle:title]]; });
}

// Of the submenu, one letter a row: y or n.
std::string OfferedTargets() {
  return Ask([] {
    std::string offered;
    for (NSInteger i = 0; i < [SaveMenu() numberOfItems]; ++i) {
      offered += [Saves() validateMenuItem:(NSMenuItem*)[SaveMenu() itemAtIndex:i]] ? "y" : "n";
    }
    return offered;
  });
}

void SpotSession(std::size_t regions) {
  Click([Controller() spotButton]);
  WaitFor("all events have landed", [&] {
    return [[Controller() spotButton] tag] == 0 &&
           [[Timeline() timeline] model].Regions().size() == regions;
  });
  WaitFor("the session is whole", [] {
    return [Saves() validateMenuItem:(NSMenuItem*)[FileMenu() itemWithTitle:@"Report..."]];
  });
}

// What an item of the submenu does, by the name of its kind: the toolkit runs the item of a menu
// that is not on view only by its key, and these have none.
void ChooseTarget(const std::string& name) {
  PostToMain([name] {
    const auto rows = host::Destinations();
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (rows[i].target->name != name) continue;
      NSMenuItem* item = (NSMenuItem*)[SaveMenu() itemAtIndex:static_cast<NSInteger>(i)];
      // From a timer: a panel that is run from here would keep all later work of this kind waiting.
      [[item target] performSelector:[item action] withObject:item afterDelay:0];
    }
  });
}

void NameIt(const std::string& name) {
  NSWindow* panel = WaitForPanel("a name is asked for");
  OnMain([&] { [(NSSavePanel*)panel setNameFieldStringValue:StringOf(name)]; });
}

void WaitForSave() {
  WaitForNoPanel("the panel closes");
  WaitFor(
      "it is written", [] { return ![Saves() isSaving]; }, 120);
}

std::string Bytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A wave file from its samples on: what stands before them has the time in it.
std::string Audio(const std::string& path) {
  const std::string bytes = Bytes(path);
  const std::size_t at = bytes.find("data");
  return at == std::string::npos ? "no audio in " + path : bytes.substr(at);
}

// A ZIP file without the times of its entries: the program and the window do not write at once.
std::string Archive(const std::string& path) {
  constexpr struct {
    std::string_view mark;
    std::size_t time;  // from the mark on; time and date take 4 bytes
  } kHeaders[] = {{"PK\3\4", 10}, {"PK\1\2", 12}};
  std::string bytes = Bytes(path);
  for (const auto& header : kHeaders) {
    for (std::size_t at = bytes.find(header.mark); at != std::string::npos;
         at = bytes.find(header.mark, at + 4)) {
      if (at + header.time + 4 <= bytes.size()) bytes.replace(at + header.time, 4, 4, '-');
    }
  }
  return bytes;
}

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

constexpr int kEnoughToSee = 4;  // cuts: seconds of writing, so that its panel stands for a while
constexpr int kEnoughToCancel = 20;  // cuts: minutes of writing, of which seconds are waited for

// A file of three quarters of a gigabyte that takes no room on the disk, and as much to write for
// each cut.
std::string LongProject(const test::TemporaryFolder& folder, std::int64_t cuts = 1) {
  constexpr std::uint32_t kBytes = 3U << 28;
  test::LittleEndian wave;
  wave.Text("RIFF").U32(kBytes + 36).Text("WAVE");
  wave.Text("fmt ").U32(16).U16(1).U16(1).U32(48000).U32(3 * 48000).U16(3).U16(24);
  wave.Text("data").U32(kBytes);
  const std::string path = folder.Write("long.wav", wave.bytes);
  fs::resize_file(path, kBytes + 44);
  test::ProjectBuilder project;
  project.Source(1, "long.wav");
  for (std::int64_t i = 0; i < cuts; ++i) {
    test::CutSpec cut;
    cut.destIn = test::Stamp(48000LL * 5000 * i);
    cut.destOut = test::Stamp(48000LL * 5000 * (i + 1));
    project.Cut(cut);
  }
  return project.WriteTo(folder, "long.adl");
}

void SavesEveryTarget() {
  const test::TemporaryFolder folder;
  const test::TemporaryFolder witness;
  const std::string path = SimpleProject(folder, 6, 2);
  StartShellWith(path);
  Check("a row for each destination", static_cast<NSInteger>(host::Destinations().size()),
        Ask([] { return [SaveMenu() numberOfItems]; }));
  Check("nothing to save yet", "nnnnnnn", OfferedTargets());
  SpotSession(6);
  Check("all can be saved", "yyyyyyy", OfferedTargets());

  // What the program makes of the same project.
  const std::string command = std::string("'") + VELMORA_PROGRAM + "' spot '" + path +
                              "' --host 'embedded:" + witness.Path("simple.json") +
                              "' --dawproject '" + witness.Path("simple.dawproject") +
                              "' --otio '" + witness.Path("simple.otio") + "' --bounce '" +
                              witness.Path("simple.wav") + "' --bounce-tracks '" +
                              witness.Path("tracks") + "' > '" + witness.Path("log") + "' 2>&1";
  // Its status is lost: the toolkit takes note of all children's ends itself.
  static_cast<void>(std::system(command.c_str()));
  CheckTrue("the program spots it too", fs::exists(witness.Path("tracks")));

  struct Row {
    const char* name;
    const char* file;
  };
  for (const Row& row : {Row{"session", "simple.json"}, Row{"dawproject", "simple.dawproject"},
                         Row{"otio", "simple.otio"}, Row{"bounce", "simple.wav"}}) {
    ChooseTarget(row.name);
    NSWindow* panel = WaitForPanel("a name is asked for");
    Check("the project's name is proposed", row.file,
          Ask([&] { return TextOf([(NSSavePanel*)panel nameFieldStringValue]); }));
    Screenshot(panel, std::string("save-") + row.name);
    ClickButton(panel, "OK");
    WaitForSave();
    CheckContains("the status line tells where", "Made " + folder.Path(row.file), StatusText());
  }
  for (const char* name : {"simple.json", "simple.otio"}) {
    CheckTrue(std::string(name) + " is the program's, to the byte",
              Bytes(folder.Path(name)) == Bytes(witness.Path(name)));
  }
  CheckContains("the project has its parts", "metadata.xml",
                Bytes(folder.Path("simple.dawproject")));
  CheckTrue(
      "and is the program's but for its entries' times",
      Archive(folder.Path("simple.dawproject")) == Archive(witness.Path("simple.dawproject")));
  CheckTrue("the bounce is the program's, to the sample",
            Audio(folder.Path("simple.wav")) == Audio(witness.Path("simple.wav")));
  Screenshot(Window(), "save-status");

  ChooseTarget("bounce-tracks");
  NameIt("stems");
  ClickButton([NSApp modalWindow], "OK");
  WaitForSave();
  Check("a file for each track", NamesIn(witness.Path("tracks")), NamesIn(folder.Path("stems")));
  for (const std::string& name : NamesIn(folder.Path("stems"))) {
    CheckTrue(name + " is the program's",
              Audio(folder.Path("stems/" + name)) == Audio(witness.Path("tracks/" + name)));
  }

  Key("ctrl+r");
  NameIt("page");
  ClickButton([NSApp modalWindow], "OK");
  WaitForSave();
  WaitFor("it can be opened", [] { return PanelHas(SaveWindow(), "Open in Browser"); });
  Screenshot(SaveWindow(), "save-report");
  const std::string page = Bytes(folder.Path("page.html"));
  for (const char* part : {"id=\"events\"", "id=\"regions\"", "id=\"files\"", "id=\"messages\"",
                           "simple.dawproject", "simple.adl"}) {
    CheckContains("the page has " + std::string(part), part, page.substr(0));
  }
  Key("Escape");
  WaitFor("Escape closes it", [] { return ![SaveWindow() isVisible]; });
}

void SavesToArdour() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 3, 1));
  SpotSession(3);
  setenv("ARDOUR_LUA", "/nowhere/ardour9-lua", 1);
  ChooseTarget("ardour");
  NameIt("daw");
  ClickButton([NSApp modalWindow], "OK");
  WaitFor("it is refused", [] { return ![[NSApp modalWindow] isKindOfClass:[NSSavePanel class]]; });
  Screenshot(Ask([] { return [NSApp modalWindow]; }), "save-no-ardour");
  CheckContains("the words name it", "ardour9-lua", ReadAlert("an alert stands"));
  CheckTrue("nothing was made", !fs::exists(folder.Path("daw")));
  unsetenv("ARDOUR_LUA");
  ClickButton(WaitForPanel("the panel stays"), VELMORA_HAS_ARDOUR ? "OK" : "Cancel");
  WaitForSave();
  if (VELMORA_HAS_ARDOUR) {
    CheckTrue("the session is there", fs::exists(folder.Path("daw/daw.ardour")));
  }
}

// What holds a name keeps it, and the panel stays for another one.
void RefusesTakenName() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 3, 1));
  SpotSession(3);
  folder.Write("taken.wav", "mine");
  fs::create_symlink("/nowhere", folder.Path("link.wav"));
  const std::vector<std::string> before = NamesIn(folder.Path());
  Key("ctrl+b");
  NSWindow* const panel = WaitForPanel("a name is asked for");
  Screenshot(panel, "save-bounce");
  for (const char* name : {"taken", "taken.wav", "link.wav"}) {
    NameIt(name);
    ClickButton(panel, "OK");
    WaitFor("it is refused", [&] { return [NSApp modalWindow] != panel; });
    Pause(0.3);
    Screenshot(Ask([] { return [NSApp modalWindow]; }), "save-refused");
    const std::string text = ReadAlert("an alert stands");
    CheckContains("it names the path", ".wav", text);
    CheckTrue("it offers no replacement", text.find("eplace") == std::string::npos);
    WaitFor("the panel stays", [&] { return [NSApp modalWindow] == panel; });
  }
  ClickButton(panel, "Cancel");
  WaitForNoPanel("Cancel closes it");
  Check("nothing is there that was not before", before, NamesIn(folder.Path()));
  Check("what was there is as it was", "mine", Bytes(folder.Path("taken.wav")));
}

void StartLongBounce(const std::string& name) {
  Key("ctrl+b");
  NameIt(name);
  ClickButton([NSApp modalWindow], "OK");
  WaitForNoPanel("the panel closes");
  WaitFor("its progress is shown", [] { return [SaveWindow() isVisible]; });
}

void CancelsSave() {
  const test::TemporaryFolder folder;
  StartShellWith(LongProject(folder, kEnoughToCancel));
  SpotSession(kEnoughToCancel);
  const std::vector<std::string> before = NamesIn(folder.Path());
  StartLongBounce("bounce");
  Screenshot(SaveWindow(), "save-progress");
  CheckContains("its name is shown", "bounce.wav", SaveMessage());
  CheckContains("the status line tells of it", "Writing bounce.wav", StatusText());
  Check("one save at a time", "nnnnnnn", OfferedTargets());
  CheckTrue("and no other bounce", !IsOffered(FileMenu(), @"Bounce..."));
  Click(PanelButton(SaveWindow(), "Cancel"));
  WaitFor("it is cancelled", [] { return ![Saves() isSaving]; });
  WaitFor("its panel goes", [] { return ![SaveWindow() isVisible]; });
  Check("nothing is there that was not before", before, NamesIn(folder.Path()));
  CheckContains("the status line says so", "cancelled", StatusText());

  StartLongBounce("again");
  WaitFor("it has the keys", [] { return [SaveWindow() isKeyWindow]; });
  Key("Escape");
  WaitFor("Escape cancels it too", [] { return ![Saves() isSaving]; });
  Check("nothing is there either", before, NamesIn(folder.Path()));
}

// The window goes on while it is written, and what is written is the session as it was.
void WorksDuringSave() {
  const test::TemporaryFolder folder;
  StartShellWith(LongProject(folder, kEnoughToSee));
  SpotSession(kEnoughToSee);
  Key("ctrl+b");
  NameIt("bounce");
  ClickButton([NSApp modalWindow], "OK");
  WaitFor("the session is cleared while it is written", [] {
    if (![SaveWindow() isVisible] || ![Saves() isSaving]) return false;
    [Shell() performSelector:@selector(clearSession:) withObject:nil];
    [SaveWindow() setFrameOrigin:NSMakePoint(0, 0)];
    return true;
  });
  LoadPath(SimpleProject(folder, 4, 2));
  Check("another project is loaded", NSInteger{4}, Rows(EventTable()));
  Click([Controller() spotButton]);
  WaitFor("it is spotted", [] { return [[Timeline() timeline] model].Regions().size() == 4; });
  WaitForSave();
  CheckTrue("the bounce is the first session's, whole",
            fs::file_size(folder.Path("bounce.wav")) > 48000ULL * 5000 * 3 * kEnoughToSee);
  CheckContains("and is told", "Made " + folder.Path("bounce.wav"), StatusText());
}

void TellsTrouble() {
  const test::TemporaryFolder folder;
  StartShellWith(LongProject(folder));
  SpotSession(1);
  const std::vector<std::string> before = NamesIn(folder.Path());
  {
    const test::FileSizeLimit full(1 << 20);
    Key("ctrl+b");
    NameIt("bounce");
    ClickButton([NSApp modalWindow], "OK");
    WaitForNoPanel("the panel closes");
    WaitFor("it ends", [] { return ![Saves() isSaving]; });
  }
  WaitFor("it is told", [] { return [SaveWindow() isVisible]; });
  Pause(0.3);
  Screenshot(SaveWindow(), "save-trouble");
  CheckContains("what", "bounce.wav was not made", SaveMessage());
  CheckContains("with its path", folder.Path("bounce.wav"), SaveText());
  CheckContains("and the cause", "File too large", SaveText());
  Check("nothing is there that was not before", before, NamesIn(folder.Path()));
  Click(PanelButton(SaveWindow(), "Close"));

  folder.Write("file", "mine");
  Key("ctrl+b");
  for (const char* name : {"nowhere/bounce", "file/bounce"}) {
    NameIt(name);
    ClickButton([NSApp modalWindow], "OK");
    std::string text = ReadAlert(std::string(name) + " is refused");
    std::erase(text, '\n');  // a long path is broken at its folders
    CheckContains("a folder that takes no files is named", name, text);
    WaitForPanel("the panel stays");
  }
  Check("the file is as it was", "mine", Bytes(folder.Path("file")));
  ClickButton([NSApp modalWindow], "Cancel");
  WaitForNoPanel("Cancel closes it");
}

// What can be saved depends on what there is, and on what goes on.
void OffersWhatCanBeSaved() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 2, 1));
  Check("nothing before a spot", "nnnnnnn", OfferedTargets());
  CheckTrue("no report", !IsOffered(FileMenu(), @"Report..."));
  GatedHost& gate = GatedHost::Install();
  Click([Controller() spotButton]);
  gate.WaitForArrival(1);
  Check("nothing while a spot runs", "nnnnnnn", OfferedTargets());
  gate.Open();
  WaitFor("it ends", [] { return IsOffered(FileMenu(), @"Report..."); });
  Check("all after it", "yyyyyyy", OfferedTargets());
  CheckTrue("a bounce", IsOffered(FileMenu(), @"Bounce..."));
  OnMain([] { [Shell() performSelector:@selector(clearSession:) withObject:nil]; });
  Check("nothing of an empty session", "nnnnnnn", OfferedTargets());

  fs::remove(folder.Path("tone.wav"));
  LoadPath(folder.Path("simple.adl"));
  Click([Controller() spotButton]);
  WaitFor("a spot that places nothing ends", [] { return IsOffered(FileMenu(), @"Report..."); });
  Check("leaves a report to write", "nnnnnny", OfferedTargets());
  CheckTrue("and no bounce", !IsOffered(FileMenu(), @"Bounce..."));
}

std::string folderAtExit;
std::vector<std::string> namesAtExit;

void CheckExit() {
  Check("nothing is there that was not before", namesAtExit, NamesIn(folderAtExit));
  fs::remove_all(folderAtExit);
  _exit(FailureCount() == 0 ? 0 : 1);
}

void QuitsDuringSave() {
  const test::TemporaryFolder folder;
  StartShellWith(LongProject(folder, kEnoughToCancel));
  SpotSession(kEnoughToCancel);
  folderAtExit = folder.Path();
  namesAtExit = NamesIn(folderAtExit);
  StartLongBounce("bounce");
  std::atexit(CheckExit);
  PostToMain([] { [NSApp terminate:nil]; });
  Pause(kPatienceSeconds);
  CheckTrue("quitting ends the program", false);
}

}  // namespace

std::vector<Scenario> SaveScenarios() {
  return {
      {"saves-every-target", SavesEveryTarget},
      {"saves-to-ardour", SavesToArdour},
      {"refuses-taken-name", RefusesTakenName},
      {"cancels-save", CancelsSave},
      {"works-during-save", WorksDuringSave},
      {"tells-save-trouble", TellsTrouble},
      {"offers-what-can-be-saved", OffersWhatCanBeSaved},
      {"quits-during-save", QuitsDuringSave},
  };
}

}  // namespace velmora::view
