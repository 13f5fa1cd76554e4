// An empty window and nothing else: what the toolkit itself takes from a program's start until a
// window stands. No window of this toolkit can be up sooner.

#import <AppKit/AppKit.h>
#include <unistd.h>

#include "View/StartClock.h"

@interface BareWindow : NSObject {
  NSWindow* window;
}
- (void)openAndTell;
- (void)tell:(id)nothing;
@end

@implementation BareWindow

- (void)openAndTell {
  window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 30, 1120, 928)
                                       styleMask:NSTitledWindowMask | NSClosableWindowMask
                                         backing:NSBackingStoreBuffered
                                           defer:NO];
  [window makeKeyAndOrderFront:nil];
  [self performSelector:@selector(tell:) withObject:nil afterDelay:0];
}

- (void)tell:(id)nothing {
  [window displayIfNeeded];
  [window mouseLocationOutsideOfEventStream];  // which the display answers after its drawing
  velmora::view::TellStart();
  _exit(0);
}

@end

int main() {
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  // As the shell does it: the toolkit's own start is a third shorter without.
  const Class rare = NSClassFromString(@"GSImageMagickImageRep");
  if (rare != Nil) [NSImageRep unregisterImageRepClass:rare];
  [NSApplication sharedApplication];
  [[BareWindow new] openAndTell];
  [NSApp run];
  [pool release];
  return 1;
}
