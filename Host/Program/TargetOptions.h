#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>

#include "Session/SessionTarget.h"

namespace velmora::program {

/// One target that was asked for.
struct TargetRequest {
  const host::TargetKind* kind;
  std::string path;  ///< absolute; "-" for standard output
};

/// The targets of one spot, in the order in which they are written.
struct TargetRequests {
  std::vector<TargetRequest> targets;
  host::TargetChoices choices;
  bool native = false;  ///< fades, crossfades and gain as facts of the regions

  /// True if a target takes standard output for itself.
  [[nodiscard]] bool TakeStandardOutput() const;
};

/// The options as they are typed.
struct RawTargets {
  std::map<std::string, std::vector<std::string>> paths;  ///< by the target's name
  std::string bounceDepth = "24";
  host::TargetChoices choices;
  bool native = false;
};

/// Adds the option of each target in the table, and what goes with them.
void AddTargetOptions(CLI::App& spot, RawTargets& raw);

/// Takes over what the validators have let through; an empty answer, or what is wrong.
[[nodiscard]] std::string FinishTargets(const RawTargets& raw, const std::string& hostTarget,
                                        TargetRequests& requests);

}  // namespace velmora::program
