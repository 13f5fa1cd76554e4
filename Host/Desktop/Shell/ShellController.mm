#import "Desktop/Shell/ShellController.h"

#import <GNUstepGUI/GSTheme.h>
#import <objc/runtime.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Desktop/Logic/ExitStatus.h"
#include "Desktop/Logic/FindingsReport.h"
#import "Desktop/Shell/MainThread.h"
#import "Desktop/Shell/SessionBar.h"
#import "Desktop/Shell/ShellMenu.h"
#import "Desktop/Shell/ShellSplit.h"
#import "Desktop/Shell/Snapshot.h"
#import "Desktop/Shell/StatusLine.h"
#import "Desktop/Theme/DesktopTheme.h"
#import "Desktop/Timeline/TimelinePane.h"
#import "Desktop/ViewHost/ViewConnection.h"
#include "Session/Printable.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;

namespace {

constexpr NSTimeInterval kArrivalDelay = 0.1;
constexpr NSTimeInterval kSummaryDelay = 0.5;

constexpr CGFloat kBarHeight = 44;
constexpr CGFloat kStatusHeight = 32;
constexpr CGFloat kTimelineHeight = 300;
constexpr CGFloat kUsualWidth = 1120;
constexpr NSSize kScreenMargin = {10, 36};  // left of the screen for frames and panels

}  // namespace

@interface ShellController (Building)
- (BOOL)makeView;
- (void)makeWindow;
- (void)fillWindow;
- (void)fillMiddle:(NSRect)frame;
@end

@interface ShellController (Events)
- (void)didLoad:(NSNotification*)notification;
- (void)regionsArrived:(id)sender;
- (void)showArrivals:(NSTimer*)timer;
- (void)showSummary:(NSTimer*)timer;
- (NSTimer*)timerAfter:(NSTimeInterval)delay selector:(SEL)selector;
- (void)edit:(SEL)action sender:(id)sender;
- (void)ratesChanged:(id)sender;
- (void)showRates;
- (void)showStatus;
- (void)letGo;
- (void)runRequests:(id)sender;
- (void)finishSnapshot:(NSTimer*)timer;
@end

@implementation ShellController

- (id)initWithShellOptions:(const ShellOptions&)someOptions {
  self = [super init];
  if (self == nil) return nil;
  options = someOptions;
  // The receiver's notice comes from a spot's thread; the run loop of the main thread takes it
  // whenever it is free, so that a flood of regions cannot hold up the spot.
  receiver = std::make_unique<SessionReceiver>(
      [self] {
        NSAutoreleasePool* pool = [NSAutoreleasePool new];
        [self performSelectorOnMainThread:@selector(regionsArrived:)
                               withObject:nil
                            waitUntilDone:NO];
        [pool release];
      },
      &settings);
  return self;
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [arrivalTimer invalidate];
  [summaryTimer invalidate];
  [desk release];
  [saveDesk release];
  [view release];
  [bar release];
  [pane release];
  [status release];
  [split release];
  [window release];
  [super dealloc];
}

- (BOOL)openWindow {
  if (![self makeView]) return NO;
  desk = [[FindingsDesk alloc] initWithShell:self];
  saveDesk = [[SaveDesk alloc] initWithShell:self receiver:receiver.get()];
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(didLoad:)
                                               name:[ViewConnection didLoadNotification]
                                             object:nil];
  [self makeWindow];
  [self fillWindow];
  InstallShellMenu([pane timeline], self, saveDesk);
  [self showRates];
  [bar setSummary:@""];
  [self showStatus];
  // The toolkit gives windows their menu bars when the application has started: by then the window
  // would stand, and all of it would be drawn once more.
  [[GSTheme theme] setMenu:[NSApp mainMenu] forWindow:window];
  [window makeKeyAndOrderFront:nil];
  [window makeFirstResponder:nil];
  [self performSelector:@selector(runRequests:) withObject:nil afterDelay:0];
  return YES;
}

// The window's delegate

- (BOOL)windowShouldClose:(id)sender {
  // The controls of the view must not be pressed while its spot is being waited for.
  closing = YES;
  [window orderOut:nil];
  [self letGo];
  [NSApp terminate:self];
  return YES;
}

// The application's delegate

- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application {
  closing = YES;
  [self letGo];
  return NSTerminateNow;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  [DesktopTheme installIcon];
}

- (BOOL)applicationShouldOpenUntitledFile:(NSApplication*)application {
  return NO;
}

// The shell of the findings' desk

- (void)findingsChanged {
  [self showStatus];
}

- (BOOL)loadProject:(const std::string&)path {
  // An alert may stand between the press of the spot button and the spot.
  if (closing || [view isSpotRunning] || [NSApp modalWindow] != nil) return NO;
  [view loadFile:StringFromText(path)];
  return YES;
}

// The shell of the saves' desk

- (void)saveChanged {
  [self showStatus];
}

- (BOOL)isSpotRunning {
  return [view isSpotRunning];
}

- (std::string)projectPath {
  return facts.Loaded() ? facts.path : "";
}

// The menu's and the bar's actions

- (void)openProject:(id)sender {
  if ([view isSpotRunning]) {
    NSBeep();
    return;
  }
  NSOpenPanel* panel = [NSOpenPanel openPanel];
  if ([panel runModalForTypes:[NSArray arrayWithObject:@"adl"]] != NSOKButton) return;
  [view loadFile:[panel filename]];
}

- (void)cut:(id)sender {
  [self edit:@selector(cut:) sender:sender];
}

- (void)copy:(id)sender {
  [self edit:@selector(copy:) sender:sender];
}

- (void)paste:(id)sender {
  [self edit:@selector(paste:) sender:sender];
}

- (void)selectAll:(id)sender {
  [self edit:@selector(selectAll:) sender:sender];
}

- (void)showFindings:(id)sender {
  [desk showFindings:sender];
}

- (void)prepare:(id)sender {
  [desk prepare:sender];
}

- (void)toggleNative:(id)sender {
  native = !native;
  receiver->SetNative(native);
}

- (BOOL)validateMenuItem:(NSMenuItem*)item {
  if (sel_isEqual([item action], @selector(toggleNative:)))
    [item setState:native ? NSOnState : NSOffState];
  if (sel_isEqual([item action], @selector(showFindings:))) return [desk hasFindings];
  if (sel_isEqual([item action], @selector(prepare:))) return [desk canPrepare];
  if (sel_isEqual([item action], @selector(openProject:))) return ![view isSpotRunning];
  return YES;
}

- (void)clearSession:(id)sender {
  receiver->Clear();
  [pane clear];
  [self showSummary:nil];
}

@end

@implementation ShellController (Building)

- (BOOL)makeView {
  std::string error;
  view = [[ViewConnection alloc] initWithBundleAtPath:StringFromText(options.bundle)
                                             settings:&settings
                                                 host:receiver.get()
                                             follower:receiver.get()
                                                error:&error];
  if (view == nil)
    std::fprintf(stderr, "velmora-desktop: %s\n", velmora::host::Printable(error).c_str());
  return view != nil;
}

- (void)makeWindow {
  const NSSize size = [[view view] frame].size;
  const NSRect screen =
      NSInsetRect([[NSScreen mainScreen] visibleFrame], kScreenMargin.width, kScreenMargin.height);
  const CGFloat width = std::max(size.width, kUsualWidth);
  const CGFloat height = kBarHeight + size.height + kTimelineHeight + kStatusHeight;
  NSRect content =
      NSMakeRect(0, 0, std::min(width, NSWidth(screen)), std::min(height, NSHeight(screen)));
  content.origin.x = std::floor(NSMidX(screen) - NSWidth(content) / 2);
  content.origin.y = std::floor(NSMidY(screen) - NSHeight(content) / 2);
  window = [[NSWindow alloc] initWithContentRect:content
                                       styleMask:NSTitledWindowMask | NSClosableWindowMask |
                                                 NSMiniaturizableWindowMask | NSResizableWindowMask
                                         backing:NSBackingStoreBuffered
                                           defer:NO];
  [window setTitle:@"Velmora"];
  [window setReleasedWhenClosed:NO];
  [window setAcceptsMouseMovedEvents:YES];
  const NSSize inside = [ShellSplit leastSize];
  const NSRect least = NSMakeRect(0, 0, inside.width, kBarHeight + inside.height + kStatusHeight);
  [window setMinSize:[window frameRectForContentRect:least].size];
  [window setDelegate:(id)self];
}

- (void)fillWindow {
  NSView* content = [window contentView];
  const CGFloat width = NSWidth([content bounds]);
  const CGFloat height = NSHeight([content bounds]);

  bar = [[SessionBar alloc] initWithFrame:NSMakeRect(0, height - kBarHeight, width, kBarHeight)
                                   target:self
                             ratesChanged:@selector(ratesChanged:)
                                    clear:@selector(clearSession:)];
  [bar setAutoresizingMask:NSViewWidthSizable | NSViewMinYMargin];
  status = [[StatusLine alloc] initWithFrame:NSMakeRect(0, 0, width, kStatusHeight)
                                      target:desk
                                    findings:@selector(showFindings:)
                                     prepare:@selector(prepare:)];
  [status setAutoresizingMask:NSViewWidthSizable | NSViewMaxYMargin];

  [self fillMiddle:NSMakeRect(0, kStatusHeight, width, height - kBarHeight - kStatusHeight)];

  [content addSubview:bar];
  [content addSubview:split];
  [content addSubview:status];
}

- (void)fillMiddle:(NSRect)frame {
  pane = [[TimelinePane alloc] initWithFrame:NSMakeRect(0, 0, NSWidth(frame), kTimelineHeight)];
  split = [[ShellSplit alloc] initWithFrame:frame upper:[view view] lower:pane];
  [split setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
}

@end

@implementation ShellController (Events)

- (void)didLoad:(NSNotification*)notification {
  facts = [view facts];
  receiver->Loaded([view project], facts.path);
  [saveDesk forget];
  if (facts.Loaded() && !facts.summary.earliest.empty()) {
    settings.SetRates(velmora::host::PresetFor(facts.summary.earliest.c_str()));
    [self showRates];
  }
  [window setTitle:facts.path.empty() ? @"Velmora"
                                      : [NSString stringWithFormat:@"%@ \u2013 Velmora",
                                                                   [StringFromText(facts.path)
                                                                       lastPathComponent]]];
  [desk didLoad:facts.path];  // which shows the status
}

// A spot waits for the main thread at each of its steps: what every region asked for would be paid
// by the spot. Regions that land within a moment are shown together.
- (void)regionsArrived:(id)sender {
  if (closing || arrivalTimer != nil) return;
  arrivalTimer = [self timerAfter:kArrivalDelay selector:@selector(showArrivals:)];
}

- (void)showArrivals:(NSTimer*)timer {
  arrivalTimer = nil;
  [pane addRegions:receiver->TakeNew()];
  // Counting files walks the whole session: once in a while is enough.
  if (summaryTimer == nil) {
    summaryTimer = [self timerAfter:kSummaryDelay selector:@selector(showSummary:)];
  }
}

- (void)showSummary:(NSTimer*)timer {
  [summaryTimer invalidate];
  summaryTimer = nil;
  [bar setSummary:StringFromText(DescribeSession(receiver->Summary()))];
}

// A timer that also fires while a menu or an alert is open.
- (NSTimer*)timerAfter:(NSTimeInterval)delay selector:(SEL)selector {
  NSTimer* timer = [NSTimer timerWithTimeInterval:delay
                                           target:self
                                         selector:selector
                                         userInfo:nil
                                          repeats:NO];
  AddToAllModes(timer);
  return timer;
}

// A text that has the focus, in a panel too, comes before the panel, and that before a table. Never
// up the chain of responders: at its end the toolkit asks the application's delegate, which is the
// shell again.
- (void)edit:(SEL)action sender:(id)sender {
  NSWindow* place = [NSApp keyWindow] != nil ? [NSApp keyWindow] : window;
  NSResponder* first = [place firstResponder];
  id delegate = [place delegate];
  id taker = nil;
  if (first != place && [first respondsToSelector:action]) taker = first;
  const BOOL text = [first isKindOfClass:[NSText class]];
  if (!text && delegate != self && [delegate respondsToSelector:action]) taker = delegate;
  [taker performSelector:action withObject:sender];
}

- (void)ratesChanged:(id)sender {
  settings.SetRates([bar rates]);
  [self showRates];
  [self showStatus];
}

- (void)showRates {
  [bar setRates:settings.Rates()];
  [pane setClock:velmora::host::SessionClock(settings.Rates())];
}

- (void)showStatus {
  std::vector<StatusItem> items =
      WithFindings(DescribeProject(facts, settings.Rates()), facts, [desk statusItem]);
  // What was asked for last comes first.
  const std::optional<StatusItem> saved = [saveDesk statusItem];
  if (saved) items.insert(items.begin(), *saved);
  [status showItems:items list:StringFromText(MissingList(facts))];
  [status offerFindings:[desk hasGraveFindings] prepare:[desk canPrepare]];
}

// Ends what goes on beside the window's work. A save and a preparation leave nothing half-made.
- (void)letGo {
  [saveDesk close];
  [desk close];
  [pane close];
  [view close];
}

// What the command line asked for, once the window stands.
- (void)runRequests:(id)sender {
  if (!options.project.empty()) [view loadFile:StringFromText(options.project)];
  if (options.spot) [view spot];
  if (options.snapshot.empty()) return;
  [NSTimer scheduledTimerWithTimeInterval:0.1
                                   target:self
                                 selector:@selector(finishSnapshot:)
                                 userInfo:nil
                                  repeats:YES];
}

- (void)finishSnapshot:(NSTimer*)timer {
  if ([view isSpotRunning] || [desk isChecking]) return;
  [pane addRegions:receiver->TakeNew()];
  [window display];  // which asks for the waveforms
  if ([pane isReadingWaveforms]) return;
  [timer invalidate];
  [self showSummary:nil];
  const BOOL written = WriteSnapshot(window, StringFromText(options.snapshot));
  if (!written) {
    std::fprintf(stderr, "velmora-desktop: cannot write %s\n",
                 velmora::host::Printable(options.snapshot).c_str());
  }
  closing = YES;
  [self letGo];
  std::exit(written ? kDone : kNoWindow);
}

@end
