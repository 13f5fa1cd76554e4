#import "Desktop/Shell/ShellMenu.h"

namespace {

struct Item {
  NSString* title;  // nil for a separator
  SEL action;
  NSString* key;
  id target;
};

void AddMenu(NSMenu* bar, NSString* title, const Item* items, std::size_t count) {
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
}

}  // namespace

void InstallShellMenu(id timeline, id shell) {
  NSMenu* bar = [[[NSMenu alloc] initWithTitle:@"Velmora"] autorelease];
  const Item file[] = {{@"Open Project...", @selector(openProject:), @"o", shell},
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
                          {@"Clear Session", @selector(clearSession:), @"", shell}};
  AddMenu(bar, @"File", file, sizeof file / sizeof *file);
  AddMenu(bar, @"Edit", edit, sizeof edit / sizeof *edit);
  AddMenu(bar, @"Session", session, sizeof session / sizeof *session);
  // In a bar the toolkit gathers items without a menu in one of the application's name.
  [[bar addItemWithTitle:@"Quit" action:@selector(terminate:) keyEquivalent:@"q"] setTarget:NSApp];
  [NSApp setMainMenu:bar];
}
