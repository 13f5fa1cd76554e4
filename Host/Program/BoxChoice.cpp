#include "Program/BoxChoice.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

namespace velmora::program {
namespace {

/// Takes a number off the front of the text; one beyond 64 bits counts as the nearest, which no
/// project has.
std::optional<std::int64_t> TakeNumber(std::string_view& text) {
  using Limits = std::numeric_limits<std::int64_t>;
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::invalid_argument) return std::nullopt;
  if (error != std::errc()) number = text.front() == '-' ? Limits::min() : Limits::max();
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

bool TakeCharacter(std::string_view& text, char character) {
  if (text.empty() || text.front() != character) return false;
  text.remove_prefix(1);
  return true;
}

}  // namespace

std::optional<NumberSet> NumberSet::Parse(const std::string& text) {
  NumberSet numbers;
  std::string_view rest = text;
  do {
    const std::optional<std::int64_t> first = TakeNumber(rest);
    if (!first) return std::nullopt;
    std::optional<std::int64_t> last = first;
    if (TakeCharacter(rest, '-')) last = TakeNumber(rest);
    if (!last || *last < *first) return std::nullopt;
    numbers.ranges_.emplace_back(*first, *last);
  } while (TakeCharacter(rest, ','));
  if (!rest.empty()) return std::nullopt;
  return numbers;
}

bool NumberSet::Contains(std::int32_t number) const {
  return std::any_of(ranges_.begin(), ranges_.end(), [number](const auto& range) {
    return range.first <= number && number <= range.second;
  });
}

}  // namespace velmora::program
