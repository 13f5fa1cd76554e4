#include "Program/CopyFolder.h"

#include <system_error>

namespace velmora::program {
namespace fs = std::filesystem;

std::string CopyFolder::Make(const std::string& path) {
  std::error_code error;
  fs::path folder;
  for (const fs::path& part : fs::path(path)) {
    folder /= part;
    if (!error && fs::create_directory(folder, error)) made_.push_back(folder);
  }
  std::error_code ignored;
  if (error == std::errc::file_exists || (!error && !fs::is_directory(path, ignored))) {
    error = std::make_error_code(std::errc::not_a_directory);
  }
  if (!error) return {};
  Remove();
  return path + " cannot be made: " + error.message();
}

void CopyFolder::Remove() {
  std::error_code ignored;
  for (auto last = made_.rbegin(); last != made_.rend(); ++last) fs::remove(*last, ignored);
  made_.clear();
}

}  // namespace velmora::program
