#import "Desktop/Theme/DesktopTheme.h"

namespace {

NSString* const kThemeName = @"VelmoraDesktop";

NSColor* Rgb(unsigned hex) {
  return [NSColor colorWithCalibratedRed:((hex >> 16) & 0xFF) / 255.0
                                   green:((hex >> 8) & 0xFF) / 255.0
                                    blue:(hex & 0xFF) / 255.0
                                   alpha:1.0];
}

struct NamedColor {
  NSString* name;
  unsigned hex;
};

// System colours by the names that the toolkit looks them up under.
const NamedColor kSystemColors[] = {
    {@"alternateRowBackgroundColor", 0xF3F5F9},
    {@"controlAlternatingRowBackgroundColor", 0xF3F5F9},
    {@"controlBackgroundColor", 0xFFFFFF},
    {@"controlColor", 0xFFFFFF},
    {@"controlDarkShadowColor", 0xCBD1DA},
    {@"controlHighlightColor", 0xF1F3F6},
    {@"controlLightHighlightColor", 0xFFFFFF},
    {@"controlShadowColor", 0xCBD1DA},
    {@"controlTextColor", 0x1F2933},
    {@"disabledControlTextColor", 0x9AA5B1},
    {@"gridColor", 0xE7EAEF},
    {@"headerColor", 0xEEF1F5},
    {@"headerTextColor", 0x52606D},
    {@"highlightColor", 0xFFFFFF},
    {@"keyboardFocusIndicatorColor", 0x2F6FDE},
    {@"knobColor", 0xB4BDC9},
    {@"scrollBarColor", 0xEEF1F5},
    {@"secondarySelectedControlColor", 0xDCE7FA},
    {@"selectedControlColor", 0xDCE7FA},
    {@"selectedControlTextColor", 0x1F2933},
    {@"selectedKnobColor", 0x8E99A8},
    {@"selectedMenuItemColor", 0x2F6FDE},
    {@"selectedMenuItemTextColor", 0xFFFFFF},
    {@"selectedTextBackgroundColor", 0xBFD6FB},
    {@"selectedTextColor", 0x1F2933},
    {@"shadowColor", 0xCBD1DA},
    {@"textBackgroundColor", 0xFFFFFF},
    {@"textColor", 0x1F2933},
    {@"windowBackgroundColor", 0xF4F6F9},
    {@"windowFrameColor", 0xE4E8EE},
    {@"windowFrameTextColor", 0x1F2933},
};

// Colours that the theme's own drawing asks for by name.
const NamedColor kThemeColors[] = {
    {@"highlightedTableRowBackgroundColor", 0xDCE7FA},
    {@"menuBackgroundColor", 0xFFFFFF},
    {@"menuBarBackgroundColor", 0xF4F6F9},
    {@"menuBarBorderColor", 0xF4F6F9},
    {@"menuBorderColor", 0xCBD1DA},
    {@"menuItemBackgroundColor", 0xFFFFFF},
    {@"menuSeparatorColor", 0xE7EAEF},
    {@"tableHeaderTextColor", 0x52606D},
    {@"browserHeaderTextColor", 0x52606D},
    {@"toolbarBackgroundColor", 0xF4F6F9},
    {@"windowBorderColor", 0xCBD1DA},
};

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

NSBezierPath* RoundedRect(NSRect rect, CGFloat radius) {
  return [NSBezierPath bezierPathWithRoundedRect:rect xRadius:radius yRadius:radius];
}

// Outlines with whole pixels: a line of width 1 is crisp when it runs through pixel centres.
void StrokeRounded(NSRect frame, CGFloat radius, NSColor* color) {
  NSBezierPath* path = RoundedRect(NSInsetRect(frame, 0.5, 0.5), radius);
  [path setLineWidth:1];
  [color set];
  [path stroke];
}

NSRect Framed(NSRect border) {
  [[DesktopPalette line] set];
  NSFrameRect(border);
  return NSInsetRect(border, 2, 2);
}

}  // namespace

@implementation DesktopPalette

+ (NSColor*)window {
  return Rgb(0xF4F6F9);
}
+ (NSColor*)surface {
  return Rgb(0xFFFFFF);
}
+ (NSColor*)raised {
  return Rgb(0xEEF1F5);
}
+ (NSColor*)line {
  return Rgb(0xCBD1DA);
}
+ (NSColor*)faintLine {
  return Rgb(0xE7EAEF);
}
+ (NSColor*)text {
  return Rgb(0x1F2933);
}
+ (NSColor*)quietText {
  return Rgb(0x66727F);
}
+ (NSColor*)accent {
  return Rgb(0x2F6FDE);
}
+ (NSColor*)problem {
  return Rgb(0xC23B3B);
}
+ (NSColor*)notice {
  return Rgb(0xA8660A);
}

@end

@interface DesktopTheme (Parts)
- (void)drawScrollerPart:(NSRect)frame named:(NSString*)name state:(GSThemeControlState)state;
@end

@implementation DesktopTheme

+ (void)installWithBundleAtPath:(NSString*)bundlePath {
  NSBundle* bundle = [NSBundle bundleWithPath:bundlePath];
  if (bundle == nil) bundle = [NSBundle mainBundle];
  DesktopTheme* theme = [[DesktopTheme alloc] initWithBundle:bundle];
  [GSTheme setTheme:theme];
  [theme release];
  // Whenever a default changes, the toolkit compares the theme's name with this one.
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObject:kThemeName forKey:@"GSTheme"]];
}

+ (void)installIcon {
  NSBundle* bundle = [[GSTheme theme] bundle];
  NSString* path = [bundle pathForResource:kThemeName ofType:@"png" inDirectory:@"ThemeImages"];
  if (path == nil) return;
  NSImage* icon = [[[NSImage alloc] initWithContentsOfFile:path] autorelease];
  NSImage* former = [NSImage imageNamed:@"NSApplicationIcon"];
  [former setName:nil];
  [icon setName:@"NSApplicationIcon"];
  [NSApp setApplicationIconImage:icon];
}

+ (NSDictionary*)userDefaults {
  NSMutableDictionary* defaults = [NSMutableDictionary dictionary];
  for (const Default& setting : kDefaults) [defaults setObject:setting.value forKey:setting.name];
  return defaults;
}

- (void)dealloc {
  [colorList release];
  [super dealloc];
}

- (NSString*)name {
  return kThemeName;
}

- (NSColorList*)colors {
  if (colorList == nil) {
    colorList = [[NSColorList alloc] initWithName:@"System" fromFile:nil];
    for (const NamedColor& color : kSystemColors)
      [colorList setColor:Rgb(color.hex) forKey:color.name];
  }
  return colorList;
}

- (NSColor*)colorNamed:(NSString*)name state:(GSThemeControlState)state {
  for (const NamedColor& color : kThemeColors)
    if ([color.name isEqualToString:name]) return Rgb(color.hex);
  return [super colorNamed:name state:state];
}

// Bevels: each becomes one thin line.

- (NSRect)drawButton:(NSRect)border withClip:(NSRect)clip {
  return Framed(border);
}
- (NSRect)drawDarkButton:(NSRect)border withClip:(NSRect)clip {
  return Framed(border);
}
- (NSRect)drawDarkBezel:(NSRect)border withClip:(NSRect)clip {
  return Framed(border);
}
- (NSRect)drawGrayBezel:(NSRect)border withClip:(NSRect)clip {
  return Framed(border);
}
- (NSRect)drawWhiteBezel:(NSRect)border withClip:(NSRect)clip {
  return Framed(border);
}
- (NSRect)drawLightBezel:(NSRect)border withClip:(NSRect)clip {
  return Framed(border);
}
- (NSRect)drawGroove:(NSRect)border withClip:(NSRect)clip {
  return Framed(border);
}
- (NSRect)drawFramePhoto:(NSRect)border withClip:(NSRect)clip {
  return Framed(border);
}

- (void)drawBorderType:(NSBorderType)type frame:(NSRect)frame view:(NSView*)view {
  if (type == NSNoBorder) return;
  [[DesktopPalette line] set];
  NSFrameRect(frame);
}

- (NSSize)sizeForBorderType:(NSBorderType)type {
  return type == NSNoBorder ? NSZeroSize : NSMakeSize(1, 1);
}

- (void)drawFocusFrame:(NSRect)frame view:(NSView*)view {
  StrokeRounded(frame, 3, [DesktopPalette accent]);
}

// Buttons

- (void)drawButton:(NSRect)frame
                in:(NSCell*)cell
              view:(NSView*)view
             style:(int)style
             state:(GSThemeControlState)state {
  NSString* name = [self nameForElement:cell];
  if ([name hasPrefix:@"GSScroller"]) {
    [self drawScrollerPart:frame named:name state:state];
    return;
  }
  const BOOL pressed = state == GSThemeHighlightedState ||
                       state == GSThemeHighlightedFirstResponderState ||
                       state == GSThemeSelectedState || state == GSThemeSelectedFirstResponderState;
  const BOOL primary = [cell isKindOfClass:[NSButtonCell class]] &&
                       [[(NSButtonCell*)cell keyEquivalent] isEqualToString:@"\r"];
  NSColor* fill = pressed ? Rgb(0xDCE7FA) : [DesktopPalette surface];
  if (state == GSThemeDisabledState) fill = Rgb(0xF7F8FA);
  [fill set];
  [RoundedRect(NSInsetRect(frame, 0.5, 0.5), 4) fill];
  StrokeRounded(frame, 4, primary ? [DesktopPalette accent] : [DesktopPalette line]);
}

- (void)setKeyEquivalent:(NSString*)key forButtonCell:(NSButtonCell*)cell {
  // The toolkit would hang a picture of the return key on the button.
}

- (void)drawScrollerPart:(NSRect)frame named:(NSString*)name state:(GSThemeControlState)state {
  if (![name hasSuffix:@"Knob"]) {
    [[DesktopPalette raised] set];
    NSRectFill(frame);
    return;
  }
  const NSRect knob = NSInsetRect(frame, NSWidth(frame) > 8 ? 3 : 0, NSHeight(frame) > 8 ? 3 : 0);
  const CGFloat radius = (NSWidth(knob) < NSHeight(knob) ? NSWidth(knob) : NSHeight(knob)) / 2;
  [(state == GSThemeHighlightedState ? Rgb(0x8E99A8) : Rgb(0xB4BDC9)) set];
  [RoundedRect(knob, radius) fill];
}

- (NSCell*)cellForScrollerKnob:(BOOL)horizontal {
  NSCell* cell = [super cellForScrollerKnob:horizontal];
  [(NSButtonCell*)cell setImage:nil];
  [(NSButtonCell*)cell setTitle:@""];
  return cell;
}

// Tables

- (void)drawTableHeaderCell:(NSTableHeaderCell*)cell
                  withFrame:(NSRect)frame
                     inView:(NSView*)view
                      state:(GSThemeControlState)state {
  [[DesktopPalette raised] set];
  NSRectFill(frame);
  [[DesktopPalette line] set];
  const CGFloat bottom = [view isFlipped] ? NSMaxY(frame) - 1 : NSMinY(frame);
  NSRectFill(NSMakeRect(NSMinX(frame), bottom, NSWidth(frame), 1));
  NSRectFill(NSMakeRect(NSMaxX(frame) - 1, NSMinY(frame) + 4, 1, NSHeight(frame) - 8));
}

- (void)drawTableCornerView:(NSView*)view withClip:(NSRect)rect {
  [[DesktopPalette raised] set];
  NSRectFill([view bounds]);
}

- (void)drawBrowserHeaderCell:(NSTableHeaderCell*)cell withFrame:(NSRect)rect inView:(NSView*)view {
  [[DesktopPalette raised] set];
  NSRectFill(rect);
}

// Progress bars

- (NSRect)drawProgressIndicatorBezel:(NSRect)bounds withClip:(NSRect)rect {
  [[DesktopPalette surface] set];
  [RoundedRect(NSInsetRect(bounds, 0.5, 0.5), 4) fill];
  StrokeRounded(bounds, 4, [DesktopPalette line]);
  return NSInsetRect(bounds, 2, 2);
}

- (void)drawProgressIndicatorBarDeterminate:(NSRect)bounds {
  if (NSWidth(bounds) < 1) return;
  [[DesktopPalette accent] set];
  [RoundedRect(bounds, 3) fill];
}

// Menus

- (void)drawBackgroundForMenuView:(NSMenuView*)view
                        withFrame:(NSRect)bounds
                        dirtyRect:(NSRect)dirtyRect
                       horizontal:(BOOL)horizontal {
  if (!horizontal) {
    [super drawBackgroundForMenuView:view
                           withFrame:bounds
                           dirtyRect:dirtyRect
                          horizontal:horizontal];
    return;
  }
  [[self menuBarBackgroundColor] set];
  NSRectFill(bounds);
  [[self menuBarBorderColor] set];
  NSRectFill(NSMakeRect(NSMinX(bounds), NSMinY(bounds), NSWidth(bounds), 1));
}

- (NSColor*)menuBorderColorForEdge:(NSRectEdge)edge isHorizontal:(BOOL)horizontal {
  return horizontal && edge != NSMinYEdge ? nil : [self menuBorderColor];
}

- (void)drawBorderAndBackgroundForMenuItemCell:(NSMenuItemCell*)cell
                                     withFrame:(NSRect)frame
                                        inView:(NSView*)view
                                         state:(GSThemeControlState)state
                                  isHorizontal:(BOOL)horizontal {
  const BOOL chosen = state == GSThemeSelectedState || state == GSThemeHighlightedState;
  NSColor* idle = horizontal ? [self menuBarBackgroundColor] : [self menuBackgroundColor];
  [(chosen ? [DesktopPalette accent] : idle) set];
  NSRectFill(horizontal ? frame : NSInsetRect(frame, 1, 0));
}

- (BOOL)menuShouldShowIcon {
  return NO;
}

@end
