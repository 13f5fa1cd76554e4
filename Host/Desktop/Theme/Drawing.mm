#import "Desktop/Theme/Drawing.h"

namespace velmora::desktop {

void Fill(NSRect rect, Tone tone) {
  [ColorOf(tone) set];
  NSRectFill(rect);
}

void DrawTopLine(NSView* view) {
  const NSRect bounds = [view bounds];
  Fill(NSMakeRect(0, NSHeight(bounds) - 1, NSWidth(bounds), 1), Tone::Line);
}

void DrawBottomLine(NSView* view) {
  Fill(NSMakeRect(0, 0, NSWidth([view bounds]), 1), Tone::Line);
}

NSTextField* MakeLabel(NSRect frame, CGFloat textSize) {
  NSTextField* label = [[NSTextField alloc] initWithFrame:frame];
  [label setEditable:NO];
  [label setSelectable:NO];
  [label setBordered:NO];
  [label setBezeled:NO];
  [label setDrawsBackground:NO];
  [label setFont:[NSFont systemFontOfSize:textSize]];
  [label setTextColor:ColorOf(Tone::Text)];
  [[label cell] setLineBreakMode:NSLineBreakByTruncatingTail];
  return label;
}

}  // namespace velmora::desktop
