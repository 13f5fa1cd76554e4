#pragma once

#include <cstddef>
#include <cstring>

namespace velmora::test {

#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
/// The slot of a virtual operation in its class's table, from 0, as the Itanium C++ ABI lays a
/// pointer to a member out on x86: 1 plus the slot's offset in bytes. -1 for one that is not
/// virtual.
template <class Member>
std::ptrdiff_t VirtualSlot(Member member) {
  static_assert(sizeof member == 2 * sizeof(std::ptrdiff_t));
  std::ptrdiff_t offset = 0;
  std::memcpy(&offset, &member, sizeof offset);
  if (offset % 2 == 0) return -1;
  return (offset - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}
#define VELMORA_KNOWS_VIRTUAL_SLOTS 1
#endif

}  // namespace velmora::test
