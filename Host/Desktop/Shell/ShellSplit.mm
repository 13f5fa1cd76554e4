#import "Desktop/Shell/ShellSplit.h"

#include <algorithm>
#include <cmath>

#include "Desktop/Theme/Drawing.h"

using namespace velmora::desktop;

namespace {

constexpr CGFloat kDividerHeight = 7;
constexpr NSSize kGripSize = {36, 2};
constexpr CGFloat kLeastWidth = 980;
constexpr CGFloat kLeastUpperHeight = 620;  // below it the view's parts lie over each other
constexpr CGFloat kLeastLowerHeight = 120;
constexpr CGFloat kUsualLowerHeight = 206;  // four tracks

}  // namespace

@implementation ShellSplit

+ (NSSize)leastSize {
  return NSMakeSize(kLeastWidth, kLeastUpperHeight + kDividerHeight + kLeastLowerHeight);
}

- (id)initWithFrame:(NSRect)frame upper:(NSView*)upperView lower:(NSView*)lowerView {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  upper = upperView;
  lower = lowerView;
  lowerHeight =
      std::max(kUsualLowerHeight, NSHeight(frame) - kDividerHeight - NSHeight([upper frame]));
  [self setVertical:NO];
  [self setDelegate:(id)self];
  [self addSubview:upper];
  [self addSubview:lower];
  [self adjustSubviews];
  return self;
}

- (CGFloat)dividerThickness {
  return kDividerHeight;
}

- (void)drawDividerInRect:(NSRect)rect {
  Fill(rect, Tone::Raised);
  Fill(NSMakeRect(NSMidX(rect) - kGripSize.width / 2,
                  std::floor(NSMidY(rect)) - kGripSize.height / 2, kGripSize.width,
                  kGripSize.height),
       Tone::Line);
}

// Returns when the divider has been let go.
- (void)mouseDown:(NSEvent*)event {
  [super mouseDown:event];
  lowerHeight = NSHeight([lower frame]);
}

// It is its own delegate.

- (void)splitView:(NSSplitView*)sender resizeSubviewsWithOldSize:(NSSize)oldSize {
  const CGFloat width = NSWidth([self bounds]);
  const CGFloat room = NSHeight([self bounds]) - kDividerHeight;
  const CGFloat most = std::max(kLeastLowerHeight, room - kLeastUpperHeight);
  const CGFloat below = std::clamp(lowerHeight, kLeastLowerHeight, most);
  [upper setFrame:NSMakeRect(0, 0, width, room - below)];
  [lower setFrame:NSMakeRect(0, room - below + kDividerHeight, width, below)];
}

- (CGFloat)splitView:(NSSplitView*)sender
    constrainMinCoordinate:(CGFloat)proposed
               ofSubviewAt:(NSInteger)index {
  return kLeastUpperHeight;
}

- (CGFloat)splitView:(NSSplitView*)sender
    constrainMaxCoordinate:(CGFloat)proposed
               ofSubviewAt:(NSInteger)index {
  return NSHeight([self bounds]) - kLeastLowerHeight;
}

@end
