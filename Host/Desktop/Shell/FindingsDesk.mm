#import "Desktop/Shell/FindingsDesk.h"

#include <filesystem>
#include <system_error>

#include "Desktop/Logic/FindingsReport.h"
#import "Desktop/Shell/FindingsPanel.h"
#import "Desktop/Shell/MainThread.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;

namespace {

constexpr NSTimeInterval kSlowCheck = 0.5;  // a quicker one would only flicker
constexpr NSTimeInterval kWaitingInterval = 0.25;

std::string AbsolutePath(const std::string& path) {
  std::error_code error;
  const auto absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute.lexically_normal().string();
}

}  // namespace

@interface FindingsDesk (Events)
- (void)checkEnded:(id)sender;
- (void)checkIsSlow:(NSTimer*)timer;
- (void)loadWaiting:(NSTimer*)timer;
- (void)stopTimers;
@end

@implementation FindingsDesk

- (id)initWithShell:(id<FindingsDeskShell>)aShell {
  self = [super init];
  if (self == nil) return nil;
  shell = aShell;
  check = std::make_unique<CheckRun>([self] { SendToMain(self, @selector(checkEnded:)); });
  findingsPanel = [[FindingsPanel alloc] initWithTarget:self prepare:@selector(prepare:)];
  preparePanel = [[PreparePanel alloc] initWithOwner:self];
  return self;
}

- (void)dealloc {
  [self close];
  [findingsPanel release];
  [preparePanel release];
  [super dealloc];
}

- (void)didLoad:(const std::string&)path {
  if (closed) return;
  [self stopTimers];
  project = path.empty() ? path : AbsolutePath(path);
  waiting.clear();
  checked = nullptr;
  slow = NO;
  unchecked = NO;
  [findingsPanel setChecked:nullptr];
  [preparePanel didLoad:project];
  if (project.empty()) {
    check->Drop();
  } else if (check->Start(project, {})) {
    slowTimer = [NSTimer timerWithTimeInterval:kSlowCheck
                                        target:self
                                      selector:@selector(checkIsSlow:)
                                      userInfo:nil
                                       repeats:NO];
    AddToAllModes(slowTimer);
  } else {
    unchecked = YES;
  }
  [shell findingsChanged];
}

- (BOOL)isChecking {
  return check->IsRunning();
}

- (std::optional<StatusItem>)statusItem {
  if (checked != nullptr) return DescribeFindings(*checked);
  if (unchecked) return StatusItem{Severity::Notice, "The project could not be checked"};
  if (slow) return StatusItem{Severity::Quiet, "Checking the project\u2026"};
  return std::nullopt;
}

- (BOOL)hasFindings {
  return checked != nullptr && !checked->findings.empty();
}

- (BOOL)hasGraveFindings {
  return checked != nullptr && DescribeFindings(*checked).has_value();
}

- (BOOL)canPrepare {
  return checked != nullptr && CanPrepare(*checked);
}

- (void)showFindings:(id)sender {
  if ([self hasFindings]) [findingsPanel show];
}

- (void)prepare:(id)sender {
  if ([self canPrepare]) [preparePanel showForProject:project];
}

- (void)close {
  if (closed) return;
  closed = YES;
  [self stopTimers];
  [findingsPanel hide];
  [preparePanel close];
  check->Close();
}

// The owner of the panel that prepares

- (NSString*)takePrepared:(const std::string&)path of:(const std::string&)original {
  if (project != original) {
    return [NSString stringWithFormat:@"Another project was loaded meanwhile; to use this one, "
                                      @"open %@.",
                                      StringFromText(path)];
  }
  if ([shell loadProject:path]) return @"It is loaded in the window.";
  waiting = path;
  waitingTimer = [NSTimer timerWithTimeInterval:kWaitingInterval
                                         target:self
                                       selector:@selector(loadWaiting:)
                                       userInfo:nil
                                        repeats:YES];
  AddToAllModes(waitingTimer);
  return @"It will be loaded when the window is free again.";
}

@end

@implementation FindingsDesk (Events)

// Comes from the main thread's run loop, perhaps after another load or the window's end.
- (void)checkEnded:(id)sender {
  if (closed || check->IsRunning()) return;
  slow = NO;
  [slowTimer invalidate];
  slowTimer = nil;
  CheckedPtr taken = check->Take();
  if (taken != nullptr) {
    checked = taken;
    [findingsPanel setChecked:checked];
  }
  unchecked = checked == nullptr;
  [shell findingsChanged];
}

- (void)checkIsSlow:(NSTimer*)timer {
  slowTimer = nil;
  slow = check->IsRunning();
  [shell findingsChanged];
}

- (void)loadWaiting:(NSTimer*)timer {
  const std::string path = waiting;  // loading clears it
  if (![shell loadProject:path]) return;
  [waitingTimer invalidate];
  waitingTimer = nil;
}

- (void)stopTimers {
  [slowTimer invalidate];
  slowTimer = nil;
  [waitingTimer invalidate];
  waitingTimer = nil;
}

@end
