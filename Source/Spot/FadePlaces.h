#pragma once

#include <cstdint>

#include "ADL/AES31Event.h"

namespace velmora {

// Which fade pieces a spot makes, and what of a source's file they play.

/// True if a crossfade piece takes the place of the event's in-fade. `previous` is the live event
/// before it.
///
///     previous  ==========[outfade]
///     event               [infade ]==========     same track, equal texts, overlap of that length
[[nodiscard]] bool ContinuesCrossfade(const AES31Event& previous, const AES31Event& event);

/// Sample of the source file at which the event begins.
[[nodiscard]] std::int64_t FirstSample(const AES31Event& event);

/// Sample of the source file at which the event's last `length` samples begin.
[[nodiscard]] std::int64_t FirstSampleOfTail(const AES31Event& event, std::int64_t length);

}  // namespace velmora
