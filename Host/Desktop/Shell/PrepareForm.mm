#import "Desktop/Shell/PrepareForm.h"

#include <algorithm>
#include <filesystem>

#include "Base/FileNames.h"
#include "Desktop/Logic/PrepareReport.h"
#include "Desktop/Theme/Controls.h"
#include "Desktop/Theme/Drawing.h"
#include "Desktop/Theme/Metrics.h"
#import "View/TextConversion.h"

using namespace velmora::desktop;

namespace {

constexpr CGFloat kButtonWidth = 96;
constexpr CGFloat kLeastListHeight = 74;
constexpr CGFloat kBoxHeight = 22;
constexpr CGFloat kTextGap = 4;  // between a text and what it heads
constexpr CGFloat kBoxesHeight = 4 * kBoxHeight;
constexpr CGFloat kTargetHeight = kLabelHeight + kTextGap + kControlHeight;

BOOL IsOn(NSButton* box) {
  return [box state] == NSOnState;
}

// The folder that was chosen, nil for none.
NSString* ChosenFolder(NSString* title) {
  NSOpenPanel* panel = [NSOpenPanel openPanel];
  [panel setTitle:title];
  [panel setCanChooseFiles:NO];
  [panel setCanChooseDirectories:YES];
  [panel setAllowsMultipleSelection:NO];
  return [panel runModalForTypes:nil] == NSOKButton ? [panel filename] : nil;
}

}  // namespace

@interface PrepareForm (Building)
- (void)addHeading:(NSString*)heading note:(NSString*)note at:(CGFloat)y mask:(NSUInteger)mask;
- (void)addMediaListAbove:(CGFloat)bottom;
- (void)addTargetAt:(CGFloat)y;
- (void)addBoxes;
@end

@interface PrepareForm (Acting)
- (void)addFolder:(id)sender;
- (void)removeFolders:(id)sender;
- (void)chooseTarget:(id)sender;
- (void)showButtons;
@end

@implementation PrepareForm

+ (CGFloat)leastHeight {
  return kBoxesHeight + kWindowMargin + kTargetHeight + kWindowMargin + kLeastListHeight +
         kTextGap + kLabelHeight;
}

- (id)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) return nil;
  const CGFloat targetBottom = kBoxesHeight + kWindowMargin;
  [self addBoxes];
  [self addTargetAt:targetBottom];
  [self addMediaListAbove:targetBottom + kTargetHeight + kWindowMargin];
  [self showButtons];
  return self;
}

- (void)dealloc {
  [TableIn(mediaScroll) setDataSource:nil];
  [TableIn(mediaScroll) setDelegate:nil];
  [mediaScroll release];
  [addButton release];
  [removeButton release];
  [targetField release];
  [chooseButton release];
  [copyBox release];
  [stereoBox release];
  [offBox release];
  [resampleBox release];
  [super dealloc];
}

- (void)setProject:(const std::string&)path {
  project = path;
  [targetField setStringValue:StringFromText(FreeTarget(project))];
}

- (velmora::prepare::PrepareOptions)options {
  [[self window] makeFirstResponder:nil];
  velmora::prepare::PrepareOptions options;
  options.check.mediaFolders = mediaFolders;
  NSString* target = [[targetField stringValue] stringByExpandingTildeInPath];
  const std::filesystem::path into = TextFromString(target);
  // A bare name is meant to stand beside the project, wherever the program was started.
  if (!into.empty()) options.into = (velmora::FolderOf(project) / into).lexically_normal().string();
  options.copyMedia = IsOn(copyBox);
  options.keepStereo = IsOn(stereoBox);
  options.keepOff = IsOn(offBox);
  options.resample = IsOn(resampleBox);
  return options;
}

- (void)setEnabled:(BOOL)enabled {
  for (NSControl* control : {(NSControl*)TableIn(mediaScroll), (NSControl*)addButton,
                             (NSControl*)targetField, (NSControl*)chooseButton, (NSControl*)copyBox,
                             (NSControl*)stereoBox, (NSControl*)offBox, (NSControl*)resampleBox})
    [control setEnabled:enabled];
  [self showButtons];
}

- (NSView*)firstControl {
  return addButton;
}

- (void)linkKeysFrom:(NSView*)before to:(NSView*)after {
  NSView* const circle[] = {
      before,    addButton, TableIn(mediaScroll), removeButton, targetField, chooseButton, copyBox,
      stereoBox, offBox,    resampleBox,          after};
  for (std::size_t i = 0; i + 1 < sizeof circle / sizeof *circle; ++i)
    [circle[i] setNextKeyView:circle[i + 1]];
}

// The list's data source and delegate

- (NSInteger)numberOfRowsInTableView:(NSTableView*)table {
  return static_cast<NSInteger>(mediaFolders.size());
}

- (id)tableView:(NSTableView*)table
    objectValueForTableColumn:(NSTableColumn*)column
                          row:(NSInteger)row {
  if (row < 0 || static_cast<std::size_t>(row) >= mediaFolders.size()) return nil;
  return StringFromText(mediaFolders[static_cast<std::size_t>(row)]);
}

- (void)tableViewSelectionDidChange:(NSNotification*)notification {
  [self showButtons];
}

@end

@implementation PrepareForm (Building)

- (void)addHeading:(NSString*)heading note:(NSString*)note at:(CGFloat)y mask:(NSUInteger)mask {
  NSTextField* title = MakeLabel(NSMakeRect(0, y, 100, kLabelHeight), kTextSize);
  [title setFont:[NSFont boldSystemFontOfSize:kTextSize]];
  [title setStringValue:heading];
  [title sizeToFit];
  NSRect frame = NSMakeRect(0, y, NSWidth([title frame]), kLabelHeight);
  [title setFrame:frame];
  [title setAutoresizingMask:mask];
  frame.origin.x = NSMaxX(frame) + kControlGap;
  frame.size.width = NSWidth([self bounds]) - NSMinX(frame);
  NSTextField* words = MakeLabel(frame, kTextSize);
  [words setStringValue:note];
  [words setTextColor:ColorOf(Tone::QuietText)];
  [words setAutoresizingMask:mask | NSViewWidthSizable];
  [self addSubview:title];
  [self addSubview:words];
  [title release];
  [words release];
}

- (void)addMediaListAbove:(CGFloat)bottom {
  const CGFloat width = NSWidth([self bounds]);
  const CGFloat top = NSHeight([self bounds]) - kLabelHeight;
  [self addHeading:@"Media folders"
              note:@"searched with all that is below them, after the project's own"
                at:top
              mask:NSViewMinYMargin];
  const CGFloat listWidth = width - kButtonWidth - kControlGap;
  mediaScroll = MakeTableScroll(NSMakeRect(0, bottom, listWidth, top - kTextGap - bottom), self);
  [mediaScroll setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  NSTableView* table = TableIn(mediaScroll);
  [table setHeaderView:nil];
  [table setCornerView:nil];
  [table setAllowsMultipleSelection:YES];
  AddColumn(table, @"Folder", @"", [mediaScroll contentSize].width);
  [table setColumnAutoresizingStyle:NSTableViewLastColumnOnlyAutoresizingStyle];
  [table sizeLastColumnToFit];
  [self addSubview:mediaScroll];

  NSRect place = NSMakeRect(width - kButtonWidth, top - kTextGap - kControlHeight, kButtonWidth,
                            kControlHeight);
  addButton = MakeButton(place, @"Add\u2026", self, @selector(addFolder:));
  place.origin.y -= kControlHeight + kControlGap;
  removeButton = MakeButton(place, @"Remove", self, @selector(removeFolders:));
  for (NSButton* button : {addButton, removeButton}) {
    [button setAutoresizingMask:NSViewMinXMargin | NSViewMinYMargin];
    [self addSubview:button];
  }
}

- (void)addTargetAt:(CGFloat)y {
  const CGFloat width = NSWidth([self bounds]);
  [self addHeading:@"Target folder"
              note:@"a new one: it appears whole or not at all"
                at:y + kControlHeight + kTextGap
              mask:NSViewMaxYMargin];
  targetField = [[NSTextField alloc]
      initWithFrame:NSMakeRect(0, y, width - kButtonWidth - kControlGap, kControlHeight)];
  [targetField setFont:[NSFont systemFontOfSize:kTextSize]];
  [[targetField cell] setScrollable:YES];
  [targetField setAutoresizingMask:NSViewWidthSizable | NSViewMaxYMargin];
  [self addSubview:targetField];
  chooseButton = MakeButton(NSMakeRect(width - kButtonWidth, y, kButtonWidth, kControlHeight),
                            @"Choose\u2026", self, @selector(chooseTarget:));
  [chooseButton setAutoresizingMask:NSViewMinXMargin | NSViewMaxYMargin];
  [self addSubview:chooseButton];
}

- (void)addBoxes {
  NSRect place = NSMakeRect(0, kBoxesHeight, NSWidth([self bounds]), kBoxHeight);
  const auto add = [&](NSString* title) {
    place.origin.y -= kBoxHeight;
    NSButton* box = MakeCheckBox(place, title);
    [box setAutoresizingMask:NSViewWidthSizable | NSViewMaxYMargin];
    [self addSubview:box];
    return box;
  };
  copyBox = add(@"Copy media: audio files are copied, not linked");
  stereoBox = add(@"Keep stereo: cuts of several channels stay whole");
  offBox = add(@"Keep off: events that are switched off stay in");
  resampleBox = add(@"Resample: audio files at another rate are converted");
}

@end

@implementation PrepareForm (Acting)

- (void)addFolder:(id)sender {
  NSString* chosen = ChosenFolder(@"Add a media folder");
  if (chosen == nil) return;
  const std::string folder = TextFromString(chosen);
  const auto there = std::find(mediaFolders.begin(), mediaFolders.end(), folder);
  const auto row = static_cast<NSUInteger>(there - mediaFolders.begin());
  if (there == mediaFolders.end()) mediaFolders.push_back(folder);
  NSTableView* table = TableIn(mediaScroll);
  [table reloadData];
  [table selectRowIndexes:[NSIndexSet indexSetWithIndex:row] byExtendingSelection:NO];
  [table scrollRowToVisible:static_cast<NSInteger>(row)];
  [self showButtons];
}

- (void)removeFolders:(id)sender {
  NSTableView* table = TableIn(mediaScroll);
  NSIndexSet* rows = [[[table selectedRowIndexes] copy] autorelease];
  for (NSUInteger row = [rows lastIndex]; row != NSNotFound; row = [rows indexLessThanIndex:row])
    mediaFolders.erase(mediaFolders.begin() + static_cast<std::ptrdiff_t>(row));
  [table deselectAll:nil];
  [table reloadData];
  [self showButtons];
}

- (void)chooseTarget:(id)sender {
  NSString* chosen = ChosenFolder(@"Choose where the prepared project goes");
  if (chosen == nil) return;
  [[self window] makeFirstResponder:nil];  // or a text that is being typed would come back
  [targetField setStringValue:StringFromText(TargetIn(TextFromString(chosen), project))];
}

- (void)showButtons {
  NSTableView* table = TableIn(mediaScroll);
  [removeButton setEnabled:[table isEnabled] && [table numberOfSelectedRows] > 0];
}

@end
