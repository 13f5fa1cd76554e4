#import "Desktop/Theme/DesktopTheme.h"

#include <algorithm>

#include "Desktop/Theme/Drawing.h"
#include "Desktop/Theme/ToolkitColors.h"

using namespace velmora::desktop;

namespace {

NSString* const kThemeName = @"VelmoraDesktop";

constexpr CGFloat kCornerRadius = 4;  // of buttons and progress bars
constexpr CGFloat kKnobInset = 3;     // between a scroller's slot and its knob

NSBezierPath* RoundedRect(NSRect rect, CGFloat radius) {
  return [NSBezierPath bezierPathWithRoundedRect:rect xRadius:radius yRadius:radius];
}

// An outline of whole pixels: a line of width 1 is crisp when it runs through pixel centres.
void StrokeRounded(NSRect frame, CGFloat radius, Tone tone) {
  NSBezierPath* path = RoundedRect(NSInsetRect(frame, 0.5, 0.5), radius);
  [path setLineWidth:1];
  [ColorOf(tone) set];
  [path stroke];
}

void DrawRounded(NSRect frame, CGFloat radius, Tone face, Tone outline) {
  [ColorOf(face) set];
  [RoundedRect(NSInsetRect(frame, 0.5, 0.5), radius) fill];
  StrokeRounded(frame, radius, outline);
}

NSRect Framed(NSRect border) {
  [ColorOf(Tone::Line) set];
  NSFrameRect(border);
  return NSInsetRect(border, 2, 2);
}

BOOL IsPressed(GSThemeControlState state) {
  return state == GSThemeHighlightedState || state == GSThemeHighlightedFirstResponderState ||
         state == GSThemeSelectedState || state == GSThemeSelectedFirstResponderState;
}

}  // namespace

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
  // The toolkit has noted that colours have changed, its own as it made them, and would tell when
  // the application runs: by then the window would stand, and all of it would be drawn once more.
  [[NSNotificationQueue defaultQueue]
      dequeueNotificationsMatching:[NSNotification
                                       notificationWithName:NSColorListDidChangeNotification
                                                     object:nil]
                      coalesceMask:NSNotificationCoalescingOnName];
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

- (void)dealloc {
  [colorList release];
  [super dealloc];
}

- (NSString*)name {
  return kThemeName;
}

- (NSColorList*)colors {
  if (colorList == nil) colorList = MakeSystemColors();
  return colorList;
}

- (NSColor*)colorNamed:(NSString*)name state:(GSThemeControlState)state {
  NSColor* color = ThemeColorNamed(name);
  return color != nil ? color : [super colorNamed:name state:state];
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
  [ColorOf(Tone::Line) set];
  NSFrameRect(frame);
}

- (NSSize)sizeForBorderType:(NSBorderType)type {
  return type == NSNoBorder ? NSZeroSize : NSMakeSize(1, 1);
}

- (void)drawFocusFrame:(NSRect)frame view:(NSView*)view {
  StrokeRounded(frame, 3, Tone::Accent);
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
  const BOOL pressed = IsPressed(state);
  const BOOL primary = [cell isKindOfClass:[NSButtonCell class]] &&
                       [[(NSButtonCell*)cell keyEquivalent] isEqualToString:@"\r"];
  Tone face = pressed ? Tone::Selection : Tone::Surface;
  if (state == GSThemeDisabledState) face = Tone::DisabledSurface;
  DrawRounded(frame, kCornerRadius, face, primary ? Tone::Accent : Tone::Line);
}

- (void)setKeyEquivalent:(NSString*)key forButtonCell:(NSButtonCell*)cell {
  // The toolkit would hang a picture of the return key on the button.
}

- (void)drawScrollerPart:(NSRect)frame named:(NSString*)name state:(GSThemeControlState)state {
  if (![name hasSuffix:@"Knob"]) {
    Fill(frame, Tone::Raised);
    return;
  }
  const auto inset = [](CGFloat extent) { return extent > 8 ? kKnobInset : 0; };
  const NSRect knob = NSInsetRect(frame, inset(NSWidth(frame)), inset(NSHeight(frame)));
  [ColorOf(state == GSThemeHighlightedState ? Tone::PressedKnob : Tone::Knob) set];
  [RoundedRect(knob, std::min(NSWidth(knob), NSHeight(knob)) / 2) fill];
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
  Fill(frame, Tone::Raised);
  const CGFloat bottom = [view isFlipped] ? NSMaxY(frame) - 1 : NSMinY(frame);
  Fill(NSMakeRect(NSMinX(frame), bottom, NSWidth(frame), 1), Tone::Line);
  Fill(NSMakeRect(NSMaxX(frame) - 1, NSMinY(frame) + 4, 1, NSHeight(frame) - 8), Tone::Line);
}

- (void)drawTableCornerView:(NSView*)view withClip:(NSRect)rect {
  Fill([view bounds], Tone::Raised);
}

- (void)drawBrowserHeaderCell:(NSTableHeaderCell*)cell withFrame:(NSRect)rect inView:(NSView*)view {
  Fill(rect, Tone::Raised);
}

// Progress bars

// Before its first bar the toolkit looks for twenty pictures of moving ones, two of them through
// every folder and type: a twentieth of the start. A bar with a known end has no picture.
- (void)drawProgressIndicator:(NSProgressIndicator*)bar
                   withBounds:(NSRect)bounds
                     withClip:(NSRect)clip
                      atCount:(int)count
                     forValue:(double)share {
  if ([bar style] != NSProgressIndicatorBarStyle || [bar isIndeterminate] || [bar isVertical] ||
      ![bar isBezeled]) {
    [super drawProgressIndicator:bar withBounds:bounds withClip:clip atCount:count forValue:share];
    return;
  }
  NSRect filled = [self drawProgressIndicatorBezel:bounds withClip:clip];
  filled.size.width *= share;
  [self drawProgressIndicatorBarDeterminate:NSIntersectionRect(filled, clip)];
}

- (NSRect)drawProgressIndicatorBezel:(NSRect)bounds withClip:(NSRect)rect {
  DrawRounded(bounds, kCornerRadius, Tone::Surface, Tone::Line);
  return NSInsetRect(bounds, 2, 2);
}

- (void)drawProgressIndicatorBarDeterminate:(NSRect)bounds {
  if (NSWidth(bounds) < 1) return;
  [ColorOf(Tone::Accent) set];
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
  [(chosen ? ColorOf(Tone::Accent) : idle) set];
  NSRectFill(horizontal ? frame : NSInsetRect(frame, 1, 0));
}

- (BOOL)menuShouldShowIcon {
  return NO;
}

@end
