#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Media/FactsByPath.h"
#include "Session/PartialSession.h"
#include "Session/SessionTarget.h"

namespace velmora::dawproject {

enum class MediaPlace { Outside, Inside };

/// A region that a DAWproject cannot have, and why.
struct UnusableRegion {
  std::size_t region = 0;  ///< index into the input's Session::Regions()
  std::string cause;       ///< one line, with the path where a file is the cause
};

/// What a DAWproject can hold of a session: all regions but those whose file cannot be read, is of
/// another sample rate than the session, or has a name that XML cannot tell. What lies under a
/// region that is left out is heard. One of no length stays and is heard nowhere; its file may be
/// any.
class UsableSession {
 public:
  /// `input` must outlive this.
  UsableSession(const host::TargetInput& input, MediaPlace place, media::FactsByPath& media);

  [[nodiscard]] const host::Session& Regions() const { return kept_.Regions(); }
  [[nodiscard]] const host::HeardSession& Heard() const { return kept_.Heard(); }
  /// The index in the input's session of a region here.
  [[nodiscard]] std::size_t Original(std::size_t region) const { return kept_.Original(region); }
  [[nodiscard]] const std::vector<UnusableRegion>& Unusable() const { return unusable_; }

 private:
  std::vector<UnusableRegion> unusable_;
  host::PartialSession kept_;
};

}  // namespace velmora::dawproject
