#pragma once

#include "Session/SessionTarget.h"

namespace velmora::host {

/// A session as an OpenTimelineIO file.
extern const TargetKind kOtioKind;

}  // namespace velmora::host
