#pragma once

#include <cstdint>

namespace velmora {

/// Sample rate and frame rate of the session that a spot goes into, as its host answers them.
struct SessionRates {
  float sampleRate = 48000;    ///< Hz; hosts answer whatever they like, so it may be no rate at all
  std::int32_t frameRate = 0;  ///< the host's frame-rate code, 0 to 7

  bool operator==(const SessionRates& other) const = default;
};

}  // namespace velmora
