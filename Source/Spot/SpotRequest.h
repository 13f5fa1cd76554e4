#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

/// The alert texts of one request, in order; none of them stops a spot.
/// @param firstEvent  timestamp of the project's earliest cut; null gives no alert
/// @param sessionRate Hz, as the host answers it
/// @param frameRate   the host's frame-rate code, 0 to 7
[[nodiscard]] std::vector<std::string> SpotWarnings(const char* firstEvent, float sessionRate,
                                                    std::int32_t frameRate);

/// Steps of a spot: each event counts once for each of the three passes that always run and for
/// each of the two optional ones.
[[nodiscard]] std::int32_t SpotSteps(std::int32_t numEvents, std::int32_t doFades,
                                     std::int32_t doGain);

}  // namespace velmora
