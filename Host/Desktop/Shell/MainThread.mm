#import "Desktop/Shell/MainThread.h"

#import <AppKit/AppKit.h>

namespace velmora::desktop {
namespace {

NSArray* AllModes() {
  return [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode,
                                   NSEventTrackingRunLoopMode, nil];
}

}  // namespace

void SendToMain(id receiver, SEL selector) {
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  [receiver performSelectorOnMainThread:selector withObject:nil waitUntilDone:NO modes:AllModes()];
  [pool release];
}

void AddToAllModes(NSTimer* timer) {
  NSArray* modes = AllModes();
  for (NSUInteger i = 0; i < [modes count]; ++i)
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:[modes objectAtIndex:i]];
}

}  // namespace velmora::desktop
