#pragma once

#include <string>
#include <utility>

#include "Session/SessionTarget.h"

namespace velmora::dawproject {

/// Writes a session as a DAWproject file. The file must not be there.
///
/// Regions that it cannot hold (UsableSession) are left out, and each is named and marked on the
/// timeline. Notes name fades that the format cannot tell, and regions that run past their files.
class DawProjectTarget : public host::SessionTarget {
 public:
  /// @param path absolute
  DawProjectTarget(std::string path, bool embedMedia)
      : path_(std::move(path)), embedMedia_(embedMedia) {}

  [[nodiscard]] host::TargetOutcome Write(const host::TargetInput& input,
                                          const host::TargetProgress& progress) override;

 private:
  std::string path_;
  bool embedMedia_;
};

}  // namespace velmora::dawproject
