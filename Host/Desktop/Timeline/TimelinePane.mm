#import "Desktop/Timeline/TimelinePane.h"

#include "Desktop/Theme/Drawing.h"
#include "Desktop/Theme/Metrics.h"
#include "Timeline/RegionFacts.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;
using namespace velmora::timeline;

namespace {

constexpr CGFloat kTitleHeight = 38;
constexpr CGFloat kTitleWidth = 130;
constexpr CGFloat kButtonsWidth = 132;
constexpr CGFloat kButtonHeight = 22;
constexpr double kPage = 0.9;  // of what is on view, scrolled by a press beside a scroller's knob

}  // namespace

@interface TimelinePane (Building)
- (void)addTitle;
- (CGFloat)addButton:(NSString*)title
               width:(CGFloat)width
              action:(SEL)action
             toolTip:(NSString*)toolTip
            endingAt:(CGFloat)right;
- (NSScroller*)makeScroller:(NSRect)frame action:(SEL)action;
- (void)horizontalScrolled:(id)sender;
- (void)verticalScrolled:(id)sender;
- (void)showFacts;
@end

@implementation TimelinePane

- (id)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  const CGFloat bar = [NSScroller scrollerWidth];
  const CGFloat width = NSWidth(frame);
  const CGFloat height = NSHeight(frame) - kTitleHeight - bar;

  timeline = [[TimelineView alloc] initWithFrame:NSMakeRect(0, bar, width - bar, height)
                                           owner:self];
  [timeline setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  horizontalScroller = [self makeScroller:NSMakeRect(0, 0, width - bar, bar)
                                   action:@selector(horizontalScrolled:)];
  [horizontalScroller setAutoresizingMask:NSViewWidthSizable | NSViewMaxYMargin];
  verticalScroller = [self makeScroller:NSMakeRect(width - bar, bar, bar, height)
                                 action:@selector(verticalScrolled:)];
  [verticalScroller setAutoresizingMask:NSViewMinXMargin | NSViewHeightSizable];

  [self addTitle];
  [self addSubview:timeline];
  [self timelineDidScroll:timeline];
  [self showFacts];
  return self;
}

- (void)dealloc {
  [timeline release];
  [horizontalScroller release];
  [verticalScroller release];
  [titleField release];
  [factsField release];
  [super dealloc];
}

- (void)drawRect:(NSRect)rect {
  const NSRect bounds = [self bounds];
  Fill(rect, Tone::Window);
  DrawTopLine(self);
  Fill(NSMakeRect(0, NSHeight(bounds) - kTitleHeight, NSWidth(bounds), 1), Tone::Line);
}

- (TimelineView*)timeline {
  return timeline;
}

- (void)setClock:(const velmora::host::SessionClock&)clock {
  [timeline setClock:clock];
  [self showFacts];
}

- (void)addRegions:(const std::vector<velmora::host::SessionRegion>&)regions {
  for (const velmora::host::SessionRegion& region : regions) [timeline model].Add(region);
  [timeline modelChanged];
}

- (void)clear {
  [timeline model].Clear();
  [timeline modelChanged];
}

- (BOOL)isReadingWaveforms {
  return [timeline isReadingWaveforms];
}

- (void)close {
  [timeline close];
}

// TimelineViewOwner

- (void)timelineDidScroll:(TimelineView*)sender {
  const ScrollState across = [timeline horizontalScroll];
  const ScrollState down = [timeline verticalScroll];
  [horizontalScroller setEnabled:across.proportion < 1];
  [horizontalScroller setFloatValue:static_cast<float>(across.value)
                     knobProportion:static_cast<CGFloat>(across.proportion)];
  [verticalScroller setEnabled:down.proportion < 1];
  [verticalScroller setFloatValue:static_cast<float>(down.value)
                   knobProportion:static_cast<CGFloat>(down.proportion)];
}

- (void)timelineDidPoint:(TimelineView*)sender {
  [self showFacts];
}

@end

@implementation TimelinePane (Building)

- (void)addTitle {
  const NSRect bounds = [self bounds];
  titleField = MakeLabel(
      NSMakeRect(kWindowMargin, NSHeight(bounds) - 27, kTitleWidth, kLabelHeight), kTitleSize);
  [titleField setFont:[NSFont boldSystemFontOfSize:kTitleSize]];
  [titleField setStringValue:@"Session timeline"];
  [titleField setAutoresizingMask:NSViewMinYMargin];
  [self addSubview:titleField];

  const CGFloat left = kWindowMargin + kTitleWidth;
  factsField = MakeLabel(NSMakeRect(left, NSHeight(bounds) - kTitleHeight + 4,
                                    NSWidth(bounds) - left - kButtonsWidth, kTitleHeight - 8),
                         kDetailSize);
  [factsField setAutoresizingMask:NSViewWidthSizable | NSViewMinYMargin];
  [factsField setTextColor:ColorOf(Tone::QuietText)];
  [[factsField cell] setLineBreakMode:NSLineBreakByWordWrapping];
  [[factsField cell] setWraps:YES];
  [self addSubview:factsField];

  CGFloat right = NSWidth(bounds) - 10;
  right = [self addButton:@"Fit"
                    width:44
                   action:@selector(fit:)
                  toolTip:@"Show the whole session (0)"
                 endingAt:right];
  right = [self addButton:@"+"
                    width:30
                   action:@selector(zoomIn:)
                  toolTip:@"Zoom in (+, or Ctrl and the wheel)"
                 endingAt:right];
  [self addButton:@"\u2212"
            width:30
           action:@selector(zoomOut:)
          toolTip:@"Zoom out (-, or Ctrl and the wheel)"
         endingAt:right];
}

// Returns where the next button to the left ends.
- (CGFloat)addButton:(NSString*)title
               width:(CGFloat)width
              action:(SEL)action
             toolTip:(NSString*)toolTip
            endingAt:(CGFloat)right {
  const NSRect frame =
      NSMakeRect(right - width, NSHeight([self bounds]) - kTitleHeight + 8, width, kButtonHeight);
  NSButton* button = [[NSButton alloc] initWithFrame:frame];
  [button setBezelStyle:NSRoundedBezelStyle];
  [button setTitle:title];
  [button setTarget:timeline];
  [button setAction:action];
  [button setToolTip:toolTip];
  [button setAutoresizingMask:NSViewMinXMargin | NSViewMinYMargin];
  [self addSubview:button];
  [button release];
  return right - width - 4;
}

- (NSScroller*)makeScroller:(NSRect)frame action:(SEL)action {
  NSScroller* scroller = [[NSScroller alloc] initWithFrame:frame];
  [scroller setArrowsPosition:NSScrollerArrowsNone];
  [scroller setTarget:self];
  [scroller setAction:action];
  [self addSubview:scroller];
  return scroller;
}

- (void)horizontalScrolled:(id)sender {
  const CGFloat page = NSWidth([timeline lanesRect]) * kPage;
  switch ([horizontalScroller hitPart]) {
    case NSScrollerDecrementPage:
      [timeline scrollPixels:-page lanes:0];
      break;
    case NSScrollerIncrementPage:
      [timeline scrollPixels:page lanes:0];
      break;
    default:
      [timeline setHorizontalValue:[horizontalScroller doubleValue]];
  }
}

- (void)verticalScrolled:(id)sender {
  const CGFloat page = NSHeight([timeline lanesRect]) * kPage;
  switch ([verticalScroller hitPart]) {
    case NSScrollerDecrementPage:
      [timeline scrollPixels:0 lanes:-page];
      break;
    case NSScrollerIncrementPage:
      [timeline scrollPixels:0 lanes:page];
      break;
    default:
      [timeline setVerticalValue:[verticalScroller doubleValue]];
  }
}

- (void)showFacts {
  const std::size_t pointed = [timeline pointedRegion];
  NSString* text = @"";
  if (pointed != [TimelineView noRegion]) {
    const RegionFacts facts = FactsOf([timeline model].Regions()[pointed], [timeline clock]);
    text = StringFromText(facts.title + "\n" + facts.details);
  } else if (![timeline model].Regions().empty()) {
    text = @"Point at a region for its facts; click to keep them.\n"
           @"Drag or turn the wheel to scroll, turn it with Ctrl to zoom.";
  }
  [factsField setStringValue:text];
}

@end
