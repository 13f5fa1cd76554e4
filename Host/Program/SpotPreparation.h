#pragma once

#include <string>

#include "Program/CommandLine.h"

namespace velmora::program {

/// What a preparation before a spot came to.
struct SpotPreparation {
  int status = 0;       ///< the exit status if the spot cannot go on, else 0
  std::string project;  ///< the prepared project
  bool whole = true;    ///< nothing is left that fails, is misplaced or lost
};

/// Prepares the project of a spot into the folder that was asked for, or into one beside the
/// session's file or the folder of copies, or else into a new one among the system's temporary
/// folders. It stays: the session's regions name what lies in it. Says on standard error where it
/// is.
[[nodiscard]] SpotPreparation PrepareForSpot(const SpotArguments& arguments);

}  // namespace velmora::program
