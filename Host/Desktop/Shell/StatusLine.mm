#import "Desktop/Shell/StatusLine.h"

#include "Desktop/Theme/Controls.h"
#include "Desktop/Theme/Drawing.h"
#include "Desktop/Theme/Metrics.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;

namespace {

constexpr CGFloat kButtonWidth = 112;

Tone ToneOf(Severity severity) {
  switch (severity) {
    case Severity::Problem:
      return Tone::Problem;
    case Severity::Notice:
      return Tone::Notice;
    case Severity::Quiet:
      break;
  }
  return Tone::QuietText;
}

}  // namespace

@interface StatusLine (Private)
- (NSButton*)addButton:(NSString*)title target:(id)target action:(SEL)action;
- (void)layOut;
- (void)fitText;
- (void)showList;
@end

@implementation StatusLine

- (id)initWithFrame:(NSRect)frame target:(id)target findings:(SEL)findings prepare:(SEL)prepare {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  field = MakeLabel(NSMakeRect(kWindowMargin, (NSHeight(frame) - kLabelHeight) / 2,
                               NSWidth(frame) - 2 * kWindowMargin, kLabelHeight),
                    kTextSize);
  [field setAutoresizingMask:NSViewWidthSizable];
  [self addSubview:field];
  findingsButton = [self addButton:@"Show Findings" target:target action:findings];
  prepareButton = [self addButton:@"Prepare\u2026" target:target action:prepare];
  list = @"";
  return self;
}

- (void)dealloc {
  [field release];
  [full release];
  [findingsButton release];
  [prepareButton release];
  [list release];
  [super dealloc];
}

- (void)drawRect:(NSRect)rect {
  Fill(rect, Tone::Raised);
  DrawTopLine(self);
}

// The label must not swallow the click that asks for the list.
- (NSView*)hitTest:(NSPoint)point {
  NSView* hit = [super hitTest:point];
  return hit == field ? self : hit;
}

- (void)showItems:(const std::vector<StatusItem>&)items list:(NSString*)all {
  NSMutableAttributedString* line = [[NSMutableAttributedString new] autorelease];
  NSMutableString* tip = [NSMutableString string];
  NSMutableParagraphStyle* oneLine = [[NSMutableParagraphStyle new] autorelease];
  [oneLine setLineBreakMode:NSLineBreakByTruncatingTail];
  for (const StatusItem& item : items) {
    NSDictionary* attributes = [NSDictionary
        dictionaryWithObjectsAndKeys:ColorOf(ToneOf(item.severity)), NSForegroundColorAttributeName,
                                     [NSFont systemFontOfSize:kTextSize], NSFontAttributeName,
                                     oneLine, NSParagraphStyleAttributeName, nil];
    NSString* gap = [line length] > 0 ? @"     " : @"";
    NSString* text = [gap stringByAppendingString:StringFromText(item.text)];
    [line appendAttributedString:[[[NSAttributedString alloc] initWithString:text
                                                                  attributes:attributes]
                                     autorelease]];
    [tip appendFormat:@"%@%@", [tip length] > 0 ? @"\n" : @"", StringFromText(item.text)];
  }
  [full release];
  full = [line copy];
  [self fitText];
  [self setToolTip:tip];
  [list release];
  list = [all copy];
}

- (void)offerFindings:(BOOL)hasFindings prepare:(BOOL)canPrepare {
  [findingsButton setHidden:!hasFindings];
  [prepareButton setHidden:!canPrepare];
  [self layOut];
}

- (void)resizeSubviewsWithOldSize:(NSSize)size {
  [super resizeSubviewsWithOldSize:size];
  [self layOut];
}

- (void)mouseDown:(NSEvent*)event {
  if ([list length] > 0) [self showList];
}

@end

@implementation StatusLine (Private)

// Hidden at first.
- (NSButton*)addButton:(NSString*)title target:(id)target action:(SEL)action {
  const NSRect frame =
      NSMakeRect(0, (NSHeight([self bounds]) - kControlHeight) / 2, kButtonWidth, kControlHeight);
  NSButton* button = MakeButton(frame, title, target, action);
  [button setHidden:YES];
  [button setAutoresizingMask:NSViewMinXMargin];
  [self addSubview:button];
  return button;
}

// The buttons that are there stand at the end, and the text has the rest.
- (void)layOut {
  CGFloat end = NSWidth([self bounds]) - kWindowMargin;
  for (NSButton* button : {prepareButton, findingsButton}) {
    if ([button isHidden]) continue;
    NSRect frame = [button frame];
    frame.origin.x = end - NSWidth(frame);
    [button setFrame:frame];
    end = NSMinX(frame) - kControlGap;
  }
  NSRect frame = [field frame];
  frame.size.width = end - NSMinX(frame);
  [field setFrame:frame];
  [self fitText];
  [self setNeedsDisplay:YES];
}

// The toolkit clips a text of several colours wherever the field ends. Here it ends in an ellipsis,
// and the tool tip has all of it.
- (void)fitText {
  constexpr CGFloat kInset = 6;  // what the field itself keeps free, at both sides
  const CGFloat room = NSWidth([field frame]) - kInset;
  if (full == nil || [full length] == 0 || [full size].width <= room) {
    [field setAttributedStringValue:full != nil ? full
                                                : [[[NSAttributedString alloc] init] autorelease]];
    return;
  }
  NSUInteger fits = 0;
  NSUInteger tooLong = [full length];
  NSAttributedString* shown = [[[NSAttributedString alloc] init] autorelease];
  while (tooLong - fits > 1) {
    const NSUInteger half = fits + (tooLong - fits) / 2;
    const NSRange begin = {
        0, NSMaxRange([[full string] rangeOfComposedCharacterSequenceAtIndex:half - 1])};
    NSMutableAttributedString* cut =
        [[[full attributedSubstringFromRange:begin] mutableCopy] autorelease];
    [cut replaceCharactersInRange:NSMakeRange([cut length], 0) withString:@"\u2026"];
    if ([cut size].width <= room) {
      fits = half;
      shown = cut;
    } else {
      tooLong = half;
    }
  }
  [field setAttributedStringValue:shown];
}

- (void)showList {
  const NSRect frame = NSMakeRect(0, 0, 420, 280);
  NSPanel* panel = [[NSPanel alloc]
      initWithContentRect:frame
                styleMask:NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask
                  backing:NSBackingStoreBuffered
                    defer:NO];
  [panel setTitle:@"Missing audio files"];
  [panel setReleasedWhenClosed:YES];
  NSScrollView* scroll = [[[NSScrollView alloc] initWithFrame:frame] autorelease];
  [scroll setHasVerticalScroller:YES];
  NSTextView* text = [[[NSTextView alloc] initWithFrame:frame] autorelease];
  [text setEditable:NO];
  [text setFont:[NSFont systemFontOfSize:kTextSize]];
  [text setString:list];
  [scroll setDocumentView:text];
  [panel setContentView:scroll];
  [panel center];
  [panel makeKeyAndOrderFront:nil];
}

@end
