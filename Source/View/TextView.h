#pragma once

#import <AppKit/AppKit.h>

@class CTimeCode;

// A timecode entry field that behaves like a calculator's display: digits enter at the right, and
// nothing but the keys of a timecode does anything. Giving up the focus commits the text: it is
// limited, shown in its final form, and handed to a plain field from which a spot reads it.
//
// The text always has its 12 characters. A text view has many doors to its text beside the
// keyboard: the clipboard, drag and drop, services, input methods, menu commands. Each of them
// either types its characters through the rules of the keys, one by one, or does nothing.
@interface TextView : NSTextView {
  CTimeCode* settingTime;       // the last committed value
  NSTextField* orgTextField;    // receives the committed text; not owned
  NSTextField* dummyTextField;  // takes the focus away; not owned
  BOOL enable;                  // keys are handled
}

// clang-format off
- (id)initWithFrame:(NSRect)frame
                   :(NSTextField*)original
                   :(NSTextField*)dummy;
// clang-format on

// With a sign the field takes + and -, and ends at 12 hours.
- (void)SetUseSign:(BOOL)flag;

// What one key does, given by the first byte of its UTF-8 text.
- (void)timeDataOperation:(char)key;

// Lets keys in or swallows them; the focus may come and go all the same.
- (void)setEnabled:(BOOL)flag;

@end
