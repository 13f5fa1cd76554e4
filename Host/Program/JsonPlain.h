#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "Session/PrintableAscii.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora::program {

// Which bytes stand in a JSON text as they are: ASCII from the blank on, but for the quotation mark
// and the backslash.

[[nodiscard]] constexpr bool IsPlainInJson(char c) {
  return static_cast<signed char>(c) >= ' ' && c != '"' && c != '\\';
}

/// True if all of eight bytes do, and none of them is 0x7F.
[[nodiscard]] constexpr bool ArePlainInJson(std::uint64_t bytes) {
  return (host::MarkUnprintable(bytes) | host::MarkEqual(bytes, '"') |
          host::MarkEqual(bytes, '\\')) == 0;
}

/// So many bytes of a text are looked at in one step.
inline constexpr std::size_t kStepBytes = 16;

/// A bit for each of sixteen bytes, the lowest for the first, that does not stand in JSON as it is.
[[nodiscard]] inline std::uint32_t MarkEscapedPortably(const char* bytes) {
  std::uint32_t marks = 0;
  for (std::size_t i = 0; i < kStepBytes; ++i) marks |= IsPlainInJson(bytes[i]) ? 0u : 1u << i;
  return marks;
}

/// The same at once where the processor can: every x86-64 has SSE2.
[[nodiscard]] inline std::uint32_t MarkEscaped(const char* bytes) {
#if defined(__SSE2__)
  __m128i loaded;
  std::memcpy(&loaded, bytes, kStepBytes);
  // As signed numbers the bytes from 0x80 on are below the blank, too.
  const __m128i isOdd = _mm_cmplt_epi8(loaded, _mm_set1_epi8(' '));
  const __m128i isQuote = _mm_cmpeq_epi8(loaded, _mm_set1_epi8('"'));
  const __m128i isBackslash = _mm_cmpeq_epi8(loaded, _mm_set1_epi8('\\'));
  const __m128i marks = _mm_or_si128(isOdd, _mm_or_si128(isQuote, isBackslash));
  return static_cast<std::uint32_t>(_mm_movemask_epi8(marks));
#else
  return MarkEscapedPortably(bytes);
#endif
}

/// Copies a text of fewer than sixteen bytes to `out`, which has room for it; false if not all of
/// it stands in JSON as it is, or it has a 0x7F. Its last bytes are looked at as a word that ends
/// with them, so that some may be seen twice: two steps where a byte at a time takes fifteen.
[[nodiscard]] inline bool CopyShortPlainText(std::string_view text, char* out) {
  const std::size_t size = text.size();
  const char* const at = text.data();
  if (size >= sizeof(std::uint64_t)) {
    const std::size_t last = size - sizeof(std::uint64_t);
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::memcpy(&first, at, sizeof first);
    std::memcpy(&second, at + last, sizeof second);
    std::memcpy(out, &first, sizeof first);
    std::memcpy(out + last, &second, sizeof second);
    return ArePlainInJson(first) && ArePlainInJson(second);
  }
  if (size >= sizeof(std::uint32_t)) {
    const std::size_t last = size - sizeof(std::uint32_t);
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    std::memcpy(&first, at, sizeof first);
    std::memcpy(&second, at + last, sizeof second);
    std::memcpy(out, &first, sizeof first);
    std::memcpy(out + last, &second, sizeof second);
    return ArePlainInJson(std::uint64_t{second} << 32 | first);
  }
  bool isPlain = true;
  for (std::size_t i = 0; i < size; ++i) {
    out[i] = at[i];
    isPlain = isPlain && IsPlainInJson(at[i]);
  }
  return isPlain;
}

/// The same for a text of any size. False may come late: what `out` has then is void.
[[nodiscard]] inline bool CopyPlainText(std::string_view text, char* out) {
  const std::size_t size = text.size();
  if (size < kStepBytes) return CopyShortPlainText(text, out);
  for (std::size_t at = 0;; at += kStepBytes) {
    if (size - at < kStepBytes) at = size - kStepBytes;  // some of the last bytes once more
    if (MarkEscaped(text.data() + at) != 0) return false;
    std::memcpy(out + at, text.data() + at, kStepBytes);
    if (size - at == kStepBytes) return true;
  }
}

}  // namespace velmora::program
