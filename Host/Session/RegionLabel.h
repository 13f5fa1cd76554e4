#pragma once

#include <cstddef>
#include <string>

#include "Session/SessionTarget.h"

namespace velmora::host {

/// How targets name a region in what they tell: `region 4 "Wind" (track 2, 00:00:10:00)`. The
/// number is its index in Session::Regions(). The name stands as the project has it, so the text
/// may hold any bytes.
[[nodiscard]] std::string RegionLabel(const TargetInput& input, std::size_t region);

}  // namespace velmora::host
