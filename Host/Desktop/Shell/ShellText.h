#pragma once

#import <AppKit/AppKit.h>

#include <string>

// Texts cross between the portable part and the toolkit here, as UTF-8.

// Autoreleased. Bytes that are no UTF-8 count as Latin-1, so that a text is never lost.
NSString* StringOf(const std::string& text);
std::string TextOf(NSString* string);

// A piece of text that cannot be edited or selected; owned by the caller.
NSTextField* MakeLabel(NSRect frame, CGFloat fontSize);
