#import "View/ThreadStart.h"

BOOL VelmoraDetachThread(SEL selector, id target, id argument) {
  @try {
    [NSThread detachNewThreadSelector:selector toTarget:target withObject:argument];
    return YES;
  } @catch (NSException* exception) {
    NSLog(@"The spot has no thread: %@", [exception reason]);
    return NO;
  }
}
