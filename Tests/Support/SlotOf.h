#pragma once

#include <cstddef>
#include <cstring>

namespace velmora::test {

/// The place of a virtual operation in its class's table, from 0. Under the Itanium ABI a pointer
/// to a virtual member is one more than the byte offset of its slot.
template <class Member>
std::ptrdiff_t SlotOf(Member member) {
  std::ptrdiff_t representation = 0;
  std::memcpy(&representation, &member, sizeof representation);
  return (representation - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

}  // namespace velmora::test
