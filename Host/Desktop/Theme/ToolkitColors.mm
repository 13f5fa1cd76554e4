#import "Desktop/Theme/ToolkitColors.h"

#include "Desktop/Theme/Palette.h"

namespace velmora::desktop {
namespace {

struct NamedTone {
  NSString* name;
  Tone tone;
};

const NamedTone kSystemColors[] = {
    {@"alternateRowBackgroundColor", Tone::Stripe},
    {@"controlAlternatingRowBackgroundColor", Tone::Stripe},
    {@"controlBackgroundColor", Tone::Surface},
    {@"controlColor", Tone::Surface},
    {@"controlDarkShadowColor", Tone::Line},
    {@"controlHighlightColor", Tone::Highlight},
    {@"controlLightHighlightColor", Tone::Surface},
    {@"controlShadowColor", Tone::Line},
    {@"controlTextColor", Tone::Text},
    {@"disabledControlTextColor", Tone::DisabledText},
    {@"gridColor", Tone::FaintLine},
    {@"headerColor", Tone::Raised},
    {@"headerTextColor", Tone::HeaderText},
    {@"highlightColor", Tone::Surface},
    {@"keyboardFocusIndicatorColor", Tone::Accent},
    {@"knobColor", Tone::Knob},
    {@"scrollBarColor", Tone::Raised},
    {@"secondarySelectedControlColor", Tone::Selection},
    {@"selectedControlColor", Tone::Selection},
    {@"selectedControlTextColor", Tone::Text},
    {@"selectedKnobColor", Tone::PressedKnob},
    {@"selectedMenuItemColor", Tone::Accent},
    {@"selectedMenuItemTextColor", Tone::Surface},
    {@"selectedTextBackgroundColor", Tone::MarkedText},
    {@"selectedTextColor", Tone::Text},
    {@"shadowColor", Tone::Line},
    {@"textBackgroundColor", Tone::Surface},
    {@"textColor", Tone::Text},
    {@"windowBackgroundColor", Tone::Window},
    {@"windowFrameColor", Tone::WindowFrame},
    {@"windowFrameTextColor", Tone::Text},
};

const NamedTone kThemeColors[] = {
    {@"highlightedTableRowBackgroundColor", Tone::Selection},
    {@"menuBackgroundColor", Tone::Surface},
    {@"menuBarBackgroundColor", Tone::Window},
    {@"menuBarBorderColor", Tone::Window},
    {@"menuBorderColor", Tone::Line},
    {@"menuItemBackgroundColor", Tone::Surface},
    {@"menuSeparatorColor", Tone::FaintLine},
    {@"tableHeaderTextColor", Tone::HeaderText},
    {@"browserHeaderTextColor", Tone::HeaderText},
    {@"toolbarBackgroundColor", Tone::Window},
    {@"windowBorderColor", Tone::Line},
};

}  // namespace

NSColorList* MakeSystemColors() {
  NSColorList* list = [[NSColorList alloc] initWithName:@"System" fromFile:nil];
  for (const NamedTone& color : kSystemColors)
    [list setColor:ColorOf(color.tone) forKey:color.name];
  return list;
}

NSColor* ThemeColorNamed(NSString* name) {
  for (const NamedTone& color : kThemeColors) {
    if ([color.name isEqualToString:name]) return ColorOf(color.tone);
  }
  return nil;
}

}  // namespace velmora::desktop
