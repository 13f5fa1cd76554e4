#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora::program {

/// Numbers and ranges of numbers, as in `1,3-5`. Numbers may be negative: `-3--1`.
class NumberSet {
 public:
  /// None if the text has another form or a range runs down.
  [[nodiscard]] static std::optional<NumberSet> Parse(const std::string& text);
  [[nodiscard]] bool Contains(std::int32_t number) const;

 private:
  std::vector<std::pair<std::int64_t, std::int64_t>> ranges_;  ///< both ends included
};

/// Which check boxes stay ticked.
struct BoxChoice {
  std::optional<NumberSet> skip;
  std::optional<NumberSet> only;

  [[nodiscard]] bool Chooses() const { return skip.has_value() || only.has_value(); }
  [[nodiscard]] bool Ticks(std::int32_t number) const {
    if (only) return only->Contains(number);
    return !skip || !skip->Contains(number);
  }
};

}  // namespace velmora::program
