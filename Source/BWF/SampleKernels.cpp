#include "BWF/SampleKernels.h"

#include <cstring>

#include "BWF/SampleCodec.h"
#include "Timecode/Wrapping.h"

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

template <bool ApplyGain, std::size_t KnownSource, std::size_t KnownTarget>
void ConvertBlock(const std::uint8_t* source, std::size_t givenSource, std::uint8_t* target,
                  std::size_t givenTarget, std::size_t count, const Scaling& scaling) {
  const std::size_t sourceBytes = Count<KnownSource>(givenSource);
  const std::size_t targetBytes = Count<KnownTarget>(givenTarget);
  for (std::size_t i = 0; i < count; ++i) {
    float value = DecodeSample(source + i * sourceBytes, sourceBytes);
    if constexpr (ApplyGain) value = static_cast<float>(value * scaling.gain);
    EncodeSample(Truncate<std::int32_t>(value * scaling.fullScale), target + i * targetBytes,
                 targetBytes);
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
