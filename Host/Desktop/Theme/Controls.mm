#import "Desktop/Theme/Controls.h"

#include "Desktop/Theme/Metrics.h"
#include "Desktop/Theme/Palette.h"

namespace velmora::desktop {
namespace {

constexpr CGFloat kRowHeight = 18;
constexpr CGFloat kLeastColumnWidth = 40;
constexpr NSSize kTextInset = {6, 6};

void MakeScrolling(NSScrollView* scroll) {
  [scroll setBorderType:NSBezelBorder];
  [scroll setHasVerticalScroller:YES];
  [scroll setAutohidesScrollers:YES];
}

}  // namespace

NSButton* MakeButton(NSRect frame, NSString* title, id target, SEL action) {
  NSButton* button = [[NSButton alloc] initWithFrame:frame];
  [button setBezelStyle:NSRoundedBezelStyle];
  [button setTitle:title];
  [button setTarget:target];
  [button setAction:action];
  return button;
}

NSButton* MakeCheckBox(NSRect frame, NSString* title) {
  NSButton* box = [[NSButton alloc] initWithFrame:frame];
  [box setButtonType:NSSwitchButton];
  [box setTitle:title];
  [box setFont:[NSFont systemFontOfSize:kTextSize]];
  return box;
}

NSScrollView* MakeTextScroll(NSRect frame) {
  NSScrollView* scroll = [[NSScrollView alloc] initWithFrame:frame];
  MakeScrolling(scroll);
  const NSSize inside = [scroll contentSize];
  NSTextView* text = [[[NSTextView alloc]
      initWithFrame:NSMakeRect(0, 0, inside.width, inside.height)] autorelease];
  [text setEditable:NO];
  [text setRichText:NO];
  [text setFont:[NSFont systemFontOfSize:kTextSize]];
  [text setTextColor:ColorOf(Tone::Text)];
  [text setTextContainerInset:kTextInset];
  [text setMinSize:NSMakeSize(0, inside.height)];
  [text setMaxSize:NSMakeSize(1e7, 1e7)];
  [text setVerticallyResizable:YES];
  [text setHorizontallyResizable:NO];
  [text setAutoresizingMask:NSViewWidthSizable];
  [[text textContainer] setContainerSize:NSMakeSize(inside.width, 1e7)];
  [[text textContainer] setWidthTracksTextView:YES];
  [scroll setDocumentView:text];
  return scroll;
}

NSTextView* TextIn(NSScrollView* scroll) {
  return (NSTextView*)[scroll documentView];
}

void ShowText(NSScrollView* scroll, NSString* text) {
  [TextIn(scroll) setString:text];
  [TextIn(scroll) setSelectedRange:NSMakeRange(0, 0)];
  [TextIn(scroll) scrollRangeToVisible:NSMakeRange(0, 0)];
}

NSScrollView* MakeTableScroll(NSRect frame, id dataSourceAndDelegate) {
  NSScrollView* scroll = [[NSScrollView alloc] initWithFrame:frame];
  MakeScrolling(scroll);
  NSTableView* table = [[[NSTableView alloc]
      initWithFrame:NSMakeRect(0, 0, [scroll contentSize].width, [scroll contentSize].height)]
      autorelease];
  [table setRowHeight:kRowHeight];
  [table setUsesAlternatingRowBackgroundColors:YES];
  [table setAllowsColumnReordering:NO];
  [table setDataSource:dataSourceAndDelegate];
  [table setDelegate:dataSourceAndDelegate];
  [scroll setDocumentView:table];
  return scroll;
}

NSTableView* TableIn(NSScrollView* scroll) {
  return (NSTableView*)[scroll documentView];
}

NSTableColumn* AddColumn(NSTableView* table, NSString* identifier, NSString* title, CGFloat width) {
  NSTableColumn* column = [[[NSTableColumn alloc] initWithIdentifier:identifier] autorelease];
  [[column headerCell] setStringValue:title];
  [[column headerCell] setFont:[NSFont systemFontOfSize:kTextSize]];
  [[column headerCell] setAlignment:NSLeftTextAlignment];
  [column setWidth:width];
  [column setMinWidth:kLeastColumnWidth];
  [column setEditable:NO];
  NSCell* cell = (NSCell*)[column dataCell];
  [cell setFont:[NSFont systemFontOfSize:kTextSize]];
  [cell setLineBreakMode:NSLineBreakByTruncatingTail];
  [table addTableColumn:column];
  return column;
}

void CopyToClipboard(NSString* text) {
  NSPasteboard* board = [NSPasteboard generalPasteboard];
  [board declareTypes:[NSArray arrayWithObject:NSStringPboardType] owner:nil];
  [board setString:text forType:NSStringPboardType];
}

}  // namespace velmora::desktop
