#import "View/TextView.h"

#include <string>

#import "View/CTimeCode.h"
#include "Timecode/TimecodeEntry.h"

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

- (void)showText:(const char*)text {
  [self setString:[NSString stringWithCString:text encoding:NSUTF8StringEncoding]];
}

- (const char*)shownText {
  return [[[self textStorage] string] UTF8String];
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
  const std::string before = [self shownText];
  const velmora::EntryResult result = velmora::TimeDataOperation(before, key, [settingTime value]);
  if (result.text != before) [self showText:result.text.c_str()];
  if (result.leave) [dummyTextField becomeFirstResponder];
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

@end
