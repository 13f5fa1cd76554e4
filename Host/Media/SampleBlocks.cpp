#include "Media/SampleBlocks.h"

#include <algorithm>
#include <cmath>

namespace velmora::media {
namespace {

constexpr double kFullScale = 0x1p23;

/// To the nearest whole number, ties to even: a sum this large has no room for fractions. Written
/// as arithmetic, loops of it are vectorised.
double Rounded(double value) {
  constexpr double kNoFractions = 0x1.8p52;
  return (value + kNoFractions) - kNoFractions;
}

template <std::size_t kBytes>
void Pack(const std::int32_t* from, std::size_t count, std::size_t step, std::uint8_t* to) {
  constexpr std::size_t kDropped = 4 - kBytes;
  for (std::size_t i = 0; i < count; ++i, from += step, to += kBytes) {
    const auto sample = static_cast<std::uint32_t>(*from) >> (8 * kDropped);
    for (std::size_t byte = 0; byte < kBytes; ++byte) {
      to[byte] = static_cast<std::uint8_t>(sample >> (8 * byte));
    }
  }
}

}  // namespace

void RoundTo24Bits(std::span<const double> samples, std::vector<std::int32_t>& rounded,
                   RoundingFacts& facts) {
  rounded.resize(samples.size());
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double value = std::isnan(samples[i]) ? 0.0 : samples[i];
    const double magnitude = std::abs(value);
    if (magnitude > facts.peak && std::isfinite(magnitude)) facts.peak = magnitude;
    if (magnitude > 1.0) ++facts.clipped;
    const double inside = std::clamp(value * kFullScale, -kFullScale, kFullScale - 1);
    rounded[i] = static_cast<std::int32_t>(Rounded(inside)) * 256;
  }
}

void PackSamples(std::span<const std::int32_t> samples, std::int32_t channels, std::int32_t channel,
                 std::int32_t bits, std::vector<std::uint8_t>& bytes) {
  const bool all = channel < 0;
  const std::size_t step = all ? 1 : static_cast<std::size_t>(channels);
  const std::size_t count = samples.size() / step;
  const std::int32_t* const from = samples.data() + (all ? 0 : channel);
  bytes.resize(count * static_cast<std::size_t>(bits / 8));
  if (bits == 16) {
    Pack<2>(from, count, step, bytes.data());
  } else if (bits == 24) {
    Pack<3>(from, count, step, bytes.data());
  } else {
    Pack<4>(from, count, step, bytes.data());
  }
}

}  // namespace velmora::media
