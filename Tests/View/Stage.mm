#import "View/Stage.h"

#include <map>

#include "Timeline/TimelineModel.h"
#include "View/Checks.h"
#import "View/Driver.h"

namespace velmora::view {

namespace {

NSTableView* Table(const char* outlet) {
  return Variable<NSTableView*>(Controller(), outlet);
}

id CellObject(NSTableView* table, NSString* column, NSInteger row) {
  return [Controller() tableView:table
       objectValueForTableColumn:[table tableColumnWithIdentifier:column]
                             row:row];
}

// The files that pictures came from: drawing changes what a picture holds.
std::map<id, std::string> pictureFiles;
id (*originalInit)(id, SEL, NSString*) = nullptr;

id InitPicture(id picture, SEL selector, NSString* path) {
  picture = originalInit(picture, selector, path);
  if (picture != nil) pictureFiles[picture] = TextOf([path lastPathComponent]);
  return picture;
}

// A bar with a known end does not move by itself, and does not remember that it was started.
std::map<id, bool> startedBars;

void Start(id bar, SEL, id) {
  startedBars[bar] = true;
}
void Stop(id bar, SEL, id) {
  startedBars[bar] = false;
}

int reloads = 0;
void (*originalReload)(id, SEL) = nullptr;

// The findings' table, in a panel, reloads when a check has ended.
void Reload(id table, SEL selector) {
  if ([(NSTableView*)table window] == Window()) ++reloads;
  originalReload(table, selector);
}

}  // namespace

NSWindow* Window() {
  return Variable<NSWindow*>(Shell(), "window");
}

Velmora_ViewController* Controller() {
  return Variable<Velmora_ViewController*>(Variable<id>(Shell(), "view"), "controller");
}

SessionBar* Bar() {
  return Variable<SessionBar*>(Shell(), "bar");
}

TimelinePane* Timeline() {
  return Variable<TimelinePane*>(Shell(), "pane");
}

NSTableView* TrackTable() {
  return Table("_trackTableView");
}

NSTableView* EventTable() {
  return Table("_eventListTableView");
}

NSTableView* ProjectTable() {
  return Table("_projectInfomationTableView");
}

NSTableView* WidthTable() {
  return Table("_numberOfTracksTableView");
}

TextView* OffsetEntry() {
  return Variable<TextView*>(Controller(), "offsetTimeText");
}

TextView* StartEntry() {
  return Variable<TextView*>(Controller(), "startTimeText");
}

std::string FieldText(NSTextField* field) {
  return Ask([&] { return TextOf([field stringValue]); });
}

std::string Message() {
  return FieldText([Controller() errorMessageLabel]);
}

std::string StatusText() {
  return Ask([] {
    return TextOf([Variable<NSAttributedString*>(Variable<id>(Shell(), "status"), "full") string]);
  });
}

std::string EntryText(TextView* entry) {
  return Ask([&] { return TextOf([entry string]); });
}

std::string CellText(NSTableView* table, NSString* column, NSInteger row) {
  return Ask([&] {
    id value = CellObject(table, column, row);
    return value == nil ? std::string("none") : TextOf([value description]);
  });
}

std::vector<std::string> ColumnTexts(NSTableView* table, NSString* column) {
  std::vector<std::string> texts;
  const NSInteger rows = Rows(table);
  for (NSInteger row = 0; row < rows; ++row) texts.push_back(CellText(table, column, row));
  return texts;
}

std::string TableText(NSTableView* table) {
  return Ask([&] {
    std::string text;
    for (NSInteger row = 0; row < [table numberOfRows]; ++row) {
      for (NSUInteger i = 0; i < [[table tableColumns] count]; ++i) {
        NSTableColumn* column = [[table tableColumns] objectAtIndex:i];
        text += TextOf([CellObject(table, [column identifier], row) description]) + "|";
      }
      text += "\n";
    }
    return text;
  });
}

NSInteger Rows(NSTableView* table) {
  return Ask([&] { return [table numberOfRows]; });
}

void ClickCell(NSTableView* table, NSString* column, NSInteger row) {
  const NSRect place = Ask([&] {
    [table scrollRowToVisible:row];
    return [table frameOfCellAtColumn:[table columnWithIdentifier:column] row:row];
  });
  Click(table, place);
}

void WatchReloads() {
  OnMain([] {
    const Method method = class_getInstanceMethod([NSTableView class], @selector(reloadData));
    originalReload = reinterpret_cast<void (*)(id, SEL)>(
        reinterpret_cast<void*>(method_getImplementation(method)));
    method_setImplementation(method, reinterpret_cast<IMP>(reinterpret_cast<void*>(Reload)));
  });
}

int Reloads() {
  return Ask([] { return reloads; });
}

void LoadPath(const std::string& path) {
  OnMain([&] {
    [[Controller() FileNameTextField] setStringValue:StringOf(path)];
    [Controller() LoadFile];
  });
}

NSInteger SpotTag() {
  return Ask([] { return [[Controller() spotButton] tag]; });
}

std::int32_t Progress() {
  return Ask([] { return Variable<std::int32_t>(Controller(), "thread_progress"); });
}

bool HasProject() {
  return Ask([] { return [Controller() project] != nullptr; });
}

std::size_t LandedRegions() {
  return Ask([] { return [[Timeline() timeline] model].Regions().size(); });
}

std::vector<bool> ControlsEnabled() {
  return Ask([] {
    Velmora_ViewController* view = Controller();
    NSControl* controls[] = {
        [view FileNameTextField], [view CopyFolderNameTextField], [view cpoySourcecheckBox],
        [view selectFileButton],  [view selectFolderButton],      [view spotPsitionMatrix],
        [view depthMatrix],       [view fadeDataMatrix],          [view gainDataMatrix]};
    std::vector<bool> enabled;
    for (NSControl* control : controls) enabled.push_back([control isEnabled]);
    for (TextView* entry : {OffsetEntry(), StartEntry()}) {
      enabled.push_back(Variable<BOOL>(entry, "enable"));
    }
    return enabled;
  });
}

std::string SpotPicture() {
  return Ask([]() -> std::string {
    NSImage* picture = [[Controller() spotButton] image];
    if (picture == nil) return "";
    return pictureFiles[picture];
  });
}

void WatchPictures() {
  const Method method =
      class_getInstanceMethod([NSImage class], @selector(initWithContentsOfFile:));
  originalInit = reinterpret_cast<id (*)(id, SEL, NSString*)>(
      reinterpret_cast<void*>(method_getImplementation(method)));
  method_setImplementation(method, reinterpret_cast<IMP>(reinterpret_cast<void*>(InitPicture)));
}

void WatchIndicator() {
  OnMain([] {
    const Class bar = [NSProgressIndicator class];
    method_setImplementation(class_getInstanceMethod(bar, @selector(startAnimation:)),
                             reinterpret_cast<IMP>(reinterpret_cast<void*>(Start)));
    method_setImplementation(class_getInstanceMethod(bar, @selector(stopAnimation:)),
                             reinterpret_cast<IMP>(reinterpret_cast<void*>(Stop)));
  });
}

bool IsAnimating() {
  return Ask([] {
    NSProgressIndicator* const bar = [Controller() spotProgressIndicator];
    return startedBars[bar];
  });
}

double Indicator() {
  return Ask([] { return [[Controller() spotProgressIndicator] doubleValue]; });
}

void Choose(NSMatrix* matrix, NSInteger tag) {
  const NSRect place = Ask([&] {
    NSInteger row = 0;
    NSInteger column = 0;
    [matrix getRow:&row column:&column ofCell:[matrix cellWithTag:tag]];
    return [matrix cellFrameAtRow:row column:column];
  });
  Click(matrix, place);
  Check("the choice with tag " + Shown(tag) + " is made", tag,
        Ask([&] { return [[matrix selectedCell] tag]; }));
}

void PressSpot() {
  Click([Controller() spotButton]);
}

std::vector<NSView*> ViewsOfClass(NSView* root, Class cls) {
  std::vector<NSView*> found;
  if ([root isKindOfClass:cls]) found.push_back(root);
  for (NSUInteger i = 0; i < [[root subviews] count]; ++i) {
    const auto below = ViewsOfClass([[root subviews] objectAtIndex:i], cls);
    found.insert(found.end(), below.begin(), below.end());
  }
  return found;
}

}  // namespace velmora::view
