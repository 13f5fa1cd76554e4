#include "Program/SessionDefaults.h"

#include <cstring>

#include "Timecode/AdlTime.h"
#include "Timecode/RateTables.h"

namespace velmora::program {

SessionSettings SettingsOfTimestamp(const char* timestamp) {
  constexpr std::size_t kFrameRateMarkAt = 2;
  constexpr std::size_t kFrameSeparatorAt = 8;
  SessionSettings settings;
  const double rate = AdlSampleRate(timestamp);
  if (rate > 0) settings.rate = static_cast<float>(rate);
  if (std::strlen(timestamp) <= kFrameSeparatorAt) return settings;
  for (std::size_t code = 0; code < kFrameRateCodes.size(); ++code) {
    if (kFrameRateCodes[code].frameRateMark == timestamp[kFrameRateMarkAt] &&
        kFrameRateCodes[code].frameSeparator == timestamp[kFrameSeparatorAt]) {
      settings.frameRate = static_cast<std::int32_t>(code);
      break;
    }
  }
  return settings;
}

}  // namespace velmora::program
