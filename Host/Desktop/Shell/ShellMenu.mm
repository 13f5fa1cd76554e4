#import "Desktop/Shell/ShellMenu.h"

#include "Desktop/Shell/SaveDesk.h"
#include "Destinations/Destinations.h"
#import "View/TextConversion.h"

namespace {

struct Item {
  NSString* title;  // nil for a separator
  SEL action;
  NSString* key;
  id target;
};

NSMenu* AddMenu(NSMenu* bar, NSString* title, const Item* items, std::size_t count) {
  NSMenu* menu = [[[NSMenu alloc] initWithTitle:title] autorelease];
  for (std::size_t i = 0; i < count; ++i) {
    if (items[i].title == nil) {
      [menu addItem:[NSMenuItem separatorItem]];
      continue;
    }
    // GNUstep's header says id <NSMenuItem>, which clang takes for another type.
    NSMenuItem* item = (NSMenuItem*)[menu addItemWithTitle:items[i].title
                                                    action:items[i].action
                                             keyEquivalent:items[i].key];
    [item setTarget:items[i].target];
  }
  NSMenuItem* entry = (NSMenuItem*)[bar addItemWithTitle:title action:NULL keyEquivalent:@""];
  [bar setSubmenu:menu forItem:entry];
  return menu;
}

// Every row of the table of destinations, under its own title.
void AddTargets(NSMenu* file, NSInteger at, id saveDesk) {
  NSMenu* menu = [[[NSMenu alloc] initWithTitle:@"Save Session As"] autorelease];
  NSInteger row = 0;
  for (const velmora::host::Destination& destination : velmora::host::Destinations()) {
    NSString* title = [StringFromText(destination.target->title) stringByAppendingString:@"..."];
    NSMenuItem* item = (NSMenuItem*)[menu addItemWithTitle:title
                                                    action:@selector(saveAs:)
                                             keyEquivalent:@""];
    [item setTarget:saveDesk];
    [item setTag:row++];
  }
  NSMenuItem* entry = (NSMenuItem*)[file insertItemWithTitle:@"Save Session As"
                                                      action:NULL
                                               keyEquivalent:@""
                                                     atIndex:at];
  [file setSubmenu:menu forItem:entry];
}

}  // namespace

void InstallShellMenu(id timeline, id shell, id saveDesk) {
  NSMenu* bar = [[[NSMenu alloc] initWithTitle:@"Velmora"] autorelease];
  const Item file[] = {{@"Open Project...", @selector(openProject:), @"o", shell},
                       {nil, NULL, nil, nil},
                       {@"Bounce...", @selector(bounce:), @"b", saveDesk},
                       {@"Report...", @selector(report:), @"r", saveDesk},
                       {@"Show Save Result", @selector(showSaveResult:), @"", saveDesk},
                       {nil, NULL, nil, nil},
                       {@"Show Findings", @selector(showFindings:), @"i", shell},
                       {@"Prepare...", @selector(prepare:), @"p", shell}};
  const Item edit[] = {{@"Cut", @selector(cut:), @"x", shell},
                       {@"Copy", @selector(copy:), @"c", shell},
                       {@"Paste", @selector(paste:), @"v", shell},
                       {@"Select All", @selector(selectAll:), @"a", shell}};
  const Item session[] = {{@"Zoom In", @selector(zoomIn:), @"+", timeline},
                          {@"Zoom Out", @selector(zoomOut:), @"-", timeline},
                          {@"Show Whole Session", @selector(fit:), @"0", timeline},
                          {nil, NULL, nil, nil},
                          {@"Keep Fades and Gain Editable", @selector(toggleNative:), @"", shell},
                          {nil, NULL, nil, nil},
                          {@"Clear Session", @selector(clearSession:), @"", shell}};
  constexpr NSInteger kAfterOpen = 2;  // and the line after it
  AddTargets(AddMenu(bar, @"File", file, sizeof file / sizeof *file), kAfterOpen, saveDesk);
  AddMenu(bar, @"Edit", edit, sizeof edit / sizeof *edit);
  AddMenu(bar, @"Session", session, sizeof session / sizeof *session);
  // In a bar the toolkit gathers items without a menu in one of the application's name.
  [[bar addItemWithTitle:@"Quit" action:@selector(terminate:) keyEquivalent:@"q"] setTarget:NSApp];
  [NSApp setMainMenu:bar];
}
