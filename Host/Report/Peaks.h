#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Session/Session.h"

namespace velmora::report {

/// Loudest samples of equal stretches of a region, 0 to 1, of its loudest channel. Empty for a
/// region whose file cannot be read.
using Peaks = std::vector<float>;

/// Peaks of all regions.
struct AllPeaks {
  std::vector<Peaks> byRegion;
  /// Files that were opened and could then not be read: their regions have none.
  std::vector<std::string> unread;
};

/// Reads the peaks of all regions. Each file is opened once.
///
/// The work is bounded whatever the session holds: `points` stretches in all, of each of which a
/// bounded number of frames is read, and no more time than a page may take. Stretches that run past
/// their file are silent.
/// @param goOn asked between regions, may be empty; an answer of false leaves the rest empty
[[nodiscard]] AllPeaks PeaksOf(const std::vector<host::SessionRegion>& regions, std::size_t points,
                               const std::function<bool()>& goOn);

}  // namespace velmora::report
