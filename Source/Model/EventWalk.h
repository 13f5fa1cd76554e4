#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "ADL/AES31Event.h"
#include "Base/Prefetch.h"

namespace velmora {

// For walks over all events of a project. A record has 328 bytes, so each event of a long list
// costs such a walk as many cache lines from memory as it reads fields that lie apart.

/// How many steps ahead a walk asks for cache lines: about as many as it makes while memory
/// answers, which takes long where three lines for each of these steps are under way.
constexpr std::size_t kAheadInLightSteps = 128;  ///< 5 ns each
constexpr std::size_t kAheadInTimedSteps = 16;   ///< 20 ns each, for the times of a cut

/// The event so many steps after `at`, which is one of the list; the last one near the end.
[[nodiscard]] inline const AES31Event& EventAhead(std::span<const AES31Event> events,
                                                  std::size_t at, std::size_t steps) {
  return events[std::min(at + steps, events.size() - 1)];
}

/// Asks for the lines that hold an event's file and boxes.
inline void PrefetchBoxes(const AES31Event& event) {
  Prefetch(&event.sourceFile);
  Prefetch(&event.trackOn);
}

/// For a walk that works out the times of cuts and stands at `at`. Asks for an edit to come and,
/// half the way before it, for its texts, since the edit says where they are.
inline void PrefetchTimedCut(std::span<const AES31Event> events, std::size_t at) {
  const AES31Event& later = EventAhead(events, at, kAheadInTimedSteps);
  Prefetch(&later.label);
  Prefetch(&later.cut.destChannel);
  const AES31Event& sooner = EventAhead(events, at, kAheadInTimedSteps / 2);
  Prefetch(sooner.label);
  // Of an event that is no cut this is some other field, and the hint leads nowhere.
  Prefetch(sooner.cut.destIn);
}

}  // namespace velmora
