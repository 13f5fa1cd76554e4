#pragma once

#include <iosfwd>
#include <vector>

#include "Report/EventStates.h"
#include "Report/ReportData.h"

namespace velmora::report {

// What the page says before its tables and after them.

/// The page's header: what this is, of which project, and how it went.
/// @param states by place in SpotRecord::events
void WriteTop(const host::TargetInput& input, const ReportData& data,
              const std::vector<EventState>& states, std::ostream& out);

/// Rates, counts and options at a glance.
void WriteOverview(const host::TargetInput& input, std::ostream& out);

/// What the project says of itself, as the table "constants"; what it leaves out in one line.
void WriteConstants(const host::SpotRecord& record, std::ostream& out);

}  // namespace velmora::report
