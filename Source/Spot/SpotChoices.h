#pragma once

#include <cstdint>
#include <string>

#include "Spot/SessionRates.h"
#include "Spot/SpotOptions.h"

namespace velmora {

/// What a person chose for one spot, as controls and command lines hold it: texts, ticks and the
/// tags of choices.
struct SpotChoices {
  std::int32_t positionMode = PositionAsProject;  ///< any number; see PositionMode
  std::string offset;                             ///< timecode with a sign, for PositionWithOffset
  std::string start;                              ///< timecode, for PositionAtStart
  std::int32_t fades = 0;                         ///< non-zero: make fade and crossfade pieces
  std::int32_t gain = 0;                          ///< non-zero: make gain files
  std::int32_t depth = 1;                         ///< 0 chooses 16 bits, any other number 24
  bool copy = false;  ///< copy all audio to `copyFolder`; off while that is empty
  std::string copyFolder;
};

/// The options of a spot into a session with these rates. Both timecodes are read in the session's
/// timebase, its sample rate cut to a whole number toward zero. `timelineOffset` and
/// `relativeTrack` stay at rest: ComputePosition fills them in.
[[nodiscard]] SpotOptions BuildSpotOptions(const SpotChoices& choices, const SessionRates& rates);

}  // namespace velmora
