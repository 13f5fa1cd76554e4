#pragma once

#import <AppKit/AppKit.h>

#include <string>

// What the application has taken out of its queue of events. A driver that goes on before its press
// has been taken depends on how busy the machine is: the press goes through the window manager
// first, which may be late.
namespace velmora::view {

/// Begins to watch. Main thread, once the application object exists.
void WatchEvents();

struct TakenEvents {
  int releases = 0;  ///< of any button
  int wheelTurns = 0;
  int keysUp = 0;
};
/// Counted since the watch began. Any thread.
TakenEvents Taken();

/// Where the mouse was, as the display told the application: from the corner of a window, wherever
/// the application takes the window to be.
struct MousePlace {
  int count = 0;  ///< of the events that told a place, this one included
  NSInteger window = 0;
  NSPoint point = {0, 0};  ///< in the window
};
/// At its last move without a button held down.
MousePlace LastMove();
/// At its last press.
MousePlace LastPress();

/// The latest events, a line each, for a scenario that cannot go on.
std::string RecentEvents();

}  // namespace velmora::view
