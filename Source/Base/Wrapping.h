#pragma once

#include <limits>
#include <type_traits>

namespace velmora {

// Arithmetic that is defined for every number: integers wrap around in two's complement.

template <class Int>
[[nodiscard]] constexpr Int WrapAdd(Int a, Int b) {
  using U = std::make_unsigned_t<Int>;
  return static_cast<Int>(static_cast<U>(a) + static_cast<U>(b));
}

template <class Int>
[[nodiscard]] constexpr Int WrapSubtract(Int a, Int b) {
  using U = std::make_unsigned_t<Int>;
  return static_cast<Int>(static_cast<U>(a) - static_cast<U>(b));
}

template <class Int>
[[nodiscard]] constexpr Int WrapMultiply(Int a, Int b) {
  using U = std::make_unsigned_t<Int>;
  return static_cast<Int>(static_cast<U>(a) * static_cast<U>(b));
}

/// A floating-point number truncated toward zero; the lowest number for whatever does not fit, NaN
/// too, as the processor's own conversion has it.
template <class Int, class Float>
[[nodiscard]] constexpr Int Truncate(Float value) {
  constexpr auto kLowest = static_cast<Float>(std::numeric_limits<Int>::min());
  // First a choice between two numbers, then one conversion: loops of this can be vectorised.
  return static_cast<Int>(value >= kLowest && value < -kLowest ? value : kLowest);
}

}  // namespace velmora
