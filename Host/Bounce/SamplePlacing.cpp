#include "Bounce/SamplePlacing.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace velmora::bounce {
namespace {

using host::BounceDepth;

/// Bytes are copied as they lie in the machine's numbers.
static_assert(std::endian::native == std::endian::little);

template <typename Sample, std::size_t kBytes, typename Convert>
void Place(const Sample* samples, const Placing& placing, Convert convert) {
  for (std::size_t channel = 0; channel < placing.width; ++channel) {
    const Sample* from = samples + channel % placing.sourceChannels;
    std::uint8_t* to = placing.bytes + channel * kBytes;
    for (std::size_t frame = 0; frame < placing.frames; ++frame) {
      const auto placed = convert(*from);
      std::memcpy(to, &placed, kBytes);
      from += placing.sourceChannels;
      to += placing.frameBytes;
    }
  }
}

/// The upper bits of 32 as an integer of that many bits.
template <int kBits>
std::int32_t Narrowed(std::int32_t left) {
  constexpr int kDropped = 32 - kBits;
  constexpr std::int64_t kBelowHalf = (std::int64_t{1} << (kDropped - 1)) - 1;
  constexpr std::int64_t kMost = (std::int64_t{1} << (kBits - 1)) - 1;
  // An odd result is lifted at exactly half and an even one stays.
  const std::int64_t isOdd = (left >> kDropped) & 1;
  return static_cast<std::int32_t>(
      std::min((std::int64_t{left} + kBelowHalf + isOdd) >> kDropped, kMost));
}

template <int kBits>
std::int32_t Rounded(double fraction) {
  constexpr double kFullScale = std::int64_t{1} << (kBits - 1);
  // A sum as large as this has no room for fractions: it is rounded to nearest
  // even. As arithmetic the loop is vectorised.
  constexpr double kNoFractions = 0x1.8p52;
  const double value = std::isnan(fraction) ? 0.0 : fraction * kFullScale;
  const double inside = std::clamp(value, -kFullScale, kFullScale - 1);
  return static_cast<std::int32_t>((inside + kNoFractions) - kNoFractions);
}

float FromInteger(std::int32_t left) {
  return static_cast<float>(left) * 0x1p-31F;
}

float FromFraction(double fraction) {
  constexpr double kMost = std::numeric_limits<float>::max();
  // Beyond every float the language leaves the result open.
  if (std::abs(fraction) > kMost) {
    return std::copysign(std::numeric_limits<float>::infinity(), fraction < 0 ? -1.0F : 1.0F);
  }
  return static_cast<float>(fraction);
}

/// A sample that is moved as it is.
template <std::size_t kBytes>
struct Raw {
  std::uint8_t bytes[kBytes];
};

template <std::size_t kBytes>
void PlaceRaw(const std::uint8_t* samples, const Placing& placing) {
  Place<Raw<kBytes>, kBytes>(reinterpret_cast<const Raw<kBytes>*>(samples), placing,
                             [](const Raw<kBytes>& sample) { return sample; });
}

}  // namespace

void PlaceBytes(const std::uint8_t* samples, BounceDepth depth, const Placing& placing) {
  switch (depth) {
    case BounceDepth::Bits16:
      return PlaceRaw<2>(samples, placing);
    case BounceDepth::Bits24:
      return PlaceRaw<3>(samples, placing);
    case BounceDepth::Float32:
      return PlaceRaw<4>(samples, placing);
  }
}

void PlaceIntegers(const std::int32_t* samples, BounceDepth depth, const Placing& placing) {
  switch (depth) {
    case BounceDepth::Bits16:
      return Place<std::int32_t, 2>(samples, placing, Narrowed<16>);
    case BounceDepth::Bits24:
      return Place<std::int32_t, 3>(samples, placing, Narrowed<24>);
    case BounceDepth::Float32:
      return Place<std::int32_t, 4>(samples, placing, FromInteger);
  }
}

void PlaceFractions(const double* samples, BounceDepth depth, const Placing& placing) {
  switch (depth) {
    case BounceDepth::Bits16:
      return Place<double, 2>(samples, placing, Rounded<16>);
    case BounceDepth::Bits24:
      return Place<double, 3>(samples, placing, Rounded<24>);
    case BounceDepth::Float32:
      return Place<double, 4>(samples, placing, FromFraction);
  }
}

}  // namespace velmora::bounce
