#include "BWF/SampleKernels.h"

#include <algorithm>
#include <vector>

#include "BWF/ProcessorKernels.h"
#include "BWF/SampleCodec.h"
#include "Base/Wrapping.h"

namespace velmora {
namespace {

/// A byte count known when compiling (or 0: taken from the argument) keeps the inner loops short.
template <std::size_t Known>
void DecodeSized(const std::uint8_t* bytes, std::size_t given, float* values, std::size_t count) {
  const std::size_t sampleBytes = Known != 0 ? Known : given;
  // Only the last four bytes count. A header can claim 8,191 for each sample, of which a file of a
  // few bytes would have hours of them to add.
  const std::size_t first = sampleBytes - std::min(sampleBytes, sizeof(std::uint32_t));
  for (std::size_t i = 0; i < count; ++i) {
    std::uint32_t sample = 0;
    for (std::size_t b = first; b < sampleBytes; ++b) {
      sample = AddSampleByte(sample, bytes[i * sampleBytes + b]);
    }
    values[i] = SampleFromLeftJustified(sample);
  }
}

template <std::size_t Known>
void EncodeSized(const float* values, float fullScale, std::uint8_t* bytes, std::size_t given,
                 std::size_t count) {
  const std::size_t sampleBytes = Known != 0 ? Known : given;
  for (std::size_t i = 0; i < count; ++i) {
    EncodeSample(Truncate<std::int32_t>(values[i] * fullScale), bytes + i * sampleBytes,
                 sampleBytes);
  }
}

void Decode(const std::uint8_t* bytes, std::size_t sampleBytes, float* values, std::size_t count) {
  const auto decode = sampleBytes == 2   ? DecodeSized<2>
                      : sampleBytes == 3 ? DecodeSized<3>
                                         : DecodeSized<0>;
  decode(bytes, sampleBytes, values, count);
}

void Encode(const float* values, float fullScale, std::uint8_t* bytes, std::size_t sampleBytes,
            std::size_t count) {
  const auto encode = sampleBytes == 2   ? EncodeSized<2>
                      : sampleBytes == 3 ? EncodeSized<3>
                                         : EncodeSized<0>;
  encode(values, fullScale, bytes, sampleBytes, count);
}

void Multiply(float* values, double factor, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<float>(values[i] * factor);
}

std::vector<const SampleKernels*> FindKernels() {
  std::vector<const SampleKernels*> found;
#if defined(VELMORA_AVX2_KERNELS)
  if (__builtin_cpu_supports("avx2") != 0) found.push_back(&Avx2Kernels());
#elif defined(VELMORA_NEON_KERNELS)
  found.push_back(&NeonKernels());
#endif
  found.push_back(&PortableKernels());
  return found;
}

}  // namespace

const SampleKernels& PortableKernels() {
  static constexpr SampleKernels kKernels = {"portable", Decode, Encode, Multiply};
  return kKernels;
}

std::span<const SampleKernels* const> KernelsOfThisMachine() {
  static const std::vector<const SampleKernels*> kernels = FindKernels();
  return kernels;
}

const SampleKernels& FastestKernels() {
  return *KernelsOfThisMachine().front();
}

}  // namespace velmora
