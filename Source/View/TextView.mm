#import "View/TextView.h"

#include <string>

#include "Timecode/TimecodeEntry.h"
#import "View/CTimeCode.h"

// Input comes as a string or as an attributed one.
static NSString* PlainText(id text) {
  return [text respondsToSelector:@selector(string)] ? [text string] : text;
}

@interface TextView (Typing)
- (void)showText:(const char*)text;
- (const char*)shownText;
- (void)typeKeys:(const std::string&)keys;
- (void)typeText:(id)text;
- (void)typeFromPasteboard:(NSPasteboard*)board;
@end

@implementation TextView

// clang-format off
- (id)initWithFrame:(NSRect)frame
                   :(NSTextField*)original
                   :(NSTextField*)dummy {
  // clang-format on
  self = [super initWithFrame:frame];
  if (self != nil) {
    settingTime = [[CTimeCode alloc] init];
    orgTextField = original;
    dummyTextField = dummy;
    enable = YES;
  }
  return self;
}

- (void)dealloc {
  [settingTime release];
  [super dealloc];
}

- (void)keyDown:(NSEvent*)event {
  if (!enable) return;
  const char* characters = [[event characters] UTF8String];
  [self timeDataOperation:characters != NULL ? characters[0] : '\0'];
}

- (void)SetUseSign:(BOOL)flag {
  [settingTime SetUseSign:flag];
}

- (void)timeDataOperation:(char)key {
  [self typeKeys:std::string(1, key)];
}

- (BOOL)resignFirstResponder {
  char text[64];
  [settingTime DigestString:[self shownText]];
  [settingTime ComposeString:text];
  [self showText:text];
  [orgTextField setStringValue:[NSString stringWithCString:text encoding:NSUTF8StringEncoding]];
  [self setEditable:NO];
  [self setBackgroundColor:[NSColor whiteColor]];
  return YES;
}

- (BOOL)becomeFirstResponder {
  [self setEditable:YES];
  [self setBackgroundColor:[NSColor colorWithDeviceRed:0.7098039215686275
                                                 green:0.8352941176470589
                                                  blue:1.0
                                                 alpha:1.0]];
  return YES;
}

- (void)setEnabled:(BOOL)flag {
  enable = flag;
}

// The platform asks this before each change that the user makes. The first text is put in from
// outside; from then on the text changes by the rules of the keys alone.

- (BOOL)shouldChangeTextInRange:(NSRange)range replacementString:(NSString*)replacement {
  return [[self string] length] == 0;
}

- (BOOL)shouldChangeTextInRanges:(NSArray*)ranges replacementStrings:(NSArray*)replacements {
  return [[self string] length] == 0;
}

// What types. Input methods and services use the longer forms.

// The first text is not inserted by the platform: its method may call the longer form below, and
// that would end up here again.
- (void)insertText:(id)text {
  if ([[self string] length] == 0) {
    [self setString:PlainText(text)];
  } else {
    [self typeText:text];
  }
}

- (void)insertText:(id)text replacementRange:(NSRange)range {
  [self insertText:text];
}

- (void)paste:(id)sender {
  [self typeFromPasteboard:[NSPasteboard generalPasteboard]];
}

- (void)pasteAsPlainText:(id)sender {
  [self paste:sender];
}

- (void)pasteAsRichText:(id)sender {
  [self paste:sender];
}

- (BOOL)readSelectionFromPasteboard:(NSPasteboard*)board {
  [self typeFromPasteboard:board];
  return YES;
}

- (BOOL)readSelectionFromPasteboard:(NSPasteboard*)board type:(NSString*)type {
  return [self readSelectionFromPasteboard:board];
}

// What does nothing.

- (void)setMarkedText:(id)text selectedRange:(NSRange)selected {
}

- (void)setMarkedText:(id)text selectedRange:(NSRange)selected replacementRange:(NSRange)replaced {
}

- (void)complete:(id)sender {
}

- (void)cut:(id)sender {
}

- (void)delete:(id)sender {
}

- (void)undo:(id)sender {
}

- (void)redo:(id)sender {
}

- (void)updateDragTypeRegistration {
  [self unregisterDraggedTypes];
}

- (BOOL)prepareForDragOperation:(id<NSDraggingInfo>)drag {
  return NO;
}

- (BOOL)performDragOperation:(id<NSDraggingInfo>)drag {
  return NO;
}

// Menus show what there is to choose.
- (BOOL)validateUserInterfaceItem:(id<NSValidatedUserInterfaceItem>)item {
  const SEL dead[] = {@selector(cut:), @selector(delete:), @selector(undo:), @selector(redo:)};
  for (SEL action : dead) {
    if (sel_isEqual([item action], action)) return NO;
  }
  if (sel_isEqual([item action], @selector(paste:))) return enable;
  return [super validateUserInterfaceItem:item];
}

@end

@implementation TextView (Typing)

- (void)showText:(const char*)text {
  [self setString:[NSString stringWithCString:text encoding:NSUTF8StringEncoding]];
}

- (const char*)shownText {
  return [[[self textStorage] string] UTF8String];
}

// Ends at the first key that gives the focus away. The text is shown once, since a clipboard may
// hold millions of characters.
- (void)typeKeys:(const std::string&)keys {
  const std::string before = [self shownText];
  velmora::EntryResult result{before, false};
  for (const char key : keys) {
    result = velmora::TimeDataOperation(result.text, key, [settingTime value]);
    if (result.leave) break;
  }
  if (result.text != before) [self showText:result.text.c_str()];
  if (result.leave) [dummyTextField becomeFirstResponder];
}

// Text that does not come by the keyboard can reach an entry without the focus, which would not
// commit it: it is dropped.
- (void)typeText:(id)text {
  if (!enable || [[self window] firstResponder] != self) return;
  NSString* string = PlainText(text);
  std::string keys;
  for (NSUInteger i = 0; i < [string length]; ++i) {
    const unichar character = [string characterAtIndex:i];
    if (character < 0x80) keys += static_cast<char>(character);  // no key has more than one byte
  }
  [self typeKeys:keys];
}

- (void)typeFromPasteboard:(NSPasteboard*)board {
  [self typeText:[board stringForType:NSStringPboardType]];
}

@end
