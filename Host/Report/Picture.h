#pragma once

#include <iosfwd>
#include <vector>

#include "Report/EventStates.h"
#include "Report/Peaks.h"

namespace velmora::report {

/// Whether there is anything to draw: a region, or a cut that was not placed.
[[nodiscard]] bool HasPicture(const std::vector<EventState>& states, const host::Session& session);

/// Writes the picture of the timeline: a row for each track, with its regions in order of arrival,
/// and the cuts that are not there. It can be stretched across without its texts and lines.
///
/// A region's element has the id "r" and its index; that of a cut that was not placed "e" and its
/// event's.
/// @param states by place in SpotRecord::events
/// @param peaks  by region
void WritePicture(const host::TargetInput& input, const std::vector<EventState>& states,
                  const std::vector<Peaks>& peaks, std::ostream& out);

}  // namespace velmora::report
