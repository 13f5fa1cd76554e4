#pragma once

#include "Session/SessionTarget.h"

namespace velmora::bounce {

/// The audio as the session plays it, in one file; "-" is standard output.
extern const host::TargetKind kBounceKind;

/// The same, a file for each track.
extern const host::TargetKind kBounceTracksKind;

}  // namespace velmora::bounce
