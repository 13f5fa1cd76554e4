#pragma once

#import <AppKit/AppKit.h>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "Peaks/PeakDesk.h"
#include "Session/SessionClock.h"
#include "Timeline/RegionWave.h"
#include "Timeline/TimeScale.h"
#include "Timeline/TimelineModel.h"

@class TimelineView;

@protocol TimelineViewOwner
// The visible range has changed: by the view's own keys, wheel or buttons, or by its size.
- (void)timelineDidScroll:(TimelineView*)timeline;
// The pointer has come to another region or left the last, or a region was clicked.
- (void)timelineDidPoint:(TimelineView*)timeline;
@end

// Tracks with their regions under a ruler. Draws and answers mouse and keys; scrollers and texts
// around it belong to its owner.
//
//    +--------+---------------------------+
//    |        | ruler                     |
//    +--------+---------------------------+
//    | Track 1| regions                   |
//    | Track 2|                           |
//
@interface TimelineView : NSView {
  id<TimelineViewOwner> owner;
  velmora::timeline::TimelineModel model;
  velmora::timeline::TimeScale scale;
  velmora::host::SessionClock clock;
  CGFloat topOffset;     // pixels of the lanes that are scrolled out at the top
  std::size_t hovered;   // index of a region, kNoRegion for none
  std::size_t selected;  // the same, of the last click
  BOOL fitsAll;          // keep all regions in view as they land
  NSPoint dragStart;
  std::unique_ptr<velmora::peaks::PeakDesk> peakDesk;
  std::optional<std::chrono::steady_clock::time_point> askedAt;  // none when the view has changed
}

+ (std::size_t)noRegion;

- (id)initWithFrame:(NSRect)frame owner:(id<TimelineViewOwner>)anOwner;

- (velmora::timeline::TimelineModel&)model;
- (const velmora::host::SessionClock&)clock;
- (void)setClock:(const velmora::host::SessionClock&)aClock;

// YES while waveforms that are on view are being read.
- (BOOL)isReadingWaveforms;
// Ends all reading, and waits for its end. No waveform comes after it.
- (void)close;

// To be called when regions were added to the model or it was cleared.
- (void)modelChanged;

// The region whose facts are wanted: the one under the pointer, else the selected one.
- (std::size_t)pointedRegion;

// Zoom and scroll.
- (void)zoomIn:(id)sender;
- (void)zoomOut:(id)sender;
- (void)fit:(id)sender;
- (void)scrollPixels:(CGFloat)horizontal lanes:(CGFloat)vertical;

// What the scrollers show and ask for; values from 0 to 1.
- (velmora::timeline::ScrollState)horizontalScroll;
- (velmora::timeline::ScrollState)verticalScroll;
- (void)setHorizontalValue:(double)value;
- (void)setVerticalValue:(double)value;

@end

// For the painter: geometry in the view's flipped coordinates.
@interface TimelineView (Geometry)
- (NSRect)lanesRect;
- (NSRect)rulerRect;
- (NSRect)rectOfLane:(std::size_t)lane;  // over the width of lanesRect
- (NSRange)visibleLanes;
- (const velmora::timeline::TimeScale&)scale;
- (std::size_t)selectedRegion;
- (std::size_t)hoveredRegion;
// Where a piece of a lane is drawn, in whole pixels.
- (NSRect)rectOfSpan:(const velmora::timeline::LaneSpan&)span inLane:(std::size_t)lane;
// The waveform of a span's region, as far as it has come; empty for regions too narrow for one. The
// columns count from the left edge of lanesRect.
- (std::vector<velmora::timeline::WaveBar>)waveOfSpan:(const velmora::timeline::LaneSpan&)span;
@end
