#include "ADL/BlankFinder.h"

#include <array>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__aarch64__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#include <arm_neon.h>
#endif

namespace velmora {
namespace {

/// The first byte value that is none of the blanks below it.
constexpr signed char kFirstText = 33;

}  // namespace

#if defined(__SSE2__)

std::uint64_t BlanksAmong64(const char* bytes) {
  std::uint64_t blanks = 0;
  for (unsigned i = 0; i < 64; i += 16) {
    const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
    const int bits = _mm_movemask_epi8(_mm_cmplt_epi8(sixteen, _mm_set1_epi8(kFirstText)));
    blanks |= static_cast<std::uint64_t>(static_cast<std::uint32_t>(bits)) << i;
  }
  return blanks;
}

#elif defined(__aarch64__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__

std::uint64_t BlanksAmong64(const char* bytes) {
  // Each byte that is blank gives the bit of its place among eight; sums of neighbours, taken three
  // times, bring eight of them together in one byte.
  const uint8x16_t places = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
  const int8x16_t first = vdupq_n_s8(kFirstText);
  const auto blanksAt = [&](std::size_t i) {
    const int8x16_t sixteen = vld1q_s8(reinterpret_cast<const signed char*>(bytes) + i);
    return vandq_u8(vcltq_s8(sixteen, first), places);
  };
  const uint8x16_t half = vpaddq_u8(blanksAt(0), blanksAt(16));
  const uint8x16_t otherHalf = vpaddq_u8(blanksAt(32), blanksAt(48));
  const uint8x16_t pairs = vpaddq_u8(half, otherHalf);
  return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(pairs, pairs)), 0);
}

#else

std::uint64_t BlanksAmong64(const char* bytes) {
  std::uint64_t blanks = 0;
  for (unsigned i = 0; i < 64; ++i) {
    blanks |= std::uint64_t{IsBlank(bytes[i])} << i;
  }
  return blanks;
}

#endif

void BlankFinder::MoveTo(const char* at) {
  window_ = at;
  const std::size_t left = Remaining();
  if (left >= kWidth) {
    blanks_ = BlanksAmong64(at);
    return;
  }
  std::array<char, kWidth> rest{};  // NUL bytes are blank
  std::memcpy(rest.data(), at, left);
  blanks_ = BlanksAmong64(rest.data());
}

}  // namespace velmora
