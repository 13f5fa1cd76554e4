#import "Desktop/Shell/StatusLine.h"

#include "Desktop/Theme/Drawing.h"
#include "Desktop/Theme/Metrics.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;

namespace {

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
- (void)showList;
@end

@implementation StatusLine

- (id)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  field = MakeLabel(NSMakeRect(kWindowMargin, 5, NSWidth(frame) - 2 * kWindowMargin, kLabelHeight),
                    kTextSize);
  [field setAutoresizingMask:NSViewWidthSizable];
  [self addSubview:field];
  list = @"";
  return self;
}

- (void)dealloc {
  [field release];
  [list release];
  [super dealloc];
}

- (void)drawRect:(NSRect)rect {
  Fill(rect, Tone::Raised);
  DrawTopLine(self);
}

// The label must not swallow the click that asks for the list.
- (NSView*)hitTest:(NSPoint)point {
  return NSPointInRect(point, [self frame]) ? self : nil;
}

- (void)showItems:(const std::vector<StatusItem>&)items list:(NSString*)all {
  NSMutableAttributedString* line = [[NSMutableAttributedString new] autorelease];
  NSMutableString* tip = [NSMutableString string];
  for (const StatusItem& item : items) {
    NSDictionary* attributes = [NSDictionary
        dictionaryWithObjectsAndKeys:ColorOf(ToneOf(item.severity)), NSForegroundColorAttributeName,
                                     [NSFont systemFontOfSize:kTextSize], NSFontAttributeName, nil];
    NSString* gap = [line length] > 0 ? @"     " : @"";
    NSString* text = [gap stringByAppendingString:StringFromText(item.text)];
    [line appendAttributedString:[[[NSAttributedString alloc] initWithString:text
                                                                  attributes:attributes]
                                     autorelease]];
    [tip appendFormat:@"%@%@", [tip length] > 0 ? @"\n" : @"", StringFromText(item.text)];
  }
  [field setAttributedStringValue:line];
  [self setToolTip:tip];
  [list release];
  list = [all copy];
}

- (void)mouseDown:(NSEvent*)event {
  if ([list length] > 0) [self showList];
}

@end

@implementation StatusLine (Private)

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
