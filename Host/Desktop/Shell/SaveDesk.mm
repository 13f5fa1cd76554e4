#import "Desktop/Shell/SaveDesk.h"

#import <objc/runtime.h>

#include "Base/FileNames.h"
#include "Desktop/Logic/SaveReport.h"
#import "Desktop/Shell/MainThread.h"
#import "Desktop/Shell/SavePanel.h"
#import "Desktop/Shell/SaveQuestion.h"
#include "Destinations/Destinations.h"
#include "Session/Printable.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;
using velmora::host::TargetKind;

namespace {

constexpr NSTimeInterval kStepInterval = 0.1;
constexpr int kQuietSteps = 3;  // a quicker save would only flicker

using Kinds = std::vector<const TargetKind*>;

// What a question may offer: a row of the table, or one of these.
constexpr NSInteger kBounces = -1;
constexpr NSInteger kReports = -2;

template <class Wanted>
Kinds KindsThat(const Wanted& wanted) {
  Kinds kinds;
  for (const velmora::host::Destination& row : velmora::host::Destinations()) {
    if (wanted(*row.target)) kinds.push_back(row.target);
  }
  return kinds;
}

Kinds KindsOf(NSInteger offer) {
  if (offer == kBounces) {
    return KindsThat([](const TargetKind& kind) { return kind.offers.bounceDepth; });
  }
  if (offer == kReports) {
    return KindsThat([](const TargetKind& kind) { return kind.use == TargetKind::Use::Record; });
  }
  return {velmora::host::Destinations()[static_cast<std::size_t>(offer)].target};
}

}  // namespace

@interface SaveDesk (Saving)
- (BOOL)canSave:(NSInteger)offer;
- (void)askFor:(NSInteger)offer;
- (void)showStep:(NSTimer*)timer;
- (void)saveEnded:(id)sender;
- (void)cancelSave:(id)sender;
- (void)stopTimer;
@end

@implementation SaveDesk

- (id)initWithShell:(id<SaveDeskShell>)aShell receiver:(SessionReceiver*)aReceiver {
  self = [super init];
  if (self == nil) return nil;
  shell = aShell;
  receiver = aReceiver;
  run = std::make_unique<SaveRun>([self] { SendToMain(self, @selector(saveEnded:)); });
  panel = [[SavePanel alloc] initWithTarget:self cancel:@selector(cancelSave:)];
  return self;
}

- (void)dealloc {
  [self close];
  [panel release];
  [super dealloc];
}

- (void)saveAs:(id)sender {
  [self askFor:[(NSMenuItem*)sender tag]];
}

- (void)bounce:(id)sender {
  [self askFor:kBounces];
}

- (void)report:(id)sender {
  [self askFor:kReports];
}

- (void)showSaveResult:(id)sender {
  if (last != nullptr && ![self isSaving]) [panel showResult:*last];
}

- (BOOL)validateMenuItem:(NSMenuItem*)item {
  if (sel_isEqual([item action], @selector(showSaveResult:)))
    return last != nullptr && ![self isSaving];
  if (sel_isEqual([item action], @selector(bounce:))) return [self canSave:kBounces];
  if (sel_isEqual([item action], @selector(report:))) return [self canSave:kReports];
  if (sel_isEqual([item action], @selector(saveAs:))) return [self canSave:[item tag]];
  return YES;
}

- (BOOL)save:(const SaveRequest&)request {
  if (closed || [self isSaving] || !run->Start(request, receiver->Copy())) return NO;
  running = std::make_unique<SaveRequest>(request);
  steps = 0;
  [panel hide];  // what was said of an earlier one
  stepTimer = [NSTimer timerWithTimeInterval:kStepInterval
                                      target:self
                                    selector:@selector(showStep:)
                                    userInfo:nil
                                     repeats:YES];
  AddToAllModes(stepTimer);
  return YES;
}

- (BOOL)isSaving {
  return run->IsRunning() || stepTimer != nil;
}

- (std::optional<StatusItem>)statusItem {
  if (stepTimer != nil) {
    const std::string name = velmora::FileNameOf(running->path);
    return StatusItem{Severity::Quiet, "Writing " + velmora::host::Printable(name) + "\u2026"};
  }
  if (last != nullptr) return DescribeSave(*last);
  return std::nullopt;
}

- (void)forget {
  last.reset();
}

- (void)close {
  if (closed) return;
  closed = YES;
  [self stopTimer];
  [panel hide];
  run->Close();
}

@end

@implementation SaveDesk (Saving)

// What tells of the spot tells of one that placed nothing, too.
- (BOOL)canSave:(NSInteger)offer {
  const Kinds kinds = KindsOf(offer);
  if (closed || kinds.empty() || [self isSaving] || [shell isSpotRunning] ||
      receiver->IsFilling()) {
    return NO;
  }
  return receiver->HasRegions() ||
         (kinds.front()->use == TargetKind::Use::Record && receiver->HasRecord());
}

- (void)askFor:(NSInteger)offer {
  if (![self canSave:offer] || [NSApp modalWindow] != nil) {
    NSBeep();
    return;
  }
  SaveQuestion* question = [[[SaveQuestion alloc] initWithKinds:KindsOf(offer)
                                                        choices:choices
                                                        project:[shell projectPath]] autorelease];
  if (![question ask] || closed) return;
  choices = [question request].choices;
  if (![self save:[question request]]) {
    NSBeep();
    return;
  }
  [shell saveChanged];
}

- (void)showStep:(NSTimer*)timer {
  if (++steps == kQuietSteps) [panel showProgressOf:*running];
  [panel setShare:run->Share()];
}

// Comes from the main thread's run loop, perhaps after the window's end.
- (void)saveEnded:(id)sender {
  if (closed) return;
  std::optional<SaveOutcome> outcome = run->Take();
  if (!outcome) return;
  [self stopTimer];
  last = std::make_unique<SaveOutcome>(std::move(*outcome));
  if (!last->cancelled) {
    receiver->TargetWritten({last->request.kind->name, last->request.path, false,
                             last->made.trouble, last->made.leftOut, last->made.notes});
  }
  const BOOL isPage = last->request.kind->use == TargetKind::Use::Record && !last->cancelled;
  if (HasDetails(*last) || isPage) {
    [panel showResult:*last];
  } else {
    [panel hide];
  }
  [shell saveChanged];
}

- (void)cancelSave:(id)sender {
  run->Stop();
  [panel showCancelling];
}

- (void)stopTimer {
  [stepTimer invalidate];
  stepTimer = nil;
}

@end
