#include "Report/TimeTicks.h"

#include <array>
#include <limits>

namespace velmora::report {
namespace {

constexpr std::int64_t kFewestTicks = 3;

/// Steps in frames, each a multiple of the one before: so a mark of a level is one of all finer
/// levels, too.
std::vector<std::int64_t> StepsOf(const host::SessionClock& clock) {
  constexpr auto kSeconds = std::to_array<std::int64_t>(
      {1, 5, 10, 30, 60, 300, 600, 1800, 3600, 7200, 14400, 43200, 86400});
  std::vector<std::int64_t> steps = {1};
  for (const std::int64_t seconds : kSeconds) steps.push_back(seconds * clock.Rate().nominal);
  return steps;
}

/// The smallest step that gives no more marks than fit; beyond the longest one, its doubles.
std::int64_t StepFor(const std::vector<std::int64_t>& steps, std::int64_t frames, int level) {
  const std::int64_t most = kFewestTicks << level;
  for (const std::int64_t step : steps) {
    if (frames / step <= most) return step;
  }
  std::int64_t step = steps.back();
  while (frames / step > most) step *= 2;
  return step;
}

}  // namespace

std::vector<TimeTick> TicksBetween(const host::SessionClock& clock, std::int64_t first,
                                   std::int64_t end) {
  // Beyond this, positions are no times that anybody means, and frames would leave their numbers.
  constexpr std::int64_t kMost = std::int64_t{1} << 50;
  std::vector<TimeTick> ticks;
  if (first < -kMost || end > kMost || end <= first) return ticks;
  const std::vector<std::int64_t> steps = StepsOf(clock);
  const std::int64_t firstFrame = clock.FrameAt(first);
  const std::int64_t frames = clock.FrameAt(end) - firstFrame;
  std::array<std::int64_t, kTickLevels> stepOf{};
  for (int level = 0; level < kTickLevels; ++level) {
    stepOf[static_cast<std::size_t>(level)] = StepFor(steps, frames, level);
  }
  const std::int64_t finest = stepOf.back();
  std::int64_t frame = firstFrame / finest * finest;
  for (; clock.FrameStart(frame) < end; frame += finest) {
    const std::int64_t sample = clock.FrameStart(frame);
    if (sample < first) continue;
    int level = 0;
    while (frame % stepOf[static_cast<std::size_t>(level)] != 0) ++level;
    ticks.push_back({sample, level, clock.FrameLabel(frame)});
  }
  return ticks;
}

}  // namespace velmora::report
