#pragma once

#include "Session/HostKind.h"

namespace velmora::host {

/// The session as JSON in a file of its own.
extern const TargetKind kSessionFileKind;

/// The row of the embedded host. Its target is a file that takes the session as JSON.
extern const HostKind kEmbeddedKind;

}  // namespace velmora::host
