#pragma once

namespace velmora::ardour {

/// Takes the network from this thread and from every program that it starts from now on: sockets
/// of the machine itself are all that they can make. There is no way back, so a thread of its own
/// should do it.
/// @return false where the system cannot take it, and then nothing has changed
[[nodiscard]] bool StayLocal();

}  // namespace velmora::ardour
