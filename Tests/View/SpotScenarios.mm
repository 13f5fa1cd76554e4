// A spot from its warnings to its end.

#include <algorithm>

#import "View/Checks.h"
#import "View/Driver.h"
#include "View/GatedHost.h"
#import "View/Material.h"
#import "View/Panels.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

const char* const kFrameRateAlert =
    "The framerate of this session does not match the AES31 project we are importing. The import "
    "will be offset to compensate.";

void WaitForEnd(std::size_t regions) {
  WaitFor("the spot has come to its end", [] { return [[Controller() spotButton] tag] == 0; });
  WaitFor(Shown(regions) + " regions have landed",
          [&] { return [[Timeline() timeline] model].Regions().size() == regions; });
}

// Chooses an item of a menu of the session bar by the mouse.
void ChooseInMenu(const char* menuName, NSInteger tag) {
  NSPopUpButton* const menu = Variable<NSPopUpButton*>(Bar(), menuName);
  const NSInteger from = Ask([&] { return [menu indexOfSelectedItem]; });
  const NSInteger to = Ask([&] { return [menu indexOfItemWithTag:tag]; });
  // The open menu lays the chosen item over the button, and the items around it.
  const NSRect bounds = Ask([&] { return [menu bounds]; });
  const CGFloat itemHeight =
      Ask([&] { return NSHeight([[[menu menu] menuRepresentation] rectOfItemAtIndex:0]); });
  const NSPoint start = NSMakePoint(NSMidX(bounds), NSMidY(bounds));
  const CGFloat down = itemHeight * static_cast<CGFloat>(to - from);
  const CGFloat sign = Ask([&] { return [menu isFlipped]; }) ? 1 : -1;
  Drag(menu, start, NSMakePoint(start.x, start.y + sign * down));
  WaitFor("the menu has the choice with tag " + Shown(tag),
          [&] { return [[menu selectedItem] tag] == tag; });
}

void ShowsBothAlerts() {
  const test::TemporaryFolder folder;
  StartShellWith(CopyOfExample(folder, "Storm.adl"));
  ChooseInMenu("rateMenu", 44100 * 1000);
  CheckContains("the status line tells both rates", "Project at 48000 Hz, session at 44100 Hz",
                StatusText());
  PressSpot();
  NSWindow* const first = WaitForPanel("the first alert stands");
  CheckContains("the first alert is about the sample rates, with the session's twice",
                "This session is at 44100Hz, whereas the AES project is at 44100Hz. Misalignment "
                "is likely.",
                PanelText(first));
  Check("no spot runs while it stands", NSInteger{0}, SpotTag());
  Screenshot(first, "alert-sample-rate");
  ClickButton(first, "OK");

  WaitFor("the second alert stands", [&] {
    return [[NSApp modalWindow] isVisible] == YES &&
           PanelText([NSApp modalWindow]).find("framerate") != std::string::npos;
  });
  NSWindow* const second = WaitForPanel("it is to be read");
  CheckContains("the second alert is about the frame rates", kFrameRateAlert, PanelText(second));
  Screenshot(second, "alert-frame-rate");
  Key("Return");
  WaitForNoPanel("Return dismisses it");
  WaitForEnd(10);
  Check("no message is left", "Some files not found. Check event list.", Message());
}

void PresetsSession() {
  const test::TemporaryFolder folder;
  StartShellWith(CopyOfExample(folder, "Storm.adl"));
  const auto rates = [] {
    return Ask([] {
      return Shown([Bar() rates].sampleRate) + " Hz, code " + Shown([Bar() rates].frameRate);
    });
  };
  Check("the bar shows the project's rates", "48000 Hz, code 5", rates());
  PressSpot();
  WaitForEnd(10);

  LoadPath(folder.Path("Examples/Ferry/Ferry.adl"));
  Check("it follows another project", "44100 Hz, code 2", rates());
  PressSpot();
  WaitForEnd(13);
  CheckTrue("no alert came", !PanelStands());

  ChooseInMenu("frameRateMenu", 3);
  PressSpot();
  CheckContains("another frame rate alone raises the second alert", kFrameRateAlert,
                ReadAlert("an alert stands"));
  WaitForEnd(16);
}

void RunsToItsEnd() {
  const test::TemporaryFolder folder;
  StartShellWith(CopyOfExample(folder, "Storm.adl"));
  Choose([Controller() fadeDataMatrix], 1);
  Choose([Controller() gainDataMatrix], 1);
  const std::vector<bool> all(11, true);
  const std::vector<bool> none(11, false);
  Check("all eleven controls take input", all, ControlsEnabled());
  Check("the button wears its picture", "Spot_Off.png", SpotPicture());
  GatedHost& gate = GatedHost::Install();
  WatchIndicator();
  PressSpot();
  gate.WaitForArrival(1);
  Check("the tag tells the spot", NSInteger{1}, SpotTag());
  Check("the button shows cancel", "Cancel_Off.png", SpotPicture());
  Check("all eleven controls are frozen", none, ControlsEnabled());
  CheckTrue("the indicator is started", IsAnimating());
  Check("it runs to 5 steps an event", 55.0,
        Ask([] { return [[Controller() spotProgressIndicator] maxValue]; }));
  Click([Controller() selectFileButton]);
  CheckTrue("a frozen button opens no panel", !PanelStands());

  std::vector<double> values;
  constexpr int kRegions = 10;
  for (int region = 1; region <= kRegions; ++region) {
    gate.WaitForArrival(region);
    values.push_back(Indicator());
    gate.LetThrough(1);
  }
  CheckTrue(
      "the values rise with each region: " + Shown(values),
      std::adjacent_find(values.begin(), values.end(), std::greater_equal<>()) == values.end());
  Screenshot(Window(), "spot-progress");
  gate.WaitForArrival(kRegions + 1);
  CheckTrue("pieces come after the regions", Indicator() > values.back());
  Check("the counter is the indicator's value", Indicator(), static_cast<double>(Progress()));
  gate.Open();

  WaitForEnd(23);
  Check("the counter ends at -1", -1, Progress());
  Check("the indicator ends at 0", 0.0, Indicator());
  CheckTrue("and stands still", !IsAnimating());
  Check("the button wears its picture again", "Spot_Off.png", SpotPicture());
  Check("all eleven controls are free", all, ControlsEnabled());
  CheckTrue("no event keeps a file", Ask([] {
              for (const AES31Event& event : [Controller() project]->events) {
                if (event.renderedFile != nullptr) return false;
              }
              return true;
            }));
  WaitFor("the bar sums up", [] {
    return TextOf([Variable<NSTextField*>(Bar(), "summaryField") stringValue]) ==
           "23 regions on 4 tracks from 19 files";
  });
  Screenshot(Window(), "spot-done");
}

// Where the regions land follows the choice and its entry.
void PlacesByChoice() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 1, 1));
  const auto landed = [](std::size_t index) {
    return Ask([&] { return [[Timeline() timeline] model].Regions().at(index).position; });
  };
  Click(OffsetEntry());
  Keys({"1", "0", "0", "Return"});
  Click(StartEntry());
  Keys({"2", "0", "0", "Return"});
  PressSpot();
  WaitForEnd(1);
  Check("as the project has it", std::int64_t{0}, landed(0));
  Choose([Controller() spotPsitionMatrix], 1);
  PressSpot();
  WaitForEnd(2);
  Check("with the offset of a second", std::int64_t{48000}, landed(1));
  Choose([Controller() spotPsitionMatrix], 2);
  PressSpot();
  WaitForEnd(3);
  Check("at the start of two seconds", std::int64_t{96000}, landed(2));
  Choose([Controller() spotPsitionMatrix], 3);
  PressSpot();
  WaitForEnd(4);
  Check("from the first on", std::int64_t{0}, landed(3));
}

void CopyFolderCannotBeWritten() {
  const test::TemporaryFolder folder;
  const std::string noFolder = folder.Write("file.txt", "no folder");
  StartShellWith(SimpleProject(folder, 3, 1));
  Click([Controller() CopyFolderNameTextField]);
  OnMain([&] { [[Controller() CopyFolderNameTextField] setStringValue:StringOf(noFolder)]; });
  Click([Controller() cpoySourcecheckBox]);
  PressSpot();
  WaitForEnd(3);
  Check("the sources land in place of the copies", folder.Path("tone.wav"),
        Ask([] { return [[Timeline() timeline] model].Regions().at(0).path; }));
  Check("all eleven controls are free", std::vector<bool>(11, true), ControlsEnabled());
}

// How many pixels of the progress bar's middle line are filled, as drawn last.
NSInteger FilledPixels() {
  return Ask([] {
    NSProgressIndicator* const bar = [Controller() spotProgressIndicator];
    [Window() displayIfNeeded];
    [bar lockFocus];
    NSBitmapImageRep* const pixels =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[bar bounds]] autorelease];
    [bar unlockFocus];
    NSInteger filled = 0;
    for (NSInteger x = 0; x < [pixels pixelsWide]; ++x) {
      NSUInteger pixel[4] = {};
      [pixels getPixel:pixel atX:x y:[pixels pixelsHigh] / 2];
      filled += pixel[2] > pixel[0] + 100 ? 1 : 0;  // the accent is blue
    }
    return filled;
  });
}

// Steps that are smaller than a pixel are seen all the same, once they have become one.
void FillsBarBySmallSteps() {
  StartShell();
  NSProgressIndicator* const bar = [Controller() spotProgressIndicator];
  const double width = Ask([&] { return static_cast<double>(NSWidth([bar bounds])); });
  constexpr double kSteps = 20000;
  OnMain([&] { [bar setMaxValue:kSteps]; });
  double step = 0;
  for (const double share : {0.1, 0.4, 0.75, 1.0}) {
    OnMain([&] {
      while (step < share * kSteps) [bar setDoubleValue:++step];
    });
    const double filled = static_cast<double>(FilledPixels());
    const double wanted = share * width;
    CheckTrue(Shown(filled) + " of " + Shown(wanted) + " pixels are filled",
              filled > wanted - 6 && filled < wanted + 2);
    Check("the value is exact", step, Indicator());
  }
  OnMain([&] { [bar setDoubleValue:0]; });
  Check("an empty bar", NSInteger{0}, FilledPixels());
}

}  // namespace

std::vector<Scenario> SpotScenarios() {
  return {{"shows-alerts", ShowsBothAlerts},    {"presets-session", PresetsSession},
          {"runs-to-end", RunsToItsEnd},        {"fills-bar", FillsBarBySmallSteps},
          {"places-by-choice", PlacesByChoice}, {"copy-folder-fails", CopyFolderCannotBeWritten}};
}

}  // namespace velmora::view
