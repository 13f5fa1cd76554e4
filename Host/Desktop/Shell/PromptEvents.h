#pragma once

namespace velmora::desktop {

// Has the main thread's loop hand on each event as soon as it stands in the application's queue,
// however it came there. Call it once, before the loop runs.
void TakeEventsAtOnce();

}  // namespace velmora::desktop
