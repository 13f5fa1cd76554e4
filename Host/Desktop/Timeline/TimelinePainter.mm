#import "Desktop/Timeline/TimelinePainter.h"

#include <algorithm>
#include <cmath>

#import "Desktop/Theme/DesktopTheme.h"
#include "Timeline/Ruler.h"
#import "Desktop/Shell/ShellText.h"

using namespace velmora::timeline;

namespace {

constexpr double kLabelSpacing = 110;  // pixels between the ruler's labels
constexpr CGFloat kNameWidth = 28;     // narrower regions show no name
constexpr CGFloat kRegionInset = 3;    // between a lane's edge and its regions

// A hue for each track, so that neighbours differ.
constexpr CGFloat kHues[] = {0.60, 0.46, 0.77, 0.09, 0.53, 0.93, 0.33, 0.69};

struct TrackColors {
  NSColor* fill;
  NSColor* edge;
  NSColor* ramp;
  NSColor* ink;
};

TrackColors ColorsOf(std::int64_t track) {
  constexpr auto kCount = static_cast<std::int64_t>(sizeof kHues / sizeof *kHues);
  const CGFloat hue = kHues[((track % kCount) + kCount) % kCount];
  TrackColors colors;
  colors.fill = [NSColor colorWithCalibratedHue:hue saturation:0.22 brightness:0.97 alpha:1];
  colors.edge = [NSColor colorWithCalibratedHue:hue saturation:0.62 brightness:0.74 alpha:1];
  colors.ramp = [NSColor colorWithCalibratedHue:hue saturation:0.42 brightness:0.88 alpha:1];
  colors.ink = [NSColor colorWithCalibratedHue:hue saturation:0.75 brightness:0.36 alpha:1];
  return colors;
}

NSDictionary* TextAttributes(NSColor* color, CGFloat size) {
  NSMutableParagraphStyle* style = [[NSMutableParagraphStyle new] autorelease];
  [style setLineBreakMode:NSLineBreakByTruncatingTail];
  return [NSDictionary dictionaryWithObjectsAndKeys:[NSFont systemFontOfSize:size],
                                                    NSFontAttributeName, color,
                                                    NSForegroundColorAttributeName, style,
                                                    NSParagraphStyleAttributeName, nil];
}

// The triangle under a gain that runs over the whole width, between `left` and `right` at the ends.
NSBezierPath* Ramp(NSRect box, CGFloat left, CGFloat right) {
  NSBezierPath* path = [NSBezierPath bezierPath];
  const CGFloat bottom = NSMaxY(box);
  [path moveToPoint:NSMakePoint(NSMinX(box), bottom)];
  [path lineToPoint:NSMakePoint(NSMinX(box), bottom - left * NSHeight(box))];
  [path lineToPoint:NSMakePoint(NSMaxX(box), bottom - right * NSHeight(box))];
  [path lineToPoint:NSMakePoint(NSMaxX(box), bottom)];
  [path closePath];
  return path;
}

void DrawFade(NSRect box, PieceKind kind, const TrackColors& colors) {
  [[DesktopPalette surface] set];
  NSRectFill(box);
  if (kind == PieceKind::Crossfade) {
    [[colors.ramp colorWithAlphaComponent:0.6] set];
    [Ramp(box, 1, 0) fill];
    [Ramp(box, 0, 1) fill];
    [colors.edge set];
    [NSBezierPath strokeLineFromPoint:NSMakePoint(NSMinX(box), NSMinY(box))
                              toPoint:NSMakePoint(NSMaxX(box), NSMaxY(box))];
    [NSBezierPath strokeLineFromPoint:NSMakePoint(NSMinX(box), NSMaxY(box))
                              toPoint:NSMakePoint(NSMaxX(box), NSMinY(box))];
    return;
  }
  [colors.ramp set];
  [(kind == PieceKind::FadeIn ? Ramp(box, 0, 1) : Ramp(box, 1, 0)) fill];
}

}  // namespace

@interface TimelinePainter (Parts)
+ (void)drawRuler:(TimelineView*)timeline;
+ (void)drawGrid:(const std::vector<RulerTick>&)ticks of:(TimelineView*)timeline;
+ (void)drawHeaders:(TimelineView*)timeline;
+ (void)drawLane:(std::size_t)lane of:(TimelineView*)timeline;
+ (void)drawSpan:(const LaneSpan&)span
              in:(NSRect)box
              of:(TimelineView*)timeline
          colors:(TrackColors)colors;
+ (void)drawInvitation:(TimelineView*)timeline;
@end

@implementation TimelinePainter

+ (void)drawTimeline:(TimelineView*)timeline inRect:(NSRect)rect {
  [[DesktopPalette surface] set];
  NSRectFill(rect);
  const NSRect lanes = [timeline lanesRect];
  const std::vector<RulerTick> ticks =
      RulerTicks([timeline scale], [timeline clock], NSWidth(lanes), kLabelSpacing);

  [NSGraphicsContext saveGraphicsState];
  NSRectClip(lanes);
  [self drawGrid:ticks of:timeline];
  const NSRange visible = [timeline visibleLanes];
  for (NSUInteger lane = visible.location; lane < NSMaxRange(visible); ++lane) {
    [self drawLane:lane of:timeline];
  }
  [NSGraphicsContext restoreGraphicsState];

  if ([timeline model].Regions().empty()) [self drawInvitation:timeline];
  [self drawHeaders:timeline];
  [self drawRuler:timeline];
}

@end

@implementation TimelinePainter (Parts)

+ (void)drawRuler:(TimelineView*)timeline {
  const NSRect ruler = [timeline rulerRect];
  [[DesktopPalette raised] set];
  NSRectFill(NSMakeRect(0, 0, NSMaxX(ruler), NSHeight(ruler)));
  [NSGraphicsContext saveGraphicsState];
  NSRectClip(ruler);
  NSDictionary* attributes = TextAttributes([DesktopPalette quietText], 9);
  const std::vector<RulerTick> ticks =
      RulerTicks([timeline scale], [timeline clock], NSWidth(ruler), kLabelSpacing);
  for (const RulerTick& tick : ticks) {
    const CGFloat x = NSMinX(ruler) + std::floor(tick.x);
    const CGFloat height = tick.label.empty() ? 5 : 10;
    [[DesktopPalette line] set];
    NSRectFill(NSMakeRect(x, NSMaxY(ruler) - height, 1, height));
    if (!tick.label.empty()) {
      [StringOf(tick.label) drawAtPoint:NSMakePoint(x + 4, NSMinY(ruler) + 5)
                         withAttributes:attributes];
    }
  }
  [NSGraphicsContext restoreGraphicsState];
  [[DesktopPalette line] set];
  NSRectFill(NSMakeRect(0, NSMaxY(ruler) - 1, NSMaxX(ruler), 1));
}

+ (void)drawGrid:(const std::vector<RulerTick>&)ticks of:(TimelineView*)timeline {
  const NSRect lanes = [timeline lanesRect];
  [[DesktopPalette faintLine] set];
  for (const RulerTick& tick : ticks) {
    if (tick.label.empty()) continue;
    NSRectFill(NSMakeRect(NSMinX(lanes) + std::floor(tick.x), NSMinY(lanes), 1, NSHeight(lanes)));
  }
}

+ (void)drawHeaders:(TimelineView*)timeline {
  const NSRect lanes = [timeline lanesRect];
  const NSRect column = NSMakeRect(0, NSMinY(lanes), NSMinX(lanes), NSHeight(lanes));
  [NSGraphicsContext saveGraphicsState];
  NSRectClip(column);
  [[DesktopPalette window] set];
  NSRectFill(column);
  NSDictionary* attributes = TextAttributes([DesktopPalette text], 11);
  const NSRange visible = [timeline visibleLanes];
  for (NSUInteger lane = visible.location; lane < NSMaxRange(visible); ++lane) {
    const NSRect row = [timeline rectOfLane:lane];
    const std::int64_t track = [timeline model].LaneAt(lane).track;
    [ColorsOf(track).edge set];
    NSRectFill(NSMakeRect(0, NSMinY(row) + kRegionInset, 4, NSHeight(row) - 2 * kRegionInset));
    NSString* name = [NSString stringWithFormat:@"Track %lld", static_cast<long long>(track + 1)];
    [name drawAtPoint:NSMakePoint(14, NSMinY(row) + 8) withAttributes:attributes];
    [[DesktopPalette faintLine] set];
    NSRectFill(NSMakeRect(0, NSMaxY(row) - 1, NSWidth(column), 1));
  }
  [NSGraphicsContext restoreGraphicsState];
  [[DesktopPalette line] set];
  NSRectFill(NSMakeRect(NSMaxX(column) - 1, 0, 1, NSMaxY(column)));
}

+ (void)drawLane:(std::size_t)lane of:(TimelineView*)timeline {
  const NSRect row = [timeline rectOfLane:lane];
  [[DesktopPalette faintLine] set];
  NSRectFill(NSMakeRect(NSMinX(row), NSMaxY(row) - 1, NSWidth(row), 1));

  TimelineModel& model = [timeline model];
  const TrackColors colors = ColorsOf(model.LaneAt(lane).track);
  for (const LaneSpan& span : model.Spans(lane, [timeline scale], NSWidth(row))) {
    // Whole pixels keep edges crisp; far outside the view they would only lose precision.
    const CGFloat left = std::floor(std::max(span.left, -8.0));
    const CGFloat right = std::max(left + 1, std::round(std::min(span.right, NSWidth(row) + 8.0)));
    const NSRect box = NSMakeRect(NSMinX(row) + left, NSMinY(row) + kRegionInset, right - left,
                                  NSHeight(row) - 2 * kRegionInset);
    [self drawSpan:span in:box of:timeline colors:colors];
  }
}

+ (void)drawSpan:(const LaneSpan&)span
              in:(NSRect)box
              of:(TimelineView*)timeline
          colors:(TrackColors)colors {
  if (span.region == LaneSpan::kMerged || NSWidth(box) < 3) {
    [colors.edge set];
    NSRectFill(box);
    return;
  }
  const velmora::host::SessionRegion& region = [timeline model].Regions()[span.region];
  const PieceKind kind = KindOfRegion(region);
  if (kind == PieceKind::Region) {
    [colors.fill set];
    NSRectFill(box);
  } else {
    DrawFade(box, kind, colors);
  }
  const BOOL isSelected = span.region == [timeline selectedRegion];
  const BOOL isHovered = span.region == [timeline hoveredRegion];
  [(isSelected ? [DesktopPalette accent] : colors.edge) set];
  NSFrameRectWithWidth(box, isSelected || isHovered ? 2 : 1);

  if (kind != PieceKind::Region || NSWidth(box) < kNameWidth) return;
  NSRect text = NSInsetRect(box, 5, 3);
  // A name stays readable while its region's beginning is scrolled out.
  const CGFloat edge = NSMinX([timeline lanesRect]) + 4;
  if (NSMinX(text) < edge) {
    text.size.width -= edge - NSMinX(text);
    text.origin.x = edge;
  }
  if (NSWidth(text) < kNameWidth - 10) return;
  [StringOf(region.name) drawInRect:text withAttributes:TextAttributes(colors.ink, 10)];
}

+ (void)drawInvitation:(TimelineView*)timeline {
  NSString* text = @"Regions appear here as the spot places them.";
  NSDictionary* attributes = TextAttributes([DesktopPalette quietText], 12);
  const NSSize size = [text sizeWithAttributes:attributes];
  const NSRect lanes = [timeline lanesRect];
  [text drawAtPoint:NSMakePoint(NSMidX(lanes) - size.width / 2, NSMidY(lanes) - size.height / 2)
      withAttributes:attributes];
}

@end
