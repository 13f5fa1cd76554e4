#import "Desktop/Shell/ShellController.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#import "Desktop/Theme/DesktopTheme.h"
#import "Desktop/ViewHost/LoadObserver.h"
#import "Desktop/Shell/SessionBar.h"
#import "Desktop/Shell/ShellMenu.h"
#import "Desktop/Shell/ShellText.h"
#import "Desktop/Shell/Snapshot.h"
#import "Desktop/Shell/StatusLine.h"
#import "Desktop/Timeline/TimelinePane.h"
#import "Desktop/ViewHost/ViewConnection.h"

using namespace velmora::desktop;

namespace {

constexpr NSTimeInterval kArrivalDelay = 0.1;
constexpr NSTimeInterval kSummaryDelay = 0.5;

constexpr CGFloat kBarHeight = 44;
constexpr CGFloat kStatusHeight = 26;
constexpr CGFloat kDividerHeight = 7;
constexpr CGFloat kTimelineHeight = 300;
constexpr CGFloat kUsualTimelineHeight = 224;  // four tracks
constexpr CGFloat kLeastTimelineHeight = 120;
constexpr CGFloat kLeastViewHeight = 620;  // below it the view's parts lie over each other
constexpr CGFloat kLeastWidth = 980;
constexpr CGFloat kUsualWidth = 1120;

}  // namespace

// Draws its divider as the theme would.
@interface ShellSplitView : NSSplitView
@end

@implementation ShellSplitView

- (CGFloat)dividerThickness {
  return kDividerHeight;
}

- (void)drawDividerInRect:(NSRect)rect {
  [[DesktopPalette raised] set];
  NSRectFill(rect);
  [[DesktopPalette line] set];
  NSRectFill(NSMakeRect(NSMidX(rect) - 18, std::floor(NSMidY(rect)) - 1, 36, 2));
}

@end

@interface ShellController (Building)
- (BOOL)makeView;
- (void)makeWindow;
- (void)fillWindow;
@end

@interface ShellController (Events)
- (void)didLoad:(NSNotification*)notification;
- (void)regionsArrived:(id)sender;
- (void)showArrivals:(NSTimer*)timer;
- (void)showSummary:(NSTimer*)timer;
- (NSTimer*)timerAfter:(NSTimeInterval)delay selector:(SEL)selector;
- (void)ratesChanged:(id)sender;
- (void)showStatus;
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
  receiver = std::make_unique<SessionReceiver>([self] {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    [self performSelectorOnMainThread:@selector(regionsArrived:) withObject:nil waitUntilDone:NO];
    [pool release];
  });
  return self;
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [arrivalTimer invalidate];
  [summaryTimer invalidate];
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
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(didLoad:)
                                               name:DesktopDidLoadFileNotification
                                             object:nil];
  [self makeWindow];
  [self fillWindow];
  InstallShellMenu([pane timeline], self);
  [bar setRates:settings.Rates()];
  [pane setClock:velmora::host::SessionClock(settings.Rates())];
  [bar setSummary:@""];
  [self showStatus];
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
  [view close];
  [NSApp terminate:self];
  return YES;
}

// The application's delegate

- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application {
  closing = YES;
  [view close];
  return NSTerminateNow;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  [DesktopTheme installIcon];
}

- (BOOL)applicationShouldOpenUntitledFile:(NSApplication*)application {
  return NO;
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
  [[window firstResponder] tryToPerform:@selector(cut:) with:sender];
}

- (void)copy:(id)sender {
  [[window firstResponder] tryToPerform:@selector(copy:) with:sender];
}

- (void)paste:(id)sender {
  [[window firstResponder] tryToPerform:@selector(paste:) with:sender];
}

- (void)selectAll:(id)sender {
  [[window firstResponder] tryToPerform:@selector(selectAll:) with:sender];
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
  view = [[ViewConnection alloc] initWithBundleAtPath:StringOf(options.bundle)
                                             settings:&settings
                                                 host:receiver.get()
                                                error:&error];
  if (view == nil) std::fprintf(stderr, "velmora-desktop: %s\n", error.c_str());
  return view != nil;
}

- (void)makeWindow {
  const NSSize size = [[view view] frame].size;
  const NSRect screen = NSInsetRect([[NSScreen mainScreen] visibleFrame], 10, 36);
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
  const CGFloat leastHeight =
      kBarHeight + kLeastViewHeight + kDividerHeight + kLeastTimelineHeight + kStatusHeight;
  const NSRect least = NSMakeRect(0, 0, kLeastWidth, leastHeight);
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
  status = [[StatusLine alloc] initWithFrame:NSMakeRect(0, 0, width, kStatusHeight)];
  [status setAutoresizingMask:NSViewWidthSizable | NSViewMaxYMargin];

  const CGFloat middle = height - kBarHeight - kStatusHeight;
  split = [[ShellSplitView alloc] initWithFrame:NSMakeRect(0, kStatusHeight, width, middle)];
  [split setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  [split setVertical:NO];
  [split setDelegate:(id)self];
  const CGFloat room = middle - [split dividerThickness];
  const CGFloat wanted = std::max(kUsualTimelineHeight, room - NSHeight([[view view] frame]));
  const CGFloat below =
      std::max(kLeastTimelineHeight, std::min(wanted, room - kLeastViewHeight));
  pane = [[TimelinePane alloc] initWithFrame:NSMakeRect(0, 0, width, below)];
  [[view view] setFrame:NSMakeRect(0, 0, width, room - below)];
  [split addSubview:[view view]];
  [split addSubview:pane];
  [split adjustSubviews];

  [content addSubview:bar];
  [content addSubview:split];
  [content addSubview:status];
}

// The view keeps the height below which its parts would lie over each other; what is left beyond it
// is the timeline's, but for its own least height.
- (void)splitView:(NSSplitView*)sender resizeSubviewsWithOldSize:(NSSize)oldSize {
  const CGFloat width = NSWidth([sender bounds]);
  const CGFloat divider = [sender dividerThickness];
  const CGFloat room = NSHeight([sender bounds]) - divider;
  const CGFloat most = std::max(kLeastTimelineHeight, room - kLeastViewHeight);
  const CGFloat below = std::min(std::max(NSHeight([pane frame]), kLeastTimelineHeight), most);
  [[view view] setFrame:NSMakeRect(0, 0, width, room - below)];
  [pane setFrame:NSMakeRect(0, room - below + divider, width, below)];
}

// Neither half may vanish under the divider.

- (CGFloat)splitView:(NSSplitView*)sender
    constrainMinCoordinate:(CGFloat)proposed
               ofSubviewAt:(NSInteger)index {
  return kLeastViewHeight;
}

- (CGFloat)splitView:(NSSplitView*)sender
    constrainMaxCoordinate:(CGFloat)proposed
               ofSubviewAt:(NSInteger)index {
  return NSHeight([sender bounds]) - kLeastTimelineHeight;
}

@end

@implementation ShellController (Events)

- (void)didLoad:(NSNotification*)notification {
  facts = [view facts];
  if (facts.Loaded() && !facts.earliest.empty()) {
    settings.SetRates(velmora::host::PresetFor(facts.earliest.c_str()));
    [bar setRates:settings.Rates()];
    [pane setClock:velmora::host::SessionClock(settings.Rates())];
  }
  [window setTitle:facts.path.empty()
                       ? @"Velmora"
                       : [NSString stringWithFormat:@"%@ \u2013 Velmora",
                                                    [StringOf(facts.path) lastPathComponent]]];
  [self showStatus];
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
  [bar setSummary:StringOf(DescribeSession(receiver->Summary()))];
}

// A timer that also fires while a menu or an alert is open.
- (NSTimer*)timerAfter:(NSTimeInterval)delay selector:(SEL)selector {
  NSTimer* timer = [NSTimer timerWithTimeInterval:delay
                                           target:self
                                         selector:selector
                                         userInfo:nil
                                          repeats:NO];
  for (NSString* mode : {NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode})
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
  return timer;
}

- (void)ratesChanged:(id)sender {
  settings.SetRates([bar rates]);
  [pane setClock:velmora::host::SessionClock(settings.Rates())];
  [self showStatus];
}

- (void)showStatus {
  [status showItems:DescribeProject(facts, settings.Rates()) list:StringOf(MissingList(facts))];
}

// What the command line asked for, once the window stands.
- (void)runRequests:(id)sender {
  if (!options.project.empty()) [view loadFile:StringOf(options.project)];
  if (options.spot) [view spot];
  if (options.snapshot.empty()) return;
  [NSTimer scheduledTimerWithTimeInterval:0.1
                                   target:self
                                 selector:@selector(finishSnapshot:)
                                 userInfo:nil
                                  repeats:YES];
}

- (void)finishSnapshot:(NSTimer*)timer {
  if ([view isSpotRunning]) return;
  [timer invalidate];
  [pane addRegions:receiver->TakeNew()];
  [self showSummary:nil];
  const BOOL written = WriteSnapshot(window, StringOf(options.snapshot));
  if (!written) {
    std::fprintf(stderr, "velmora-desktop: cannot write %s\n", options.snapshot.c_str());
  }
  closing = YES;
  [view close];
  std::exit(written ? 0 : 4);
}

@end
