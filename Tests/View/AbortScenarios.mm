// A spot that is stopped, and what may be done before its worker has noticed.

#include <unistd.h>

#include <cstdlib>

#import "View/Checks.h"
#import "View/Driver.h"
#include "View/GatedHost.h"
#import "View/Material.h"
#import "View/Panels.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

// A spot whose worker stands in the middle of its first region.
GatedHost& StartSpot() {
  GatedHost& gate = GatedHost::Install();
  WatchIndicator();
  PressSpot();
  gate.WaitForArrival(1);
  return gate;
}

void CheckIdle() {
  Check("the button is back", NSInteger{0}, SpotTag());
  Check("with its picture", "Spot_Off.png", SpotPicture());
  Check("all eleven controls are free", std::vector<bool>(11, true), ControlsEnabled());
  CheckTrue("the indicator stands still", !IsAnimating());
}

void AbortsBySecondPress() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 5, 1));
  GatedHost& gate = StartSpot();
  gate.LetThrough(1);
  gate.WaitForArrival(2);
  const double value = Indicator();
  PressSpot();
  CheckIdle();
  Check("nothing counts", -1, Progress());
  Check("the indicator's value stays", value, Indicator());
  Check("the worker stands in its region still", 2, gate.Arrived());
  Screenshot(Window(), "aborted");

  gate.Open();
  Pause(1.0);
  Check("it goes no further", 2, gate.Arrived());
  Check("regions already sent stay", std::size_t{2}, LandedRegions());
  Check("nothing counts afterwards", -1, Progress());
  CheckIdle();
}

void SpotsAgainAtOnce() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 5, 1));
  GatedHost& gate = StartSpot();
  PressSpot();
  PressSpot();
  Check("a new spot runs", NSInteger{1}, SpotTag());
  Check("its counter is at the start", 0, Progress());
  Pause(0.7);
  Check("its worker waits for the old one", 1, gate.Arrived());
  Check("its steps do not count yet", 0, Progress());
  CheckTrue("the window lives", Ask([] { return [Window() isVisible] == YES; }));

  gate.Open();
  WaitFor("the new spot has come to its end", [] { return [[Controller() spotButton] tag] == 0; });
  WaitFor("one region of the old and all of the new have landed",
          [] { return [[Timeline() timeline] model].Regions().size() == 6; });
  CheckIdle();
  Check("no more were sent", 6, gate.Arrived());
}

void AbortsAndSpotsManyTimes() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 40, 4));
  // Not held back: each abort meets its worker wherever it is.
  for (int i = 0; i < 30; ++i) {
    OnMain([] { [Controller() DoSpot:nil]; });
    if (i % 3 == 0) Pause(0.01);
  }
  if (SpotTag() == 1) OnMain([] { [Controller() DoSpot:nil]; });
  CheckIdle();
  const std::size_t before = LandedRegions();
  OnMain([] { [Controller() DoSpot:nil]; });
  WaitFor("the last spot has come to its end", [] { return [[Controller() spotButton] tag] == 0; });
  WaitFor("all its regions have landed",
          [&] { return [[Timeline() timeline] model].Regions().size() >= before + 40; });
  CheckIdle();
}

void LoadsDuringGap() {
  const test::TemporaryFolder folder;
  const std::string other = SimpleProject(folder, 2, 2, "other.adl");
  StartShellWith(SimpleProject(folder, 5, 1));
  Choose([Controller() depthMatrix], 0);  // so that every event has a file of its own
  GatedHost& gate = StartSpot();
  PressSpot();
  LoadPath(other);
  Check("the new project stands", NSInteger{2}, Rows(EventTable()));
  LoadPath(folder.Path("missing.adl"));
  Check("a failed load too", "File NG.", Message());
  LoadPath(other);
  gate.LetThrough(1);
  Pause(0.5);
  Check("the old worker has stopped", 1, gate.Arrived());
  PressSpot();
  gate.Open();
  WaitFor("the new project is spotted", [] {
    return
        [[Controller() spotButton] tag] == 0 && [[Timeline() timeline] model].Regions().size() == 3;
  });
  CheckIdle();
}

void LoadsAndSpotsDuringGap() {
  const test::TemporaryFolder folder;
  const std::string other = SimpleProject(folder, 2, 2, "other.adl");
  StartShellWith(SimpleProject(folder, 5, 1));
  GatedHost& gate = StartSpot();
  PressSpot();
  LoadPath(other);
  PressSpot();
  Pause(0.5);
  Check("the new worker waits for the old one", 1, gate.Arrived());
  gate.Open();
  WaitFor("the new project is spotted", [] {
    return
        [[Controller() spotButton] tag] == 0 && [[Timeline() timeline] model].Regions().size() == 3;
  });
  CheckIdle();
}

// The action leaves the button for the user.
void CancelsByControl() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 5, 1));
  GatedHost& gate = StartSpot();
  const std::int32_t progress = Progress();
  OnMain([] { [Controller() SpotCancelButton_Click:nil]; });
  Check("the button stays", NSInteger{1}, SpotTag());
  Check("with its picture", "Cancel_Off.png", SpotPicture());
  Check("the controls are free", std::vector<bool>(11, true), ControlsEnabled());
  CheckTrue("the indicator goes on", IsAnimating());
  gate.Open();
  Pause(0.7);
  Check("the worker stops", 1, gate.Arrived());
  Check("the counter is left alone", progress, Progress());
  Check("the button stays all the same", NSInteger{1}, SpotTag());

  PressSpot();
  CheckIdle();
  Check("the first press brings the button back", -1, Progress());
  Check("and starts nothing", 1, gate.Arrived());
  PressSpot();
  WaitFor("the second press spots", [] {
    return
        [[Controller() spotButton] tag] == 0 && [[Timeline() timeline] model].Regions().size() == 6;
  });
  CheckIdle();
}

// After the last look at the abort a spot cannot be stopped. It ends as any other.
void CancelsTooLate() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 1, 1));
  NSTextField* const field = [Controller() CopyFolderNameTextField];
  GatedHost& gate = StartSpot();
  OnMain([] { [Controller() SpotCancelButton_Click:nil]; });
  Check("the button stays for now", NSInteger{1}, SpotTag());
  Click(field);
  WaitFor("the field takes keys", [&] { return [field currentEditor] != nil; });
  TypeText("half");
  gate.Open();
  WaitFor("the button comes back by itself", [] { return [[Controller() spotButton] tag] == 0; });
  CheckIdle();
  Check("nothing counts", -1, Progress());
  Check("the indicator ends at 0", 0.0, Indicator());
  WaitFor("the region has landed", [] { return LandedRegions() == 1; });
  TypeText("way");
  WaitFor("what is typed meanwhile goes on",
          [&] { return TextOf([[field currentEditor] string]) == "halfway"; });
  PressSpot();
  WaitFor("the next press spots", [] {
    return
        [[Controller() spotButton] tag] == 0 && [[Timeline() timeline] model].Regions().size() == 2;
  });
}

void AbortsTooLate() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 1, 1));
  GatedHost& gate = StartSpot();
  PressSpot();
  CheckIdle();
  gate.Open();
  WaitFor("the indicator ends at 0",
          [] { return [[Controller() spotProgressIndicator] doubleValue] == 0.0; });
  CheckIdle();
  Check("nothing counts", -1, Progress());
  WaitFor("the region has landed", [] { return LandedRegions() == 1; });
}

// The end of an old spot says nothing to a window that shows a new one.
void AbortsTooLateAndSpotsAgain() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 2, 1));
  GatedHost& gate = StartSpot();
  gate.LetThrough(1);
  gate.WaitForArrival(2);
  PressSpot();
  PressSpot();
  Check("a new spot runs", NSInteger{1}, SpotTag());
  gate.LetThrough(1);
  gate.WaitForArrival(3);
  Pause(0.3);
  Check("the old one has ended, the new one is on view", NSInteger{1}, SpotTag());
  Check("with its picture", "Cancel_Off.png", SpotPicture());
  Check("its controls are frozen", std::vector<bool>(11, false), ControlsEnabled());
  CheckTrue("its indicator goes on", IsAnimating());
  CheckTrue("it counts", Progress() > 0);
  gate.Open();
  WaitFor("it comes to its end", [] { return [[Controller() spotButton] tag] == 0; });
  WaitFor("both have landed whole", [] { return LandedRegions() == 4; });
  CheckIdle();
}

// What the platform does when the system starts no further thread.
bool threadsFail = false;
id (*originalDetach)(id, SEL, SEL, id, id) = nullptr;

id Detach(id self, SEL selector, SEL body, id target, id argument) {
  if (!threadsFail) return originalDetach(self, selector, body, target, argument);
  [target retain];  // for good: what held it is lost
  [NSException raise:NSInternalInconsistencyException format:@"Unable to detach thread"];
  return nil;
}

void SetThreadsFail(bool fail) {
  OnMain([&] {
    if (originalDetach == nullptr) {
      const Method method = class_getClassMethod(
          [NSThread class], @selector(detachNewThreadSelector:toTarget:withObject:));
      originalDetach = reinterpret_cast<id (*)(id, SEL, SEL, id, id)>(
          reinterpret_cast<void*>(method_getImplementation(method)));
      method_setImplementation(method, reinterpret_cast<IMP>(reinterpret_cast<void*>(Detach)));
    }
    threadsFail = fail;
  });
}

void ThreadDoesNotStart() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 3, 1));
  WatchIndicator();
  SetThreadsFail(true);
  PressSpot();
  CheckIdle();
  Check("nothing counts", -1, Progress());
  Check("nothing was sent", std::size_t{0}, LandedRegions());

  SetThreadsFail(false);
  PressSpot();
  WaitFor("the next press spots", [] {
    return
        [[Controller() spotButton] tag] == 0 && [[Timeline() timeline] model].Regions().size() == 3;
  });
  SetThreadsFail(true);
  PressSpot();
  CheckIdle();
  OnMain([] { [Variable<id>(Shell(), "view") close]; });
  CheckTrue("the view goes without waiting for it", true);
}

// What the process does when it ends, told by the process itself.
GatedHost* gateAtExit = nullptr;
bool openedBeforeExit = false;

void CheckExit() {
  CheckTrue("the program waited for the worker", openedBeforeExit);
  Check("the worker went no further", 1, gateAtExit->Arrived());
  _exit(FailureCount() == 0 ? 0 : 1);
}

void ClosesWindowDuringSpot() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 5, 1));
  gateAtExit = &StartSpot();
  std::atexit(CheckExit);
  KeyUnanswered("alt+F4");
  Pause(1.0);
  openedBeforeExit = true;
  gateAtExit->Open();
  Pause(kPatienceSeconds / 4);
  // The key is the window manager's, which on a busy machine may miss it.
  Note("the key to close is pressed once more");
  KeyUnanswered("alt+F4");
  Pause(kPatienceSeconds);
  CheckTrue("closing the window ends the program", false);
}

void ClosesWindow() {
  const test::TemporaryFolder folder;
  StartShellWith(SimpleProject(folder, 5, 1));
  std::atexit([] { _exit(FailureCount() == 0 ? 0 : 1); });
  PostToMain([] { [Window() performClose:nil]; });
  Pause(kPatienceSeconds);
  CheckTrue("closing the window ends the program", false);
}

}  // namespace

std::vector<Scenario> AbortScenarios() {
  return {{"aborts", AbortsBySecondPress},
          {"spots-again", SpotsAgainAtOnce},
          {"spots-many-times", AbortsAndSpotsManyTimes},
          {"loads-in-gap", LoadsDuringGap},
          {"loads-and-spots-in-gap", LoadsAndSpotsDuringGap},
          {"cancels", CancelsByControl},
          {"cancels-late", CancelsTooLate},
          {"aborts-late", AbortsTooLate},
          {"aborts-late-and-spots", AbortsTooLateAndSpotsAgain},
          {"thread-fails", ThreadDoesNotStart},
          {"closes", ClosesWindow},
          {"closes-during-spot", ClosesWindowDuringSpot}};
}

}  // namespace velmora::view
