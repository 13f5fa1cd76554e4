#pragma once

#import <AppKit/AppKit.h>

// Sizes that several parts of the window share, in points.
namespace velmora::desktop {

inline constexpr CGFloat kWindowMargin = 12;   // between the window's sides and what it holds
inline constexpr CGFloat kControlGap = 8;      // between neighbouring controls
inline constexpr CGFloat kControlHeight = 24;  // buttons and menus
inline constexpr CGFloat kLabelHeight = 16;    // one line of text

inline constexpr CGFloat kTextSize = 11;
inline constexpr CGFloat kTitleSize = 12;
inline constexpr CGFloat kDetailSize = 10;
inline constexpr CGFloat kRulerTextSize = 9;

}  // namespace velmora::desktop
