#include "Timeline/Ruler.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace velmora::timeline {
namespace {

/// A distance between labels and into how many parts minor ticks cut it.
struct Step {
  std::int64_t units;
  int parts;
};

constexpr std::size_t kMostTicks = 4000;  // a view is never so wide: guards a scale gone wild

constexpr auto kSeconds = std::to_array<Step>({{1, 5},
                                               {2, 2},
                                               {5, 5},
                                               {10, 10},
                                               {15, 3},
                                               {30, 3},
                                               {60, 6},
                                               {120, 4},
                                               {300, 5},
                                               {600, 10},
                                               {900, 3},
                                               {1800, 6},
                                               {3600, 6},
                                               {7200, 4},
                                               {21600, 6},
                                               {43200, 6},
                                               {86400, 4}});

/// The first step whose labels stand far enough apart; beyond the table it goes on in tens.
Step ChooseFrames(std::int32_t nominal, double framesPerSpacing) {
  for (const Step step : {Step{1, 1}, Step{2, 2}, Step{5, 5}, Step{10, 10}}) {
    if (static_cast<double>(step.units) >= framesPerSpacing && step.units < nominal) return step;
  }
  for (const Step& step : kSeconds) {
    const std::int64_t frames = step.units * nominal;
    if (static_cast<double>(frames) >= framesPerSpacing) return {frames, step.parts};
  }
  std::int64_t frames = kSeconds.back().units * nominal;
  while (static_cast<double>(frames) < framesPerSpacing && frames < (std::int64_t{1} << 58)) {
    frames *= 10;
  }
  return {frames, 10};
}

Step ChooseSamples(double samplesPerSpacing) {
  std::int64_t decade = 1;
  for (;; decade *= 10) {
    for (const std::int64_t digit : {1, 2, 5}) {
      if (static_cast<double>(digit * decade) >= samplesPerSpacing) {
        return {digit * decade, digit * decade >= 10 ? 5 : 1};
      }
    }
  }
}

std::int64_t FloorTo(std::int64_t value, std::int64_t step) {
  const std::int64_t rest = value % step;
  return value - (rest < 0 ? rest + step : rest);
}

/// The frame that carries a timecode number. Of the two numbers that drop-frame timecode leaves out
/// at a minute, the minute's first frame is taken:
///
///     number  ... 1799 (1800 1801) 1802 ...
///     frame   ... 1799             1800 ...
std::int64_t FrameOfNumber(std::int64_t number, const host::FrameRate& rate) {
  if (!rate.dropFrame || number < 0) return number;
  const std::int64_t perMinute = std::int64_t{rate.nominal} * 60;
  const std::int64_t minutes = number / perMinute;
  if (minutes % 10 != 0) number = std::max(number, minutes * perMinute + 2);
  return number - 2 * (minutes - minutes / 10);
}

std::vector<RulerTick> FrameTicks(const TimeScale& scale, const host::SessionClock& clock,
                                  double width, const Step& step) {
  std::vector<RulerTick> ticks;
  int parts = step.parts;
  while (step.units % parts != 0) --parts;  // minor ticks must meet the labelled ones
  const std::int64_t minor = step.units / parts;
  const host::FrameRate& rate = clock.Rate();
  // Timecode numbers run ahead of frames by a little more than a thousandth where they are dropped.
  const std::int64_t frame = clock.FrameAt(scale.ToSample(0));
  const std::int64_t lead = rate.dropFrame && frame > 0 ? frame / 1000 : 0;
  std::int64_t number = FloorTo(frame + lead, step.units);
  std::int64_t previous = FrameOfNumber(number, rate) - 1;
  for (; ticks.size() < kMostTicks; number += minor) {
    const std::int64_t at = FrameOfNumber(number, rate);
    const double x = scale.ToX(clock.FrameStart(at));
    if (x >= width || at <= previous) {
      if (x >= width) break;
      continue;
    }
    previous = at;
    ticks.push_back({x, number % step.units == 0 ? clock.FrameLabel(at) : std::string()});
  }
  return ticks;
}

/// Ticks inside frames: each label is the frame's timecode and the samples passed since its start.
std::vector<RulerTick> SampleTicks(const TimeScale& scale, const host::SessionClock& clock,
                                   double width, const Step& step) {
  std::vector<RulerTick> ticks;
  const std::int64_t end = scale.ToSample(width);
  std::int64_t frame = clock.FrameAt(scale.ToSample(0));
  for (;; ++frame) {
    const std::int64_t start = clock.FrameStart(frame);
    if (start > end) break;
    const std::int64_t next = clock.FrameStart(frame + 1);
    const std::string timecode = clock.FrameLabel(frame);
    std::int64_t offset = 0;
    const std::int64_t left = scale.ToSample(0) - start;
    if (left > 0) offset = FloorTo(left, step.units);
    for (; start + offset < next && start + offset <= end; offset += step.units) {
      if (ticks.size() >= kMostTicks) return ticks;
      // A label too close to the next frame's would run into it.
      const bool room = offset == 0 || start + offset + step.units <= next;
      ticks.push_back({scale.ToX(start + offset), !room ? std::string()
                                                  : offset == 0
                                                      ? timecode
                                                      : timecode + "+" + std::to_string(offset)});
    }
  }
  return ticks;
}

}  // namespace

std::vector<RulerTick> RulerTicks(const TimeScale& scale, const host::SessionClock& clock,
                                  double width, double spacing) {
  if (!(width > 0) || !(spacing > 0)) return {};
  // Beyond what a double holds exactly, thousands of years out, no tick could be put in its place.
  constexpr std::int64_t kFarthest = std::int64_t{1} << 53;
  if (scale.ToSample(0) < -kFarthest || scale.ToSample(width) > kFarthest) return {};
  const host::FrameRate& rate = clock.Rate();
  const double samplesPerFrame =
      static_cast<double>(clock.SampleRate()) * rate.denominator / rate.numerator;
  const double samplesPerSpacing = spacing * scale.SamplesPerPixel();
  // Labels that count samples are wider: the count follows the timecode.
  if (samplesPerFrame > 2.5 * samplesPerSpacing) {
    return SampleTicks(scale, clock, width, ChooseSamples(1.5 * samplesPerSpacing));
  }
  return FrameTicks(scale, clock, width,
                    ChooseFrames(rate.nominal, samplesPerSpacing / samplesPerFrame));
}

}  // namespace velmora::timeline
