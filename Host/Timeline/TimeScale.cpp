#include "Timeline/TimeScale.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace velmora::timeline {
namespace {

/// The nearest 64-bit number; a double holds neither end of the range exactly.
std::int64_t Saturate(long double value) {
  constexpr long double kLimit = 9223372036854775808.0L;
  if (std::isnan(value)) return 0;
  if (value >= kLimit) return std::numeric_limits<std::int64_t>::max();
  if (value <= -kLimit) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

struct Extent {
  long double first;
  long double end;
};

/// The content together with what is on view.
Extent WholeExtent(const TimeScale& scale, double width, std::int64_t first, std::int64_t end) {
  const auto left = static_cast<long double>(scale.Origin());
  const long double right = left + static_cast<long double>(width) * scale.SamplesPerPixel();
  return {std::min(left, static_cast<long double>(first)),
          std::max(right, static_cast<long double>(end))};
}

}  // namespace

void TimeScale::ScrollBy(double pixels) {
  const long double move = static_cast<long double>(pixels) * samplesPerPixel_;
  origin_ = Saturate(std::round(static_cast<long double>(origin_) + move));
}

void TimeScale::Fit(std::int64_t first, std::int64_t end, double width) {
  constexpr double kMargin = 12;  // pixels on either side
  const double usable = std::max(1.0, width - 2 * kMargin);
  const long double length =
      std::max(1.0L, static_cast<long double>(end) - static_cast<long double>(first));
  samplesPerPixel_ = std::clamp(static_cast<double>(length / usable), kFinest, kCoarsest);
  origin_ = Saturate(std::floor(static_cast<long double>(first) - kMargin * samplesPerPixel_));
}

void TimeScale::ZoomAround(double x, double factor) {
  if (!(factor > 0)) return;
  const long double pinned =
      static_cast<long double>(origin_) + static_cast<long double>(x) * samplesPerPixel_;
  samplesPerPixel_ = std::clamp(samplesPerPixel_ / factor, kFinest, kCoarsest);
  origin_ = Saturate(std::round(pinned - static_cast<long double>(x) * samplesPerPixel_));
}

double TimeScale::ToX(std::int64_t sample) const {
  const long double distance = static_cast<long double>(sample) - static_cast<long double>(origin_);
  return static_cast<double>(distance / samplesPerPixel_);
}

std::int64_t TimeScale::ToSample(double x) const {
  return Saturate(std::floor(static_cast<long double>(origin_) +
                             static_cast<long double>(x) * samplesPerPixel_));
}

ScrollState ScrollStateOf(const TimeScale& scale, double width, std::int64_t first,
                          std::int64_t end) {
  const Extent whole = WholeExtent(scale, width, first, end);
  const long double visible = static_cast<long double>(width) * scale.SamplesPerPixel();
  const long double length = whole.end - whole.first;
  if (length <= visible || length <= 0) return {};
  const long double passed = static_cast<long double>(scale.Origin()) - whole.first;
  return {static_cast<double>(std::clamp(passed / (length - visible), 0.0L, 1.0L)),
          static_cast<double>(visible / length)};
}

std::int64_t OriginForScroll(const TimeScale& scale, double width, std::int64_t first,
                             std::int64_t end, double value) {
  const Extent whole = WholeExtent(scale, width, first, end);
  const long double visible = static_cast<long double>(width) * scale.SamplesPerPixel();
  const long double room = std::max(0.0L, whole.end - whole.first - visible);
  return Saturate(std::round(whole.first + room * std::clamp(value, 0.0, 1.0)));
}

}  // namespace velmora::timeline
