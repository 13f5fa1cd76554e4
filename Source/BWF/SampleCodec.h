#pragma once

#include <cstddef>
#include <cstdint>

namespace velmora {

// Samples of integer PCM: two's complement, low byte first, in every depth. 8-bit samples too are
// taken and written as signed numbers, though wave files usually store them offset by 128.
//
// Scale: a sample of n bits is read as value / 2^(n-1) and written as value * (2^(n-1) - 1),
// truncated toward zero. There is no clipping and no dither: what leaves the range of the depth
// wraps around, and what leaves the 32-bit range becomes the lowest number.

/// Full scale of a depth as the number that samples are multiplied by. The shift wraps as the
/// processor's does, so that no depth that a file claims is undefined.
[[nodiscard]] constexpr float FullScale(std::uint32_t bits) {
  const std::uint32_t highest = (std::uint32_t{1} << ((bits - 1) & 31U)) - 1;
  return static_cast<float>(static_cast<std::int32_t>(highest));
}

/// Puts the next byte of a sample, which come in file order, on top of those before it. When all
/// are there the sample stands left-justified; of more than four bytes only the last four count.
[[nodiscard]] constexpr std::uint32_t AddSampleByte(std::uint32_t leftJustified,
                                                    std::uint8_t byte) {
  return leftJustified >> 8 | static_cast<std::uint32_t>(byte) << 24;
}

/// A sample left-justified in 32 bits as a float. 16 and 24 bits are exact.
[[nodiscard]] constexpr float SampleFromLeftJustified(std::uint32_t leftJustified) {
  constexpr float kScale = 0x1p-31F;
  return static_cast<float>(static_cast<std::int32_t>(leftJustified)) * kScale;
}

/// The low `count` bytes of a sample, low byte first. A sample has four bytes: all further ones
/// repeat its sign, 0x00 or 0xFF.
constexpr void EncodeSample(std::int32_t sample, std::uint8_t* bytes, std::size_t count) {
  constexpr std::size_t kSampleBytes = sizeof sample;
  const auto bits = static_cast<std::uint32_t>(sample);
  for (std::size_t i = 0; i < count && i < kSampleBytes; ++i) {
    bytes[i] = static_cast<std::uint8_t>(bits >> (8 * i));
  }
  for (std::size_t i = kSampleBytes; i < count; ++i) bytes[i] = sample < 0 ? 0xFF : 0;
}

}  // namespace velmora
