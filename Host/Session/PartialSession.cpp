#include "Session/PartialSession.h"

#include <algorithm>

namespace velmora::host {

PartialSession::PartialSession(const TargetInput& input, const std::vector<bool>& isLeftOut)
    : input_(input) {
  if (std::find(isLeftOut.begin(), isLeftOut.end(), true) == isLeftOut.end()) return;
  own_.emplace();
  const std::vector<SessionRegion>& regions = input.session.Regions();
  for (std::size_t i = 0; i < regions.size(); ++i) {
    if (isLeftOut[i]) continue;
    own_->Place(regions[i]);  // it brings its shape and origin along
    originals_.push_back(i);
  }
  ownHeard_.emplace(*own_);
}

}  // namespace velmora::host
