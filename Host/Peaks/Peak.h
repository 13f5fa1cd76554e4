#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace velmora::peaks {

/// The lowest and the highest sample of a stretch of audio, over all its channels, full scale being
/// 32768. Samples of other depths are cut to 16 bits, rounded down; fractions beyond full scale are
/// clipped. Sixteen bits are more than any screen can show.
struct Peak {
  std::int16_t lowest = std::numeric_limits<std::int16_t>::max();
  std::int16_t highest = std::numeric_limits<std::int16_t>::min();

  /// No sample has been counted.
  [[nodiscard]] bool IsEmpty() const { return lowest > highest; }
  void Add(const Peak& other) {
    lowest = std::min(lowest, other.lowest);
    highest = std::max(highest, other.highest);
  }
  bool operator==(const Peak&) const = default;
};

}  // namespace velmora::peaks
