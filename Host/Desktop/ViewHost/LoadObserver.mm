#import "Desktop/ViewHost/LoadObserver.h"

#import <objc/runtime.h>

NSString* const DesktopDidLoadFileNotification = @"DesktopDidLoadFileNotification";

namespace {

// The run time passes methods around as functions with an answer; LoadFile has none to look at.
IMP originalLoad = nullptr;

id LoadAndTell(id controller, SEL selector, ...) {
  originalLoad(controller, selector);
  [[NSNotificationCenter defaultCenter] postNotificationName:DesktopDidLoadFileNotification
                                                      object:controller];
  return nil;
}

}  // namespace

@implementation LoadObserver

+ (void)watchClass:(Class)controllerClass {
  if (originalLoad != nullptr) return;
  const Method method = class_getInstanceMethod(controllerClass, @selector(LoadFile));
  if (method == nullptr) return;
  originalLoad = method_setImplementation(method, LoadAndTell);
}

@end
