#pragma once

#include <string>
#include <utility>

#include "Session/SessionTarget.h"

namespace velmora::otio {

/// Writes a session as an OpenTimelineIO file. The file must not be there.
///
/// It only refers to the audio. A region whose file cannot be read keeps its clip, and is named;
/// one whose file has another rate than the session plays its samples at the session's, and is
/// told.
class OtioTarget : public host::SessionTarget {
 public:
  /// @param path absolute
  explicit OtioTarget(std::string path) : path_(std::move(path)) {}

  [[nodiscard]] host::TargetOutcome Write(const host::TargetInput& input,
                                          const host::TargetProgress& progress) override;

 private:
  std::string path_;
};

}  // namespace velmora::otio
