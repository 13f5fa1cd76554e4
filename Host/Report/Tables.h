#pragma once

#include <iosfwd>
#include <vector>

#include "Report/EventStates.h"
#include "Report/ReportData.h"

namespace velmora::report {

// The page's tables, each with its caption, its search field and buttons for sorting; one without
// rows says so. Their ids are those of the elements.

/// "messages"
void WriteMessages(const ReportData& data, std::ostream& out);
/// "events". @param states by place in SpotRecord::events
void WriteEvents(const host::TargetInput& input, const std::vector<EventState>& states,
                 std::ostream& out);
/// "regions". A row's first cell is the region's index.
void WriteRegions(const host::TargetInput& input, std::ostream& out);
/// "files"
void WriteFiles(const ReportData& data, bool isPlan, std::ostream& out);
/// "tracks"
void WriteTracks(const host::TargetInput& input, std::ostream& out);

}  // namespace velmora::report
