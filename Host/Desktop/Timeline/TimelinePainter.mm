#import "Desktop/Timeline/TimelinePainter.h"

#include <algorithm>
#include <cmath>

#include "Desktop/Theme/Drawing.h"
#include "Desktop/Theme/Metrics.h"
#include "Timeline/Ruler.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;
using namespace velmora::timeline;

namespace {

constexpr double kLabelSpacing = 110;  // pixels between the ruler's labels
constexpr CGFloat kNameWidth = 28;     // narrower regions show no name
constexpr CGFloat kMarkInset = 3;      // above and below a track's colour
constexpr CGFloat kMarkWidth = 4;      // of a track's colour beside its name
constexpr CGFloat kMinorTick = 5;
constexpr CGFloat kMajorTick = 10;  // under a label
constexpr CGFloat kLeastShape = 3;  // what is narrower is drawn as a bar of one colour

// One line of text, cut with dots where it does not fit. Autoreleased.
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
  Fill(box, Tone::Surface);
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

// A bar for each column, around the middle of the box.
void DrawWave(const std::vector<WaveBar>& bars, NSRect box, CGFloat viewLeft, NSColor* color) {
  const CGFloat half = NSHeight(box) / 2 - 1;
  const CGFloat middle = NSMidY(box);
  std::vector<NSRect> rects;
  rects.reserve(bars.size());
  for (const WaveBar& bar : bars) {
    const CGFloat x = viewLeft + static_cast<CGFloat>(bar.column);
    if (x < NSMinX(box) || x >= NSMaxX(box)) continue;
    const CGFloat top = std::floor(middle - half * static_cast<CGFloat>(bar.high));
    const CGFloat bottom = std::ceil(middle - half * static_cast<CGFloat>(bar.low));
    rects.push_back(NSMakeRect(x, top, 1, std::max<CGFloat>(1, bottom - top)));
  }
  if (rects.empty()) return;
  [color set];
  NSRectFillList(rects.data(), static_cast<NSInteger>(rects.size()));
}

// The fades that a region has as facts, as lines from silence to full level.
void DrawShape(const velmora::host::SessionRegion& region, NSRect box, const TimeScale& scale,
               CGFloat viewLeft, NSColor* color) {
  const velmora::host::RegionShape shape = FittingShape(region);
  if (shape.fadeIn == 0 && shape.fadeOut == 0) return;
  const auto place = [&](std::int64_t sample, CGFloat y) {
    const double x = std::clamp(scale.ToX(sample), -1e6, 1e6);  // far outside, the slope is lost
    return NSMakePoint(viewLeft + x, y);
  };
  [NSGraphicsContext saveGraphicsState];
  NSRectClip(box);
  [color set];
  const CGFloat silence = NSMaxY(box) - 1;
  const CGFloat full = NSMinY(box) + 1;
  if (shape.fadeIn > 0) {
    [NSBezierPath strokeLineFromPoint:place(region.position, silence)
                              toPoint:place(region.position + shape.fadeIn, full)];
  }
  if (shape.fadeOut > 0) {
    [NSBezierPath strokeLineFromPoint:place(region.End() - shape.fadeOut, full)
                              toPoint:place(region.End(), silence)];
  }
  [NSGraphicsContext restoreGraphicsState];
}

// A region's name, which stays readable while the region's beginning is scrolled out to the left of
// `viewLeft`.
void DrawName(const std::string& name, NSRect box, CGFloat viewLeft, const TrackColors& colors) {
  NSRect text = NSInsetRect(box, 5, 3);
  const CGFloat edge = viewLeft + 4;
  if (NSMinX(text) < edge) {
    text.size.width -= edge - NSMinX(text);
    text.origin.x = edge;
  }
  if (NSWidth(text) < kNameWidth - 10) return;
  NSString* string = StringFromText(name);
  NSDictionary* attributes = TextAttributes(colors.ink, kDetailSize);
  NSRect lit = NSInsetRect(text, -1, 0);  // so that the wave does not run through the letters
  const NSSize size = [string sizeWithAttributes:attributes];
  lit.size.width = std::min(NSWidth(lit), size.width + 2);
  lit.size.height = std::min(NSHeight(lit), size.height);
  [[colors.fill colorWithAlphaComponent:0.7] set];
  NSRectFillUsingOperation(lit, NSCompositeSourceOver);
  [string drawInRect:text withAttributes:attributes];
}

}  // namespace

@interface TimelinePainter (Parts)
+ (void)drawRuler:(const std::vector<RulerTick>&)ticks of:(TimelineView*)timeline;
+ (void)drawGrid:(const std::vector<RulerTick>&)ticks of:(TimelineView*)timeline;
+ (void)drawHeaders:(TimelineView*)timeline;
+ (void)drawLane:(std::size_t)lane of:(TimelineView*)timeline inRect:(NSRect)rect;
+ (void)drawSpan:(const LaneSpan&)span
              in:(NSRect)box
              of:(TimelineView*)timeline
          colors:(TrackColors)colors;
+ (void)drawInvitation:(TimelineView*)timeline;
@end

@implementation TimelinePainter

+ (void)drawTimeline:(TimelineView*)timeline inRect:(NSRect)rect {
  Fill(rect, Tone::Surface);
  const NSRect lanes = [timeline lanesRect];
  const std::vector<RulerTick> ticks =
      RulerTicks([timeline scale], [timeline clock], NSWidth(lanes), kLabelSpacing);

  [NSGraphicsContext saveGraphicsState];
  NSRectClip(lanes);
  [self drawGrid:ticks of:timeline];
  const NSRange visible = [timeline visibleLanes];
  for (NSUInteger lane = visible.location; lane < NSMaxRange(visible); ++lane) {
    [self drawLane:lane of:timeline inRect:rect];
  }
  [NSGraphicsContext restoreGraphicsState];

  if ([timeline model].Regions().empty()) [self drawInvitation:timeline];
  [self drawHeaders:timeline];
  [self drawRuler:ticks of:timeline];
}

@end

@implementation TimelinePainter (Parts)

+ (void)drawRuler:(const std::vector<RulerTick>&)ticks of:(TimelineView*)timeline {
  const NSRect ruler = [timeline rulerRect];
  Fill(NSMakeRect(0, 0, NSMaxX(ruler), NSHeight(ruler)), Tone::Raised);
  [NSGraphicsContext saveGraphicsState];
  NSRectClip(ruler);
  NSDictionary* attributes = TextAttributes(ColorOf(Tone::QuietText), kRulerTextSize);
  for (const RulerTick& tick : ticks) {
    const CGFloat x = NSMinX(ruler) + std::floor(tick.x);
    const CGFloat height = tick.label.empty() ? kMinorTick : kMajorTick;
    Fill(NSMakeRect(x, NSMaxY(ruler) - height, 1, height), Tone::Line);
    if (!tick.label.empty()) {
      [StringFromText(tick.label) drawAtPoint:NSMakePoint(x + 4, NSMinY(ruler) + 5)
                               withAttributes:attributes];
    }
  }
  [NSGraphicsContext restoreGraphicsState];
  Fill(NSMakeRect(0, NSMaxY(ruler) - 1, NSMaxX(ruler), 1), Tone::Line);
}

+ (void)drawGrid:(const std::vector<RulerTick>&)ticks of:(TimelineView*)timeline {
  const NSRect lanes = [timeline lanesRect];
  for (const RulerTick& tick : ticks) {
    if (tick.label.empty()) continue;
    const CGFloat x = NSMinX(lanes) + std::floor(tick.x);
    Fill(NSMakeRect(x, NSMinY(lanes), 1, NSHeight(lanes)), Tone::FaintLine);
  }
}

+ (void)drawHeaders:(TimelineView*)timeline {
  const NSRect lanes = [timeline lanesRect];
  const NSRect column = NSMakeRect(0, NSMinY(lanes), NSMinX(lanes), NSHeight(lanes));
  [NSGraphicsContext saveGraphicsState];
  NSRectClip(column);
  Fill(column, Tone::Window);
  NSDictionary* attributes = TextAttributes(ColorOf(Tone::Text), kTextSize);
  const NSRange visible = [timeline visibleLanes];
  for (NSUInteger lane = visible.location; lane < NSMaxRange(visible); ++lane) {
    const NSRect row = [timeline rectOfLane:lane];
    const std::int64_t track = [timeline model].LaneAt(lane).track;
    [ColorsOfTrack(track).edge set];
    NSRectFill(NSMakeRect(0, NSMinY(row) + kMarkInset, kMarkWidth, NSHeight(row) - 2 * kMarkInset));
    NSString* name = [NSString stringWithFormat:@"Track %lld", static_cast<long long>(track + 1)];
    [name drawAtPoint:NSMakePoint(14, NSMinY(row) + 8) withAttributes:attributes];
    Fill(NSMakeRect(0, NSMaxY(row) - 1, NSWidth(column), 1), Tone::FaintLine);
  }
  [NSGraphicsContext restoreGraphicsState];
  Fill(NSMakeRect(NSMaxX(column) - 1, 0, 1, NSMaxY(column)), Tone::Line);
}

+ (void)drawLane:(std::size_t)lane of:(TimelineView*)timeline inRect:(NSRect)rect {
  const NSRect row = [timeline rectOfLane:lane];
  if (!NSIntersectsRect(row, rect)) return;
  Fill(NSMakeRect(NSMinX(row), NSMaxY(row) - 1, NSWidth(row), 1), Tone::FaintLine);

  TimelineModel& model = [timeline model];
  const TrackColors colors = ColorsOfTrack(model.LaneAt(lane).track);
  for (const LaneSpan& span : model.Spans(lane, [timeline scale], NSWidth(row))) {
    const NSRect box = [timeline rectOfSpan:span inLane:lane];
    if (NSIntersectsRect(box, rect)) [self drawSpan:span in:box of:timeline colors:colors];
  }
}

+ (void)drawSpan:(const LaneSpan&)span
              in:(NSRect)box
              of:(TimelineView*)timeline
          colors:(TrackColors)colors {
  if (span.region == LaneSpan::kMerged || NSWidth(box) < kLeastShape) {
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
  // On the shape of a rendered fade the usual colour would not be seen.
  DrawWave([timeline waveOfSpan:span], box, NSMinX([timeline lanesRect]),
           kind == PieceKind::Region ? colors.wave : colors.edge);
  DrawShape(region, box, [timeline scale], NSMinX([timeline lanesRect]), colors.edge);
  const BOOL isSelected = span.region == [timeline selectedRegion];
  const BOOL isHovered = span.region == [timeline hoveredRegion];
  [(isSelected ? ColorOf(Tone::Accent) : colors.edge) set];
  NSFrameRectWithWidth(box, isSelected || isHovered ? 2 : 1);
  if (kind == PieceKind::Region && NSWidth(box) >= kNameWidth) {
    DrawName(region.name, box, NSMinX([timeline lanesRect]), colors);
  }
}

+ (void)drawInvitation:(TimelineView*)timeline {
  NSString* text = @"Regions appear here as the spot places them.";
  NSDictionary* attributes = TextAttributes(ColorOf(Tone::QuietText), kTitleSize);
  const NSSize size = [text sizeWithAttributes:attributes];
  const NSRect lanes = [timeline lanesRect];
  [text drawAtPoint:NSMakePoint(NSMidX(lanes) - size.width / 2, NSMidY(lanes) - size.height / 2)
      withAttributes:attributes];
}

@end
