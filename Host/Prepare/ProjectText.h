#pragma once

#include <string>

#include "Prepare/Plan.h"

namespace velmora::prepare {

/// The text of the prepared ADL. What the plan does not touch (header, track names, markers,
/// automation, remarks, comments) is carried over.
[[nodiscard]] std::string WriteProject(const check::CheckedProject& checked, const Plan& plan);

}  // namespace velmora::prepare
