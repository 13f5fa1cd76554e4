#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "ADL/AES31Event.h"
#include "Model/EventRows.h"
#include "Model/EventSet.h"
#include "Model/NumberPlaces.h"
#include "Model/ProjectSummary.h"

namespace velmora {

// The walks over a project's events from which the model is made. Each says which fields it reads:
// nothing else of the events costs any time.

/// The state of an event's check box; events of a track that is off have none.
enum class EventBox : std::uint8_t { Off, On, Placeholder };

[[nodiscard]] inline EventBox BoxOf(const AES31Event& event) {
  return IsOn(event.eventOn) ? EventBox::On : EventBox::Off;
}

/// The event table as the events are at one moment.
struct EventListing {
  std::shared_ptr<const EventMarks> marks;
  EventSet listed;  ///< those whose track is on
  std::vector<EventBox> boxes;
};

/// Reads label, file and boxes: some four cache lines an event, each asked for in time.
[[nodiscard]] EventListing ListEvents(std::span<const AES31Event> events);

/// The tracks that cuts use, and the place of each event's track among them.
struct TrackPlaces {
  NumberPlaces tracks;
  std::vector<std::int32_t> ofEvents;  ///< by event index; NumberPlaces::kNone for no cut
};

/// Reads the track numbers of `cuts`.
[[nodiscard]] TrackPlaces PlaceTracks(std::span<const AES31Event> events, const EventSet& cuts);

/// All that a load needs to know of the events.
struct EventSurvey {
  std::shared_ptr<const EventMarks> marks;
  TrackPlaces places;
  CutSpan project;
  std::vector<CutSpan> tracks;  ///< by place
};

/// Ticks all boxes, too. Reads the edits with their times, and the files.
[[nodiscard]] EventSurvey SurveyAndTickAll(std::span<AES31Event> events);

}  // namespace velmora
