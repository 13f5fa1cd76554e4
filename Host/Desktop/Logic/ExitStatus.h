#pragma once

namespace velmora::desktop {

/// How the program ends. A signal gives 128 and its number.
enum ExitStatus : int {
  kDone = 0,
  kBadUsage = 1,
  kNoWindow = 4,  ///< no display, no view to show, or no picture could be written of it
};

}  // namespace velmora::desktop
