#include "Timeline/RegionWave.h"

#include <algorithm>
#include <cmath>

#include "Base/Wrapping.h"
#include "Session/HeardSession.h"

namespace velmora::timeline {
namespace {

constexpr float kFullScale = 32768;

host::AppliedShape AppliedShapeOf(const host::SessionRegion& region) {
  const host::RegionShape shape = FittingShape(region);
  return {shape.fadeIn, shape.fadeOut, std::pow(10.0, shape.gainDb / 20)};
}

/// The factor in the middle of a column.
float FactorAt(const host::AppliedShape& shape, const host::SessionRegion& region,
               const peaks::ColumnGrid& grid, std::int64_t column) {
  const std::int64_t from = grid.Edge(column);
  const std::int64_t frame = from + (grid.Edge(column + 1) - from) / 2;
  const std::int64_t sample =
      std::clamp<std::int64_t>(frame - region.start, 0, region.Length() - 1);
  const host::FadeFactor fade = shape.FactorAt(sample, region.Length());
  return static_cast<float>(shape.gain * static_cast<double>(fade.numerator) /
                            static_cast<double>(fade.denominator));
}

}  // namespace

host::RegionShape FittingShape(const host::SessionRegion& region) {
  host::RegionShape shape = region.shape;
  const std::int64_t length = std::max<std::int64_t>(region.Length(), 0);
  shape.fadeIn = std::clamp<std::int64_t>(shape.fadeIn, 0, length);
  shape.fadeOut = std::clamp<std::int64_t>(shape.fadeOut, 0, length - shape.fadeIn);
  return shape;
}

WaveColumns WaveColumnsOf(const host::SessionRegion& region, const TimeScale& scale, double left,
                          double right, double width) {
  WaveColumns columns;
  columns.grid.framesPerColumn = scale.SamplesPerPixel();
  columns.grid.origin = WrapAdd(WrapSubtract(scale.Origin(), region.position), region.start);
  const double from = std::floor(std::max({left, scale.ToX(region.position), 0.0}));
  const double to = std::ceil(std::min({right, scale.ToX(region.End()), width}));
  if (region.Length() <= 0 || !(from < to)) return columns;
  columns.first = static_cast<std::int64_t>(from);
  columns.count = static_cast<std::int64_t>(to - from);
  return columns;
}

std::vector<WaveBar> WaveBarsOf(const host::SessionRegion& region, const WaveColumns& columns,
                                std::span<const peaks::Peak> peaks) {
  std::vector<WaveBar> bars;
  bars.reserve(peaks.size());
  const host::AppliedShape shape = AppliedShapeOf(region);
  const bool isPlain = !shape.HasFades() && shape.gain == 1;
  for (std::size_t i = 0; i < peaks.size(); ++i) {
    if (peaks[i].IsEmpty()) continue;
    const std::int64_t column = columns.first + static_cast<std::int64_t>(i);
    const float factor = isPlain ? 1 : FactorAt(shape, region, columns.grid, column);
    WaveBar bar{column, std::max(factor * peaks[i].lowest / kFullScale, -1.0F),
                std::min(factor * peaks[i].highest / kFullScale, 1.0F)};
    bar.low = std::min(bar.low, 1.0F);
    bar.high = std::max(bar.high, -1.0F);
    // A wave that leaps from one column to the next is still one line.
    if (!bars.empty() && bars.back().column == column - 1) {
      const WaveBar last = bars.back();
      bars.push_back({column, std::min(bar.low, last.high), std::max(bar.high, last.low)});
      continue;
    }
    bars.push_back(bar);
  }
  return bars;
}

}  // namespace velmora::timeline
