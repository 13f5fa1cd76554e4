#pragma once

#include <span>
#include <string>

#include "Bounce/AudioSink.h"
#include "Bounce/BouncePlan.h"
#include "Session/SessionTarget.h"

namespace velmora::bounce {

/// What one file of a bounce holds.
struct BounceFile {
  host::BounceDepth depth = host::BounceDepth::Bits24;
  /// Their channels lie side by side, in this order.
  std::span<const BounceTrack> tracks;
  std::string description;  ///< UTF-8
};

/// What stopped a file. One of the three at most is set.
struct BounceStop {
  std::string trouble;  ///< of the session or of a source, in words
  int error = 0;        ///< of the sink: an errno
  bool isCancelled = false;

  [[nodiscard]] bool Happened() const { return !trouble.empty() || error != 0 || isCancelled; }
};

/// Writes a file over the session's whole span, in memory that depends on no length.
/// @param progress may be empty
[[nodiscard]] BounceStop WriteBounceFile(BouncePlan& plan, const BounceFile& file, AudioSink& sink,
                                         const host::TargetProgress& progress);

}  // namespace velmora::bounce
