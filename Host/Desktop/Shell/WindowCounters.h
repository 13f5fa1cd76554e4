#pragma once

namespace velmora::desktop {

// For each of its windows the toolkit makes a counter in the X server, by which the window and the
// window manager keep in step while it is resized. When the window goes, the toolkit leaves its
// counter there. Pictures have windows of their own, which nobody sees: 2 counters stayed from each
// spot, 10 from each file panel, to the program's end. After this call a counter goes with its
// window.
//
// Call it once, on the main thread, when the toolkit has reached the display.
void LetCountersGoWithWindows();

}  // namespace velmora::desktop
