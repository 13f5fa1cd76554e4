#pragma once

#include <vector>

#include "Session/SessionTarget.h"

namespace velmora::report {

/// What became of an event.
enum class EventState {
  Placed,
  Missing,  ///< a ticked cut without a usable file
  Off,      ///< a cut that is not ticked
  LeftOut,  ///< a ticked cut that did not arrive though its file is there
  NoCut,    ///< a spot places cuts alone
};

/// The word in the page.
[[nodiscard]] const char* NameOf(EventState state);

/// By place in SpotRecord::events.
[[nodiscard]] std::vector<EventState> StatesOf(const host::TargetInput& input);

}  // namespace velmora::report
