#pragma once

#include <cstdint>
#include <string>

namespace velmora::dawproject {

/// A time in seconds as decimal text: the shortest that reads back as the number nearest to
/// `samples / sampleRate`, without an exponent.
///
/// That number times the rate rounds to `samples` again: within a day it is off by at most 2^-37 s,
/// half the distance of two such numbers, while half a sample at 768 kHz is 650 ns. There is room
/// to spare for readers that keep six decimals: 0.5 us at most.
/// @param sampleRate Hz, positive
[[nodiscard]] std::string SecondsText(std::int64_t samples, double sampleRate);

/// A number as decimal text, the shortest that reads back as the same, without an exponent.
[[nodiscard]] std::string NumberText(double number);

}  // namespace velmora::dawproject
