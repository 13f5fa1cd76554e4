#pragma once

#include <ostream>

#include "Check/CheckProject.h"

namespace velmora::program {

/// Writes what a check found as one JSON object on a line, as it goes: a large project need not
/// stand in memory twice.
void WriteCheckJson(const check::CheckedProject& checked, std::ostream& out);

}  // namespace velmora::program
