#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Session/SessionClock.h"
#include "Timeline/TimeScale.h"

namespace velmora::timeline {

struct RulerTick {
  double x = 0;       ///< in view coordinates
  std::string label;  ///< empty for a minor tick
};

/// The ticks of a ruler over `width` pixels, from left to right. Labelled ticks stand at least
/// `spacing` pixels apart, at round numbers of frames, seconds, minutes or hours; when a frame is
/// wider than the view they count samples within it. None beyond 2^53 samples, where positions are
/// no longer exact.
[[nodiscard]] std::vector<RulerTick> RulerTicks(const TimeScale& scale,
                                                const host::SessionClock& clock, double width,
                                                double spacing);

}  // namespace velmora::timeline
