#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Session/SessionClock.h"

namespace velmora::report {

/// Levels of marks. The page shows them up to two higher than its zoom level, at which the picture
/// is 2^n times as wide as the screen, or fewer of them where the screen is narrow.
inline constexpr int kTickLevels = 9;

/// A mark of the picture's ruler.
struct TimeTick {
  std::int64_t sample = 0;
  int level = 0;      ///< 0: a mark that every picture shows
  std::string label;  ///< timecode
};

/// Marks for a picture from sample `first` to sample `end`, rising: up to three of level 0, and
/// twice as many up to each further level, each at a full frame, second, minute or hour.
[[nodiscard]] std::vector<TimeTick> TicksBetween(const host::SessionClock& clock,
                                                 std::int64_t first, std::int64_t end);

}  // namespace velmora::report
