// The loops over samples for 64-bit ARM processors: 8 samples at a time.

#include "BWF/ProcessorKernels.h"

#if defined(VELMORA_NEON_KERNELS)

#include <arm_neon.h>

#include <array>
#include <limits>

namespace velmora {
namespace {

constexpr std::size_t kLanes = 8;
constexpr std::uint8_t kZero = 0xFF;  ///< a place in a table of bytes that gives 0

uint8x16_t Table(const std::array<std::uint8_t, 16>& places) {
  return vld1q_u8(places.data());
}

void StoreValues(float* values, uint32x4_t leftJustified) {
  const float32x4_t whole = vcvtq_f32_s32(vreinterpretq_s32_u32(leftJustified));
  vst1q_f32(values, vmulq_n_f32(whole, 0x1p-31F));
}

void Decode16(const std::uint8_t* bytes, float* values) {
  const uint16x8_t packed = vreinterpretq_u16_u8(vld1q_u8(bytes));
  StoreValues(values, vshlq_n_u32(vmovl_u16(vget_low_u16(packed)), 16));
  StoreValues(values + 4, vshlq_n_u32(vmovl_u16(vget_high_u16(packed)), 16));
}

/// The two loads overlap, so that together they touch just the 24 bytes of 8 samples.
void Decode24(const std::uint8_t* bytes, float* values) {
  const uint8x16_t first =
      Table({kZero, 0, 1, 2, kZero, 3, 4, 5, kZero, 6, 7, 8, kZero, 9, 10, 11});
  const uint8x16_t last =
      Table({kZero, 4, 5, 6, kZero, 7, 8, 9, kZero, 10, 11, 12, kZero, 13, 14, 15});
  StoreValues(values, vreinterpretq_u32_u8(vqtbl1q_u8(vld1q_u8(bytes), first)));
  StoreValues(values + 4, vreinterpretq_u32_u8(vqtbl1q_u8(vld1q_u8(bytes + 8), last)));
}

/// What does not fit 32 bits becomes the lowest number. The processor's own conversion would give
/// the nearest one.
uint8x16_t ToSamples(const float* values, float fullScale) {
  const float32x4_t scaled = vmulq_n_f32(vld1q_f32(values), fullScale);
  const uint32x4_t fits =
      vandq_u32(vcgeq_f32(scaled, vdupq_n_f32(-0x1p31F)), vcltq_f32(scaled, vdupq_n_f32(0x1p31F)));
  const int32x4_t lowest = vdupq_n_s32(std::numeric_limits<std::int32_t>::min());
  return vreinterpretq_u8_s32(vbslq_s32(fits, vcvtq_s32_f32(scaled), lowest));
}

void Encode16(const float* values, float fullScale, std::uint8_t* bytes) {
  const uint16x8_t first = vreinterpretq_u16_u8(ToSamples(values, fullScale));
  const uint16x8_t last = vreinterpretq_u16_u8(ToSamples(values + 4, fullScale));
  vst1q_u8(bytes, vreinterpretq_u8_u16(vuzp1q_u16(first, last)));
}

void Encode24(const float* values, float fullScale, std::uint8_t* bytes) {
  const uint8x16x2_t samples = {{ToSamples(values, fullScale), ToSamples(values + 4, fullScale)}};
  const uint8x16_t first = Table({0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 16, 17, 18, 20});
  const uint8x8_t last =
      vget_low_u8(Table({21, 22, 24, 25, 26, 28, 29, 30, 0, 0, 0, 0, 0, 0, 0, 0}));
  vst1q_u8(bytes, vqtbl2q_u8(samples, first));
  vst1_u8(bytes + 16, vqtbl2_u8(samples, last));
}

void Decode(const std::uint8_t* bytes, std::size_t sampleBytes, float* values, std::size_t count) {
  std::size_t i = 0;
  if (sampleBytes == 2) {
    for (; i + kLanes <= count; i += kLanes) Decode16(bytes + i * 2, values + i);
  } else if (sampleBytes == 3) {
    for (; i + kLanes <= count; i += kLanes) Decode24(bytes + i * 3, values + i);
  }
  PortableKernels().decode(bytes + i * sampleBytes, sampleBytes, values + i, count - i);
}

void Encode(const float* values, float fullScale, std::uint8_t* bytes, std::size_t sampleBytes,
            std::size_t count) {
  std::size_t i = 0;
  if (sampleBytes == 2) {
    for (; i + kLanes <= count; i += kLanes) Encode16(values + i, fullScale, bytes + i * 2);
  } else if (sampleBytes == 3) {
    for (; i + kLanes <= count; i += kLanes) Encode24(values + i, fullScale, bytes + i * 3);
  }
  PortableKernels().encode(values + i, fullScale, bytes + i * sampleBytes, sampleBytes, count - i);
}

void Multiply(float* values, double factor, std::size_t count) {
  std::size_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    for (std::size_t half = 0; half < kLanes; half += 4) {
      float* const at = values + i + half;
      const float32x4_t four = vld1q_f32(at);
      const float64x2_t low = vmulq_n_f64(vcvt_f64_f32(vget_low_f32(four)), factor);
      const float64x2_t high = vmulq_n_f64(vcvt_high_f64_f32(four), factor);
      vst1q_f32(at, vcvt_high_f32_f64(vcvt_f32_f64(low), high));
    }
  }
  PortableKernels().multiply(values + i, factor, count - i);
}

}  // namespace

const SampleKernels& NeonKernels() {
  static constexpr SampleKernels kKernels = {"NEON", Decode, Encode, Multiply};
  return kKernels;
}

}  // namespace velmora

#endif
