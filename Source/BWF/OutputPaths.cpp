#include "BWF/OutputPaths.h"

#include <cstring>

#include "Base/FileAccess.h"
#include "Base/FileNames.h"

namespace velmora {

std::string OutputNames::Find(const std::string& source, const char* folder, const char* suffix) {
  const std::string base = folder != nullptr
                               ? std::string(folder) + "/" + CopyBaseName(source.c_str())
                               : source.substr(0, source.rfind('.'));
  return FreeName(base + suffix, ExtensionOf(source));
}

std::string OutputNames::FreeName(const std::string& base, const std::string& extension) {
  // The number given last is tried again: its file may not have come to be.
  std::uint64_t& number = lastNumber_[base + '\0' + extension];
  for (;; ++number) {
    const std::string middle = number == 0 ? "" : "." + std::to_string(number);
    std::string candidate = base + middle + extension;
    if (!FileExists(candidate.c_str())) return candidate;
  }
}

std::string CopyBaseName(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  const char* const stem = slash != nullptr ? slash + 1 : path;
  return {stem, std::strcspn(stem, ".")};
}

bool FileExists(const char* path) {
  return OpensForReading(path);
}

}  // namespace velmora
