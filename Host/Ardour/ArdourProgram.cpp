#include "Ardour/ArdourProgram.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace velmora::ardour {
namespace {

bool IsProgram(const std::string& path) {
  struct stat facts {};
  return ::stat(path.c_str(), &facts) == 0 && S_ISREG(facts.st_mode) &&
         ::access(path.c_str(), X_OK) == 0;
}

std::string Absolute(const std::string& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  return error ? std::string() : absolute.string();
}

/// Empty if PATH has no such program.
std::string FindInPath(const std::string& name) {
  const char* const variable = std::getenv("PATH");
  std::string_view folders = variable != nullptr ? variable : "";
  while (!folders.empty()) {
    const std::size_t end = folders.find(':');
    // An empty name means the current folder.
    const std::string folder(end == 0 ? "." : folders.substr(0, end));
    const std::string path = folder + "/" + name;
    if (IsProgram(path)) return Absolute(path);
    folders = end == std::string_view::npos ? "" : folders.substr(end + 1);
  }
  return {};
}

}  // namespace

FoundArdour FindArdour() {
  const char* const variable = std::getenv("ARDOUR_LUA");
  const std::string wanted = variable != nullptr ? variable : "";
  if (!wanted.empty()) {
    if (wanted.find('/') == std::string::npos) {
      std::string found = FindInPath(wanted);
      if (!found.empty()) return {std::move(found), {}};
    } else if (IsProgram(wanted)) {
      return {Absolute(wanted), {}};
    }
    return {{}, "ARDOUR_LUA names " + wanted + ", and there is no such program to run"};
  }
  for (const char* const name : {"ardour9-lua", "ardour8-lua", "ardour7-lua"}) {
    std::string found = FindInPath(name);
    if (!found.empty()) return {std::move(found), {}};
  }
  return {{},
          "Ardour is not installed: PATH has no ardour9-lua, ardour8-lua or ardour7-lua. Install "
          "Ardour 7 or later (on Debian: apt install ardour), or name its ardour<N>-lua in the "
          "environment variable ARDOUR_LUA"};
}

}  // namespace velmora::ardour
