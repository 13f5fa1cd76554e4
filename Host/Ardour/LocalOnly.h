#pragma once

namespace velmora::ardour {

/// Takes the network from this thread and from every program that it starts from now on: sockets
/// of the machine itself are all that they can make. There is no way back, so a new process should
/// do it, just before it becomes another program. Safe in a signal handler.
/// @return false where the system cannot take it, and then nothing has changed
[[nodiscard]] bool StayLocal();

}  // namespace velmora::ardour
