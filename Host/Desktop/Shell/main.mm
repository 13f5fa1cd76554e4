#import <AppKit/AppKit.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "Base/PrintableLine.h"
#include "Base/StandardError.h"
#include "Desktop/Logic/CommandLine.h"
#include "Desktop/Logic/ExitStatus.h"
#include "Desktop/Shell/PromptEvents.h"
#import "Desktop/Shell/ShellController.h"
#import "Desktop/Shell/SignalWatch.h"
#include "Desktop/Shell/WindowCounters.h"
#import "Desktop/Theme/DesktopTheme.h"
#include "Desktop/Theme/ToolkitSetup.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;

namespace {

// The path of the bundle or the theme: beside the program, as it is built, or where an install puts
// it. Both places are told from the program's own, so the tree may be moved.
std::string PathOfResource(const char* name) {
  std::error_code error;
  const std::filesystem::path folder =
      std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  const std::filesystem::path beside = folder / name;
  if (std::filesystem::exists(beside, error)) return beside.string();
  return (folder / VELMORA_INSTALLED_RESOURCES / name).lexically_normal().string();
}

// The toolkit takes any bare word among the arguments for a document to open, so it sees none.
void HideArguments(char** argv) {
  char* only[] = {argv[0], nullptr};
  [NSProcessInfo initializeWithArguments:only count:1 environment:environ];
}

// The toolkit raises an exception when it cannot reach a display.
void EndWithoutDisplay(NSException*) {
  const char* display = std::getenv("DISPLAY");
  std::fprintf(stderr,
               "velmora-desktop: there is no display to open a window on (DISPLAY is %s).\n"
               "Start it from a desktop session, or under Xvfb: xvfb-run -a velmora-desktop ...\n"
               "Without a window, the program velmora imports from the command line.\n",
               display != nullptr && *display != '\0' ? display : "not set");
  std::fflush(stderr);
  _exit(kNoWindow);
}

void Connect() {
  NSUncaughtExceptionHandler* usual = NSGetUncaughtExceptionHandler();
  NSSetUncaughtExceptionHandler(EndWithoutDisplay);
  [NSApplication sharedApplication];
  NSSetUncaughtExceptionHandler(usual);
}

}  // namespace

int main(int argc, char** argv) {
  // A write beyond the limit for files (ulimit -f) then fails like one on a full disk, and is told.
  std::signal(SIGXFSZ, SIG_IGN);
  // Lines of the readers and the log hold bytes of the project, of which a terminal may obey some.
  if (isatty(STDERR_FILENO) != 0) velmora::SetStandardErrorFilter(velmora::PrintableLine);
  ShellOptions options;
  const std::optional<int> status = ParseCommandLine({argv + 1, argv + argc}, options);
  if (status) return *status;
  if (options.bundle.empty()) options.bundle = PathOfResource("Velmora.bundle");

  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  HideArguments(argv);
  [SignalWatch start];  // before any thread is there to take a signal the toolkit's way
  [[NSProcessInfo processInfo] setProcessName:@"Velmora"];
  SetUpToolkit();
  TakeEventsAtOnce();
  Connect();
  LetCountersGoWithWindows();
  [DesktopTheme installWithBundleAtPath:StringFromText(PathOfResource("VelmoraDesktop.theme"))];
  [DesktopTheme installIcon];

  ShellController* shell = [[ShellController alloc] initWithShellOptions:options];
  [NSApp setDelegate:(id)shell];
  // A pool of its own: what the nib left in the outer one would keep the view's controller alive,
  // and it is the controller's end that waits for a running spot.
  NSAutoreleasePool* opening = [NSAutoreleasePool new];
  const BOOL open = [shell openWindow];
  [opening release];
  if (!open) return kNoWindow;
  [NSApp run];
  [pool release];
  return 0;
}
