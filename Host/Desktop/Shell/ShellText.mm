#import "Desktop/Shell/ShellText.h"

#import "Desktop/Theme/DesktopTheme.h"

NSString* StringOf(const std::string& text) {
  NSString* string = [[NSString alloc] initWithBytes:text.data()
                                              length:text.size()
                                            encoding:NSUTF8StringEncoding];
  if (string == nil) {
    string = [[NSString alloc] initWithBytes:text.data()
                                      length:text.size()
                                    encoding:NSISOLatin1StringEncoding];
  }
  return [string autorelease];
}

std::string TextOf(NSString* string) {
  const char* text = [string UTF8String];
  return text == nullptr ? std::string() : std::string(text);
}

NSTextField* MakeLabel(NSRect frame, CGFloat fontSize) {
  NSTextField* label = [[NSTextField alloc] initWithFrame:frame];
  [label setEditable:NO];
  [label setSelectable:NO];
  [label setBordered:NO];
  [label setBezeled:NO];
  [label setDrawsBackground:NO];
  [label setFont:[NSFont systemFontOfSize:fontSize]];
  [label setTextColor:[DesktopPalette text]];
  [[label cell] setLineBreakMode:NSLineBreakByTruncatingTail];
  return label;
}
