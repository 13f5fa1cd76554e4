#import "View/TextConversion.h"

#include "ADL/ShiftJis.h"

NSString* StringFromText(const std::string& text) {
  NSString* string = [NSString stringWithCString:text.c_str() encoding:NSUTF8StringEncoding];
  if (string != nil) return string;
  return [NSString stringWithCString:velmora::ShiftJisToUtf8(text.c_str()).c_str()
                            encoding:NSUTF8StringEncoding];
}

std::string TextFromString(NSString* string) {
  const char* text = [string UTF8String];
  return text != NULL ? text : "";
}
