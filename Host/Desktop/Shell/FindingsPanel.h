#pragma once

#import <AppKit/AppKit.h>

#include "Desktop/Logic/FindingsReport.h"

// The list of what a check found: a row for each finding, sorted by a click on a heading, and in
// full below what the selected row has no room for. Rows are copied as text, the selected ones by
// the menu's Copy, all of them by a button.
@interface FindingsPanel : NSObject {
  NSPanel* panel;
  NSTextField* headline;
  NSScrollView* tableScroll;
  NSScrollView* detailScroll;
  NSButton* copyButton;
  NSButton* prepareButton;
  velmora::desktop::FindingsList findings;
  NSTableColumn* sortColumn;  // the table's
  BOOL falling;
}

// `prepare` is sent to `target`, which is not retained, by the button that it names.
- (id)initWithTarget:(id)target prepare:(SEL)prepare;

// Takes over the findings of another project, null for none, on view or not.
- (void)setChecked:(velmora::desktop::CheckedPtr)checked;

- (void)show;
- (void)hide;
- (BOOL)isShown;

@end
