#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>

#include "Session/SessionTarget.h"

namespace velmora::program {

/// What stands for standard output in place of a path, where a target can write there.
inline constexpr const char* kStandardOutput = "-";

/// The complaint where it cannot.
[[nodiscard]] std::string NoStandardOutput(const std::string& option);

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
[[nodiscard]] std::string FinishTargets(const RawTargets& raw, TargetRequests& requests);

}  // namespace velmora::program
