#include "Program/CopyFolder.h"

#include <filesystem>
#include <system_error>
#include <vector>

namespace velmora::program {

std::string MakeFolder(const std::string& path) {
  namespace fs = std::filesystem;
  std::vector<fs::path> made;
  std::error_code error;
  fs::path folder;
  for (const fs::path& part : fs::path(path)) {
    folder /= part;
    if (!error && fs::create_directory(folder, error)) made.push_back(folder);
  }
  std::error_code ignored;
  if (error == std::errc::file_exists || (!error && !fs::is_directory(path, ignored))) {
    error = std::make_error_code(std::errc::not_a_directory);
  }
  if (!error) return {};
  for (auto last = made.rbegin(); last != made.rend(); ++last) fs::remove(*last, ignored);
  return path + " cannot be made: " + error.message();
}

}  // namespace velmora::program
