#pragma once

#include <string>

namespace velmora::host {

/// Removes a file, or a folder with all that is in it. Links are not followed. What cannot be
/// removed stays. On Linux it takes no memory, so that a run which ends for want of it tidies up.
void RemoveTree(const std::string& path) noexcept;

}  // namespace velmora::host
