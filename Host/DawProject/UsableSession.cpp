#include "DawProject/UsableSession.h"

#include <cmath>
#include <utility>

#include "Session/RegionLabel.h"
#include "Session/SessionClock.h"
#include "Session/XmlText.h"

namespace velmora::dawproject {
namespace {

/// Why a region cannot be used; empty if it can.
std::string WhyUnusable(const host::SessionRegion& region, long sessionRate, MediaPlace place,
                        media::FactsByPath& media) {
  if (region.Length() <= 0) return {};
  const media::FactsOrTrouble& file = media.Of(region.path);
  if (!file.facts) return region.path + " cannot be read: " + file.trouble;
  if (file.facts->sampleRate != sessionRate) {
    return host::OfAnotherRate(region, file.facts->sampleRate, sessionRate);
  }
  if (place == MediaPlace::Outside && host::XmlText(region.path) != region.path) {
    return region.path + " has a name that XML cannot tell; with --embed-media it goes inside";
  }
  return {};
}

std::vector<UnusableRegion> UnusableOf(const host::TargetInput& input, MediaPlace place,
                                       media::FactsByPath& media) {
  std::vector<UnusableRegion> unusable;
  const std::vector<host::SessionRegion>& regions = input.session.Regions();
  const long rate = std::lround(host::SessionClock(input.rates).SampleRate());
  for (std::size_t i = 0; i < regions.size(); ++i) {
    std::string cause = WhyUnusable(regions[i], rate, place, media);
    if (!cause.empty()) unusable.push_back({i, std::move(cause)});
  }
  return unusable;
}

std::vector<bool> FlagsOf(const std::vector<UnusableRegion>& unusable, std::size_t regions) {
  std::vector<bool> flags(regions);
  for (const UnusableRegion& row : unusable) flags[row.region] = true;
  return flags;
}

}  // namespace

UsableSession::UsableSession(const host::TargetInput& input, MediaPlace place,
                             media::FactsByPath& media)
    : unusable_(UnusableOf(input, place, media)),
      kept_(input, FlagsOf(unusable_, input.session.Regions().size())) {}

}  // namespace velmora::dawproject
