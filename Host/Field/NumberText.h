#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace velmora::field {

/// A whole number at the start of a text, a sign allowed, and the rest of the text after it. What
/// passes 32 bits counts as the nearest number that does not. None if no digit stands there.
struct LeadingNumber {
  std::int32_t number = 0;
  std::string_view rest;
};
[[nodiscard]] std::optional<LeadingNumber> ReadLeadingNumber(std::string_view text);

/// A text that is a whole number and nothing else.
[[nodiscard]] std::optional<std::int32_t> ReadNumber(std::string_view text);

/// A decimal number with "." or "," at the start of a text, a sign allowed, and the rest after it.
struct LeadingDecimal {
  double number = 0;
  std::string_view rest;
};
[[nodiscard]] std::optional<LeadingDecimal> ReadLeadingDecimal(std::string_view text);

/// A level in dB: "+5.00", "-6,02", "-3dB"; "-inf" is -1000. None for any other text.
[[nodiscard]] std::optional<double> ReadDecibels(std::string_view text);

}  // namespace velmora::field
