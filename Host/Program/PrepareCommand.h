#pragma once

#include "Prepare/PrepareProject.h"
#include "Program/CommandLine.h"

namespace velmora::program {

/// Prepares a project. Returns the exit status.
[[nodiscard]] int RunPrepareCommand(const PrepareArguments& arguments);

/// Checks a project and prepares it, with a progress bar if asked for. Ctrl-C, or a request to end,
/// cancels it.
[[nodiscard]] prepare::Prepared CheckAndPrepare(const std::string& project,
                                                const prepare::PrepareOptions& options,
                                                bool showsBar);

/// The exit status that tells how a preparation came out.
[[nodiscard]] int ExitStatusOf(prepare::Outcome outcome);

}  // namespace velmora::program
