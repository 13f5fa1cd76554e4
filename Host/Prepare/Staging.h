#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Session/InTheMaking.h"

namespace velmora::prepare {

/// A path to be made, absolute and without a slash at its end. Where it leads through folders that
/// are missing and back ("missing/../out") that way is left out: nobody wants these folders.
[[nodiscard]] std::string WithoutDetours(const std::string& path);

/// A folder in the making. Everything is made in a hidden folder beside it, which takes its name at
/// the end: the folder appears whole or not at all. What is not committed is removed again. A
/// process that is killed leaves the hidden one and never the folder; the next that makes something
/// there removes it. Nothing else is ever removed, and nothing is written over.
class Staging {
 public:
  Staging() = default;
  ~Staging();
  Staging(const Staging&) = delete;
  Staging& operator=(const Staging&) = delete;

  /// Makes the staging folder, and the folders above the target that are missing.
  /// @param target absolute; must not exist or be an empty folder, left-overs apart
  /// @return an empty text, or what stands against it: path and cause
  [[nodiscard]] std::string Begin(const std::string& target);

  /// Absolute, without a slash at its end. Valid between Begin and Commit.
  [[nodiscard]] const std::string& Path() const { return staging_; }

  /// Gives the staged folder the target's name, unless something else has got it meanwhile.
  /// @return an empty text, or what went wrong: path and cause; then nothing of ours is left
  [[nodiscard]] std::string Commit();

 private:
  [[nodiscard]] std::string MakeParents();
  [[nodiscard]] std::string MakeStaging(const std::string& neighbour);
  [[nodiscard]] std::string TakeTheName();
  [[nodiscard]] std::string CommitInside();
  void TakeBack(const std::vector<std::filesystem::path>& made,
                const std::vector<std::string>& names);
  void Discard() noexcept;

  std::string target_;
  std::string staging_;       ///< empty when there is none
  std::string firstParent_;   ///< the topmost folder that was made for the target, or empty
  host::InTheMaking making_;  ///< `staging_`
  bool there_ = false;        ///< the target was there at the beginning, as an empty folder
  bool inside_ = false;       ///< it can only be filled, not replaced
};

}  // namespace velmora::prepare
