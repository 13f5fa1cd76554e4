#pragma once

#import <AppKit/AppKit.h>

#include <vector>

#include "Desktop/Logic/ProjectReport.h"

// The line at the window's bottom. What does not fit is in its tool tip, and a click on a line
// about missing files lists all of them.
@interface StatusLine : NSView {
  NSTextField* field;
  NSString* list;
}

// `all` is the text of the list, empty for none.
- (void)showItems:(const std::vector<velmora::desktop::StatusItem>&)items list:(NSString*)all;

@end
