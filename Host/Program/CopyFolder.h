#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace velmora::program {

/// A folder that is made where it is missing, and can be taken back while nothing lies in it.
class CopyFolder {
 public:
  /// Makes it and those above it, all or none; one that is there is good.
  /// @return an empty text, or what is wrong
  [[nodiscard]] std::string Make(const std::string& path);
  /// Removes what was made. Folders that hold something by now stay.
  void Remove();

 private:
  std::vector<std::filesystem::path> made_;  ///< the uppermost first
};

}  // namespace velmora::program
