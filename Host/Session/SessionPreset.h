#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velmora::host {

/// Sample rate and frame-rate code of a session.
struct SessionRates {
  float sampleRate = 48000;    ///< Hz
  std::int32_t frameRate = 0;  ///< the host's code, 0 to 7

  bool operator==(const SessionRates& other) const {
    return sampleRate == other.sampleRate && frameRate == other.frameRate;
  }
};

/// The rates of the session that a project was made for, as its earliest timestamp tells them; what
/// it does not tell, or no session has, is 48000 Hz and code 0. `timestamp` may be null.
SessionRates PresetFor(const char* timestamp);

/// The rates to offer, in Hz: the four common ones first, then all others, rising.
std::vector<float> OfferedSampleRates();
inline constexpr std::size_t kCommonSampleRates = 4;

/// "48000 Hz", "44055.944 Hz".
std::string SampleRateName(double hertz);

}  // namespace velmora::host
