#pragma once

#include "Session/HostKind.h"

namespace velmora::program {

/// The hosts that a spot can go to. The first is taken where none is named.
[[nodiscard]] host::HostTable Hosts();

}  // namespace velmora::program
