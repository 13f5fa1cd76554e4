#pragma once

#import "Desktop/Timeline/TimelineView.h"

// Draws a timeline: only what is visible, and what is narrower than a pixel only once.
@interface TimelinePainter : NSObject
+ (void)drawTimeline:(TimelineView*)timeline inRect:(NSRect)rect;
@end
