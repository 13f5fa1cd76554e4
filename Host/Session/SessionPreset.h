#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Spot/SessionRates.h"

namespace velmora::host {

using velmora::SessionRates;

/// The rates of the session that a project was made for, as its earliest timestamp tells them; what
/// it does not tell, or no session has, is 48000 Hz and code 0. `timestamp` may be null.
[[nodiscard]] SessionRates PresetFor(const char* timestamp);

/// The rates of a session into which a project goes: those that somebody gave, else PresetFor.
/// @param sampleRate Hz
/// @param frameRate  the host's code, 0 to 7
[[nodiscard]] SessionRates SessionRatesFor(const char* timestamp, std::optional<double> sampleRate,
                                           std::optional<std::int32_t> frameRate);

/// The rates to offer, in Hz: the four common ones first, then all others, rising.
[[nodiscard]] std::vector<float> OfferedSampleRates();
inline constexpr std::size_t kCommonSampleRates = 4;

/// "48000 Hz", "44055.944 Hz".
[[nodiscard]] std::string SampleRateName(double hertz);

}  // namespace velmora::host
