#import "Desktop/Shell/FindingsPanel.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "Desktop/Theme/Controls.h"
#include "Desktop/Theme/Drawing.h"
#include "Desktop/Theme/Metrics.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;

namespace {

constexpr NSSize kUsualSize = {940, 520};
constexpr NSSize kLeastSize = {520, 420};
constexpr CGFloat kDetailHeight = 150;
constexpr CGFloat kButtonWidth = 96;
constexpr CGFloat kLeastTextWidth = 150;  // narrower, and the table scrolls

struct Column {
  FindingColumn column;
  NSString* identifier;
  NSString* title;
  CGFloat width;
};

const Column kColumns[] = {
    {FindingColumn::Gravity, @"Gravity", @"Gravity", 84},
    {FindingColumn::Line, @"Line", @"Line", 58},
    {FindingColumn::Event, @"Event", @"Event", 58},
    {FindingColumn::Text, @"Text", @"What stands there", 250},
    {FindingColumn::Effect, @"Effect", @"What happens", 230},
    {FindingColumn::Remedy, @"Remedy", @"What helps", 220},
};

FindingColumn ColumnOf(NSTableColumn* tableColumn) {
  for (const Column& column : kColumns) {
    if ([column.identifier isEqualToString:[tableColumn identifier]]) return column.column;
  }
  return FindingColumn::Gravity;
}

bool IsText(FindingColumn column) {
  return column == FindingColumn::Text || column == FindingColumn::Effect ||
         column == FindingColumn::Remedy;
}

Tone ToneOfGravity(velmora::check::Severity severity) {
  switch (severity) {
    case velmora::check::Severity::Fails:
    case velmora::check::Severity::Lost:
      return Tone::Problem;
    case velmora::check::Severity::Misplaced:
      return Tone::Notice;
    case velmora::check::Severity::Note:
      break;
  }
  return Tone::QuietText;
}

std::vector<std::size_t> RowsIn(NSIndexSet* set) {
  std::vector<std::size_t> rows;
  for (NSUInteger row = [set firstIndex]; row != NSNotFound; row = [set indexGreaterThanIndex:row])
    rows.push_back(row);
  return rows;
}

}  // namespace

@interface FindingsPanel (Building)
- (void)makePanel;
- (void)fillWithTarget:(id)target prepare:(SEL)prepare;
- (void)addButtonsTo:(NSView*)content target:(id)target prepare:(SEL)prepare;
@end

@interface FindingsPanel (Showing)
- (void)shareWidth;
- (void)sort;
- (void)showDetail;
- (void)copyAll:(id)sender;
- (void)close:(id)sender;
@end

@implementation FindingsPanel

- (id)initWithTarget:(id)target prepare:(SEL)prepare {
  self = [super init];
  if (self == nil) return nil;
  [self makePanel];
  [self fillWithTarget:target prepare:prepare];
  [self setChecked:nullptr];
  return self;
}

- (void)dealloc {
  [TableIn(tableScroll) setDataSource:nil];
  [TableIn(tableScroll) setDelegate:nil];
  [panel setDelegate:nil];
  [panel release];
  [headline release];
  [tableScroll release];
  [detailScroll release];
  [copyButton release];
  [prepareButton release];
  [super dealloc];
}

- (void)setChecked:(CheckedPtr)checked {
  const BOOL canPrepare = checked != nullptr && CanPrepare(*checked);
  findings = FindingsList(std::move(checked));
  [headline setStringValue:StringFromText(findings.Headline())];
  [headline setToolTip:[headline stringValue]];
  [prepareButton setEnabled:canPrepare];
  [copyButton setEnabled:findings.RowCount() > 0];
  [self sort];
  NSTableView* table = TableIn(tableScroll);
  [table reloadData];
  [table deselectAll:nil];
  if (findings.RowCount() > 0) {
    [table selectRowIndexes:[NSIndexSet indexSetWithIndex:0] byExtendingSelection:NO];
    [table scrollRowToVisible:0];
  }
  [self showDetail];
}

- (void)show {
  [panel makeKeyAndOrderFront:nil];
  [panel makeFirstResponder:TableIn(tableScroll)];
}

- (void)hide {
  [panel orderOut:nil];
}

- (BOOL)isShown {
  return [panel isVisible];
}

// The table's data source and delegate

- (NSInteger)numberOfRowsInTableView:(NSTableView*)table {
  return static_cast<NSInteger>(findings.RowCount());
}

- (id)tableView:(NSTableView*)table
    objectValueForTableColumn:(NSTableColumn*)column
                          row:(NSInteger)row {
  if (row < 0 || static_cast<std::size_t>(row) >= findings.RowCount()) return nil;
  return StringFromText(findings.CellText(static_cast<std::size_t>(row), ColumnOf(column)));
}

- (void)tableView:(NSTableView*)table
    willDisplayCell:(id)cell
     forTableColumn:(NSTableColumn*)column
                row:(NSInteger)row {
  if (static_cast<std::size_t>(row) >= findings.RowCount()) return;
  const BOOL isGravity = ColumnOf(column) == FindingColumn::Gravity;
  const Tone tone = ToneOfGravity(findings.At(static_cast<std::size_t>(row)).severity);
  [cell setTextColor:ColorOf(isGravity ? tone : Tone::Text)];
}

- (void)tableViewSelectionDidChange:(NSNotification*)notification {
  [self showDetail];
}

// A heading sorts by its column, once more the other way round. The selected finding stays in view.
- (void)tableView:(NSTableView*)table didClickTableColumn:(NSTableColumn*)column {
  const NSInteger selected = [table selectedRow];
  const std::size_t number =
      selected >= 0 ? findings.NumberOf(static_cast<std::size_t>(selected)) : 0;
  falling = column == sortColumn && !falling;
  sortColumn = column;
  [self sort];
  [table reloadData];
  if (selected < 0) return;
  const std::size_t row = findings.RowOf(number);
  [table selectRowIndexes:[NSIndexSet indexSetWithIndex:row] byExtendingSelection:NO];
  [table scrollRowToVisible:static_cast<NSInteger>(row)];
}

// The panel's delegate

- (void)windowDidResize:(NSNotification*)notification {
  [self shareWidth];
}

// What the menu asks of the table comes here.

- (void)copy:(id)sender {
  const std::vector<std::size_t> rows = RowsIn([TableIn(tableScroll) selectedRowIndexes]);
  if (!rows.empty()) CopyToClipboard(StringFromText(findings.CopyText(rows)));
}

@end

@implementation FindingsPanel (Building)

- (void)makePanel {
  panel = [[NSPanel alloc]
      initWithContentRect:NSMakeRect(0, 0, kUsualSize.width, kUsualSize.height)
                styleMask:NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask
                  backing:NSBackingStoreBuffered
                    defer:YES];
  [panel setTitle:@"Findings"];
  [panel setReleasedWhenClosed:NO];
  [panel setHidesOnDeactivate:NO];
  [panel setFloatingPanel:NO];
  [panel setBecomesKeyOnlyIfNeeded:NO];
  const NSRect least = NSMakeRect(0, 0, kLeastSize.width, kLeastSize.height);
  [panel setMinSize:[panel frameRectForContentRect:least].size];
  [panel setDelegate:(id)self];
  [panel center];
}

- (void)fillWithTarget:(id)target prepare:(SEL)prepare {
  NSView* content = [panel contentView];
  const CGFloat width = NSWidth([content bounds]) - 2 * kWindowMargin;
  CGFloat top = NSHeight([content bounds]) - kWindowMargin - kLabelHeight;

  headline = MakeLabel(NSMakeRect(kWindowMargin, top, width, kLabelHeight), kTitleSize);
  [headline setAutoresizingMask:NSViewWidthSizable | NSViewMinYMargin];
  [content addSubview:headline];

  const CGFloat detailBottom = kWindowMargin + kControlHeight + kWindowMargin;
  const CGFloat tableBottom = detailBottom + kDetailHeight + kControlGap;
  tableScroll = MakeTableScroll(
      NSMakeRect(kWindowMargin, tableBottom, width, top - kControlGap - tableBottom), self);
  [tableScroll setHasHorizontalScroller:YES];
  [tableScroll setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  NSTableView* table = TableIn(tableScroll);
  [table setAllowsMultipleSelection:YES];
  for (const Column& column : kColumns)
    AddColumn(table, column.identifier, column.title, column.width);
  for (NSString* number : {@"Line", @"Event"}) {
    NSTableColumn* column = [table tableColumnWithIdentifier:number];
    [(NSCell*)[column dataCell] setAlignment:NSRightTextAlignment];
    [[column headerCell] setAlignment:NSRightTextAlignment];
  }
  sortColumn = [[table tableColumns] objectAtIndex:0];
  [[[table tableColumns] lastObject] setMinWidth:kLeastTextWidth];
  [table setColumnAutoresizingStyle:NSTableViewNoColumnAutoresizing];
  [self shareWidth];
  [content addSubview:tableScroll];

  detailScroll = MakeTextScroll(NSMakeRect(kWindowMargin, detailBottom, width, kDetailHeight));
  [detailScroll setAutoresizingMask:NSViewWidthSizable | NSViewMaxYMargin];
  [content addSubview:detailScroll];
  [self addButtonsTo:content target:target prepare:prepare];
  [panel setInitialFirstResponder:table];
}

- (void)addButtonsTo:(NSView*)content target:(id)target prepare:(SEL)prepare {
  NSRect place = NSMakeRect(kWindowMargin, kWindowMargin, kButtonWidth, kControlHeight);
  copyButton = MakeButton(place, @"Copy All", self, @selector(copyAll:));
  [copyButton setToolTip:@"Copies the whole list as text"];
  place.origin.x = NSWidth([content bounds]) - kWindowMargin - kButtonWidth;
  NSButton* closeButton = MakeButton(place, @"Close", self, @selector(close:));
  [closeButton setKeyEquivalent:@"\e"];
  place.origin.x -= kButtonWidth + kControlGap;
  prepareButton = MakeButton(place, @"Prepare\u2026", target, prepare);
  for (NSButton* button : {closeButton, prepareButton})
    [button setAutoresizingMask:NSViewMinXMargin | NSViewMaxYMargin];
  [copyButton setAutoresizingMask:NSViewMaxXMargin | NSViewMaxYMargin];
  for (NSButton* button : {copyButton, prepareButton, closeButton}) [content addSubview:button];

  NSView* const circle[] = {TableIn(tableScroll), TextIn(detailScroll), copyButton, prepareButton,
                            closeButton};
  constexpr std::size_t kCount = sizeof circle / sizeof *circle;
  for (std::size_t i = 0; i < kCount; ++i) [circle[i] setNextKeyView:circle[(i + 1) % kCount]];
  [closeButton release];
}

@end

@implementation FindingsPanel (Showing)

// The columns of texts share what the others leave, in the proportions of their usual widths.
- (void)shareWidth {
  NSTableView* table = TableIn(tableScroll);
  CGFloat room = [tableScroll contentSize].width;
  CGFloat texts = 0;
  for (const Column& column : kColumns) {
    if (IsText(column.column)) {
      texts += column.width;
    } else {
      room -= [[table tableColumnWithIdentifier:column.identifier] width];
    }
  }
  for (const Column& column : kColumns) {
    if (!IsText(column.column)) continue;
    const CGFloat width = std::floor(room * column.width / texts) - [table intercellSpacing].width;
    [[table tableColumnWithIdentifier:column.identifier] setWidth:std::max(kLeastTextWidth, width)];
  }
  [table sizeLastColumnToFit];  // what rounding and spacing have left
}

- (void)sort {
  NSTableView* table = TableIn(tableScroll);
  findings.SortBy(ColumnOf(sortColumn), falling);
  for (const Column& column : kColumns) {
    NSTableColumn* tableColumn = [table tableColumnWithIdentifier:column.identifier];
    NSString* arrow = falling ? @"  \u25BC" : @"  \u25B2";
    NSString* title =
        tableColumn == sortColumn ? [column.title stringByAppendingString:arrow] : column.title;
    [[tableColumn headerCell] setStringValue:title];
  }
  [[table headerView] setNeedsDisplay:YES];
}

- (void)showDetail {
  const NSInteger row = [TableIn(tableScroll) selectedRow];
  const BOOL there = row >= 0 && static_cast<std::size_t>(row) < findings.RowCount();
  ShowText(detailScroll,
           there ? StringFromText(findings.FullText(static_cast<std::size_t>(row))) : @"");
}

- (void)copyAll:(id)sender {
  std::vector<std::size_t> rows(findings.RowCount());
  for (std::size_t row = 0; row < rows.size(); ++row) rows[row] = row;
  CopyToClipboard(StringFromText(findings.CopyText(rows)));
}

- (void)close:(id)sender {
  [self hide];
}

@end
