#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Field/FieldTime.h"

namespace velmora::prepare {

/// How all timestamps of a prepared project are written.
struct StampForm {
  double sampleRate = 48000;  ///< Hz; what the mark names
  char sampleRateMark = '/';
  char frameRateMark = '|';
  char separator = ':';  ///< before the frames; `;` counts as drop-frame
  bool operator==(const StampForm&) const = default;
};

/// The form for a project's rates. The marks are such that a session's frame-rate code stands for
/// them: the spot of a project that begins on a frame is then not moved. A rate that no code has
/// gets the nearest that one has, drop-frame giving way first; places in samples do not depend on
/// it.
/// @param frameRateCode of the session, 0 to 7; none: as the project's rates say
/// @return none if no mark names the sample rate
[[nodiscard]] std::optional<StampForm> FormFor(const field::TimeRates& rates,
                                               std::optional<std::int32_t> frameRateCode);

/// The rates of a form, as a reader of its timestamps finds them.
[[nodiscard]] field::TimeRates RatesOf(const StampForm& form);

/// A timestamp of 16 characters that AdlToSamples reads as exactly these samples. None for what it
/// cannot hold: below zero, or from 100 hours on.
[[nodiscard]] std::optional<std::string> WriteStamp(std::int64_t samples, const StampForm& form);

/// The same for the length of a fade, which AdlIsTimestamp must accept: it always counts as
/// drop-frame. None below zero and from 30 hours on.
[[nodiscard]] std::optional<std::string> WriteFadeLength(std::int64_t samples,
                                                         const StampForm& form);

}  // namespace velmora::prepare
