#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "Prepare/Plan.h"

namespace velmora::prepare {

/// One cut of the prepared project before it is known which file it plays.
struct RoughCut {
  std::size_t event = 0;     ///< position in Project::events
  bool whole = true;         ///< plays all channels of its file, or the only one
  std::int32_t channel = 1;  ///< of the file, from 1; of a cut that is not whole
  std::int64_t offset = 0;   ///< first sample in the file, at the project's rate
  PlannedCut cut;            ///< all but its source
};

/// What becomes of the cuts of a project.
struct RoughCuts {
  std::vector<RoughCut> cuts;          ///< in the order of the events
  std::vector<check::Finding> lost;    ///< what is left out without being asked for
  std::vector<std::size_t> shortened;  ///< events that reached outside their file, rising
};

/// Frames of a source's file at the project's rate; none if they are not known.
[[nodiscard]] std::optional<std::int64_t> FramesAtProjectRate(const check::CheckedProject& checked,
                                                              std::size_t source);

/// True if a file has to be brought to the project's rate.
[[nodiscard]] bool HasOtherRate(const check::CheckedProject& checked, std::size_t source);

/// Splits, shortens and leaves out cuts.
[[nodiscard]] RoughCuts PlanCuts(const check::CheckedProject& checked,
                                 const PrepareOptions& options);

}  // namespace velmora::prepare
