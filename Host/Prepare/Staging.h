#pragma once

#include <string>

#include "Session/InTheMaking.h"

namespace velmora::prepare {

/// A folder in the making. Everything is made in a folder beside it, which takes its name at the
/// end: the folder appears whole or not at all. What is not committed is removed again; a process
/// that is killed leaves "NAME.preparing-XXXXXX" and never NAME; the next that prepares into NAME
/// removes it.
class Staging {
 public:
  Staging() = default;
  ~Staging();
  Staging(const Staging&) = delete;
  Staging& operator=(const Staging&) = delete;

  /// Makes the staging folder, and the folders above the target that are missing.
  /// @param target absolute; must not exist or be an empty folder
  /// @return an empty text, or what stands against it: path and cause
  [[nodiscard]] std::string Begin(const std::string& target);

  /// Absolute, without a slash at its end. Valid between Begin and Commit.
  [[nodiscard]] const std::string& Path() const { return staging_; }

  /// Gives the staged folder the target's name.
  /// @return an empty text, or what went wrong: path and cause; then nothing is left
  [[nodiscard]] std::string Commit();

 private:
  [[nodiscard]] std::string MakeParents();
  [[nodiscard]] std::string MakeStaging(const std::string& start);
  [[nodiscard]] std::string CommitInside();
  void Discard() noexcept;

  std::string target_;
  std::string staging_;       ///< empty when there is none
  std::string firstParent_;   ///< the topmost folder that was made for the target, or empty
  host::InTheMaking making_;  ///< `staging_`
  bool inside_ = false;       ///< the target is there and can only be filled, not replaced
};

}  // namespace velmora::prepare
