#include "Report/Tracks.h"

#include <algorithm>
#include <map>

namespace velmora::report {

std::vector<TrackRow> TracksOf(const host::TargetInput& input) {
  std::map<std::int64_t, TrackRow> tracks;
  for (const host::RecordedEvent& event : input.record.events) {
    if (event.IsCut()) ++tracks[event.track].cuts;
  }
  for (const host::SessionRegion& region : input.session.Regions()) {
    TrackRow& row = tracks[region.track];
    const std::int64_t end = std::max(region.End(), region.position);
    row.first = row.regions == 0 ? region.position : std::min(row.first, region.position);
    row.end = row.regions == 0 ? end : std::max(row.end, end);
    ++row.regions;
  }
  std::vector<TrackRow> rows;
  for (auto& [track, row] : tracks) {
    row.number = input.record.TrackNumber(track);
    rows.push_back(row);
  }
  return rows;
}

}  // namespace velmora::report
