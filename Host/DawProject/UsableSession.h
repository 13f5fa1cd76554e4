#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "Media/FactsByPath.h"
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

  [[nodiscard]] const host::Session& Regions() const { return *session_; }
  [[nodiscard]] const host::HeardSession& Heard() const { return *heard_; }
  /// The index in the input's session of a region here.
  [[nodiscard]] std::size_t Original(std::size_t region) const {
    return originals_.empty() ? region : originals_[region];
  }
  [[nodiscard]] const std::vector<UnusableRegion>& Unusable() const { return unusable_; }

 private:
  const host::Session* session_;
  const host::HeardSession* heard_;
  std::vector<UnusableRegion> unusable_;
  /// Only where something is left out; else the input's own are used as they are.
  std::unique_ptr<host::Session> ownSession_;
  std::unique_ptr<host::HeardSession> ownHeard_;
  std::vector<std::size_t> originals_;
};

}  // namespace velmora::dawproject
