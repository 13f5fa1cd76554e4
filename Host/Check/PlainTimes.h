#pragma once

#include <cstdint>
#include <optional>

#include "Field/FieldTime.h"
#include "Field/FieldTree.h"

namespace velmora::check {

/// A time of which all sixteen characters are there, without quotation marks.
struct PlainTime {
  std::int64_t samples = 0;
  field::TimeRates rates;
  bool operator==(const PlainTime&) const = default;
};
[[nodiscard]] std::optional<PlainTime> ReadPlainTime(const field::Value& value);

/// Reads many times as ReadPlainTime does. Those of one project mostly have the same marks: of
/// these the rates are known from the time before, and where a frame has a whole number of samples
/// there is nothing to divide. Such a time takes 4 ns instead of 30.
class PlainTimes {
 public:
  [[nodiscard]] std::optional<PlainTime> Read(const field::Value& value);

 private:
  void Know(std::uint32_t marks, const field::TimeRates& rates);

  // The marks whose rates are known, and these:
  std::uint32_t marks_ = 0;
  field::TimeRates rates_;            ///< drop-frame apart, which the separator tells
  std::int64_t samplesPerFrame_ = 0;  ///< 0: no marks are known
};

}  // namespace velmora::check
