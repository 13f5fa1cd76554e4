#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Session/SessionClock.h"

namespace velmora::report {

/// The zoom levels of the picture: at level n it is 2^n times as wide as at level 0.
inline constexpr int kZoomLevels = 7;

/// A mark of the picture's ruler.
struct TimeTick {
  std::int64_t sample = 0;
  int level = 0;      ///< it shows from this zoom level on
  std::string label;  ///< timecode
};

/// Marks for a picture from sample `first` to sample `end`, rising: about ten on a screen at every
/// zoom level, each at a full frame, second, minute or hour where there is room for that.
[[nodiscard]] std::vector<TimeTick> TicksBetween(const host::SessionClock& clock,
                                                 std::int64_t first, std::int64_t end);

}  // namespace velmora::report
