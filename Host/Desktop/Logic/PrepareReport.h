#pragma once

#include <string>

#include "Prepare/PrepareProject.h"

namespace velmora::desktop {

/// A free name for the prepared project's folder, beside the project: "Demo prepared", "Demo
/// prepared 2", ...
[[nodiscard]] std::string FreeTarget(const std::string& projectPath);

/// The target for a folder that the user chose: itself if it is empty, else a free name in it.
[[nodiscard]] std::string TargetIn(const std::string& folder, const std::string& projectPath);

/// What came of a preparation, in one sentence.
[[nodiscard]] std::string OutcomeText(const prepare::Prepared& prepared);

/// Whether there is a prepared project to load.
[[nodiscard]] bool IsPrepared(const prepare::Prepared& prepared);

/// What is left, what was changed, which files were made and what is worth knowing. Of each group
/// at most `mostOfAGroup` lines, with the number of those that do not stand there.
[[nodiscard]] std::string DescribePrepared(const prepare::Prepared& prepared,
                                           std::size_t mostOfAGroup);

}  // namespace velmora::desktop
