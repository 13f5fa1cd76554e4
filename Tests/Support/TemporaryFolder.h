#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace velmora::test {

/// A folder of its own for one test, gone with it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    do {
      root_ = std::filesystem::temp_directory_path() / ("velmora-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(root_));
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string Path(std::string_view name = {}) const {
    return name.empty() ? root_.string() : (root_ / name).string();
  }
  /// Writes a file, making the folders above it, and returns its path.
  std::string Write(std::string_view name, std::string_view bytes) const {
    const std::filesystem::path path = root_ / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return path.string();
  }
  static std::string Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path root_;
};

}  // namespace velmora::test
