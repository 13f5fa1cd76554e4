#pragma once

#include <chrono>
#include <string>
#include <utility>

#include "Session/SessionTarget.h"

namespace velmora::ardour {

/// Writes a session as a new Ardour session, by one run of Ardour without a window: Ardour makes
/// the empty session, this program puts the regions into its file, Ardour loads that, and what it
/// then has is compared with every region's message. The audio is referred to where it lies.
///
/// Regions that Ardour cannot have (see ArdourPlan) are left out, and each is named.
class ArdourTarget : public host::SessionTarget {
 public:
  /// So long Ardour may show no progress.
  static constexpr std::chrono::milliseconds kPatience = std::chrono::seconds(60);

  /// @param path absolute and new
  /// @param program absolute: Ardour's Lua
  ArdourTarget(std::string path, std::string program,
               std::chrono::milliseconds patience = kPatience)
      : path_(std::move(path)), program_(std::move(program)), patience_(patience) {}

  [[nodiscard]] host::TargetOutcome Write(const host::TargetInput& input,
                                          const host::TargetProgress& progress) override;

 private:
  std::string path_;
  std::string program_;
  std::chrono::milliseconds patience_;
};

}  // namespace velmora::ardour
