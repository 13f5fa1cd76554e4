#pragma once

#include <string>

#include "Bounce/BouncePlan.h"
#include "Session/SessionTarget.h"

namespace velmora::bounce {

/// The session as one file: all tracks side by side, in rising order. "-" is standard output, which
/// gets nothing but the file.
class BounceTarget : public host::SessionTarget {
 public:
  /// @param path absolute and new, or "-"
  [[nodiscard]] static host::ClaimedTarget Claim(const std::string& path, host::BounceDepth depth);

  [[nodiscard]] host::TargetOutcome Write(const host::TargetInput& input,
                                          const host::TargetProgress& progress) override;

 private:
  BounceTarget(std::string path, host::BounceDepth depth) : path_(std::move(path)), depth_(depth) {}

  std::string path_;
  host::BounceDepth depth_;
};

/// A folder with one file for each track of the session, "Track N.wav", N being the project's
/// number of the track. Each spans the whole session.
class BounceTracksTarget : public host::SessionTarget {
 public:
  /// @param path absolute and new
  [[nodiscard]] static host::ClaimedTarget Claim(const std::string& path, host::BounceDepth depth);

  [[nodiscard]] host::TargetOutcome Write(const host::TargetInput& input,
                                          const host::TargetProgress& progress) override;

 private:
  BounceTracksTarget(std::string path, host::BounceDepth depth)
      : path_(std::move(path)), depth_(depth) {}

  /// Empty, or what went wrong: path and cause.
  [[nodiscard]] std::string WriteFolder(BouncePlan& plan, const host::SpotRecord& record,
                                        const host::TargetProgress& progress) const;

  std::string path_;
  host::BounceDepth depth_;
};

}  // namespace velmora::bounce
