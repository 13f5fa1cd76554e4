#import "View/EventWatch.h"

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <deque>
#include <mutex>

#import "View/ExchangeMethod.h"

namespace velmora::view {

namespace {

constexpr std::size_t kRemembered = 30;

using Clock = std::chrono::steady_clock;
using GetEvent = NSEvent* (*)(id, SEL, unsigned, NSDate*, NSString*, BOOL);

GetEvent originalGetEvent = nullptr;
Clock::time_point begin;

std::mutex mutex;  // guards what follows
TakenEvents taken;
MousePlace lastMove;
MousePlace lastPress;
std::deque<std::string> recent;

// The events that the driver waits for have a name. Of the others only moves are looked at.
const char* NameOf(NSEventType type) {
  switch (type) {
    case NSLeftMouseDown:
    case NSRightMouseDown:
    case NSOtherMouseDown:
      return "press";
    case NSLeftMouseUp:
    case NSRightMouseUp:
    case NSOtherMouseUp:
      return "release";
    case NSScrollWheel:
      return "wheel";
    case NSKeyDown:
      return "key down";
    case NSKeyUp:
      return "key up";
    default:
      return nullptr;
  }
}

void SetPlace(MousePlace& place, NSEvent* event) {
  place = {place.count + 1, [event windowNumber], [event locationInWindow]};
}

void Count(NSEvent* event) {
  switch ([event type]) {
    case NSMouseMoved:
      SetPlace(lastMove, event);
      break;
    case NSLeftMouseDown:
    case NSRightMouseDown:
    case NSOtherMouseDown:
      SetPlace(lastPress, event);
      break;
    case NSLeftMouseUp:
    case NSRightMouseUp:
    case NSOtherMouseUp:
      ++taken.releases;
      break;
    case NSScrollWheel:
      ++taken.wheelTurns;
      break;
    case NSKeyUp:
      ++taken.keysUp;
      break;
    default:
      break;
  }
}

void Remember(NSEvent* event, const char* name) {
  const std::chrono::duration<double> since = Clock::now() - begin;
  const NSPoint place = [event locationInWindow];
  char line[200];
  std::snprintf(line, sizeof line, "%.3f s: %s in window %ld at %.0f, %.0f, which %s the keys",
                since.count(), name, static_cast<long>([event windowNumber]), place.x, place.y,
                [[event window] isKeyWindow] ? "has" : "has not");
  recent.push_back(line);
  if (recent.size() > kRemembered) recent.pop_front();
}

NSEvent* TakeEvent(id server, SEL selector, unsigned mask, NSDate* limit, NSString* mode,
                   BOOL dequeue) {
  NSEvent* const event = originalGetEvent(server, selector, mask, limit, mode, dequeue);
  if (event == nil || !dequeue) return event;
  const std::lock_guard lock(mutex);
  Count(event);
  if (const char* const name = NameOf([event type])) Remember(event, name);
  return event;
}

}  // namespace

void WatchEvents() {
  begin = Clock::now();
  originalGetEvent =
      ExchangeMethod(NSClassFromString(@"GSDisplayServer"),
                     @selector(getEventMatchingMask:beforeDate:inMode:dequeue:), TakeEvent);
}

TakenEvents Taken() {
  const std::lock_guard lock(mutex);
  return taken;
}

MousePlace LastMove() {
  const std::lock_guard lock(mutex);
  return lastMove;
}

MousePlace LastPress() {
  const std::lock_guard lock(mutex);
  return lastPress;
}

std::string RecentEvents() {
  const std::lock_guard lock(mutex);
  std::string lines;
  for (const std::string& line : recent) lines += line + "\n";
  return lines;
}

}  // namespace velmora::view
