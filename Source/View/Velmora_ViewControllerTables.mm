#include "Model/Tables.h"
#include "Model/ViewModel.h"
#import "View/TextConversion.h"
#import "View/Velmora_ViewController.h"

static std::string Identifier(NSTableView* tableView) {
  return TextFromString([tableView identifier]);
}

static std::string ColumnIdentifier(NSTableColumn* column) {
  return TextFromString([column identifier]);
}

static NSColor* BackgroundColor(velmora::Background background) {
  switch (background) {
    case velmora::Background::Red:
      return [NSColor redColor];
    case velmora::Background::White:
      return [NSColor whiteColor];
    case velmora::Background::Stripe:
      return [NSColor colorWithCalibratedWhite:0.95 alpha:1.0];
    case velmora::Background::Untouched:
      break;
  }
  return nil;
}

static NSFont* TableFont(CGFloat size) {
  NSFont* font = [NSFont fontWithName:@"Osaka" size:size];
  return font != nil ? font : [NSFont systemFontOfSize:size];
}

@interface Velmora_ViewController (EventList)
- (void)showEventList;
@end

@implementation Velmora_ViewController (Tables)

- (NSInteger)numberOfRowsInTableView:(NSTableView*)tableView {
  return velmora::NumberOfRows(*model, Identifier(tableView));
}

- (id)tableView:(NSTableView*)tableView
    objectValueForTableColumn:(NSTableColumn*)column
                          row:(NSInteger)row {
  const velmora::CellValue value = velmora::ObjectValue(
      *model, Identifier(tableView), ColumnIdentifier(column), static_cast<std::int32_t>(row));
  switch (value.kind) {
    case velmora::CellValue::Text:
      return StringFromText(value.text);
    case velmora::CellValue::Integer:
      return [NSNumber numberWithInt:value.integer];
    case velmora::CellValue::None:
      break;
  }
  return nil;
}

- (void)tableView:(NSTableView*)tableView
    setObjectValue:(id)value
    forTableColumn:(NSTableColumn*)column
               row:(NSInteger)row {
  if (![[column identifier] isEqualToString:@"Space"]) return;  // only check boxes are edited
  model->spotRunning = [spotButton tag] == 1;
  velmora::SetObjectValue(*model, Identifier(tableView), ColumnIdentifier(column),
                          static_cast<std::int32_t>(row), [value intValue]);
  const bool isTrack = tableView == _trackTableView;
  if (isTrack && !model->spotRunning && model->project != nullptr) [self showEventList];
}

- (void)tableView:(NSTableView*)tableView
    willDisplayCell:(id)cell
     forTableColumn:(NSTableColumn*)column
                row:(NSInteger)row {
  const velmora::CellStyle style = velmora::Style(
      *model, Identifier(tableView), ColumnIdentifier(column), static_cast<std::int32_t>(row));
  if (style.fontSize > 0) [cell setFont:TableFont(style.fontSize)];
  if (style.alignment >= 0) {
    [cell setAlignment:style.alignment == 1 ? NSRightTextAlignment : NSLeftTextAlignment];
  }
  NSColor* background = BackgroundColor(style.background);
  if (background != nil) {
    if ([cell respondsToSelector:@selector(setDrawsBackground:)]) [cell setDrawsBackground:YES];
    [cell setBackgroundColor:background];
  }
}

- (CGFloat)tableView:(NSTableView*)tableView heightOfRow:(NSInteger)row {
  return velmora::HeightOfRow(Identifier(tableView));
}

- (BOOL)tableView:(NSTableView*)tableView shouldSelectRow:(NSInteger)row {
  return velmora::ShouldSelectRow(Identifier(tableView));
}

// A selection has no meaning: what is selected is let go again.
- (void)tableViewSelectionDidChange:(NSNotification*)notification {
  if ([_eventListTableView selectedRow] != -1) {
    [_eventListTableView deselectRow:[_eventListTableView selectedRow]];
  }
  if ([_trackTableView selectedRow] != -1) {
    [_trackTableView deselectRow:[_trackTableView selectedRow]];
  }
}

@end
