#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Peaks/Peak.h"
#include "Peaks/Pyramid.h"
#include "Session/Session.h"
#include "Timeline/TimeScale.h"

namespace velmora::timeline {

/// The columns of pixels in which a region's waveform is drawn. Column x is the pixel from the
/// view's x to x + 1; the grid says which frames of the file it shows.
struct WaveColumns {
  peaks::ColumnGrid grid;
  std::int64_t first = 0;
  std::int64_t count = 0;
};

/// Those of a region between two view coordinates, cut to a view of `width` pixels. Not beyond what
/// the region has of its file.
[[nodiscard]] WaveColumns WaveColumnsOf(const host::SessionRegion& region, const TimeScale& scale,
                                        double left, double right, double width);

/// One column of a waveform, from -1 to 1, full scale being 1.
struct WaveBar {
  std::int64_t column = 0;
  float low = 0;
  float high = 0;
};

/// The bars of a region's peaks, one peak a column, with the region's fades and gain applied as
/// they are when it is played. Bars of neighbouring columns touch. Columns without audio have none.
[[nodiscard]] std::vector<WaveBar> WaveBarsOf(const host::SessionRegion& region,
                                              const WaveColumns& columns,
                                              std::span<const peaks::Peak> peaks);

/// The region's own fades and gain, as far as there is room for them in it.
[[nodiscard]] host::RegionShape FittingShape(const host::SessionRegion& region);

}  // namespace velmora::timeline
