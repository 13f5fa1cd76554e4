#import "Desktop/Shell/PreparePanel.h"

#include <utility>

#include "Base/FileNames.h"
#include "Desktop/Logic/PrepareReport.h"
#import "Desktop/Shell/MainThread.h"
#import "Desktop/Shell/PrepareForm.h"
#include "Desktop/Theme/Controls.h"
#include "Desktop/Theme/Drawing.h"
#include "Desktop/Theme/Metrics.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;

namespace {

constexpr CGFloat kUsualWidth = 620;
constexpr CGFloat kLeastWidth = 460;
constexpr CGFloat kMoreHeight = 60;  // of the usual size, for the lists
constexpr CGFloat kButtonWidth = 96;
constexpr CGFloat kBarHeight = 12;
constexpr CGFloat kMessageHeight = 3 * kLabelHeight;
constexpr NSTimeInterval kStepInterval = 0.1;
constexpr std::size_t kShownOfAGroup = 200;  // the text to copy has all

constexpr CGFloat kFormBottom = kWindowMargin + kControlHeight + kWindowMargin + kMessageHeight +
                                kControlGap + kBarHeight + kWindowMargin;

}  // namespace

@interface PreparePanel (Building)
- (void)makePanel;
- (void)fill;
- (void)addFoot;
- (void)linkKeys;
@end

@interface PreparePanel (Running)
- (void)showForm;
- (void)moveCancelTo:(CGFloat)x;
- (void)showMessage:(NSString*)text tone:(Tone)tone;
- (void)prepare:(id)sender;
- (void)showStep:(NSTimer*)timer;
- (void)prepareEnded:(id)sender;
- (void)showResult;
- (void)stopTimer;
- (void)cancel:(id)sender;
- (void)copyResult:(id)sender;
@end

@implementation PreparePanel

- (id)initWithOwner:(id<PreparePanelOwner>)anOwner {
  self = [super init];
  if (self == nil) return nil;
  owner = anOwner;
  run = std::make_unique<PrepareRun>([self] { SendToMain(self, @selector(prepareEnded:)); });
  [self makePanel];
  [self fill];
  [self showForm];
  return self;
}

- (void)dealloc {
  [self close];
  [panel setDelegate:nil];
  [panel release];
  [message release];
  [bar release];
  [prepareButton release];
  [cancelButton release];
  [copyButton release];
  [form release];
  [resultScroll release];
  [super dealloc];
}

- (void)showForProject:(const std::string&)path {
  if (![self isRunning]) {
    project = path;
    [form setProject:project];
    [panel setTitle:[NSString stringWithFormat:@"Prepare %@",
                                               StringFromText(velmora::FileNameOf(project))]];
    [self showForm];
  }
  [panel makeKeyAndOrderFront:nil];
}

- (void)didLoad:(const std::string&)path {
  const BOOL isForm = ![form isHidden];
  if (isForm && ![self isRunning] && path != project) [panel orderOut:nil];
}

- (BOOL)isRunning {
  return run->IsRunning();
}

- (BOOL)isShown {
  return [panel isVisible];
}

- (void)close {
  [self stopTimer];
  [panel orderOut:nil];
  run->Close();
}

// The panel's delegate

- (BOOL)windowShouldClose:(id)sender {
  [self cancel:sender];
  return NO;
}

@end

@implementation PreparePanel (Building)

- (void)makePanel {
  const CGFloat height = kFormBottom + [PrepareForm leastHeight] + kWindowMargin;
  panel = [[NSPanel alloc]
      initWithContentRect:NSMakeRect(0, 0, kUsualWidth, height + kMoreHeight)
                styleMask:NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask
                  backing:NSBackingStoreBuffered
                    defer:YES];
  [panel setReleasedWhenClosed:NO];
  [panel setHidesOnDeactivate:NO];
  [panel setFloatingPanel:NO];
  [panel setBecomesKeyOnlyIfNeeded:NO];
  const NSRect least = NSMakeRect(0, 0, kLeastWidth, height);
  [panel setMinSize:[panel frameRectForContentRect:least].size];
  [panel setDelegate:(id)self];
  [panel center];
}

- (void)fill {
  NSView* content = [panel contentView];
  const NSSize size = [content bounds].size;
  const NSRect middle = NSMakeRect(kWindowMargin, kFormBottom, size.width - 2 * kWindowMargin,
                                   size.height - kWindowMargin - kFormBottom);
  form = [[PrepareForm alloc] initWithFrame:middle];
  [form setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  // The result needs no progress bar: it has that room too.
  const CGFloat lower = kControlGap + kBarHeight;
  resultScroll = MakeTextScroll(NSMakeRect(NSMinX(middle), NSMinY(middle) - lower, NSWidth(middle),
                                           NSHeight(middle) + lower));
  [resultScroll setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  [content addSubview:form];
  [content addSubview:resultScroll];
  [self addFoot];
  [self linkKeys];
}

- (void)addFoot {
  NSView* content = [panel contentView];
  const CGFloat width = NSWidth([content bounds]) - 2 * kWindowMargin;
  CGFloat y = kWindowMargin + kControlHeight + kWindowMargin;
  message = MakeLabel(NSMakeRect(kWindowMargin, y, width, kMessageHeight), kTextSize);
  [[message cell] setWraps:YES];
  [[message cell] setLineBreakMode:NSLineBreakByWordWrapping];
  y += kMessageHeight + kControlGap;
  bar = [[NSProgressIndicator alloc] initWithFrame:NSMakeRect(kWindowMargin, y, width, kBarHeight)];
  [bar setStyle:NSProgressIndicatorBarStyle];
  [bar setIndeterminate:NO];
  [bar setMinValue:0];
  [bar setMaxValue:1];
  for (NSView* view : {(NSView*)message, (NSView*)bar}) {
    [view setAutoresizingMask:NSViewWidthSizable | NSViewMaxYMargin];
    [content addSubview:view];
  }

  NSRect place = NSMakeRect(kWindowMargin, kWindowMargin, kButtonWidth, kControlHeight);
  copyButton = MakeButton(place, @"Copy Text", self, @selector(copyResult:));
  [copyButton setAutoresizingMask:NSViewMaxXMargin | NSViewMaxYMargin];
  place.origin.x = NSMaxX([message frame]) - kButtonWidth;
  prepareButton = MakeButton(place, @"Prepare", self, @selector(prepare:));
  [prepareButton setKeyEquivalent:@"\r"];
  place.origin.x -= kButtonWidth + kControlGap;
  cancelButton = MakeButton(place, @"Cancel", self, @selector(cancel:));
  [cancelButton setKeyEquivalent:@"\e"];
  for (NSButton* button : {prepareButton, cancelButton})
    [button setAutoresizingMask:NSViewMinXMargin | NSViewMaxYMargin];
  for (NSButton* button : {copyButton, cancelButton, prepareButton}) [content addSubview:button];
}

- (void)linkKeys {
  [form linkKeysFrom:prepareButton to:TextIn(resultScroll)];
  [TextIn(resultScroll) setNextKeyView:copyButton];
  [copyButton setNextKeyView:cancelButton];
  [cancelButton setNextKeyView:prepareButton];
}

@end

@implementation PreparePanel (Running)

// The button that closes stands at the end when there is nothing else to press.
- (void)showForm {
  [self moveCancelTo:NSMinX([prepareButton frame]) - kControlGap - kButtonWidth];
  [form setHidden:NO];
  [form setEnabled:YES];
  [resultScroll setHidden:YES];
  [copyButton setHidden:YES];
  [bar setHidden:YES];
  [prepareButton setHidden:NO];
  [prepareButton setEnabled:YES];
  [cancelButton setTitle:@"Cancel"];
  [cancelButton setEnabled:YES];
  [self showMessage:@"Makes a copy of the project that loads and spots whole. "
                    @"The project and its audio files stay as they are."
               tone:Tone::QuietText];
  [panel makeFirstResponder:[form firstControl]];
}

- (void)moveCancelTo:(CGFloat)x {
  NSRect frame = [cancelButton frame];
  frame.origin.x = x;
  [cancelButton setFrame:frame];
  [[panel contentView] setNeedsDisplay:YES];
}

- (void)showMessage:(NSString*)text tone:(Tone)tone {
  [message setStringValue:text];
  [message setTextColor:ColorOf(tone)];
  [message setToolTip:text];
}

- (void)prepare:(id)sender {
  velmora::prepare::PrepareOptions options = [form options];
  if (options.into.empty()) {
    [self showMessage:@"Name the folder that is to be made." tone:Tone::Problem];
    return;
  }
  if (!run->Start(project, options)) {
    [self showMessage:@"The system has no thread to spare: try again." tone:Tone::Problem];
    return;
  }
  [form setEnabled:NO];
  [prepareButton setEnabled:NO];
  [bar setHidden:NO];
  [self showStep:nil];
  stepTimer = [NSTimer timerWithTimeInterval:kStepInterval
                                      target:self
                                    selector:@selector(showStep:)
                                    userInfo:nil
                                     repeats:YES];
  AddToAllModes(stepTimer);
  [panel makeFirstResponder:cancelButton];
}

- (void)showStep:(NSTimer*)timer {
  const PrepareStep step = run->Step();
  [bar setDoubleValue:step.share];
  if ([cancelButton isEnabled]) [self showMessage:StringFromText(step.what) tone:Tone::Text];
}

// Comes from the main thread's run loop, perhaps after the panel was closed.
- (void)prepareEnded:(id)sender {
  std::optional<velmora::prepare::Prepared> outcome = run->Take();
  if (!outcome) return;
  [self stopTimer];
  prepared = std::move(*outcome);
  if (IsPrepared(prepared)) {
    [self showResult];
    return;
  }
  const BOOL cancelled = prepared.outcome == velmora::prepare::Outcome::Cancelled;
  [self showForm];
  [self showMessage:StringFromText(OutcomeText(prepared))
               tone:cancelled ? Tone::QuietText : Tone::Problem];
}

- (void)showResult {
  [form setHidden:YES];
  [bar setHidden:YES];
  [prepareButton setHidden:YES];
  [resultScroll setHidden:NO];
  [copyButton setHidden:NO];
  [self moveCancelTo:NSMinX([prepareButton frame])];
  [cancelButton setTitle:@"Close"];
  [cancelButton setEnabled:YES];
  ShowText(resultScroll, StringFromText(DescribePrepared(prepared, kShownOfAGroup)));
  NSString* became = [owner takePrepared:prepared.projectPath of:project];
  [self showMessage:[NSString
                        stringWithFormat:@"%@ %@", StringFromText(OutcomeText(prepared)), became]
               tone:Tone::Text];
  [panel makeFirstResponder:cancelButton];
}

- (void)stopTimer {
  [stepTimer invalidate];
  stepTimer = nil;
}

// Of what runs: asks it to stop, and goes on when it has.
- (void)cancel:(id)sender {
  if (![self isRunning]) {
    [panel orderOut:nil];
    return;
  }
  run->Stop();
  [cancelButton setEnabled:NO];
  [self showMessage:@"Cancelling\u2026" tone:Tone::QuietText];
}

- (void)copyResult:(id)sender {
  CopyToClipboard(StringFromText(OutcomeText(prepared) + "\n" + prepared.projectPath + "\n\n" +
                                 DescribePrepared(prepared, static_cast<std::size_t>(-1))));
}

@end
