#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace velmora::ardour {

/// A folder for what one run needs beside its result, that nobody else may look into. It goes with
/// this object, with all that is in it.
class PrivateFolder {
 public:
  /// Check IsMade; errno tells why it is not.
  PrivateFolder() {
    std::error_code error;
    const std::filesystem::path parent = std::filesystem::temp_directory_path(error);
    std::string name = parent / "velmora-ardour-XXXXXX";
    if (!error) name = std::filesystem::absolute(name, error);
    if (!error && ::mkdtemp(name.data()) != nullptr) path_ = name;
  }
  ~PrivateFolder() {
    std::error_code ignored;
    if (IsMade()) std::filesystem::remove_all(path_, ignored);
  }
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;

  [[nodiscard]] bool IsMade() const { return !path_.empty(); }
  [[nodiscard]] std::string Path(const char* name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

}  // namespace velmora::ardour
