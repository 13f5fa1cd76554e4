#pragma once

#include <ostream>

#include "Check/CheckProject.h"
#include "Program/JsonStream.h"

namespace velmora::program {

/// Writes what a check found as one JSON object on a line, as it goes: a large project need not
/// stand in memory twice.
void WriteCheckJson(const check::CheckedProject& checked, std::ostream& out);

/// One finding, as a value.
void WriteFindingJson(JsonStream& json, const check::Finding& finding);

}  // namespace velmora::program
