#include "BWF/SampleConversion.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "BWF/SampleCodec.h"

namespace velmora {

SampleConversion::SampleConversion(std::uint32_t sourceBits, std::uint32_t targetBits,
                                   const double* gain, const SampleKernels& kernels)
    : kernels_(kernels),
      sourceBytes_(sourceBits / 8),
      targetBytes_(targetBits / 8),
      fullScale_(FullScale(targetBits)),
      applyGain_(gain != nullptr),
      gain_(gain != nullptr ? *gain : 1.0) {}

/// In stretches whose values stay in the nearest cache.
void SampleConversion::Convert(const std::uint8_t* source, std::uint8_t* target,
                               std::size_t count) const {
  if (sourceBytes_ == 0) {
    std::memset(target, 0, count * targetBytes_);
    return;
  }
  constexpr std::size_t kStretch = 1024;
  std::array<float, kStretch> values;
  for (std::size_t done = 0; done < count; done += kStretch) {
    const std::size_t n = std::min(kStretch, count - done);
    kernels_.decode(source + done * sourceBytes_, sourceBytes_, values.data(), n);
    if (applyGain_) kernels_.multiply(values.data(), gain_, n);
    kernels_.encode(values.data(), fullScale_, target + done * targetBytes_, targetBytes_, n);
  }
}

}  // namespace velmora
