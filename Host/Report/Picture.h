#pragma once

#include <iosfwd>
#include <vector>

#include "Report/EventStates.h"
#include "Report/Peaks.h"

namespace velmora::report {

/// Writes the picture of the timeline: a row for each track, with its regions in order of arrival,
/// and the cuts that are not there. It can be stretched across without its texts and lines.
///
/// Regions carry `data-r`, their index; cuts that were not placed `data-e`, their event's.
/// @param states by place in SpotRecord::events
/// @param peaks  by region
void WritePicture(const host::TargetInput& input, const std::vector<EventState>& states,
                  const std::vector<Peaks>& peaks, std::ostream& out);

}  // namespace velmora::report
