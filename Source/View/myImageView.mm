#import "View/myImageView.h"

@implementation myImageView

- (void)awakeFromNib {
  [self addCursorRect:[self bounds] cursor:[NSCursor arrowCursor]];
  const NSTrackingAreaOptions options = NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved |
                                        NSTrackingActiveAlways | NSTrackingEnabledDuringMouseDrag;
  NSTrackingArea* area = [[NSTrackingArea alloc] initWithRect:[self bounds]
                                                      options:options
                                                        owner:self
                                                     userInfo:nil];
  [self addTrackingArea:area];
  [area release];
}

- (void)resetCursorRects {
  [self addCursorRect:[self bounds] cursor:[NSCursor arrowCursor]];
}

- (void)mouseEntered:(NSEvent*)event {
  [[NSCursor arrowCursor] set];
}

@end
