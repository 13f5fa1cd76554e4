#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Check/CheckProject.h"
#include "Session/SpotRecord.h"

namespace velmora::recording {

/// What a check finds in a project, for a page that tells it: all, and not only what is serious.
/// @param stopped whether to give up, asked now and then; may be empty
[[nodiscard]] std::vector<host::RecordedFinding> FindingsOf(
    const std::string& path, const check::CheckOptions& options,
    const std::function<bool()>& stopped = {});

}  // namespace velmora::recording
