#pragma once

#include <iosfwd>

#include "Report/Peaks.h"
#include "Report/ReportData.h"

namespace velmora::report {

/// Writes the whole page: one HTML file that asks for no other. Its own content security policy
/// lets nothing act or load but its one style and its one script, by their hashes.
/// @param peaks by region
void WritePage(const host::TargetInput& input, const ReportData& data,
               const std::vector<Peaks>& peaks, std::ostream& out);

}  // namespace velmora::report
