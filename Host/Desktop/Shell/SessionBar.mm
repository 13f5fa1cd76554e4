#import "Desktop/Shell/SessionBar.h"

#include <vector>

#import "Desktop/Theme/DesktopTheme.h"
#include "Session/SessionClock.h"
#import "Desktop/Shell/ShellText.h"

using namespace velmora::host;

namespace {

constexpr CGFloat kGap = 8;
constexpr CGFloat kControlHeight = 24;

// Tags carry rates in thousandths of a hertz, which tells all of them apart.
NSInteger TagOfRate(float rate) {
  return static_cast<NSInteger>(static_cast<double>(rate) * 1000 + 0.5);
}

}  // namespace

@interface SessionBar (Building)
- (CGFloat)addLabel:(NSString*)text at:(CGFloat)x;
- (void)fillRateMenu;
- (void)fillFrameRateMenu;
- (NSPopUpButton*)addMenuAt:(CGFloat)x width:(CGFloat)width toolTip:(NSString*)toolTip;
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

  CGFloat x = [self addLabel:@"Session sample rate" at:12];
  rateMenu = [self addMenuAt:x width:130 toolTip:@"What the session answers as its sample rate"];
  [self fillRateMenu];
  x = [self addLabel:@"Frame rate" at:NSMaxX([rateMenu frame]) + 2 * kGap];
  frameRateMenu = [self addMenuAt:x
                            width:144
                          toolTip:@"What the session answers as its timecode setting"];
  [self fillFrameRateMenu];

  clearButton = [[NSButton alloc]
      initWithFrame:NSMakeRect(NSMaxX([frameRateMenu frame]) + 2 * kGap,
                               (NSHeight(frame) - kControlHeight) / 2, 110, kControlHeight)];
  [clearButton setBezelStyle:NSRoundedBezelStyle];
  [clearButton setTitle:@"Clear session"];
  [clearButton setTarget:aTarget];
  [clearButton setAction:clear];
  [clearButton setEnabled:NO];
  [self addSubview:clearButton];

  const CGFloat left = NSMaxX([clearButton frame]) + 2 * kGap;
  summaryField =
      MakeLabel(NSMakeRect(left, (NSHeight(frame) - 16) / 2, NSWidth(frame) - left - 12, 16), 11);
  [summaryField setAlignment:NSRightTextAlignment];
  [summaryField setTextColor:[DesktopPalette quietText]];
  [summaryField setAutoresizingMask:NSViewWidthSizable];
  [self addSubview:summaryField];
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
  [[DesktopPalette window] set];
  NSRectFill(rect);
  [[DesktopPalette line] set];
  NSRectFill(NSMakeRect(0, 0, NSWidth([self bounds]), 1));
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
    [rateMenu addItemWithTitle:StringOf(velmora::host::SampleRateName(rates.sampleRate))];
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
  NSTextField* label = MakeLabel(NSMakeRect(x, (NSHeight([self frame]) - 16) / 2, 10, 16), 11);
  [label setStringValue:text];
  [label setTextColor:[DesktopPalette quietText]];
  [label sizeToFit];
  NSRect frame = [label frame];
  frame.origin.y = (NSHeight([self frame]) - NSHeight(frame)) / 2;
  [label setFrame:frame];
  [self addSubview:label];
  [label release];
  return NSMaxX(frame) + kGap;
}

- (NSPopUpButton*)addMenuAt:(CGFloat)x width:(CGFloat)width toolTip:(NSString*)toolTip {
  const NSRect frame =
      NSMakeRect(x, (NSHeight([self frame]) - kControlHeight) / 2, width, kControlHeight);
  NSPopUpButton* menu = [[NSPopUpButton alloc] initWithFrame:frame pullsDown:NO];
  [menu setAutoenablesItems:NO];
  [menu setTarget:self];
  [menu setAction:@selector(chosen:)];
  [menu setToolTip:toolTip];
  [self addSubview:menu];
  return menu;
}

- (void)fillRateMenu {
  for (const float rate : velmora::host::OfferedSampleRates()) {
    [rateMenu addItemWithTitle:StringOf(velmora::host::SampleRateName(rate))];
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

- (void)chosen:(id)sender {
  [target performSelector:ratesAction withObject:self];
}

@end
