#include "Check/Judges.h"

#include <array>

namespace velmora::check {
namespace {

constexpr auto kJudges = std::to_array<Judge>({
    JudgeRequirements, JudgeFadeLengths,  JudgeNumbers,   JudgeStrayTexts,   JudgeCutOff,
    JudgeCutSources,   JudgeFileStarts,   JudgeLocations, JudgeMediaFormats, JudgeCutRanges,
    JudgeChannels,     JudgeStatus,       JudgeLengths,   JudgeFades,        JudgeGains,
    JudgeRates,        JudgeCompensation, JudgeEncoding,  JudgeUnused,
    JudgeUnexplained,  // last: it speaks only where nobody else has
});

}  // namespace

std::span<const Judge> Judges() {
  return kJudges;
}

}  // namespace velmora::check
