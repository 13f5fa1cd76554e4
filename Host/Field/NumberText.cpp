#include "Field/NumberText.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

#include "Base/Text.h"
#include "Field/Keyword.h"

namespace velmora::field {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsSign(char c) {
  return c == '+' || c == '-';
}

}  // namespace

std::optional<LeadingNumber> ReadLeadingNumber(std::string_view text) {
  using Limits = std::numeric_limits<std::int32_t>;
  std::size_t at = !text.empty() && IsSign(text[0]) ? 1 : 0;
  const bool negative = at == 1 && text[0] == '-';
  const std::size_t first = at;
  std::int64_t number = 0;
  for (; at < text.size() && IsDigit(text[at]); ++at) {
    number =
        std::min<std::int64_t>(number * 10 + (text[at] - '0'), std::int64_t{Limits::max()} + 1);
  }
  if (at == first) return std::nullopt;
  number = std::clamp<std::int64_t>(negative ? -number : number, Limits::min(), Limits::max());
  return LeadingNumber{static_cast<std::int32_t>(number), text.substr(at)};
}

std::optional<std::int32_t> ReadNumber(std::string_view text) {
  const std::optional<LeadingNumber> leading = ReadLeadingNumber(text);
  if (!leading || !leading->rest.empty()) return std::nullopt;
  return leading->number;
}

std::optional<LeadingDecimal> ReadLeadingDecimal(std::string_view text) {
  // No level or rate needs more; what is longer is cut.
  std::array<char, 64> room{};
  std::size_t at = 0;
  bool digits = false;
  bool point = false;
  const std::size_t most = std::min(text.size(), room.size() - 1);
  for (; at < most; ++at) {
    char c = text[at];
    if (IsDigit(c)) {
      digits = true;
    } else if ((c == '.' || c == ',') && !point) {
      point = true;
      c = '.';
    } else if (!(at == 0 && IsSign(c))) {
      break;
    }
    room[at] = c;
  }
  if (!digits) return std::nullopt;
  return LeadingDecimal{ToDouble(room.data()), text.substr(at)};
}

std::optional<double> ReadDecibels(std::string_view text) {
  constexpr double kSilence = -1000;
  if (BeginsWithKeyword(text, "-inf")) return kSilence;
  const std::optional<LeadingDecimal> leading = ReadLeadingDecimal(text);
  if (!leading || !(leading->rest.empty() || IsKeyword(leading->rest, "dB"))) return std::nullopt;
  return std::clamp(leading->number, kSilence, -kSilence);
}

}  // namespace velmora::field
