#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Session/SessionTarget.h"

namespace velmora::report {

/// A track of the project or of the session.
struct TrackRow {
  std::int64_t number = 0;  ///< the project's
  std::size_t cuts = 0;     ///< of the project, also those that are off
  std::size_t regions = 0;  ///< of the session
  std::int64_t first = 0;   ///< sample at which the regions begin
  std::int64_t end = 0;     ///< and end, exclusive; both 0 without regions
};

/// By number.
[[nodiscard]] std::vector<TrackRow> TracksOf(const host::TargetInput& input);

}  // namespace velmora::report
