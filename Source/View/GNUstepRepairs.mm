// What the view expects of AppKit and GNUstep lacks. Built on GNUstep alone. All of it is done when
// the bundle is loaded, before the first nib is.

#import "View/GNUstepRepairs.h"

#include <cmath>

#import "View/ExchangeMethod.h"
#import "View/Velmora_ViewController.h"

using velmora::view::ExchangeMethod;

namespace {

id (*originalTableInit)(id, SEL, NSCoder*);
id (*originalProgressInit)(id, SEL, NSCoder*);
void (*originalSetProgress)(id, SEL, double);
id (*originalFontInit)(id, SEL, NSCoder*);
void (*originalTableDealloc)(id, SEL);
void (*originalTile)(id, SEL);
void (*originalAlignCenter)(id, SEL, id);
NSInteger (*originalRunModal)(id, SEL);
NSImage* (*originalImageNamed)(id, SEL, NSString*);

// Identifiers of tables by the table's address. Nibs are loaded, and their views go, on the main
// thread.
NSMapTable* Identifiers() {
  static NSMapTable* identifiers =
      NSCreateMapTable(NSNonOwnedPointerMapKeyCallBacks, NSObjectMapValueCallBacks, 8);
  return identifiers;
}

id InitTable(id self, SEL selector, NSCoder* coder) {
  self = originalTableInit(self, selector, coder);
  if (self != nil && [coder allowsKeyedCoding] && [coder containsValueForKey:@"identifier"]) {
    NSMapInsert(Identifiers(), self, [coder decodeObjectForKey:@"identifier"]);
    // Here a row's height has the space between rows in it, which AppKit adds to the height.
    [self setRowHeight:[self rowHeight] + [self intercellSpacing].height];
  }
  return self;
}

void DeallocTable(id self, SEL selector) {
  NSMapRemove(Identifiers(), self);
  originalTableDealloc(self, selector);
}

// A table that comes from a nib leaves its columns alone when its scroll view is resized.
void Tile(id self, SEL selector) {
  static BOOL tiling = NO;
  originalTile(self, selector);
  id table = [self documentView];
  if (tiling || NSMapGet(Identifiers(), table) == NULL) return;
  NSTableColumn* last = [[table tableColumns] lastObject];
  const NSRect lastColumn = [table rectOfColumn:[table numberOfColumns] - 1];
  tiling = YES;
  [last setWidth:NSWidth([[self contentView] bounds]) - NSMinX(lastColumn)];
  tiling = NO;
}

// A variable of a progress bar that has no setter, or one that does too much. Null in a toolkit
// that names it otherwise.
template <class T>
T* ProgressVariable(id bar, const char* name) {
  Ivar variable = class_getInstanceVariable([NSProgressIndicator class], name);
  if (variable == nullptr) return nullptr;
  return reinterpret_cast<T*>(reinterpret_cast<char*>(bar) + ivar_getOffset(variable));
}

// A progress bar that is not to be seen while it stands still never is: a bar with a known end
// counts as standing still for ever, and the setter does nothing. All bars of a nib are shown.
id InitProgress(id self, SEL selector, NSCoder* coder) {
  self = originalProgressInit(self, selector, coder);
  BOOL* const shown =
      self != nil ? ProgressVariable<BOOL>(self, "_isDisplayedWhenStopped") : nullptr;
  if (shown != nullptr) *shown = YES;
  return self;
}

// The pixel at which the bar ends for a value.
double EndOfBar(NSProgressIndicator* bar, double value) {
  const double span = [bar maxValue] - [bar minValue];
  return span > 0 ? std::floor((value - [bar minValue]) / span * NSWidth([bar bounds])) : -1;
}

// A new value has the whole bar drawn anew, with all that lies below it, which takes three quarters
// of the time that a spot of 10,000 regions asks of the main thread. Most steps of a long spot move
// the bar by less than a pixel: those only set the value.
void SetProgress(id self, SEL selector, double value) {
  NSProgressIndicator* const bar = self;
  double* const held = ProgressVariable<double>(bar, "_doubleValue");
  const bool stands = held != nullptr && ![bar isIndeterminate] && ![bar isVertical] &&
                      EndOfBar(bar, *held) == EndOfBar(bar, value);
  if (stands) {
    *held = value;
  } else {
    originalSetProgress(self, selector, value);
  }
}

// Of a nib's system fonts only the plain one is known.
id InitFont(id self, SEL selector, NSCoder* coder) {
  self = originalFontInit(self, selector, coder);
  if (![coder allowsKeyedCoding] || ![coder containsValueForKey:@"metaFont"]) return self;
  NSString* name = [coder decodeObjectForKey:@"metaFont"];
  if (![name isEqual:@"systemBold"]) return self;
  NSFont* bold = [[NSFont boldSystemFontOfSize:[self pointSize]] retain];
  [self release];
  return bold;
}

// Aligning changes only text that stands there. An empty view is to remember it for what will be
// typed.
void AlignCenter(id self, SEL selector, id sender) {
  originalAlignCenter(self, selector, sender);
  if ([[self textStorage] length] > 0) return;
  NSMutableDictionary* typing = [[[self typingAttributes] mutableCopy] autorelease];
  NSParagraphStyle* paragraph = [typing objectForKey:NSParagraphStyleAttributeName];
  if (paragraph == nil) paragraph = [NSParagraphStyle defaultParagraphStyle];
  NSMutableParagraphStyle* centered = [[paragraph mutableCopy] autorelease];
  [centered setAlignment:NSCenterTextAlignment];
  [typing setObject:centered forKey:NSParagraphStyleAttributeName];
  [self setTypingAttributes:typing];
}

// An alert's headline is one line, and what does not fit is cut; only the text below it wraps.
NSInteger RunModal(id self, SEL selector) {
  if ([[self informativeText] length] == 0) {
    [self setInformativeText:[self messageText]];
    [self setMessageText:@"Velmora"];
  }
  return originalRunModal(self, selector);
}

// A picture that a nib names is looked for in the main bundle only; the view's lie in its own. They
// come first: the toolkit tries every folder and every type of picture before it gives a name up.
// In a host that has it read 200 rare types too, that took a tenth of the start.
NSImage* FindImage(id self, SEL selector, NSString* name) {
  if (![name isEqualToString:@"Spot_Off"] && ![name isEqualToString:@"Cancel_Off"]) {
    return originalImageNamed(self, selector, name);
  }
  NSString* resources = [[NSBundle bundleForClass:[Velmora_ViewController class]] resourcePath];
  NSString* pictures = [resources stringByAppendingPathComponent:@"KestaneGUI.bundle"];
  NSString* path = [[NSBundle bundleWithPath:pictures] pathForResource:name ofType:@"png"];
  if (path == nil) return originalImageNamed(self, selector, name);
  return [[[NSImage alloc] initWithContentsOfFile:path] autorelease];
}

}  // namespace

@implementation NSView (VelmoraRepairs)

- (NSString*)identifier {
  return static_cast<NSString*>(NSMapGet(Identifiers(), self));
}

- (void)addTrackingArea:(NSTrackingArea*)area {
  [self addTrackingRect:[area rect] owner:[area owner] userData:[area userInfo] assumeInside:NO];
}

@end

@interface VelmoraRepairs : NSObject
@end

@implementation VelmoraRepairs

+ (void)load {
  originalTableInit = ExchangeMethod([NSTableView class], @selector(initWithCoder:), InitTable);
  originalTableDealloc = ExchangeMethod([NSTableView class], @selector(dealloc), DeallocTable);
  originalTile = ExchangeMethod([NSScrollView class], @selector(tile), Tile);
  originalProgressInit =
      ExchangeMethod([NSProgressIndicator class], @selector(initWithCoder:), InitProgress);
  originalSetProgress =
      ExchangeMethod([NSProgressIndicator class], @selector(setDoubleValue:), SetProgress);
  originalFontInit = ExchangeMethod([NSFont class], @selector(initWithCoder:), InitFont);
  originalAlignCenter = ExchangeMethod([NSTextView class], @selector(alignCenter:), AlignCenter);
  originalRunModal = ExchangeMethod([NSAlert class], @selector(runModal), RunModal);
  originalImageNamed =
      ExchangeMethod(object_getClass([NSImage class]), @selector(imageNamed:), FindImage);
}

@end
