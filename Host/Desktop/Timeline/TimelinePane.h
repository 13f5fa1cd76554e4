#pragma once

#import <AppKit/AppKit.h>

#include <vector>

#import "Desktop/Timeline/TimelineView.h"
#include "Session/Session.h"

// The timeline with what belongs to it: above, title, facts of the region under the pointer, and
// zoom buttons; beside it the scrollers.
@interface TimelinePane : NSView <TimelineViewOwner> {
  TimelineView* timeline;
  NSScroller* horizontalScroller;
  NSScroller* verticalScroller;
  NSTextField* titleField;
  NSTextField* factsField;
}

- (TimelineView*)timeline;
- (void)setClock:(const velmora::host::SessionClock&)clock;
- (void)addRegions:(const std::vector<velmora::host::SessionRegion>&)regions;
- (void)clear;

// As the timeline has them.
- (BOOL)isReadingWaveforms;
- (void)close;

@end
