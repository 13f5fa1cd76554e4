#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Program/CommandLine.h"
#include "Session/SessionTarget.h"

namespace velmora::program {

/// The targets of one spot: claimed before it begins, written when its last region has arrived.
class SpotTargets {
 public:
  /// Claims the host's target and all others; of a plan its page alone. No two may have one place,
  /// whatever way the links lead to it, nor may one have that of a folder that the spot makes.
  /// @return an empty text, or the option and what stands against its target
  [[nodiscard]] std::string Claim(const SpotArguments& arguments);

  /// Writes each target, and goes on when one fails. Says on standard error, and with `json` in a
  /// line on standard output for each, what became of it. A session without regions goes into the
  /// host's own target and into those that tell of the spot; these come last, so that they tell of
  /// the others, too.
  /// @return true if all were made and lack nothing
  [[nodiscard]] bool Write(const host::TargetInput& input, bool json, bool showsBar) const;
  /// Drops the host's own session: a project that was not spotted leaves an earlier one alone.
  void ForgetSession();

  /// True if one of them tells of the spot and wants the whole of the record.
  [[nodiscard]] bool TellOfTheSpot() const;

 private:
  struct Row {
    const host::TargetKind* kind;
    std::string path;
    std::unique_ptr<host::SessionTarget> target;
  };
  [[nodiscard]] static host::TargetOutcome WriteOne(const Row& row, const host::TargetInput& input,
                                                    bool json, bool showsBar);
  [[nodiscard]] std::string Add(const host::TargetKind& kind, const std::string& path,
                                const std::string& option, const host::TargetChoices& choices);

  /// False if something has the place already.
  [[nodiscard]] bool TakePlace(const std::string& path);

  std::vector<Row> rows_;
  std::set<std::string> places_;
};

}  // namespace velmora::program
