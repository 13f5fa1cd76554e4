#import "Desktop/Shell/SessionBar.h"

#include <cmath>
#include <vector>

#include "Desktop/Theme/Controls.h"
#include "Desktop/Theme/Drawing.h"
#include "Desktop/Theme/Metrics.h"
#include "Session/SessionClock.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;

namespace {

constexpr CGFloat kRateMenuWidth = 130;
constexpr CGFloat kFrameRateMenuWidth = 144;
constexpr CGFloat kClearButtonWidth = 110;
constexpr CGFloat kGroupGap = 2 * kControlGap;  // between a control and the next one's label

// Tags carry rates in thousandths of a hertz, which tells all of them apart.
NSInteger TagOfRate(float rate) {
  return std::lround(static_cast<double>(rate) * 1000);
}

}  // namespace

@interface SessionBar (Building)
- (CGFloat)addLabel:(NSString*)text at:(CGFloat)x;
- (void)fillRateMenu;
- (void)fillFrameRateMenu;
- (NSPopUpButton*)addMenuAt:(CGFloat)x width:(CGFloat)width toolTip:(NSString*)toolTip;
- (void)addClearButton:(SEL)clear at:(CGFloat)x;
- (void)addSummaryAt:(CGFloat)x;
- (NSRect)controlAt:(CGFloat)x width:(CGFloat)width;
- (void)chosen:(id)sender;
@end

@implementation SessionBar

- (id)initWithFrame:(NSRect)frame
             target:(id)aTarget
       ratesChanged:(SEL)ratesChanged
              clear:(SEL)clear {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  target = aTarget;
  ratesAction = ratesChanged;

  CGFloat x = [self addLabel:@"Session sample rate" at:kWindowMargin];
  rateMenu = [self addMenuAt:x
                       width:kRateMenuWidth
                     toolTip:@"What the session answers as its sample rate"];
  [self fillRateMenu];
  x = [self addLabel:@"Frame rate" at:NSMaxX([rateMenu frame]) + kGroupGap];
  frameRateMenu = [self addMenuAt:x
                            width:kFrameRateMenuWidth
                          toolTip:@"What the session answers as its timecode setting"];
  [self fillFrameRateMenu];

  [self addClearButton:clear at:NSMaxX([frameRateMenu frame]) + kGroupGap];
  [self addSummaryAt:NSMaxX([clearButton frame]) + kGroupGap];
  return self;
}

- (void)dealloc {
  [clearButton release];
  [rateMenu release];
  [frameRateMenu release];
  [summaryField release];
  [super dealloc];
}

- (void)drawRect:(NSRect)rect {
  Fill(rect, Tone::Window);
  DrawBottomLine(self);
}

- (velmora::host::SessionRates)rates {
  velmora::host::SessionRates rates;
  rates.sampleRate = static_cast<float>(static_cast<double>([[rateMenu selectedItem] tag]) / 1000);
  rates.frameRate = static_cast<std::int32_t>([[frameRateMenu selectedItem] tag]);
  return rates;
}

- (void)setRates:(const velmora::host::SessionRates&)rates {
  const NSInteger tag = TagOfRate(rates.sampleRate);
  if ([rateMenu indexOfItemWithTag:tag] < 0) {
    [rateMenu addItemWithTitle:StringFromText(velmora::host::SampleRateName(rates.sampleRate))];
    [[rateMenu lastItem] setTag:tag];
  }
  [rateMenu selectItemAtIndex:[rateMenu indexOfItemWithTag:tag]];
  [frameRateMenu selectItemAtIndex:[frameRateMenu indexOfItemWithTag:rates.frameRate]];
}

- (void)setSummary:(NSString*)summary {
  [summaryField setStringValue:[summary length] > 0 ? summary : @"Session is empty"];
  [clearButton setEnabled:[summary length] > 0];
}

@end

@implementation SessionBar (Building)

// Returns where the control that the label names begins.
- (CGFloat)addLabel:(NSString*)text at:(CGFloat)x {
  NSTextField* label = MakeLabel(NSMakeRect(x, 0, 10, kLabelHeight), kTextSize);
  [label setStringValue:text];
  [label setTextColor:ColorOf(Tone::QuietText)];
  [label sizeToFit];
  NSRect frame = [label frame];
  frame.origin.y = (NSHeight([self frame]) - NSHeight(frame)) / 2;
  [label setFrame:frame];
  [self addSubview:label];
  [label release];
  return NSMaxX(frame) + kControlGap;
}

- (NSPopUpButton*)addMenuAt:(CGFloat)x width:(CGFloat)width toolTip:(NSString*)toolTip {
  NSPopUpButton* menu = [[NSPopUpButton alloc] initWithFrame:[self controlAt:x width:width]
                                                   pullsDown:NO];
  [menu setAutoenablesItems:NO];
  [menu setTarget:self];
  [menu setAction:@selector(chosen:)];
  [menu setToolTip:toolTip];
  [self addSubview:menu];
  return menu;
}

- (void)fillRateMenu {
  for (const float rate : velmora::host::OfferedSampleRates()) {
    [rateMenu addItemWithTitle:StringFromText(velmora::host::SampleRateName(rate))];
    [[rateMenu lastItem] setTag:TagOfRate(rate)];
  }
}

- (void)fillFrameRateMenu {
  for (std::size_t code = 0; code < velmora::host::kFrameRates.size(); ++code) {
    NSString* title = [NSString stringWithFormat:@"%s fps", velmora::host::kFrameRates[code].name];
    [frameRateMenu addItemWithTitle:title];
    [[frameRateMenu lastItem] setTag:static_cast<NSInteger>(code)];
  }
}

- (void)addClearButton:(SEL)clear at:(CGFloat)x {
  clearButton =
      MakeButton([self controlAt:x width:kClearButtonWidth], @"Clear session", target, clear);
  [clearButton setEnabled:NO];
  [self addSubview:clearButton];
}

// The summary has the rest of the bar, and stands at its end.
- (void)addSummaryAt:(CGFloat)x {
  summaryField = MakeLabel(NSMakeRect(x, (NSHeight([self frame]) - kLabelHeight) / 2,
                                      NSWidth([self frame]) - x - kWindowMargin, kLabelHeight),
                           kTextSize);
  [summaryField setAlignment:NSRightTextAlignment];
  [summaryField setTextColor:ColorOf(Tone::QuietText)];
  [summaryField setAutoresizingMask:NSViewWidthSizable];
  [self addSubview:summaryField];
}

// The frame of a control, in the middle of the bar's height.
- (NSRect)controlAt:(CGFloat)x width:(CGFloat)width {
  return NSMakeRect(x, (NSHeight([self frame]) - kControlHeight) / 2, width, kControlHeight);
}

- (void)chosen:(id)sender {
  [target performSelector:ratesAction withObject:self];
}

@end
