#include "BWF/OutputPaths.h"

#include <cstring>

#include "BWF/AES31BWF.h"
#include "Platform/FileAccess.h"

namespace velmora {
namespace {

std::string SourcePath(const AES31Event& event) {
  return event.sourceFile != nullptr ? event.sourceFile->GetPath() : "";
}

/// From the last `.` of the whole path on; stem and extension follow different rules on purpose, so
/// a name with two dots loses its middle.
std::string ExtensionOf(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  return dot == std::string::npos ? std::string() : path.substr(dot);
}

}  // namespace

std::string OutputNames::CopyPath(const AES31Event& event, const char* folder) {
  return DerivedPath(event, folder, "");
}

std::string OutputNames::DerivedPath(const AES31Event& event, const char* folder,
                                     const char* suffix) {
  const std::string source = SourcePath(event);
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

std::string BuildCopyPath(const AES31Event& event, const char* folder) {
  return OutputNames().CopyPath(event, folder);
}

std::string BuildDerivedPath(const AES31Event& event, const char* folder, const char* suffix) {
  return OutputNames().DerivedPath(event, folder, suffix);
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
