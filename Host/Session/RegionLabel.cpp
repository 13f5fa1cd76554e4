#include "Session/RegionLabel.h"

#include "Session/SessionClock.h"

namespace velmora::host {

std::string RegionLabel(const TargetInput& input, std::size_t region) {
  const SessionRegion& facts = input.session.Regions()[region];
  return "region " + std::to_string(region) + " \"" + facts.name + "\" (track " +
         std::to_string(input.record.TrackNumber(facts.track)) + ", " +
         SessionClock(input.rates).Timecode(facts.position) + ")";
}

}  // namespace velmora::host
