#import "View/FindingsStage.h"

#include <filesystem>
#include <new>

#import "View/Checks.h"
#import "View/Driver.h"
#import "View/Material.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

id FindingsControl() {
  return Variable<id>(Desk(), "findingsPanel");
}

NSTextView* TextInScroll(id object, const char* scroll) {
  return (NSTextView*)[Variable<NSScrollView*>(object, scroll) documentView];
}

NSButton* ButtonTitled(NSWindow* window, const std::string& title) {
  for (NSView* view : ViewsOfClass([window contentView], [NSButton class])) {
    if (TextOf([(NSButton*)view title]) == title && ![view isHiddenOrHasHiddenAncestor])
      return (NSButton*)view;
  }
  return nil;
}

// Where a unique_ptr without a deleter of its own is the pointer.
desktop::CheckRun* Checks() {
  return Variable<desktop::CheckRun*>(Desk(), "check");
}

desktop::PrepareRun* Preparations() {
  return Variable<desktop::PrepareRun*>(PrepareControl(), "run");
}

}  // namespace

FindingsDesk* Desk() {
  return Variable<FindingsDesk*>(Shell(), "desk");
}

PreparePanel* PrepareControl() {
  return Variable<PreparePanel*>(Desk(), "preparePanel");
}

NSWindow* FindingsWindow() {
  return Variable<NSWindow*>(FindingsControl(), "panel");
}

NSWindow* PrepareWindow() {
  return Variable<NSWindow*>(PrepareControl(), "panel");
}

NSTableView* FindingsTable() {
  return (NSTableView*)[Variable<NSScrollView*>(FindingsControl(), "tableScroll") documentView];
}

NSTableView* MediaTable() {
  id form = Variable<id>(PrepareControl(), "form");
  return (NSTableView*)[Variable<NSScrollView*>(form, "mediaScroll") documentView];
}

NSTextField* TargetField() {
  return Variable<NSTextField*>(Variable<id>(PrepareControl(), "form"), "targetField");
}

void WaitForCheck() {
  WaitFor("the check has ended", [] { return ![Desk() isChecking]; });
  OnMain([] {});  // its notice stands in the run loop before this
}

NSButton* StatusButton(const char* name) {
  return Variable<NSButton*>(Variable<id>(Shell(), "status"), name);
}

std::string OfferedButtons() {
  return Ask([] {
    std::string titles;
    for (const char* name : {"findingsButton", "prepareButton"}) {
      NSButton* button = StatusButton(name);
      if ([button isHidden]) continue;
      titles += (titles.empty() ? "" : ", ") + TextOf([button title]);
    }
    return titles;
  });
}

std::string FindingText(NSString* column, NSInteger row) {
  return Ask([&] {
    return TextOf([FindingsControl() tableView:FindingsTable()
                     objectValueForTableColumn:[FindingsTable() tableColumnWithIdentifier:column]
                                           row:row]);
  });
}

std::string DetailText() {
  return Ask([] { return TextOf([TextInScroll(FindingsControl(), "detailScroll") string]); });
}

std::string PrepareMessage() {
  return FieldText(Variable<NSTextField*>(PrepareControl(), "message"));
}

std::string ResultText() {
  return Ask([] { return TextOf([TextInScroll(PrepareControl(), "resultScroll") string]); });
}

double PreparedShare() {
  return Preparations()->Step().share;
}

NSButton* PanelButton(NSWindow* window, const std::string& title) {
  NSButton* button = Ask([&] { return ButtonTitled(window, title); });
  CheckTrue("there is a button " + title, button != nil);
  if (button == nil) throw ScenarioFailed();
  return button;
}

bool PanelHas(NSWindow* window, const std::string& title) {
  return ButtonTitled(window, title) != nil;
}

void ClickRow(NSTableView* table, NSInteger row) {
  Click(table, Ask([&] { return [table rectOfRow:row]; }));
}

void ClickHeading(NSString* column) {
  NSTableHeaderView* header = Ask([] { return [FindingsTable() headerView]; });
  const NSRect place = Ask(
      [&] { return [header headerRectOfColumn:[FindingsTable() columnWithIdentifier:column]]; });
  Click(header, place);
}

NSString* ClipboardText() {
  return [[NSPasteboard generalPasteboard] stringForType:NSStringPboardType];
}

void Resize(NSWindow* window, NSSize content) {
  OnMain([&] {
    NSRect frame =
        [window frameRectForContentRect:NSMakeRect(10, 10, content.width, content.height)];
    const NSSize least = [window minSize];
    frame.size.width = std::max(NSWidth(frame), least.width);
    frame.size.height = std::max(NSHeight(frame), least.height);
    [window setFrame:frame display:YES];
  });
  Pause(0.5);
}

std::shared_ptr<CheckGate> SlowChecks(const std::string& name) {
  auto gate = std::make_shared<CheckGate>();
  OnMain([&] {
    Checks()->UseChecker([=](const auto& path, const auto& options, const auto& stopped) {
      if (std::filesystem::path(path).filename() == name) gate->WaitFor(stopped);
      return desktop::CheckAfresh(path, options, stopped);
    });
  });
  return gate;
}

void BrokenChecks() {
  OnMain([] {
    Checks()->UseChecker([](const auto&, const auto&, const auto&) -> check::CheckedProject {
      throw std::bad_alloc();
    });
  });
}

std::shared_ptr<CheckGate> SlowPreparations() {
  auto gate = std::make_shared<CheckGate>();
  OnMain([&] {
    Preparations()->UseChecker([=](const auto& path, const auto& options, const auto& stopped) {
      gate->WaitFor(stopped);
      return desktop::CheckAfresh(path, options, stopped);
    });
  });
  return gate;
}

void ShowHandMade(const test::TemporaryFolder& folder, std::int32_t count) {
  const std::string path = FadeMarkProject(
      folder, "\u5e83\u544a\u30ca\u30ec\u30fc\u30b7\u30e7\u30f3 \u6700\u7d42\u7248.adl", 1);
  OnMain([&] {
    Checks()->UseChecker([=](const auto& checkedPath, const auto&, const auto&) {
      check::CheckedProject checked;
      checked.path = checkedPath;
      checked.verdict = check::Verdict::Loses;
      for (std::int32_t i = 1; i <= count; ++i) {
        check::Finding finding;
        finding.severity = static_cast<check::Severity>(i % 4);
        finding.code = static_cast<check::Code>(1 + i % 38);
        finding.line = i % 7 == 1 ? 0 : i;
        finding.column = 1;
        if (i % 3 != 0) finding.entry = i / 2;
        finding.text =
            "The file \u201c\u97f3\u58f0/\u5e83\u544a\u30ca\u30ec\u30fc\u30b7\u30e7\u30f3"
            "_" +
            std::to_string(i) +
            ".wav\u201d of source 12 is nowhere below "
            "/Volumes/Projekte 2026/K\u00fcste/Ton/Aufnahmen/Tag 3/Rolle 17, and none of "
            "the media folders has a file of its name, reference or length.";
        finding.effect = "The cut stays in the list in red; at its place there will be silence of "
                         "00:00:12:07, which nobody hears before the mix.";
        finding.remedy = "Prepare the project and add the folder that holds the file.";
        checked.findings.push_back(finding);
      }
      return checked;
    });
  });
  LoadPath(path);
  WaitForCheck();
}

std::string FadeMarkProject(const test::TemporaryFolder& folder, const std::string& name,
                            std::int32_t cuts) {
  folder.Write("tone.wav", ShortWave());
  test::ProjectBuilder project;
  project.Source(1, "tone.wav");
  for (std::int32_t i = 0; i < cuts; ++i) {
    test::CutSpec cut;
    cut.destIn = test::Stamp(1920LL * 4 * i);
    cut.destOut = test::Stamp(1920LL * (4 * i + 3));
    cut.infade = test::Stamp(1920, '.');
    project.Cut(cut);
  }
  return project.WriteTo(folder, name);
}

std::string MovedToneProject(const test::TemporaryFolder& folder) {
  folder.Write("tone.wav", ShortWave());
  folder.Write("elsewhere/moved.wav", ShortWave());
  test::ProjectBuilder project;
  project.Source(1, "tone.wav").Source(2, "nowhere.wav");
  for (std::int32_t i = 0; i < 2; ++i) {
    test::CutSpec cut;
    cut.source = 1 + i;
    cut.destIn = test::Stamp(4800LL * i);
    cut.destOut = test::Stamp(4800LL * (i + 1));
    project.Cut(cut);
  }
  return project.WriteTo(folder, "moved.adl");
}

std::string BigFloatProject(const test::TemporaryFolder& folder) {
  constexpr std::uint32_t kBytes = 1U << 28;  // a hole in the file: no room on the disk
  test::LittleEndian wave;
  wave.Text("RIFF").U32(kBytes + 36).Text("WAVE");
  wave.Text("fmt ").U32(16).U16(3).U16(1).U32(48000).U32(4 * 48000).U16(4).U16(32);
  wave.Text("data").U32(kBytes);
  const std::string path = folder.Write("big.wav", wave.bytes);
  std::filesystem::resize_file(path, kBytes + 44);
  test::ProjectBuilder project;
  project.Source(1, "big.wav");
  test::CutSpec cut;
  cut.destOut = test::Stamp(48000LL * 1000);
  project.Cut(cut);
  return project.WriteTo(folder, "big.adl");
}

}  // namespace velmora::view
