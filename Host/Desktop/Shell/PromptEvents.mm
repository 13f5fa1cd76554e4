#include "Desktop/Shell/PromptEvents.h"

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSDisplayServer.h>

#import "View/ExchangeMethod.h"

// What the display sends while it is asked something (where is the mouse?) is read together with
// the answer. The toolkit's loop puts such an event into the application's queue and then goes on
// waiting, with the event in its hands, for something else to happen: a click did nothing until the
// mouse was moved, or for half a minute. The same holds for events that a timer posts or that come
// while the loop runs within itself. So a wait ends here as soon as the queue has grown.

namespace velmora::desktop {
namespace {

using AcceptInput = void(id, SEL, NSString*, NSDate*);
using Poll = BOOL(id, SEL, int, NSArray*);

AcceptInput* originalAcceptInput = nullptr;
Poll* originalPoll = nullptr;

NSUInteger heldBefore = 0;  // events in the queue when the wait began; main thread only

NSUInteger HeldEvents() {
  static Ivar variable = class_getInstanceVariable([GSDisplayServer class], "event_queue");
  const id server = GSCurrentServer();
  if (server == nil || variable == nullptr) return 0;
  return [static_cast<NSArray*>(object_getIvar(server, variable)) count];
}

void AcceptInputNoLonger(id self, SEL selector, NSString* mode, NSDate* limit) {
  if (![NSThread isMainThread]) {
    originalAcceptInput(self, selector, mode, limit);
    return;
  }
  const NSUInteger outer = heldBefore;
  heldBefore = HeldEvents();
  originalAcceptInput(self, selector, mode, limit);
  heldBefore = outer;
}

// YES ends the wait.
BOOL PollNoLonger(id self, SEL selector, int milliseconds, NSArray* contexts) {
  if (![NSThread isMainThread]) return originalPoll(self, selector, milliseconds, contexts);
  if (HeldEvents() > heldBefore) milliseconds = 0;
  const BOOL done = originalPoll(self, selector, milliseconds, contexts);
  return done || HeldEvents() > heldBefore;
}

}  // namespace

void TakeEventsAtOnce() {
  originalAcceptInput = view::ExchangeMethod(
      [NSRunLoop class], @selector(acceptInputForMode:beforeDate:), AcceptInputNoLonger);
  originalPoll = view::ExchangeMethod(NSClassFromString(@"GSRunLoopCtxt"),
                                      @selector(pollUntil:within:), PollNoLonger);
}

}  // namespace velmora::desktop
