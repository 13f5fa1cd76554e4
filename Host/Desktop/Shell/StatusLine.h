#pragma once

#import <AppKit/AppKit.h>

#include <vector>

#include "Desktop/Logic/ProjectReport.h"

// The line at the window's bottom. What does not fit is in its tool tip, and a click on a line
// about missing files lists all of them. Two buttons stand at its end when they have something to
// do.
@interface StatusLine : NSView {
  NSTextField* field;
  NSAttributedString* full;  // the text, of which the field shows what it has room for
  NSString* list;
  NSButton* findingsButton;
  NSButton* prepareButton;
}

// The actions are sent to `target`, which is not retained.
- (id)initWithFrame:(NSRect)frame target:(id)target findings:(SEL)findings prepare:(SEL)prepare;

- (void)offerFindings:(BOOL)hasFindings prepare:(BOOL)canPrepare;

// `all` is the text of the list, empty for none.
- (void)showItems:(const std::vector<velmora::desktop::StatusItem>&)items list:(NSString*)all;

@end
