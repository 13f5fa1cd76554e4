#include "Session/RegionLabel.h"

#include "Base/Text.h"
#include "Session/SessionClock.h"

namespace velmora::host {

std::string RegionLabel(const TargetInput& input, std::size_t region) {
  const SessionRegion& facts = input.session.Regions()[region];
  return "region " + std::to_string(region) + " \"" + facts.name + "\" (track " +
         std::to_string(input.record.TrackNumber(facts.track)) + ", " +
         SessionClock(input.rates).Timecode(facts.position) + ")";
}

std::string OfAnotherRate(const SessionRegion& region, std::int64_t fileRate,
                          std::int64_t sessionRate) {
  return region.path + " is of " + std::to_string(fileRate) + " Hz and the session of " +
         std::to_string(sessionRate) + " Hz";
}

std::vector<std::string> OddAbout(const SessionRegion& region, std::int64_t frames,
                                  bool isWaveOf8Bits) {
  std::vector<std::string> odd;
  if (region.start < 0) {
    odd.push_back("it begins " + Counted(static_cast<std::size_t>(-region.start), "sample") +
                  " before " + region.path + "; these are silence");
  }
  if (region.stop > frames) {
    odd.push_back("it runs past " + region.path + ", which has " +
                  Counted(static_cast<std::size_t>(frames), "sample") + "; the rest is silence");
  }
  if (isWaveOf8Bits && region.origin && region.origin->piece != RegionPiece::Main) {
    odd.push_back("it is a fade piece of 8 bits, " + region.path +
                  ", whose samples have signs where a wave file has none; it does not sound right");
  }
  return odd;
}

}  // namespace velmora::host
