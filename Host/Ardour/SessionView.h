#pragma once

#include <string>

#include "Ardour/ArdourPlan.h"

namespace velmora::ardour {

/// Lets Ardour's window open on the regions of a session, with the playhead at the first. Else it
/// shows the timeline's start, and there is nothing where a session begins at an hour, as most do.
///
/// @param folder of the session
/// @return 0, or the errno of what went wrong
[[nodiscard]] int ShowRegions(const std::string& folder, const ArdourPlan& plan);

}  // namespace velmora::ardour
