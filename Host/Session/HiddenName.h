#pragma once

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

namespace velmora::host {

/// Makes something beside `path` under a hidden name that nothing holds yet. `make` is called with
/// one name after the other until it is true, or false with another errno than EEXIST.
/// @return the name, absolute; empty if nothing was made: errno tells why
template <typename Make>
[[nodiscard]] std::string MakeHidden(const std::string& path, Make make) {
  constexpr int kMostNames = 1000;  // more than this many in one folder is not by chance
  // The name is short, since that of the path may be as long as a name can be.
  const std::string start =
      std::filesystem::path(path).parent_path() / (".velmora-" + std::to_string(::getpid()));
  for (int number = 1; number <= kMostNames; ++number) {
    std::string name = start + "-" + std::to_string(number) + ".part";
    if (make(name)) return name;
    if (errno != EEXIST) break;
  }
  return {};
}

}  // namespace velmora::host
