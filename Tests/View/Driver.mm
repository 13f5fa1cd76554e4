#import "View/Driver.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include "View/Checks.h"
#import "View/EventWatch.h"

using Work = std::function<void()>;

// One piece of work on its way to the main thread.
@interface MainThreadWork : NSObject {
 @public
  void* work;  // a Work, owned
}
- (void)run:(id)nothing;
@end

@implementation MainThreadWork

- (void)dealloc {
  delete static_cast<Work*>(work);
  [super dealloc];
}

- (void)run:(id)nothing {
  (*static_cast<Work*>(work))();
}

@end

namespace velmora::view {

namespace {

// A press and a release that come together are no click to the toolkit, and two clicks on one place
// within this time are a double click.
constexpr double kHoldSeconds = 0.04;
constexpr double kDoubleClickSeconds = 0.9;

constexpr double kShortPatienceSeconds = 3;  // for what is not missed when it never comes

struct ScreenPoint {
  int x = 0;
  int y = 0;
};

ScreenPoint lastClick;
std::chrono::steady_clock::time_point lastClickTime;

void Send(std::function<void()> work, BOOL wait) {
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  MainThreadWork* item = [[MainThreadWork new] autorelease];
  item->work = new Work(std::move(work));
  [item performSelectorOnMainThread:@selector(run:)
                         withObject:nil
                      waitUntilDone:wait
                              modes:[NSArray arrayWithObjects:NSDefaultRunLoopMode,
                                                              NSModalPanelRunLoopMode,
                                                              NSEventTrackingRunLoopMode, nil]];
  [pool release];
}

void RunXdotool(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "xdotool");
  std::vector<char*> raw;
  for (std::string& argument : arguments) raw.push_back(argument.data());
  raw.push_back(nullptr);
  pid_t process = 0;
  int status = posix_spawnp(&process, "xdotool", nullptr, nullptr, raw.data(), environ);
  if (status == 0) {
    int waited = -1;
    do {
      waited = waitpid(process, &status, 0);
    } while (waited < 0 && errno == EINTR);
    // The toolkit waits for any child that it hears of: the end of this one may have been told
    // there. It has ended all the same.
    if (waited < 0) status = 0;
  }
  if (status != 0) {
    Report(false, "xdotool " + arguments[1], "status 0", Shown(status));
    throw ScenarioFailed();
  }
}

ScreenPoint PlaceOnScreen(NSView* view, NSPoint point) {
  return Ask([&] {
    const NSPoint inWindow = [view convertPoint:point toView:nil];
    const NSPoint onScreen = [[view window] convertBaseToScreen:inWindow];
    const CGFloat height = NSHeight([[NSScreen mainScreen] frame]);
    ScreenPoint place;
    place.x = static_cast<int>(std::floor(onScreen.x));
    place.y = static_cast<int>(std::floor(height - onScreen.y));
    return place;
  });
}

bool WaitUntil(const std::function<bool()>& condition, double seconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    Pause(0.003);
  }
  return true;
}

void FailToArrive(const std::string& what) {
  Report(false, what, "the application takes it",
         "nothing within " + Shown(kPatienceSeconds) + " s");
  Note("the latest events that it took:\n" + RecentEvents());
  throw ScenarioFailed();
}

void MoveTo(ScreenPoint place) {
  RunXdotool({"mousemove", std::to_string(place.x), std::to_string(place.y)});
  Pause(kHoldSeconds);
}

// Moves onto a point of a view. A window that has just come up may still be given its place: the
// application learns of it only then, so what the display says of the mouse is compared.
ScreenPoint MoveOnto(NSView* view, NSPoint point) {
  const auto end =
      std::chrono::steady_clock::now() + std::chrono::duration<double>(kPatienceSeconds);
  while (true) {
    const ScreenPoint place = PlaceOnScreen(view, point);
    const NSPoint wanted = Ask([&] { return [view convertPoint:point toView:nil]; });
    const int before = LastMove().count;
    // From the side, for a mouse that stays where it is tells nothing.
    RunXdotool({"mousemove", std::to_string(place.x + 2), std::to_string(place.y), "mousemove",
                std::to_string(place.x), std::to_string(place.y)});
    Pause(kHoldSeconds);
    if (!WaitUntil([&] { return LastMove().count > before; }, kShortPatienceSeconds)) return place;
    const MousePlace told = LastMove();
    const bool there =
        std::abs(told.point.x - wanted.x) < 2 && std::abs(told.point.y - wanted.y) < 2;
    if (there || std::chrono::steady_clock::now() > end) return place;
    Pause(kHoldSeconds);
  }
}

// The application takes the press before the release comes, however busy the machine is: taken
// together they may be no click to the toolkit.
void WaitForPress(int before) {
  if (!WaitUntil([&] { return LastPress().count > before; }, kPatienceSeconds))
    FailToArrive("a press of the mouse");
  OnMain([] {});
  Pause(kHoldSeconds);
}

void Press(const std::string& button = "1") {
  const int before = LastPress().count;
  RunXdotool({"mousedown", button});
  WaitForPress(before);
}

void Release(const std::string& button = "1") {
  const int before = Taken().releases;
  RunXdotool({"mouseup", button});
  if (!WaitUntil([&] { return Taken().releases > before; }, kPatienceSeconds))
    FailToArrive("a release of the mouse");
  OnMain([] {});
}

// A key may go to the window manager, or close the window to which its end would go.
void WaitForKeys(int keysUp) {
  WaitUntil([=] { return Taken().keysUp >= keysUp; }, kShortPatienceSeconds);
  OnMain([] {});
}

}  // namespace

void OnMain(const std::function<void()>& work) {
  Send(work, YES);
}

void PostToMain(std::function<void()> work) {
  Send(std::move(work), NO);
}

void WakeMain() {
  OnMain([] {
    NSEvent* event = [NSEvent otherEventWithType:NSApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0];
    [NSApp postEvent:event atStart:NO];
  });
}

void Click(NSView* view, NSRect place) {
  const NSPoint middle = NSMakePoint(NSMidX(place), NSMidY(place));
  const ScreenPoint point = MoveOnto(view, middle);
  const bool samePlace = std::abs(point.x - lastClick.x) < 8 && std::abs(point.y - lastClick.y) < 8;
  const std::chrono::duration<double> since = std::chrono::steady_clock::now() - lastClickTime;
  if (samePlace && since.count() < kDoubleClickSeconds) {
    Pause(kDoubleClickSeconds - since.count());
  }
  Press();
  Release();
  lastClick = point;
  lastClickTime = std::chrono::steady_clock::now();
}

void Click(NSView* view) {
  const NSRect bounds = Ask([&] { return [view bounds]; });
  Click(view, bounds);
}

void ClickReadWithAnswer(NSView* view) {
  const NSRect bounds = Ask([&] { return [view bounds]; });
  MoveOnto(view, NSMakePoint(NSMidX(bounds), NSMidY(bounds)));
  Pause(1);  // nothing else is to wake the loop: no tool tip, no double click
  const int before = LastPress().count;
  std::promise<void> pressed;
  PostToMain([&] {
    pressed.get_future().wait();
    [NSEvent mouseLocation];
  });
  RunXdotool({"mousedown", "1"});
  Pause(0.3);  // the window manager hands it on
  pressed.set_value();
  WaitForPress(before);
  Release();
}

void MiddleClick(NSView* view) {
  const NSRect bounds = Ask([&] { return [view bounds]; });
  MoveOnto(view, NSMakePoint(NSMidX(bounds), NSMidY(bounds)));
  Press("2");
  Release("2");
}

void Drag(NSView* view, NSPoint from, NSPoint to) {
  const ScreenPoint start = MoveOnto(view, from);
  const ScreenPoint end = PlaceOnScreen(view, to);
  Press();
  constexpr int kSteps = 6;
  for (int i = 1; i <= kSteps; ++i) {
    ScreenPoint between;
    between.x = start.x + (end.x - start.x) * i / kSteps;
    between.y = start.y + (end.y - start.y) * i / kSteps;
    MoveTo(between);
  }
  Pause(kHoldSeconds);
  Release();
}

void TurnWheel(NSView* view, NSPoint place, int notches) {
  MoveOnto(view, place);
  const std::string button = notches > 0 ? "4" : "5";
  for (int i = 0; i < std::abs(notches); ++i) {
    const int before = Taken().wheelTurns;
    RunXdotool({"click", button});
    if (!WaitUntil([&] { return Taken().wheelTurns > before; }, kPatienceSeconds))
      FailToArrive("a turn of the wheel");
    OnMain([] {});
  }
}

void TurnWheelWith(const std::string& key, NSView* view, NSPoint place, int notches) {
  RunXdotool({"keydown", key});
  Pause(kHoldSeconds);
  TurnWheel(view, place, notches);
  RunXdotool({"keyup", key});
  Pause(kHoldSeconds);
}

void Key(const std::string& name) {
  const int before = Taken().keysUp;
  KeyUnanswered(name);
  WaitForKeys(before + 1);
}

void KeyUnanswered(const std::string& name) {
  RunXdotool({"key", name});
  Pause(kHoldSeconds);
}

void Keys(std::initializer_list<const char*> names) {
  for (const char* name : names) Key(name);
}

void TypeText(const std::string& text) {
  const int before = Taken().keysUp;
  RunXdotool({"type", "--delay", "15", text});
  Pause(kHoldSeconds);
  WaitForKeys(before + static_cast<int>(text.size()));
}

void SendCharacters(NSWindow* window, NSString* characters) {
  OnMain([&] {
    NSEvent* event = [NSEvent keyEventWithType:NSKeyDown
                                      location:NSZeroPoint
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:[window windowNumber]
                                       context:nil
                                    characters:characters
                   charactersIgnoringModifiers:characters
                                     isARepeat:NO
                                       keyCode:0];
    [window sendEvent:event];
  });
}

void Pause(double seconds) {
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

NSBitmapImageRep* DrawnPixels(NSView* view) {
  [[view window] display];
  [view lockFocus];
  NSBitmapImageRep* pixels = [[NSBitmapImageRep alloc] initWithFocusedViewRect:[view visibleRect]];
  [view unlockFocus];
  return pixels;
}

void Screenshot(NSWindow* window, const std::string& name) {
  const std::string path = std::string(VELMORA_SCREENSHOTS) + "/" + name + ".png";
  std::filesystem::create_directories(VELMORA_SCREENSHOTS);
  const bool written = Ask([&] {
    NSBitmapImageRep* pixels = [DrawnPixels([window contentView]) autorelease];
    NSData* png = [pixels representationUsingType:NSPNGFileType
                                       properties:[NSDictionary dictionary]];
    return png != nil && [png writeToFile:StringOf(path) atomically:YES];
  });
  CheckTrue("screenshot " + name + ".png is written", written);
}

NSString* StringOf(const std::string& text) {
  return [NSString stringWithUTF8String:text.c_str()];
}

std::string TextOf(NSString* string) {
  const char* text = [string UTF8String];
  return text != nullptr ? text : "";
}

}  // namespace velmora::view
