#import "Desktop/Shell/SignalWatch.h"

#import <AppKit/AppKit.h>
#include <signal.h>
#include <unistd.h>

#include <initializer_list>

namespace {

sigset_t WatchedSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, number);
  return signals;
}

}  // namespace

@interface SignalWatch (Thread)
+ (void)wait:(id)unused;
+ (void)terminate:(id)unused;
@end

@implementation SignalWatch

+ (void)start {
  const sigset_t signals = WatchedSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);  // for this thread and all that it starts
  [NSThread detachNewThreadSelector:@selector(wait:) toTarget:self withObject:nil];
}

@end

@implementation SignalWatch (Thread)

+ (void)wait:(id)unused {
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  const sigset_t signals = WatchedSignals();
  int number = 0;
  sigwait(&signals, &number);
  [self performSelectorOnMainThread:@selector(terminate:)
                         withObject:nil
                      waitUntilDone:NO
                              modes:[NSArray arrayWithObjects:NSDefaultRunLoopMode,
                                                              NSModalPanelRunLoopMode,
                                                              NSEventTrackingRunLoopMode, nil]];
  sigwait(&signals, &number);
  [pool release];
  _exit(128 + number);
}

+ (void)terminate:(id)unused {
  [NSApp terminate:self];
}

@end
