#pragma once

#import <AppKit/AppKit.h>

#include "Desktop/Theme/Palette.h"

// What all parts of the window are drawn and written with.
namespace velmora::desktop {

void Fill(NSRect rect, Tone tone);

// Lines of one point along the edges of a view that is not flipped.
void DrawTopLine(NSView* view);
void DrawBottomLine(NSView* view);

// A piece of text that cannot be edited or selected, cut with dots where it does not fit. Owned by
// the caller.
[[nodiscard]] NSTextField* MakeLabel(NSRect frame, CGFloat textSize);

}  // namespace velmora::desktop
