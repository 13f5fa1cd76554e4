#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Desktop/Logic/ProjectReport.h"
#include "Desktop/Logic/SaveRun.h"
#include "Session/SessionTarget.h"

namespace velmora::desktop {

/// A free name for a target of this kind beside the project: "Demo.wav", "Demo 2.wav", ... In the
/// home folder if there is no project.
[[nodiscard]] std::string FreeTargetFor(const host::TargetKind& kind,
                                        const std::string& projectPath);

/// A path as it was typed, with the extension of this kind's files unless it has that, in capitals
/// or not.
[[nodiscard]] std::string WithExtension(const host::TargetKind& kind, const std::string& path);

/// What stands against a save, in words for an alert; empty if nothing does. Makes nothing.
[[nodiscard]] std::string ComplaintAbout(const SaveRequest& request);

/// Whether there is more to say of a save than that it was made.
[[nodiscard]] bool HasDetails(const SaveOutcome& outcome);

/// What came of a save: for the status line, in one sentence, and in full, line by line. Of each
/// list in full at most `mostOfAList` lines, and the number of those that do not stand there.
[[nodiscard]] StatusItem DescribeSave(const SaveOutcome& outcome);
[[nodiscard]] std::string SaveHeadline(const SaveOutcome& outcome);
[[nodiscard]] std::string SaveDetails(const SaveOutcome& outcome, std::size_t mostOfAList);

}  // namespace velmora::desktop
