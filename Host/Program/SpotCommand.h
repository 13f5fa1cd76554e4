#pragma once

#include "Program/CommandLine.h"

namespace velmora::program {

/// Runs one spot. Returns the exit status.
[[nodiscard]] int RunSpotCommand(const SpotArguments& arguments);

}  // namespace velmora::program
