#pragma once

#import <AppKit/AppKit.h>

// What AppKit declares and GNUstep does not, so that the view reads as plain AppKit. The target's
// build includes it before each of the view's files on GNUstep, and nowhere else.

@interface NSView (VelmoraRepairs)
- (NSString*)identifier;
- (void)addTrackingArea:(NSTrackingArea*)area;
@end
