#pragma once

#include <optional>
#include <string>

#include "ADL/LoadFailure.h"
#include "Check/CheckProject.h"

namespace velmora::program {

/// Says on standard error, in one line that names `velmora check`, what becomes of a project that
/// fails, misplaces or loses something; nothing of a clean one, or of a file that cannot be read.
/// Looks for audio only where the system does, so that no folder is walked through.
/// @param failure of the load; none if the project loaded. A file that could not be read is not
/// tried
///                again.
void HintAtFindings(const std::string& path, const std::optional<LoadFailure>& failure,
                    check::CheckOptions options = {});

}  // namespace velmora::program
