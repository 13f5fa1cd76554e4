#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "Session/SessionTarget.h"

namespace velmora::host {

/// A session without some of its regions, as though they had never arrived: what lies under them is
/// heard. Where none is left out this is the session itself, and costs nothing.
class PartialSession {
 public:
  /// @param input must outlive this
  /// @param isLeftOut by region of its session
  PartialSession(const TargetInput& input, const std::vector<bool>& isLeftOut);
  PartialSession(const PartialSession&) = delete;
  PartialSession& operator=(const PartialSession&) = delete;

  [[nodiscard]] const Session& Regions() const { return own_ ? *own_ : input_.session; }
  [[nodiscard]] const HeardSession& Heard() const { return ownHeard_ ? *ownHeard_ : input_.heard; }
  /// The index in the whole session of a region here.
  [[nodiscard]] std::size_t Original(std::size_t region) const {
    return own_ ? originals_[region] : region;
  }

 private:
  const TargetInput& input_;
  // Only where something is left out.
  std::optional<Session> own_;
  std::optional<HeardSession> ownHeard_;
  std::vector<std::size_t> originals_;
};

}  // namespace velmora::host
