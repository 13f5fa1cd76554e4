#include "Spot/SpotRequest.h"

#include <array>
#include <cstdio>

#include "Base/Wrapping.h"
#include "Timecode/AdlTime.h"

namespace velmora {

std::vector<std::string> SpotWarnings(const char* firstEvent, float sessionRate,
                                      std::int32_t frameRate) {
  std::vector<std::string> alerts;
  if (firstEvent == nullptr) return alerts;
  const std::int32_t wholeRate = Truncate<std::int32_t>(sessionRate);
  const double rate = sessionRate;
  // Not-a-number equals nothing, itself included.
  if (!(AdlSampleRate(firstEvent) == rate)) {
    // Both numbers show the session's rate: the alert has always looked like this, and programs
    // around it tell the project's rate beside it.
    std::array<char, 256> text{};
    std::snprintf(text.data(), text.size(),
                  "This session is at %dHz, whereas the AES project is at %gHz. Misalignment is "
                  "likely.",
                  wholeRate, rate);
    alerts.emplace_back(text.data());
  }
  if (TimecodeToSamples(firstEvent, frameRate, wholeRate) != AdlToSamples(firstEvent)) {
    alerts.emplace_back(
        "The framerate of this session does not match the AES31 project we are importing. The "
        "import will be offset to compensate.");
  }
  return alerts;
}

std::int32_t SpotSteps(std::int32_t numEvents, std::int32_t doFades, std::int32_t doGain) {
  constexpr std::int32_t kPassesThatAlwaysRun = 3;  // depth, region, release
  const std::int32_t passes = kPassesThatAlwaysRun + (doFades != 0 ? 1 : 0) + (doGain != 0 ? 1 : 0);
  return WrapMultiply(passes, numEvents);
}

}  // namespace velmora
