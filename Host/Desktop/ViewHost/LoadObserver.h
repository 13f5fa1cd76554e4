#pragma once

#import <Foundation/Foundation.h>

// Posted on the main thread, with the view controller as its object, when it has finished a load,
// good or failed.
extern NSString* const DesktopDidLoadFileNotification;

// Tells when a view controller loads a file. The view answers a load only in its own fields, and
// hosts of a plug-in need no more; this shell shows facts of each load beside it.
@interface LoadObserver : NSObject
// Watches all controllers of a class, from now on.
+ (void)watchClass:(Class)controllerClass;
@end
