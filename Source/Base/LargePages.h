#pragma once

#include <cstddef>

namespace velmora {

/// Tells the system that a stretch of fresh memory will be filled to its end, so that it may hand
/// it out in large pages. Called before the stretch is touched. A hint: failure passes, and systems
/// without such a call do nothing. On Linux, where a page has 4 KiB and a large one 2 MiB, it saves
/// 511 of 512 page faults: of 1 µs each, and in a virtual machine up to 10 µs.
void AdviseLargePages(void* begin, std::size_t size);

}  // namespace velmora
