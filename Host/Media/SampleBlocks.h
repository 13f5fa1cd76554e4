#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace velmora::media {

/// What rounding to 24 bits met.
struct RoundingFacts {
  double peak = 0;  ///< largest finite magnitude
  std::int64_t clipped = 0;
};

/// Samples as fractions of full scale to 24 bits at the left end of 32: value times 2^23, to the
/// nearest, ties to even, clipped; what is no number becomes 0.
void RoundTo24Bits(std::span<const double> samples, std::vector<std::int32_t>& rounded,
                   RoundingFacts& facts);

/// One channel of interleaved samples, or all of them, as little-endian bytes of their upper
/// `bits`.
/// @param samples interleaved, each at the left end of 32 bits
/// @param channel from 0; negative: all
void PackSamples(std::span<const std::int32_t> samples, std::int32_t channels, std::int32_t channel,
                 std::int32_t bits, std::vector<std::uint8_t>& bytes);

}  // namespace velmora::media
