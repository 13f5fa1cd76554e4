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

bool EqualsIgnoringCase(const char* a, const char* b) {
  if (a == nullptr || b == nullptr) return false;
  while (*a != '\0' && LowerCase(*a) == LowerCase(*b)) {
    ++a;
    ++b;
  }
  return LowerCase(*a) == LowerCase(*b);
}

std::int32_t ToInt32(const char* text) {
  if (text == nullptr) return 0;
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
