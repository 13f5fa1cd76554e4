#pragma once

#include <string>

#include "Session/Session.h"
#include "Session/SessionClock.h"

namespace velmora::timeline {

/// What a person wants to know of a region, in two lines.
struct RegionFacts {
  std::string title;    ///< the region's name and what it is
  std::string details;  ///< where it lies on the timeline and in its file
};

[[nodiscard]] RegionFacts FactsOf(const host::SessionRegion& region,
                                  const host::SessionClock& clock);

/// A length in samples as people say it: "2.500 s", "1 min 02.500 s", "1 h 00 min 02.500 s".
[[nodiscard]] std::string DurationText(std::int64_t samples, float sampleRate);

}  // namespace velmora::timeline
