#pragma once

#include <unzip.h>

#include <optional>
#include <string>
#include <vector>

namespace velmora::test {

/// The names in a ZIP file, in its own order.
inline std::vector<std::string> ZipNames(const std::string& path) {
  std::vector<std::string> names;
  unzFile zip = unzOpen64(path.c_str());
  if (zip == nullptr) return names;
  for (int status = unzGoToFirstFile(zip); status == UNZ_OK; status = unzGoToNextFile(zip)) {
    char name[1024];
    unzGetCurrentFileInfo64(zip, nullptr, name, sizeof name, nullptr, 0, nullptr, 0);
    names.emplace_back(name);
  }
  unzClose(zip);
  return names;
}

/// What an entry of a ZIP file holds; none if it is not there or damaged.
inline std::optional<std::string> ZipEntry(const std::string& path, const std::string& name) {
  unzFile zip = unzOpen64(path.c_str());
  if (zip == nullptr) return std::nullopt;
  std::optional<std::string> bytes;
  if (unzLocateFile(zip, name.c_str(), 1) == UNZ_OK && unzOpenCurrentFile(zip) == UNZ_OK) {
    bytes.emplace();
    char block[65536];
    int count = 0;
    while ((count = unzReadCurrentFile(zip, block, sizeof block)) > 0) {
      bytes->append(block, static_cast<std::size_t>(count));
    }
    // Closing an entry checks its sum.
    if (count < 0 || unzCloseCurrentFile(zip) != UNZ_OK) bytes.reset();
  }
  unzClose(zip);
  return bytes;
}

}  // namespace velmora::test
