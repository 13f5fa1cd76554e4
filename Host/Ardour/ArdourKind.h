#pragma once

#include "Session/HostKind.h"

namespace velmora::ardour {

/// A new folder that is an Ardour session.
extern const host::TargetKind kArdourSessionKind;

/// The row of Ardour. The regions are received inside this program, and Ardour itself makes the
/// session of them when the last has arrived.
extern const host::HostKind kArdourKind;

}  // namespace velmora::ardour
