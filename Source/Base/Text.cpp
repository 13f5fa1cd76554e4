#include "Base/Text.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#if defined(__APPLE__)
#include <xlocale.h>
#else
#include <locale.h>
#endif

namespace velmora {

std::int32_t ToInt32(const char* text) {
  if (text == nullptr) return 0;
  // Up to nine digits at the start, which is what projects have: 4 ns instead of 8.
  constexpr int kDigitsThatFit = 9;
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  std::int32_t number = 0;
  int digits = 0;
  for (; digits < kDigitsThatFit && isDigit(text[digits]); ++digits) {
    number = number * 10 + (text[digits] - '0');
  }
  if (digits != 0 && !isDigit(text[digits])) return number;

  const long value = std::strtol(text, nullptr, 10);
  return static_cast<std::int32_t>(std::clamp<long>(value, std::numeric_limits<std::int32_t>::min(),
                                                    std::numeric_limits<std::int32_t>::max()));
}

double ToDouble(const char* text) {
  // A view may set a locale whose decimal point is a comma, and "-3.5" would lose its half.
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  if (text == nullptr) return 0.0;
  return plain != nullptr ? strtod_l(text, nullptr, plain) : std::strtod(text, nullptr);
}

std::string Counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace velmora
