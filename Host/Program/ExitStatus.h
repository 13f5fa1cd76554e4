#pragma once

namespace velmora::program {

/// What the program tells its caller.
enum ExitStatus {
  kAllDone = 0,
  kBadUsage = 1,
  kDoesNotLoad = 2,
  kLeftOut = 3,  ///< spotted, but something of a ticked cut was left out
  kInterrupted = 130,
};

}  // namespace velmora::program
