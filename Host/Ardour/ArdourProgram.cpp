#include "Ardour/ArdourProgram.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace velmora::ardour {
namespace {

namespace fs = std::filesystem;

/// The first with the headless Lua that the script needs.
constexpr int kOldestVersion = 7;

/// Why a file is no program that can be run; empty if it is one.
std::string WhyNoProgram(const std::string& path) {
  struct stat facts {};
  if (::stat(path.c_str(), &facts) != 0) return std::strerror(errno);
  if (S_ISDIR(facts.st_mode)) return "it is a folder";
  if (!S_ISREG(facts.st_mode)) return "it is no file";
  return ::access(path.c_str(), X_OK) == 0 ? "" : std::strerror(errno);
}

std::string Absolute(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  return error ? std::string() : absolute.string();
}

std::vector<std::string> FoldersOfPath() {
  std::vector<std::string> folders;
  const char* const variable = std::getenv("PATH");
  std::string_view rest = variable != nullptr ? variable : "";
  while (!rest.empty()) {
    const std::size_t end = rest.find(':');
    // An empty name means the current folder.
    folders.emplace_back(end == 0 ? "." : rest.substr(0, end));
    rest = end == std::string_view::npos ? "" : rest.substr(end + 1);
  }
  return folders;
}

/// The N of ardour<N>-lua; 0 for another name.
int VersionIn(std::string_view name) {
  constexpr std::string_view kStart = "ardour", kEnd = "-lua";
  if (!name.starts_with(kStart)) return 0;
  name.remove_prefix(kStart.size());
  int version = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), version);
  name.remove_prefix(static_cast<std::size_t>(end - name.data()));
  return error == std::errc() && name == kEnd ? version : 0;
}

/// Empty if PATH has none.
std::string FindNewest() {
  std::string newest;
  int version = kOldestVersion - 1;
  for (const std::string& folder : FoldersOfPath()) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
      const int found = VersionIn(entry->path().filename().native());
      if (found <= version || !WhyNoProgram(entry->path()).empty()) continue;
      version = found;
      newest = entry->path();
    }
  }
  return newest.empty() ? newest : Absolute(newest);
}

FoundArdour FindNamed(const std::string& wanted) {
  const bool isPath = wanted.find('/') != std::string::npos;
  std::string cause = isPath ? WhyNoProgram(wanted) : "PATH has no such program";
  if (cause.empty()) return {Absolute(wanted), {}};
  for (const std::string& folder : isPath ? std::vector<std::string>() : FoldersOfPath()) {
    const std::string path = fs::path(folder) / wanted;
    if (WhyNoProgram(path).empty()) return {Absolute(path), {}};
  }
  return {{},
          "ARDOUR_LUA names " + wanted + ", which cannot be run: " + cause +
              ". It must name Ardour's ardour<N>-lua"};
}

}  // namespace

FoundArdour FindArdour() {
  const char* const wanted = std::getenv("ARDOUR_LUA");
  if (wanted != nullptr && *wanted != '\0') return FindNamed(wanted);
  std::string newest = FindNewest();
  if (!newest.empty()) return {std::move(newest), {}};
  return {{},
          "Ardour is not installed: PATH has no ardour7-lua or newer. Install Ardour 7 or later "
          "(on Debian: apt install ardour), or name its ardour<N>-lua in the environment variable "
          "ARDOUR_LUA"};
}

}  // namespace velmora::ardour
