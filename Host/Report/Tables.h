#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

#include "Report/EventStates.h"
#include "Report/ReportData.h"

namespace velmora::report {

// The page's tables, each with its caption, its search field and buttons for sorting; one without
// rows says so. Their ids are those of the elements. Of the large ones only the first `most` rows
// are written, if that is what the page has room for; the page's script makes the others of the
// facts.

inline constexpr std::size_t kAllRows = SIZE_MAX;

/// "messages"
void WriteMessages(const ReportData& data, std::size_t most, std::ostream& out);
/// "events". @param states by place in SpotRecord::events
void WriteEvents(const host::TargetInput& input, const std::vector<EventState>& states,
                 std::size_t most, std::ostream& out);
/// "regions". A row's first cell is the region's index.
void WriteRegions(const host::TargetInput& input, std::size_t most, std::ostream& out);
/// "files"
void WriteFiles(const ReportData& data, bool isPlan, std::size_t most, std::ostream& out);
/// "tracks"
void WriteTracks(const host::TargetInput& input, std::ostream& out);

}  // namespace velmora::report
