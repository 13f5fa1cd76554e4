#pragma once

#include <cstddef>
#include <cstdint>

#include "Peaks/Peak.h"

namespace velmora::peaks {

/// Samples as they lie in a file, little-endian, without gaps.
enum class SampleForm { Integers16, Integers24, Integers32, Floats32 };

[[nodiscard]] constexpr std::size_t BytesOf(SampleForm form) {
  return form == SampleForm::Integers16 ? 2 : form == SampleForm::Integers24 ? 3 : 4;
}

/// Bytes that must be readable past the last sample that is handed to PeakOfBytes; their contents
/// do not matter.
inline constexpr std::size_t kSpareBytes = 1;

/// The peak of `samples` samples. What is no number is passed over, and nothing but such is
/// silence.
[[nodiscard]] Peak PeakOfBytes(SampleForm form, const std::uint8_t* bytes, std::size_t samples);

/// The same of fractions of full scale.
[[nodiscard]] Peak PeakOfFractions(const double* fractions, std::size_t samples);

}  // namespace velmora::peaks
