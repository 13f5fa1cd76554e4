#pragma once

#include <string>
#include <vector>

#include "Prepare/Plan.h"

namespace velmora::prepare {

/// What came of making one planned file.
struct MediaOutcome {
  bool done = false;
  bool cancelled = false;
  std::string trouble;  ///< path and cause, if not done
  double peak = 0;      ///< of a float source: the largest magnitude; 1.0 is full scale
  std::int64_t clipped = 0;
};

/// Makes the planned files in a folder that is there, the channels of one file in one pass. Stops
/// at the first that fails.
/// @param folder   absolute: the staged Audio/
/// @param progress share from 0 to 1 of this work; false cancels; may be empty
/// @return one outcome for each file, in their order. If the work came to an early end, the one
/// that was cancelled or failed says why; those after it have no trouble.
[[nodiscard]] std::vector<MediaOutcome> MakeMediaFiles(const std::vector<PlannedFile>& files,
                                                       const std::string& folder,
                                                       const PrepareProgress& progress);

}  // namespace velmora::prepare
