#pragma once

#include <memory>
#include <string>

#include "Session/Session.h"
#include "Spot/SessionRates.h"

namespace velmora::host {

/// Where a session is written when its last region has arrived. It is claimed before the spot
/// begins, so that a bad name is told before any work is done.
class SessionTarget {
 public:
  virtual ~SessionTarget() = default;
  /// Writes the session, whole or not at all.
  /// @return an empty text, or what went wrong: the target's name and the cause
  [[nodiscard]] virtual std::string Write(const Session& session, const SessionRates& rates) = 0;
};

/// A claimed target, or none and the reason: the target's name and what stands against it.
struct ClaimedTarget {
  std::unique_ptr<SessionTarget> target;
  std::string complaint;
};

}  // namespace velmora::host
