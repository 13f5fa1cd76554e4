#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Program/CommandLine.h"
#include "Session/SessionTarget.h"

namespace velmora::program {

/// The targets of one spot: claimed before it begins, written when its last region has arrived.
class SpotTargets {
 public:
  /// Claims the host's target and all others.
  /// @return an empty text, or the option and what stands against its target
  [[nodiscard]] std::string Claim(const SpotArguments& arguments);

  /// Writes each target, and goes on when one fails. Says on standard error, and with `json` in a
  /// line on standard output for each, what became of it. A session without regions goes into the
  /// host's own target alone.
  /// @return true if all were made and lack nothing
  [[nodiscard]] bool Write(const host::TargetInput& input, bool json, bool showsBar) const;

 private:
  struct Row {
    const host::TargetKind* kind;
    std::string path;
    std::unique_ptr<host::SessionTarget> target;
  };
  [[nodiscard]] std::string Add(const host::TargetKind& kind, const std::string& path,
                                const std::string& option, const host::TargetChoices& choices);

  std::vector<Row> rows_;
};

}  // namespace velmora::program
