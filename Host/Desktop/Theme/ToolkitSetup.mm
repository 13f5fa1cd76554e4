#include "Desktop/Theme/ToolkitSetup.h"

#import <AppKit/AppKit.h>

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

void RegisterDefaults() {
  NSMutableDictionary* defaults = [NSMutableDictionary dictionary];
  for (const Default& setting : kDefaults) [defaults setObject:setting.value forKey:setting.name];
  [[NSUserDefaults standardUserDefaults] registerDefaults:defaults];
}

// The toolkit reads the usual kinds of pictures itself, and 200 rare ones by another library. To
// learn their names it loads 120 modules at the first picture, and every picture that a folder
// lacks is looked for under each of the names: half of the start (0.14 s of 0.30 s of processor
// time). All pictures here are of the usual kinds.
void ReadNoRarePictures() {
  const Class rare = NSClassFromString(@"GSImageMagickImageRep");
  if (rare != Nil) [NSImageRep unregisterImageRepClass:rare];
}

}  // namespace

void SetUpToolkit() {
  RegisterDefaults();
  ReadNoRarePictures();
}

}  // namespace velmora::desktop
