#pragma once

#import <Foundation/Foundation.h>

#include <string>

// Where texts cross between the portable model, whose texts are UTF-8, and the platform.

// A text of the model. What is no UTF-8 comes from a project as its bytes stand there, and is read
// as Shift-JIS, as the project's other texts are. Never nil.
NSString* StringFromText(const std::string& text);

// The UTF-8 form of a string; nil gives the empty text.
std::string TextFromString(NSString* string);
