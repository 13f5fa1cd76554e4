// The loops over samples for x86 processors with AVX2: 8 samples at a time.

#include "BWF/ProcessorKernels.h"

#if defined(VELMORA_AVX2_KERNELS)

#include <immintrin.h>

// The rest of the program is compiled for processors without AVX2, so each function says for itself
// that it needs it.
#define VELMORA_AVX2 __attribute__((target("avx2")))

namespace velmora {
namespace {

constexpr std::size_t kLanes = 8;

/// Samples of 16 bits in the upper halves of their lanes.
VELMORA_AVX2 __m256i Load16(const std::uint8_t* bytes) {
  const __m128i packed = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  return _mm256_slli_epi32(_mm256_cvtepu16_epi32(packed), 16);
}

/// Samples of 24 bits in the upper three bytes of their lanes. The two loads overlap, so that
/// together they touch just the 24 bytes of 8 samples.
VELMORA_AVX2 __m256i Load24(const std::uint8_t* bytes) {
  const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  const __m128i last = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + 8));
  const __m256i spread = _mm256_setr_epi8(-1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11,  //
                                          -1, 4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15);
  return _mm256_shuffle_epi8(_mm256_set_m128i(last, first), spread);
}

VELMORA_AVX2 __m256 ToValues(__m256i leftJustified) {
  return _mm256_mul_ps(_mm256_cvtepi32_ps(leftJustified), _mm256_set1_ps(0x1p-31F));
}

/// What does not fit 32 bits becomes the lowest number, by the instruction itself.
VELMORA_AVX2 __m256i ToSamples(const float* values, float fullScale) {
  const __m256 scaled = _mm256_mul_ps(_mm256_loadu_ps(values), _mm256_set1_ps(fullScale));
  return _mm256_cvttps_epi32(scaled);
}

VELMORA_AVX2 void Store16(std::uint8_t* bytes, __m256i samples) {
  const __m256i low = _mm256_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1,  //
                                       0, 1, 4, 5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1);
  const __m256i halves = _mm256_shuffle_epi8(samples, low);
  const __m256i packed = _mm256_permute4x64_epi64(halves, 0b1000);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), _mm256_castsi256_si128(packed));
}

VELMORA_AVX2 void Store24(std::uint8_t* bytes, __m256i samples) {
  const __m256i low = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1,  //
                                       0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
  const __m256i halves = _mm256_shuffle_epi8(samples, low);
  const __m256i packed =
      _mm256_permutevar8x32_epi32(halves, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), _mm256_castsi256_si128(packed));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes + 16), _mm256_extracti128_si256(packed, 1));
}

VELMORA_AVX2 void Decode(const std::uint8_t* bytes, std::size_t sampleBytes, float* values,
                         std::size_t count) {
  std::size_t i = 0;
  if (sampleBytes == 2) {
    for (; i + kLanes <= count; i += kLanes) {
      _mm256_storeu_ps(values + i, ToValues(Load16(bytes + i * 2)));
    }
  } else if (sampleBytes == 3) {
    for (; i + kLanes <= count; i += kLanes) {
      _mm256_storeu_ps(values + i, ToValues(Load24(bytes + i * 3)));
    }
  }
  PortableKernels().decode(bytes + i * sampleBytes, sampleBytes, values + i, count - i);
}

VELMORA_AVX2 void Encode(const float* values, float fullScale, std::uint8_t* bytes,
                         std::size_t sampleBytes, std::size_t count) {
  std::size_t i = 0;
  if (sampleBytes == 2) {
    for (; i + kLanes <= count; i += kLanes)
      Store16(bytes + i * 2, ToSamples(values + i, fullScale));
  } else if (sampleBytes == 3) {
    for (; i + kLanes <= count; i += kLanes)
      Store24(bytes + i * 3, ToSamples(values + i, fullScale));
  }
  PortableKernels().encode(values + i, fullScale, bytes + i * sampleBytes, sampleBytes, count - i);
}

VELMORA_AVX2 __m128 Multiplied(__m128 values, __m256d factor) {
  return _mm256_cvtpd_ps(_mm256_mul_pd(_mm256_cvtps_pd(values), factor));
}

VELMORA_AVX2 void Multiply(float* values, double factor, std::size_t count) {
  const __m256d factors = _mm256_set1_pd(factor);
  std::size_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    _mm_storeu_ps(values + i, Multiplied(_mm_loadu_ps(values + i), factors));
    _mm_storeu_ps(values + i + 4, Multiplied(_mm_loadu_ps(values + i + 4), factors));
  }
  PortableKernels().multiply(values + i, factor, count - i);
}

}  // namespace

const SampleKernels& Avx2Kernels() {
  static constexpr SampleKernels kKernels = {"AVX2", Decode, Encode, Multiply};
  return kKernels;
}

}  // namespace velmora

#endif
