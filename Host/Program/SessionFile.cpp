#include "Program/SessionFile.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "Session/SessionJson.h"

namespace velmora::program {
namespace {

namespace fs = std::filesystem;

/// What every session begins with.
constexpr std::string_view kSessionHead = "{";
constexpr std::string_view kSessionKey = "\"summary\"";

bool HoldsSession(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string head(64, '\0');
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(file.gcount()));
  return head.empty() || (head.starts_with(kSessionHead) && head.find(kSessionKey) < head.size());
}

}  // namespace

std::string SessionFileComplaint(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::is_directory(status)) return path + " is a folder";
  if (fs::is_regular_file(status) && !HoldsSession(path)) {
    return path + " is there and is no session; it is not written over";
  }
  const fs::path folder = fs::path(path).parent_path();
  if (access(folder.c_str(), W_OK | X_OK) != 0) {
    return path + " cannot be written: " + std::strerror(errno);
  }
  return {};
}

std::string WriteSessionFile(const host::Session& session, const std::string& path) {
  std::error_code error;
  const bool inPlace = fs::exists(path, error) && !fs::is_regular_file(path, error);
  const std::string target = inPlace ? path : path + ".part";  // a device has no other place
  errno = 0;
  std::ofstream file(target, std::ios::binary | std::ios::trunc);
  const bool written = file && host::WriteSessionJson(session, file);
  file.close();
  if (!written || !file) {
    const std::string cause = errno != 0 ? std::strerror(errno) : "it takes no more";
    if (!inPlace) fs::remove(target, error);
    return path + " cannot be written: " + cause;
  }
  if (!inPlace) fs::rename(target, path, error);
  return error ? path + " cannot be written: " + error.message() : "";
}

}  // namespace velmora::program
