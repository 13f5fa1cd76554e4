#pragma once

#include <span>

#include "Check/Case.h"
#include "Check/Findings.h"

namespace velmora::check {

/// Looks for one kind of finding, or for a family of them. Each stands in a file of its own in
/// Host/Check/Judges/, and has a row in the table of Judges.cpp.
using Judge = void (*)(const Case&, Findings&);

/// All judges, in the order in which they are asked. The last one sees what the others found.
[[nodiscard]] std::span<const Judge> Judges();

void JudgeRequirements(const Case& c, Findings& findings);  ///< values-missing, index-missing
void JudgeFadeLengths(const Case& c, Findings& findings);   ///< fade-separator, fade-form
void JudgeNumbers(const Case& c, Findings& findings);       ///< index-twice, entry-twice
void JudgeStrayTexts(const Case& c, Findings& findings);    ///< stray-text
void JudgeCutOff(const Case& c, Findings& findings);        ///< text-cut-off
void JudgeCutSources(const Case& c, Findings& findings);    ///< index-name, source-missing
void JudgeFileStarts(const Case& c, Findings& findings);    ///< file-start-missing
void JudgeLocations(const Case& c, Findings& findings);     ///< where the media are
void JudgeMediaFormats(const Case& c, Findings& findings);  ///< what the media are
void JudgeCutRanges(const Case& c, Findings& findings);     ///< cut-outside-file
void JudgeChannels(const Case& c, Findings& findings);      ///< channels
void JudgeStatus(const Case& c, Findings& findings);        ///< event-off, event-error
void JudgeLengths(const Case& c, Findings& findings);       ///< event-empty
void JudgeFades(const Case& c, Findings& findings);         ///< fade-curve and its kin
void JudgeGains(const Case& c, Findings& findings);         ///< gain-channels
void JudgeRates(const Case& c, Findings& findings);         ///< rate-mixed, marks-differ
void JudgeCompensation(const Case& c, Findings& findings);  ///< rate-compensated
void JudgeEncoding(const Case& c, Findings& findings);      ///< text-encoding
void JudgeUnused(const Case& c, Findings& findings);        ///< names-unused and its kin
void JudgeUnexplained(const Case& c, Findings& findings);   ///< what nobody else has explained

}  // namespace velmora::check
