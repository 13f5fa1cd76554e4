#pragma once

#import <AppKit/AppKit.h>

// The controls of panels and bars, in the window's sizes. All are owned by the caller.
namespace velmora::desktop {

[[nodiscard]] NSButton* MakeButton(NSRect frame, NSString* title, id target, SEL action);
[[nodiscard]] NSButton* MakeCheckBox(NSRect frame, NSString* title);

// A bordered text that can be selected and copied but not edited, in a view that scrolls it.
[[nodiscard]] NSScrollView* MakeTextScroll(NSRect frame);
[[nodiscard]] NSTextView* TextIn(NSScrollView* scroll);
// Shows a text from its beginning.
void ShowText(NSScrollView* scroll, NSString* text);

// A table without columns, in a view that scrolls it.
[[nodiscard]] NSScrollView* MakeTableScroll(NSRect frame, id dataSourceAndDelegate);
[[nodiscard]] NSTableView* TableIn(NSScrollView* scroll);
// A column of one line of text, which cannot be edited. Retained by the table.
NSTableColumn* AddColumn(NSTableView* table, NSString* identifier, NSString* title, CGFloat width);

// Puts a text on the clipboard.
void CopyToClipboard(NSString* text);

}  // namespace velmora::desktop
