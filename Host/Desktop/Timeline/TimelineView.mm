#import "Desktop/Timeline/TimelineView.h"

#include <algorithm>
#include <cmath>

#import "Desktop/Timeline/TimelinePainter.h"

using namespace velmora::timeline;

namespace {

constexpr CGFloat kHeaderWidth = 96;
constexpr CGFloat kRulerHeight = 26;
constexpr CGFloat kLaneHeight = 32;
constexpr CGFloat kRegionInset = 3;  // between a lane's edge and its regions
constexpr double kZoomStep = 1.5;
constexpr double kWheelZoomStep = 1.25;
constexpr CGFloat kWheelPixels = 48;  // scrolled by one notch of the wheel
constexpr double kReach = 4;          // pixels around a narrow region that belong to it
constexpr double kLeastWave = 6;      // pixels; narrower regions show no waveform
constexpr auto kAskAgain = std::chrono::seconds(1);  // files may change while they are on view
constexpr std::size_t kNoRegion = LaneSpan::kMerged;

}  // namespace

@interface TimelineView (Private)
- (void)rangeChanged;
- (void)clampTop;
- (std::size_t)regionAt:(NSPoint)point;
- (BOOL)handleKey:(unichar)key;
- (void)askForWaveforms;
- (void)waveformsArrived:(id)sender;
- (WaveColumns)waveColumnsOf:(const LaneSpan&)span;
@end

@implementation TimelineView

+ (std::size_t)noRegion {
  return kNoRegion;
}

- (id)initWithFrame:(NSRect)frame owner:(id<TimelineViewOwner>)anOwner {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  owner = anOwner;
  hovered = selected = kNoRegion;
  fitsAll = YES;
  // The run loop of the main thread takes the notice whenever it is free.
  peakDesk = std::make_unique<velmora::peaks::PeakDesk>([self] {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    [self performSelectorOnMainThread:@selector(waveformsArrived:) withObject:nil waitUntilDone:NO];
    [pool release];
  });
  return self;
}

- (void)dealloc {
  [self close];
  [super dealloc];
}

- (void)close {
  peakDesk->Close();
}

- (BOOL)isReadingWaveforms {
  return peakDesk->IsReading();
}

- (BOOL)isFlipped {
  return YES;
}

- (BOOL)isOpaque {
  return YES;
}

- (BOOL)acceptsFirstResponder {
  return YES;
}

- (TimelineModel&)model {
  return model;
}

- (const velmora::host::SessionClock&)clock {
  return clock;
}

- (void)setClock:(const velmora::host::SessionClock&)aClock {
  clock = aClock;
  [self setNeedsDisplay:YES];
}

- (void)modelChanged {
  if (model.Regions().empty()) {
    hovered = selected = kNoRegion;
    topOffset = 0;
    fitsAll = YES;
  }
  if (fitsAll) {
    [self fit:nil];
  } else {
    [self rangeChanged];
  }
  [owner timelineDidPoint:self];
}

- (std::size_t)pointedRegion {
  return hovered != kNoRegion ? hovered : selected;
}

- (void)zoomIn:(id)sender {
  fitsAll = NO;
  scale.ZoomAround(NSWidth([self lanesRect]) / 2, kZoomStep);
  [self rangeChanged];
}

- (void)zoomOut:(id)sender {
  fitsAll = NO;
  scale.ZoomAround(NSWidth([self lanesRect]) / 2, 1 / kZoomStep);
  [self rangeChanged];
}

- (void)fit:(id)sender {
  fitsAll = YES;
  if (!model.Regions().empty()) {
    scale.Fit(model.First(), model.End(), NSWidth([self lanesRect]));
  }
  [self rangeChanged];
}

- (void)scrollPixels:(CGFloat)horizontal lanes:(CGFloat)vertical {
  if (horizontal != 0) {
    fitsAll = NO;
    scale.ScrollBy(horizontal);
  }
  topOffset += vertical;
  [self rangeChanged];
}

- (ScrollState)horizontalScroll {
  return ScrollStateOf(scale, NSWidth([self lanesRect]), model.First(), model.End());
}

- (ScrollState)verticalScroll {
  const CGFloat all = static_cast<CGFloat>(model.LaneCount()) * kLaneHeight;
  const CGFloat visible = NSHeight([self lanesRect]);
  if (all <= visible || all <= 0) return ScrollState();
  ScrollState state;
  state.value = topOffset / (all - visible);
  state.proportion = visible / all;
  return state;
}

- (void)setHorizontalValue:(double)value {
  fitsAll = NO;
  scale.MoveTo(
      OriginForScroll(scale, NSWidth([self lanesRect]), model.First(), model.End(), value));
  [self rangeChanged];
}

- (void)setVerticalValue:(double)value {
  const CGFloat all = static_cast<CGFloat>(model.LaneCount()) * kLaneHeight;
  topOffset = value * std::max<CGFloat>(0, all - NSHeight([self lanesRect]));
  [self rangeChanged];
}

- (void)setFrameSize:(NSSize)size {
  [super setFrameSize:size];
  if (fitsAll) {
    [self fit:nil];
  } else {
    [self rangeChanged];
  }
}

- (void)drawRect:(NSRect)rect {
  [self askForWaveforms];
  [TimelinePainter drawTimeline:self inRect:rect];
}

// Mouse

- (void)mouseMoved:(NSEvent*)event {
  const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
  const std::size_t region = [self regionAt:point];
  if (region == hovered) return;
  hovered = region;
  [self setNeedsDisplay:YES];
  [owner timelineDidPoint:self];
}

- (void)mouseDown:(NSEvent*)event {
  [[self window] makeFirstResponder:self];
  dragStart = [self convertPoint:[event locationInWindow] fromView:nil];
  hovered = selected = [self regionAt:dragStart];
  [self setNeedsDisplay:YES];
  [owner timelineDidPoint:self];
}

- (void)mouseDragged:(NSEvent*)event {
  const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
  [self scrollPixels:dragStart.x - point.x lanes:dragStart.y - point.y];
  dragStart = point;
}

- (void)scrollWheel:(NSEvent*)event {
  const CGFloat notches = [event deltaY];
  const NSUInteger modifiers = [event modifierFlags];
  if (modifiers & (NSControlKeyMask | NSCommandKeyMask)) {
    const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
    fitsAll = NO;
    scale.ZoomAround(point.x - NSMinX([self lanesRect]), std::pow(kWheelZoomStep, notches));
    [self rangeChanged];
  } else if (modifiers & NSShiftKeyMask) {
    [self scrollPixels:-notches * kWheelPixels lanes:0];
  } else {
    [self scrollPixels:-[event deltaX] * kWheelPixels lanes:-notches * kLaneHeight];
  }
}

// Keys

- (void)keyDown:(NSEvent*)event {
  NSString* keys = [event charactersIgnoringModifiers];
  if ([keys length] == 0 || ![self handleKey:[keys characterAtIndex:0]]) [super keyDown:event];
}

@end

@implementation TimelineView (Private)

- (void)rangeChanged {
  askedAt.reset();
  [self clampTop];
  [self setNeedsDisplay:YES];
  [owner timelineDidScroll:self];
}

- (void)clampTop {
  const CGFloat all = static_cast<CGFloat>(model.LaneCount()) * kLaneHeight;
  const CGFloat most = std::max<CGFloat>(0, all - NSHeight([self lanesRect]));
  topOffset = std::clamp<CGFloat>(topOffset, 0, most);
}

- (std::size_t)regionAt:(NSPoint)point {
  const NSRect lanes = [self lanesRect];
  if (!NSPointInRect(point, lanes)) return kNoRegion;
  const CGFloat row = std::floor((point.y - NSMinY(lanes) + topOffset) / kLaneHeight);
  if (row < 0 || row >= static_cast<CGFloat>(model.LaneCount())) return kNoRegion;
  const auto lane = static_cast<std::size_t>(row);
  return model.HitTest(lane, scale, point.x - NSMinX(lanes), kReach).value_or(kNoRegion);
}

// Tells the desk what is on view, when that has changed and now and then.
- (void)askForWaveforms {
  const auto now = std::chrono::steady_clock::now();
  if (askedAt && now - *askedAt < kAskAgain) return;
  askedAt = now;
  std::vector<velmora::peaks::WaveformNeed> needs;
  const NSRange visible = [self visibleLanes];
  for (NSUInteger lane = visible.location; lane < NSMaxRange(visible); ++lane) {
    for (const LaneSpan& span : model.Spans(lane, scale, NSWidth([self lanesRect]))) {
      const WaveColumns columns = [self waveColumnsOf:span];
      if (columns.count == 0) continue;
      needs.push_back(
          {model.Regions()[span.region].path, columns.grid, columns.first, columns.count});
    }
  }
  peakDesk->Want(needs);
}

// Draws those regions anew whose files have come, changed or gone.
- (void)waveformsArrived:(id)sender {
  const std::set<std::string> arrived = peakDesk->TakeArrived();
  askedAt.reset();  // a file may turn out to be so long that other parts of it are needed
  const NSRange visible = [self visibleLanes];
  for (NSUInteger lane = visible.location; lane < NSMaxRange(visible); ++lane) {
    for (const LaneSpan& span : model.Spans(lane, scale, NSWidth([self lanesRect]))) {
      if ([self waveColumnsOf:span].count == 0) continue;
      if (!arrived.contains(model.Regions()[span.region].path)) continue;
      [self setNeedsDisplayInRect:NSIntersectionRect([self rectOfSpan:span inLane:lane],
                                                     [self lanesRect])];
    }
  }
}

// None for a region that is too narrow, or several in one.
- (WaveColumns)waveColumnsOf:(const LaneSpan&)span {
  if (span.region == LaneSpan::kMerged || span.right - span.left < kLeastWave) return {};
  return WaveColumnsOf(model.Regions()[span.region], scale, span.left, span.right,
                       NSWidth([self lanesRect]));
}

- (BOOL)handleKey:(unichar)key {
  const CGFloat page = NSWidth([self lanesRect]) * 0.9;
  switch (key) {
    case '+':
    case '=':
      [self zoomIn:nil];
      return YES;
    case '-':
      [self zoomOut:nil];
      return YES;
    case '0':
    case 'f':
      [self fit:nil];
      return YES;
    case NSLeftArrowFunctionKey:
      [self scrollPixels:-kWheelPixels lanes:0];
      return YES;
    case NSRightArrowFunctionKey:
      [self scrollPixels:kWheelPixels lanes:0];
      return YES;
    case NSUpArrowFunctionKey:
      [self scrollPixels:0 lanes:-kLaneHeight];
      return YES;
    case NSDownArrowFunctionKey:
      [self scrollPixels:0 lanes:kLaneHeight];
      return YES;
    case NSPageUpFunctionKey:
      [self scrollPixels:-page lanes:0];
      return YES;
    case NSPageDownFunctionKey:
      [self scrollPixels:page lanes:0];
      return YES;
    case NSHomeFunctionKey:
      [self setHorizontalValue:0];
      return YES;
    case NSEndFunctionKey:
      [self setHorizontalValue:1];
      return YES;
    default:
      return NO;
  }
}

@end

@implementation TimelineView (Geometry)

- (NSRect)lanesRect {
  const NSRect bounds = [self bounds];
  return NSMakeRect(kHeaderWidth, kRulerHeight,
                    std::max<CGFloat>(0, NSWidth(bounds) - kHeaderWidth),
                    std::max<CGFloat>(0, NSHeight(bounds) - kRulerHeight));
}

- (NSRect)rulerRect {
  return NSMakeRect(kHeaderWidth, 0, NSWidth([self lanesRect]), kRulerHeight);
}

- (NSRect)rectOfLane:(std::size_t)lane {
  const NSRect lanes = [self lanesRect];
  return NSMakeRect(NSMinX(lanes),
                    NSMinY(lanes) + static_cast<CGFloat>(lane) * kLaneHeight - topOffset,
                    NSWidth(lanes), kLaneHeight);
}

- (NSRange)visibleLanes {
  const auto first = static_cast<NSUInteger>(topOffset / kLaneHeight);
  const auto last =
      static_cast<NSUInteger>(std::ceil((topOffset + NSHeight([self lanesRect])) / kLaneHeight));
  const auto count = static_cast<NSUInteger>(model.LaneCount());
  if (first >= count) return NSMakeRange(0, 0);
  return NSMakeRange(first, std::min(last, count) - first);
}

- (const TimeScale&)scale {
  return scale;
}

- (std::size_t)selectedRegion {
  return selected;
}

- (std::size_t)hoveredRegion {
  return hovered;
}

- (NSRect)rectOfSpan:(const LaneSpan&)span inLane:(std::size_t)lane {
  const NSRect row = [self rectOfLane:lane];
  // Whole pixels keep edges crisp; far outside the view they would only lose precision.
  const CGFloat left = std::floor(std::max(span.left, -8.0));
  const CGFloat right = std::max(left + 1, std::round(std::min(span.right, NSWidth(row) + 8.0)));
  return NSMakeRect(NSMinX(row) + left, NSMinY(row) + kRegionInset, right - left,
                    NSHeight(row) - 2 * kRegionInset);
}

- (std::vector<WaveBar>)waveOfSpan:(const LaneSpan&)span {
  const WaveColumns columns = [self waveColumnsOf:span];
  if (columns.count == 0) return {};
  const velmora::host::SessionRegion& region = model.Regions()[span.region];
  std::vector<velmora::peaks::Peak> peaks(static_cast<std::size_t>(columns.count));
  peakDesk->AddColumns(region.path, columns.grid, columns.first, peaks);
  return WaveBarsOf(region, columns, peaks);
}

@end
