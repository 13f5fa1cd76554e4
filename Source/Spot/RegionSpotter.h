#pragma once

#include <cstdint>

#include "Spot/RegionMessage.h"

namespace velmora {

/// One region of one audio file, to be placed by a message to the host. `path` must live as long as
/// the object; `start` and `stop` are cut to their low 32 bits.
class RegionSpotter {
 public:
  RegionSpotter(const char* path, std::int64_t start, std::int64_t stop, RegionHost& host);

  /// Builds alias and message anew and sends it once.
  /// @param track    from 0
  /// @param position on the timeline, in samples
  /// @param stream   1 in this system
  /// @param name     the region's name on the host
  /// @param relative `track` counts from the host's first track; else it is absolute
  /// @return 0, or the status of the step that failed, its low 16 bits sign-extended
  virtual std::int32_t SpotRegion(std::int16_t track, std::int64_t position, std::int16_t stream,
                                  const char* name, bool relative);

  /// After SpotRegion, since the order of the virtual operations is part of the interface.
  virtual ~RegionSpotter() = default;

 private:
  const char* path_;
  std::int32_t start_;
  std::int32_t stop_;
  RegionHost& host_;
};

}  // namespace velmora
