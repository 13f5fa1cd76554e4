#include "DawProject/Seconds.h"

#include <charconv>
#include <limits>

namespace velmora::dawproject {

std::string SecondsText(std::int64_t samples, double sampleRate) {
  return NumberText(static_cast<double>(samples) / sampleRate);
}

std::string NumberText(double number) {
  using Limits = std::numeric_limits<double>;
  // All digits before the point, or all zeros after it, and a sign.
  char text[Limits::max_exponent10 + Limits::max_digits10 + 8];
  const std::to_chars_result end =
      std::to_chars(text, text + sizeof text, number, std::chars_format::fixed);
  return {text, end.ptr};
}

}  // namespace velmora::dawproject
