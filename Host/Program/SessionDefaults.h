#pragma once

#include <cstdint>

namespace velmora::program {

/// The session that a host answers for: by default the one that the project was made for.
struct SessionSettings {
  float rate = 48000.0F;       ///< Hz
  std::int32_t frameRate = 0;  ///< code 0 to 7
};

/// What the earliest cut's timestamp says: its sample rate, and the first code that is written with
/// its frame-rate mark and separator; 48000 and 0 where nothing fits.
SessionSettings SettingsOfTimestamp(const char* timestamp);

}  // namespace velmora::program
