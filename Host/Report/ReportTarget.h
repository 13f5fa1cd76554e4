#pragma once

#include <string>
#include <utility>

#include "Session/SessionTarget.h"

namespace velmora::report {

/// Writes the page, which must not be there. It reads the files that the spot made, for their
/// checksums, and parts of the regions' files, for the waveforms; a file that cannot be read costs
/// the page only these.
class ReportTarget : public host::SessionTarget {
 public:
  /// @param path absolute
  explicit ReportTarget(std::string path) : path_(std::move(path)) {}

  [[nodiscard]] host::TargetOutcome Write(const host::TargetInput& input,
                                          const host::TargetProgress& progress) override;

 private:
  std::string path_;
};

}  // namespace velmora::report
