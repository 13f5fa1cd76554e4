#pragma once

#include <cstdint>

namespace velmora {

// Copies that the system makes by itself, without a detour over this program's memory. They are
// shortcuts: where one cannot be taken, for whatever reason, whoever asked goes on by reading and
// writing, meets the same reason and tells it. macOS has neither for files that are open already.

/// Lets an open file that is empty share the blocks of another (btrfs, XFS, APFS by other means):
/// that costs no time and no room, and a later write to either file leaves the other as it is.
/// @return false if the second file is still empty
[[nodiscard]] bool ShareBlocks(int from, int to);

/// Copies up to `count` bytes from a place in one open file to where another stands, which moves
/// on.
/// @return the bytes that were copied: 0 at the end of the first file, and where it cannot be done
[[nodiscard]] std::int64_t CopyInsideSystem(int from, int to, std::int64_t place,
                                            std::int64_t count);

}  // namespace velmora
