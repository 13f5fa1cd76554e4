#pragma once

namespace velmora {

/// Asks the processor to bring the cache line at an address close, for a walk that will read there
/// soon: the line is then on its way while other work is done. A hint: any address is allowed, and
/// a compiler without such a call does nothing.
inline void Prefetch([[maybe_unused]] const void* address) {
#if defined(__GNUC__) || defined(__clang__)
  __builtin_prefetch(address);
  // GCC drops calls of a function that does nothing but this, as they have no effect on any value.
  // An empty statement that it must not drop keeps them.
  __asm__ volatile("");
#endif
}

}  // namespace velmora
