#include "DawProject/UsableSession.h"

#include <cmath>
#include <utility>

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
    return region.path + " is of " + std::to_string(file.facts->sampleRate) +
           " Hz and the session of " + std::to_string(sessionRate) + " Hz";
  }
  if (place == MediaPlace::Outside && host::XmlText(region.path) != region.path) {
    return region.path + " has a name that XML cannot tell; with --embed-media it goes inside";
  }
  return {};
}

}  // namespace

UsableSession::UsableSession(const host::TargetInput& input, MediaPlace place,
                             media::FactsByPath& media)
    : session_(&input.session), heard_(&input.heard) {
  const std::vector<host::SessionRegion>& regions = input.session.Regions();
  const long rate = std::lround(host::SessionClock(input.rates).SampleRate());
  for (std::size_t i = 0; i < regions.size(); ++i) {
    std::string cause = WhyUnusable(regions[i], rate, place, media);
    if (!cause.empty()) unusable_.push_back({i, std::move(cause)});
  }
  if (unusable_.empty()) return;

  ownSession_ = std::make_unique<host::Session>();
  auto unusable = unusable_.begin();
  for (std::size_t i = 0; i < regions.size(); ++i) {
    if (unusable != unusable_.end() && unusable->region == i) {
      ++unusable;
      continue;
    }
    // The region brings its shape and origin along.
    ownSession_->Place(regions[i]);
    originals_.push_back(i);
  }
  ownHeard_ = std::make_unique<host::HeardSession>(*ownSession_);
  session_ = ownSession_.get();
  heard_ = ownHeard_.get();
}

}  // namespace velmora::dawproject
