#pragma once

#import <AppKit/AppKit.h>

#include <string>

#include "Desktop/Logic/SaveRun.h"

// What becomes of a save: how far it is, with a button that cancels it, and then what was left out,
// what is worth knowing, or why nothing was made.
@interface SavePanel : NSObject {
  NSPanel* panel;
  NSTextField* message;
  NSProgressIndicator* bar;
  NSScrollView* resultScroll;
  NSButton* copyButton;
  NSButton* openButton;
  NSButton* cancelButton;  // also closes the result
  velmora::desktop::SaveOutcome outcome;
  BOOL isProgress;
  id target;  // not retained
  SEL cancelAction;
}

// `cancel` is sent to `aTarget`, which is not retained, when a save under way is to end.
- (id)initWithTarget:(id)aTarget cancel:(SEL)cancel;

- (void)showProgressOf:(const velmora::desktop::SaveRequest&)request;
- (void)setShare:(double)share;
- (void)showCancelling;
- (void)showResult:(const velmora::desktop::SaveOutcome&)anOutcome;
- (void)hide;

@end
