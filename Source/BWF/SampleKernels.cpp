#include "BWF/SampleKernels.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "BWF/SampleCodec.h"
#include "Base/Wrapping.h"

namespace velmora {
namespace {

struct Scaling {
  float fullScale;
  double gain;
};

/// A byte count known when compiling (or 0: taken from the argument) keeps the inner loops short.
template <std::size_t Known>
std::size_t Count(std::size_t given) {
  return Known != 0 ? Known : given;
}

/// Left-justified samples from their bytes.
template <std::size_t Known>
void Decode(const std::uint8_t* source, std::size_t given, std::uint32_t* samples,
            std::size_t count) {
  const std::size_t bytes = Count<Known>(given);
  for (std::size_t i = 0; i < count; ++i) {
    std::uint32_t sample = 0;
    for (std::size_t b = 0; b < bytes; ++b) sample = AddSampleByte(sample, source[i * bytes + b]);
    samples[i] = sample;
  }
}

template <bool ApplyGain>
void Scale(const std::uint32_t* samples, std::int32_t* scaled, std::size_t count,
           const Scaling& scaling) {
  for (std::size_t i = 0; i < count; ++i) {
    float value = SampleFromLeftJustified(samples[i]);
    if constexpr (ApplyGain) value = static_cast<float>(value * scaling.gain);
    scaled[i] = Truncate<std::int32_t>(value * scaling.fullScale);
  }
}

template <std::size_t Known>
void Encode(const std::int32_t* samples, std::uint8_t* target, std::size_t given,
            std::size_t count) {
  const std::size_t bytes = Count<Known>(given);
  for (std::size_t i = 0; i < count; ++i) EncodeSample(samples[i], target + i * bytes, bytes);
}

/// Three short loops over a stretch that stays in the nearest cache: the middle one, which does the
/// arithmetic, is then free of bytes and can be vectorised.
template <bool ApplyGain, std::size_t KnownSource, std::size_t KnownTarget>
void ConvertBlock(const std::uint8_t* source, std::size_t sourceBytes, std::uint8_t* target,
                  std::size_t targetBytes, std::size_t count, const Scaling& scaling) {
  constexpr std::size_t kStretch = 512;
  std::array<std::uint32_t, kStretch> samples;
  std::array<std::int32_t, kStretch> scaled;
  for (std::size_t done = 0; done < count; done += kStretch) {
    const std::size_t n = std::min(kStretch, count - done);
    Decode<KnownSource>(source + done * sourceBytes, sourceBytes, samples.data(), n);
    Scale<ApplyGain>(samples.data(), scaled.data(), n, scaling);
    Encode<KnownTarget>(scaled.data(), target + done * targetBytes, targetBytes, n);
  }
}

template <bool ApplyGain, std::size_t KnownSource>
void ConvertToDepth(const std::uint8_t* source, std::size_t sourceBytes, std::uint8_t* target,
                    std::size_t targetBytes, std::size_t count, const Scaling& scaling) {
  const auto convert = targetBytes == 2   ? ConvertBlock<ApplyGain, KnownSource, 2>
                       : targetBytes == 3 ? ConvertBlock<ApplyGain, KnownSource, 3>
                                          : ConvertBlock<ApplyGain, KnownSource, 0>;
  convert(source, sourceBytes, target, targetBytes, count, scaling);
}

template <bool ApplyGain>
void ConvertFromDepth(const std::uint8_t* source, std::size_t sourceBytes, std::uint8_t* target,
                      std::size_t targetBytes, std::size_t count, const Scaling& scaling) {
  const auto convert = sourceBytes == 2   ? ConvertToDepth<ApplyGain, 2>
                       : sourceBytes == 3 ? ConvertToDepth<ApplyGain, 3>
                                          : ConvertToDepth<ApplyGain, 0>;
  convert(source, sourceBytes, target, targetBytes, count, scaling);
}

}  // namespace

SampleConversion::SampleConversion(std::uint32_t sourceBits, std::uint32_t targetBits,
                                   const double* gain)
    : sourceBytes_(sourceBits / 8),
      targetBytes_(targetBits / 8),
      fullScale_(FullScale(targetBits)),
      applyGain_(gain != nullptr),
      gain_(gain != nullptr ? *gain : 1.0) {}

void SampleConversion::Convert(const std::uint8_t* source, std::uint8_t* target,
                               std::size_t count) const {
  if (sourceBytes_ == 0) {
    std::memset(target, 0, count * targetBytes_);
    return;
  }
  const Scaling scaling = {fullScale_, gain_};
  const auto convert = applyGain_ ? ConvertFromDepth<true> : ConvertFromDepth<false>;
  convert(source, sourceBytes_, target, targetBytes_, count, scaling);
}

}  // namespace velmora
