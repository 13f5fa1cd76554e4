#include "Report/EventStates.h"

#include <unordered_set>

namespace velmora::report {

const char* NameOf(EventState state) {
  switch (state) {
    case EventState::Placed:
      return "placed";
    case EventState::Missing:
      return "missing";
    case EventState::Off:
      return "off";
    case EventState::LeftOut:
      return "left out";
    case EventState::NoCut:
      break;
  }
  return "not a cut";
}

std::vector<EventState> StatesOf(const host::TargetInput& input) {
  std::unordered_set<std::int32_t> placed;
  for (const host::SessionRegion& region : input.session.Regions()) {
    if (region.origin && region.origin->piece == RegionPiece::Main) {
      placed.insert(region.origin->event);
    }
  }
  std::vector<EventState> states;
  for (const host::RecordedEvent& event : input.record.events) {
    const bool isPlaced = placed.contains(event.event);
    states.push_back(!event.IsCut()    ? EventState::NoCut
                     : isPlaced        ? EventState::Placed
                     : !event.isOn     ? EventState::Off
                     : event.isMissing ? EventState::Missing
                                       : EventState::LeftOut);
  }
  return states;
}

}  // namespace velmora::report
