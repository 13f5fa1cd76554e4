#import "Desktop/Shell/SavePanel.h"

#include "Base/FileNames.h"
#include "Desktop/Logic/OpenInBrowser.h"
#include "Desktop/Logic/SaveReport.h"
#include "Desktop/Theme/Controls.h"
#include "Desktop/Theme/Drawing.h"
#include "Desktop/Theme/Metrics.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;

namespace {

constexpr NSSize kProgressSize = {460, 108};
constexpr NSSize kResultSize = {620, 320};
constexpr NSSize kLeastResultSize = {460, 220};
constexpr CGFloat kButtonWidth = 96;
constexpr CGFloat kOpenWidth = 130;
constexpr CGFloat kBarHeight = 12;
constexpr std::size_t kShownOfAList = 500;  // the text to copy has all

bool IsPage(const SaveOutcome& outcome) {
  return outcome.request.kind != nullptr && outcome.made.trouble.empty() &&
         outcome.request.kind->use == velmora::host::TargetKind::Use::Record;
}

}  // namespace

@interface SavePanel (Building)
- (void)makePanel;
- (void)fill;
- (void)resizeTo:(NSSize)size least:(NSSize)least;
- (void)cancel:(id)sender;
- (void)copyResult:(id)sender;
- (void)openPage:(id)sender;
@end

@implementation SavePanel

- (id)initWithTarget:(id)aTarget cancel:(SEL)cancel {
  self = [super init];
  if (self == nil) return nil;
  target = aTarget;
  cancelAction = cancel;
  [self makePanel];
  [self fill];
  return self;
}

- (void)dealloc {
  [panel setDelegate:nil];
  [panel orderOut:nil];
  [panel release];
  [message release];
  [bar release];
  [resultScroll release];
  [copyButton release];
  [openButton release];
  [cancelButton release];
  [super dealloc];
}

- (void)showProgressOf:(const SaveRequest&)request {
  isProgress = YES;
  NSString* name = StringFromText(velmora::FileNameOf(request.path));
  [panel setTitle:[NSString stringWithFormat:@"%s", request.kind->title]];
  [message setStringValue:[NSString stringWithFormat:@"Writing %@", name]];
  [message setTextColor:ColorOf(Tone::Text)];
  [message setToolTip:StringFromText(request.path)];
  [bar setDoubleValue:0];
  [self resizeTo:kProgressSize least:kProgressSize];
  [bar setHidden:NO];
  [resultScroll setHidden:YES];
  [copyButton setHidden:YES];
  [openButton setHidden:YES];
  [cancelButton setTitle:@"Cancel"];
  [cancelButton setEnabled:YES];
  [panel makeKeyAndOrderFront:nil];
  [panel makeFirstResponder:cancelButton];
}

- (void)setShare:(double)share {
  [bar setDoubleValue:share];
}

- (void)showCancelling {
  [cancelButton setEnabled:NO];
  [message setStringValue:@"Cancelling\u2026"];
}

- (void)showResult:(const SaveOutcome&)anOutcome {
  isProgress = NO;
  outcome = anOutcome;
  [panel setTitle:[NSString stringWithFormat:@"%s", outcome.request.kind->title]];
  [message setStringValue:StringFromText(SaveHeadline(outcome))];
  [message setTextColor:ColorOf(outcome.made.trouble.empty() ? Tone::Text : Tone::Problem)];
  [message setToolTip:StringFromText(outcome.request.path)];
  [self resizeTo:kResultSize least:kLeastResultSize];
  [bar setHidden:YES];
  ShowText(resultScroll, StringFromText(SaveDetails(outcome, kShownOfAList)));
  [resultScroll setHidden:NO];
  [copyButton setHidden:NO];
  [openButton setHidden:!IsPage(outcome)];
  [cancelButton setTitle:@"Close"];
  [cancelButton setEnabled:YES];
  [panel makeKeyAndOrderFront:nil];
  [panel makeFirstResponder:cancelButton];
}

- (void)hide {
  [panel orderOut:nil];
}

// The panel's delegate

- (BOOL)windowShouldClose:(id)sender {
  [self cancel:sender];
  return NO;
}

@end

@implementation SavePanel (Building)

- (void)makePanel {
  panel = [[NSPanel alloc]
      initWithContentRect:NSMakeRect(0, 0, kProgressSize.width, kProgressSize.height)
                styleMask:NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask
                  backing:NSBackingStoreBuffered
                    defer:YES];
  [panel setReleasedWhenClosed:NO];
  [panel setHidesOnDeactivate:NO];
  [panel setFloatingPanel:NO];
  [panel setBecomesKeyOnlyIfNeeded:NO];
  [panel setDelegate:(id)self];
  [panel center];
}

- (void)fill {
  NSView* content = [panel contentView];
  const NSSize size = [content bounds].size;
  const CGFloat width = size.width - 2 * kWindowMargin;
  const CGFloat top = size.height - kWindowMargin - kLabelHeight;
  message = MakeLabel(NSMakeRect(kWindowMargin, top, width, kLabelHeight), kTitleSize);
  [[message cell] setLineBreakMode:NSLineBreakByTruncatingMiddle];
  [message setAutoresizingMask:NSViewWidthSizable | NSViewMinYMargin];

  const CGFloat foot = 2 * kWindowMargin + kControlHeight;
  bar = [[NSProgressIndicator alloc]
      initWithFrame:NSMakeRect(kWindowMargin, top - kControlGap - kBarHeight, width, kBarHeight)];
  [bar setStyle:NSProgressIndicatorBarStyle];
  [bar setIndeterminate:NO];
  [bar setMinValue:0];
  [bar setMaxValue:1];
  [bar setAutoresizingMask:NSViewWidthSizable | NSViewMinYMargin];

  resultScroll = MakeTextScroll(NSMakeRect(kWindowMargin, foot, width, top - kControlGap - foot));
  [resultScroll setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];

  NSRect place = NSMakeRect(kWindowMargin, kWindowMargin, kButtonWidth, kControlHeight);
  copyButton = MakeButton(place, @"Copy Text", self, @selector(copyResult:));
  place.origin.x += kButtonWidth + kControlGap;
  place.size.width = kOpenWidth;
  openButton = MakeButton(place, @"Open in Browser", self, @selector(openPage:));
  for (NSButton* button : {copyButton, openButton})
    [button setAutoresizingMask:NSViewMaxXMargin | NSViewMaxYMargin];
  place.origin.x = size.width - kWindowMargin - kButtonWidth;
  place.size.width = kButtonWidth;
  cancelButton = MakeButton(place, @"Cancel", self, @selector(cancel:));
  [cancelButton setKeyEquivalent:@"\e"];
  [cancelButton setAutoresizingMask:NSViewMinXMargin | NSViewMaxYMargin];

  NSView* const all[] = {message, bar, resultScroll, copyButton, openButton, cancelButton};
  for (NSView* view : all) [content addSubview:view];
  [TextIn(resultScroll) setNextKeyView:copyButton];
  [copyButton setNextKeyView:openButton];
  [openButton setNextKeyView:cancelButton];
  [cancelButton setNextKeyView:TextIn(resultScroll)];
}

// Keeps the middle of its title where it is.
- (void)resizeTo:(NSSize)size least:(NSSize)least {
  const NSRect leastFrame =
      [panel frameRectForContentRect:NSMakeRect(0, 0, least.width, least.height)];
  [panel setMinSize:leastFrame.size];
  NSRect frame = [panel frame];
  const NSSize outer =
      [panel frameRectForContentRect:NSMakeRect(0, 0, size.width, size.height)].size;
  frame.origin.x += (NSWidth(frame) - outer.width) / 2;
  frame.origin.y += NSHeight(frame) - outer.height;
  frame.size = outer;
  [panel setFrame:frame display:YES];
}

- (void)cancel:(id)sender {
  if (isProgress) {
    [target performSelector:cancelAction withObject:self];
  } else {
    [self hide];
  }
}

- (void)copyResult:(id)sender {
  CopyToClipboard(StringFromText(SaveHeadline(outcome) + "\n\n" +
                                 SaveDetails(outcome, static_cast<std::size_t>(-1))));
}

- (void)openPage:(id)sender {
  if (!OpenInBrowser(outcome.request.path)) {
    [message setStringValue:@"There is no xdg-open here to open it with."];
  }
}

@end
