#pragma once

#include <set>
#include <string>

namespace velmora::prepare {

/// Hands out names for the files of one folder. They are unique without regard to the case of
/// letters, can be written in Shift-JIS, hold nothing that a path, a URL or another file system
/// reads as more than a letter, and keep the original's stem recognisable.
class MediaNames {
 public:
  /// Keeps a stem free: the system, or a person, might take a file of that name for another one
  /// that is missing.
  void Reserve(const std::string& fileName);

  /// A name after `fileName`, UTF-8, with `suffix` at the end of its stem.
  /// @param extension with its dot; empty: the one that `fileName` has
  [[nodiscard]] std::string NameFor(const std::string& fileName, const std::string& suffix,
                                    const std::string& extension);

 private:
  std::set<std::string> taken_;     ///< lower-case names
  std::set<std::string> reserved_;  ///< lower-case stems
};

}  // namespace velmora::prepare
