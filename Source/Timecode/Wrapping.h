#pragma once

#include <type_traits>

namespace velmora {

/// Two's complement arithmetic on signed integers that wraps around instead of being undefined.
template <class Int>
constexpr Int WrapAdd(Int a, Int b) {
  using U = std::make_unsigned_t<Int>;
  return static_cast<Int>(static_cast<U>(a) + static_cast<U>(b));
}

template <class Int>
constexpr Int WrapSubtract(Int a, Int b) {
  using U = std::make_unsigned_t<Int>;
  return static_cast<Int>(static_cast<U>(a) - static_cast<U>(b));
}

template <class Int>
constexpr Int WrapMultiply(Int a, Int b) {
  using U = std::make_unsigned_t<Int>;
  return static_cast<Int>(static_cast<U>(a) * static_cast<U>(b));
}

}  // namespace velmora
