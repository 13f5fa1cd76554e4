#pragma once

#include <cstddef>
#include <vector>

#include "Prepare/Plan.h"

namespace velmora::prepare {

/// What a plan puts right, one change for each of the check's findings that it takes care of, in
/// their order. Whether everything still moves is only known when the result has been checked: a
/// change of RateCompensated is to be dropped if that finds it again.
/// @param shortened events that reached outside their file, by position in Project::events, rising
[[nodiscard]] std::vector<Change> WriteChanges(const check::CheckedProject& checked,
                                               const PrepareOptions& options, const Plan& plan,
                                               const std::vector<std::size_t>& shortened);

}  // namespace velmora::prepare
