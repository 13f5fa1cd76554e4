#import "Desktop/Shell/StatusLine.h"

#import "Desktop/Theme/DesktopTheme.h"
#import "Desktop/Shell/ShellText.h"

using namespace velmora::desktop;

namespace {

NSColor* ColorOf(Severity severity) {
  switch (severity) {
    case Severity::Problem:
      return [DesktopPalette problem];
    case Severity::Notice:
      return [DesktopPalette notice];
    case Severity::Quiet:
      break;
  }
  return [DesktopPalette quietText];
}

}  // namespace

@interface StatusLine (Private)
- (void)showList;
@end

@implementation StatusLine

- (id)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  field = MakeLabel(NSMakeRect(12, 5, NSWidth(frame) - 24, 16), 11);
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
  [[DesktopPalette raised] set];
  NSRectFill(rect);
  [[DesktopPalette line] set];
  NSRectFill(NSMakeRect(0, NSHeight([self bounds]) - 1, NSWidth([self bounds]), 1));
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
        dictionaryWithObjectsAndKeys:ColorOf(item.severity), NSForegroundColorAttributeName,
                                     [NSFont systemFontOfSize:11], NSFontAttributeName, nil];
    NSString* gap = [line length] > 0 ? @"     " : @"";
    NSString* text = [gap stringByAppendingString:StringOf(item.text)];
    [line appendAttributedString:[[[NSAttributedString alloc] initWithString:text
                                                                  attributes:attributes]
                                     autorelease]];
    [tip appendFormat:@"%@%@", [tip length] > 0 ? @"\n" : @"", StringOf(item.text)];
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
  [text setFont:[NSFont systemFontOfSize:11]];
  [text setString:list];
  [scroll setDocumentView:text];
  [panel setContentView:scroll];
  [panel center];
  [panel makeKeyAndOrderFront:nil];
}

@end
