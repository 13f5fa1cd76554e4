// Runs one scenario in the desktop shell: view_tests NAME. Prints a line for each check; the exit
// status is 0 if all of them held.

#import <AppKit/AppKit.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <future>
#include <string>

#include "Desktop/Shell/PromptEvents.h"
#include "Desktop/Shell/WindowCounters.h"
#import "Desktop/Theme/DesktopTheme.h"
#include "Desktop/Theme/ToolkitSetup.h"
#import "View/Checks.h"
#import "View/Driver.h"
#import "View/EventWatch.h"
#import "View/Panels.h"
#import "View/Scenarios.h"
#import "View/Stage.h"

namespace velmora::view {

namespace {

ShellController* shell = nil;
const Scenario* scenario = nullptr;
std::promise<desktop::ShellOptions> shellWanted;

void End() {
  std::fflush(stdout);
  _exit(FailureCount() == 0 ? 0 : 1);
}

void RunScenario() {
  try {
    scenario->run();
  } catch (const ScenarioFailed&) {
    if (shell != nil) Screenshot(Window(), std::string(scenario->name) + "-failed");
  }
  if (shell != nil && PanelStands()) {
    NSWindow* const panel = Ask([] { return [NSApp modalWindow]; });
    Check("no alert stands at the end", "", PanelText(panel));
  }
  End();
}

}  // namespace

ShellController* Shell() {
  return shell;
}

std::string BundlePath() {
  return Ask([] {
    return TextOf([[NSBundle bundleWithIdentifier:@"org.velmora.VelmoraGUI"] bundlePath]);
  });
}

void StartShellAtOnce(const desktop::ShellOptions& options) {
  desktop::ShellOptions complete = options;
  if (complete.bundle.empty()) complete.bundle = VELMORA_BUNDLE;
  shellWanted.set_value(complete);
  OnMain([] {});  // answered by the loop that runs when the window has been opened
}

void StartShell(const desktop::ShellOptions& options) {
  StartShellAtOnce(options);
  WaitFor("the window stands and takes keys",
          [] { return shell != nil && [Window() isVisible] && [Window() isKeyWindow]; });
  Pause(0.2);
}

void StartShellWith(const std::string& project) {
  desktop::ShellOptions options;
  options.project = project;
  StartShell(options);
  WaitFor("the project is loaded", [] { return [Controller() project] != nullptr; });
}

}  // namespace velmora::view

@interface ScenarioThread : NSObject
- (void)run:(id)nothing;
@end

@implementation ScenarioThread

- (void)run:(id)nothing {
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  velmora::view::RunScenario();
  [pool release];
}

@end

int main(int argc, char** argv) {
  using namespace velmora::view;
  for (const Scenario& candidate : AllScenarios()) {
    if (argc == 2 && std::strcmp(candidate.name, argv[1]) == 0) scenario = &candidate;
  }
  if (scenario == nullptr) {
    std::fprintf(stderr, "usage: view_tests SCENARIO, one of:\n");
    for (const Scenario& each : AllScenarios()) std::fprintf(stderr, "  %s\n", each.name);
    return 2;
  }

  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  char* only[] = {argv[0], nullptr};
  [NSProcessInfo initializeWithArguments:only count:1 environment:environ];
  [NSThread detachNewThreadSelector:@selector(run:)
                           toTarget:[[ScenarioThread new] autorelease]
                         withObject:nil];
  const velmora::desktop::ShellOptions options = shellWanted.get_future().get();

  // From here on as the shell's program does it.
  [[NSProcessInfo processInfo] setProcessName:@"Velmora"];
  velmora::desktop::SetUpToolkit();
  velmora::desktop::TakeEventsAtOnce();
  [NSApplication sharedApplication];
  velmora::desktop::LetCountersGoWithWindows();
  WatchEvents();
  [DesktopTheme installWithBundleAtPath:StringOf(VELMORA_THEME)];
  [DesktopTheme installIcon];
  WatchPictures();
  shell = [[ShellController alloc] initWithShellOptions:options];
  [NSApp setDelegate:(id)shell];
  NSAutoreleasePool* opening = [NSAutoreleasePool new];
  const BOOL open = [shell openWindow];
  [opening release];
  if (!open) return 1;
  [NSApp run];
  [pool release];
  return 0;
}
