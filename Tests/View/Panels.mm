#import "View/Panels.h"

#include "View/Checks.h"
#import "View/Driver.h"
#import "View/Stage.h"

namespace velmora::view {

bool PanelStands() {
  return Ask([] { return [NSApp modalWindow] != nil; });
}

NSWindow* WaitForPanel(const std::string& what) {
  WaitFor(what, [] { return [[NSApp modalWindow] isVisible] == YES; });
  NSWindow* panel = Ask([] { return [NSApp modalWindow]; });
  // The window manager may still move it to its place.
  Pause(0.25);
  return panel;
}

void WaitForNoPanel(const std::string& what) {
  WaitFor(what, [] { return [NSApp modalWindow] == nil; });
}

std::string PanelText(NSWindow* panel) {
  return Ask([&] {
    std::string text = TextOf([panel title]);
    for (NSView* view : ViewsOfClass([panel contentView], [NSTextField class])) {
      text += "\n" + TextOf([(NSTextField*)view stringValue]);
    }
    return text;
  });
}

void ClickButton(NSWindow* panel, const std::string& title) {
  NSView* button = Ask([&]() -> NSView* {
    for (NSView* view : ViewsOfClass([panel contentView], [NSButton class])) {
      if (TextOf([(NSButton*)view title]) == title) return view;
    }
    return nil;
  });
  CheckTrue("the panel has a button " + title, button != nil);
  if (button == nil) throw ScenarioFailed();
  Click(button);
}

void SelectInPanel(NSWindow* panel, const std::string& path) {
  const bool found = Ask([&] {
    NSBrowser* browser = Variable<NSBrowser*>(panel, "_browser");
    const BOOL selected = [browser setPath:StringOf(path)];
    [browser sendAction];  // as a click would: the panel takes over the name
    return selected == YES;
  });
  CheckTrue("the panel offers " + path, found);
}

std::string ReadAlert(const std::string& what) {
  NSWindow* alert = WaitForPanel(what);
  const std::string text = PanelText(alert);
  ClickButton(alert, "OK");
  WaitFor(what + ", and is dismissed", [&] { return [NSApp modalWindow] != alert; });
  return text;
}

}  // namespace velmora::view
