#import "Desktop/Theme/ToolkitDefaults.h"

namespace velmora::desktop {
namespace {

struct Default {
  NSString* name;
  NSString* value;
};

const Default kDefaults[] = {
    {@"NSFont", @"DejaVuSans"},
    {@"NSUserFont", @"DejaVuSans"},
    {@"NSLabelFont", @"DejaVuSans"},
    {@"NSControlContentFont", @"DejaVuSans"},
    {@"NSMenuFont", @"DejaVuSans"},
    {@"NSMessageFont", @"DejaVuSans"},
    {@"NSToolTipsFont", @"DejaVuSans"},
    {@"NSPaletteFont", @"DejaVuSans"},
    {@"NSBoldFont", @"DejaVuSans-Bold"},
    {@"NSTitleBarFont", @"DejaVuSans-Bold"},
    {@"NSUserFixedPitchFont", @"DejaVuSansMono"},
    {@"NSFontSize", @"11"},
    {@"NSBoldFontSize", @"11"},
    {@"NSLabelFontSize", @"11"},
    {@"NSControlContentFontSize", @"11"},
    {@"NSMenuFontSize", @"11"},
    {@"NSMessageFontSize", @"12"},
    {@"NSToolTipsFontSize", @"10"},
    {@"NSUserFontSize", @"11"},
    {@"NSUserFixedPitchFontSize", @"11"},
    {@"GSSuppressAppIcon", @"YES"},
    // A menu bar in the window, scrollers at the right, arrows at both ends.
    {@"NSMenuInterfaceStyle", @"NSWindows95InterfaceStyle"},
    {@"NSScrollViewInterfaceStyle", @"NSWindows95InterfaceStyle"},
    {@"NSScrollerInterfaceStyle", @"NSWindows95InterfaceStyle"},
    {@"GSScrollerDefaultWidth", @"14"},
    {@"GSScrollViewNoInnerBorder", @"YES"},
    {@"GSMenuBarHeight", @"24"},
    {@"GSMenuItemHeight", @"22"},
    {@"GSMenuSeparatorHeight", @"9"},
    {@"GSToolTipsDelay", @"500"},
    // Menu keys go with Ctrl, as on other desktops, and say so.
    {@"GSFirstCommandKey", @"Control_L"},
    {@"GSSecondCommandKey", @"Control_R"},
    {@"GSFirstControlKey", @"Super_L"},
    {@"GSSecondControlKey", @"Super_R"},
    {@"GSFirstAlternateKey", @"Alt_L"},
    {@"GSSecondAlternateKey", @"Alt_R"},
    {@"GSCommandKeyString", @"Ctrl+"},
    {@"GSControlKeyString", @"Super+"},
    {@"GSAlternateKeyString", @"Alt+"},
    {@"GSShiftKeyString", @"Shift+"},
};

}  // namespace

NSDictionary* ToolkitDefaults() {
  NSMutableDictionary* defaults = [NSMutableDictionary dictionary];
  for (const Default& setting : kDefaults) [defaults setObject:setting.value forKey:setting.name];
  return defaults;
}

}  // namespace velmora::desktop
