// In a file of its own, so that it can be compiled with optimisation: it does hundreds of millions
// of samples.

#include "Support/ReferenceKernels.h"

#include <limits>

namespace velmora::test {

void ReferenceConvert(const std::uint8_t* source, std::uint32_t sourceBits, std::uint8_t* target,
                      std::uint32_t targetBits, std::size_t count, std::optional<double> gain) {
  const std::uint32_t sourceBytes = sourceBits / 8;
  const std::uint32_t targetBytes = targetBits / 8;
  const auto fullScale = static_cast<float>((std::int64_t{1} << (targetBits - 1)) - 1);
  for (std::size_t i = 0; i < count; ++i) {
    std::uint32_t leftJustified = 0;
    for (std::uint32_t b = 0; b < sourceBytes; ++b) {
      leftJustified = leftJustified >> 8 | static_cast<std::uint32_t>(*source++) << 24;
    }
    float value = static_cast<float>(static_cast<std::int32_t>(leftJustified)) * 0x1p-31F;
    if (gain) value = static_cast<float>(static_cast<double>(value) * *gain);
    const float scaled = value * fullScale;
    std::int32_t sample = std::numeric_limits<std::int32_t>::min();
    if (scaled >= -0x1p31F && scaled < 0x1p31F) sample = static_cast<std::int32_t>(scaled);
    for (std::uint32_t b = 0; b < targetBytes; ++b) {
      *target++ = static_cast<std::uint8_t>(static_cast<std::uint32_t>(sample) >> (8 * b));
    }
  }
}

}  // namespace velmora::test
