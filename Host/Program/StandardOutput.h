#pragma once

namespace velmora::program {

/// Says on standard error that output was lost, and answers the exit status for that.
int TellLostOutput();

/// Writes out what std::cout still holds. If not all of it was taken that is told, and the exit
/// status gets worse: from kAllDone to kLeftOut. What is worse already stays.
[[nodiscard]] int StatusOfOutput(int status);

}  // namespace velmora::program
