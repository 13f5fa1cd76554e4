#pragma once

#include <cstddef>
#include <ostream>
#include <vector>

#include "Check/CheckProject.h"

namespace velmora::program {

/// Tells a person what a check found: a head line, then the findings grouped by code, the worst
/// first. A clean project is one line.
void WriteCheckText(const check::CheckedProject& checked, bool colours, std::ostream& out);

/// Findings grouped by code, the worst first: places, effect and remedy once for each group. Notes
/// are one line a code.
void WriteFindingGroups(const std::vector<check::Finding>& findings, bool colours,
                        std::ostream& out);

/// How many projects came to which verdict.
struct CheckTotals {
  std::size_t clean = 0;
  std::size_t loses = 0;
  std::size_t unreadable = 0;

  [[nodiscard]] std::size_t All() const { return clean + loses + unreadable; }
  void Count(check::Verdict verdict);
};

/// The last line of a check of several projects.
void WriteCheckTotals(const CheckTotals& totals, std::ostream& out);

}  // namespace velmora::program
