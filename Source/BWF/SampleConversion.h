#pragma once

#include <cstddef>
#include <cstdint>

#include "BWF/SampleKernels.h"

namespace velmora {

/// Turns blocks of samples of one depth into another, under a gain or not. The rules of the samples
/// stand in SampleCodec.h.
class SampleConversion {
 public:
  /// @param gain linear factor, applied in doubles; null for none
  SampleConversion(std::uint32_t sourceBits, std::uint32_t targetBits, const double* gain,
                   const SampleKernels& kernels = FastestKernels());

  [[nodiscard]] std::size_t SourceBytes() const { return sourceBytes_; }  ///< of one sample
  [[nodiscard]] std::size_t TargetBytes() const { return targetBytes_; }  ///< of one sample

  /// Converts `count` samples. A source depth below 8 bits has no samples: all are 0 then.
  void Convert(const std::uint8_t* source, std::uint8_t* target, std::size_t count) const;

 private:
  const SampleKernels& kernels_;
  std::size_t sourceBytes_;
  std::size_t targetBytes_;
  float fullScale_;
  bool applyGain_;
  double gain_;
};

}  // namespace velmora
