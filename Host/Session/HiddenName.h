#pragma once

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>

#include "Session/InTheMaking.h"

namespace velmora::host {

/// A number as it is written in these names: nobody else's is taken for one of them by chance.
[[nodiscard]] inline bool IsPlainNumber(std::string_view text) {
  constexpr std::size_t kMostDigits = 10;
  return !text.empty() && text.size() <= kMostDigits && text.front() != '0' &&
         text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// The names that MakeHidden gives: ".velmora-PROCESS-NUMBER.part".
[[nodiscard]] inline bool IsHiddenName(std::string_view name) {
  constexpr std::string_view kStart = ".velmora-", kEnd = ".part";
  if (!name.starts_with(kStart) || !name.ends_with(kEnd)) return false;
  const std::string_view numbers =
      name.substr(kStart.size(), name.size() - kStart.size() - kEnd.size());
  const std::size_t middle = numbers.find('-');
  return middle != std::string_view::npos && IsPlainNumber(numbers.substr(0, middle)) &&
         IsPlainNumber(numbers.substr(middle + 1));
}

/// Makes something beside `path` under a hidden name that nothing holds yet, and removes what runs
/// that were killed have left there under such names. `make` is called with one name after the
/// other until it is true, or false with another errno than EEXIST.
/// @param making says so from then on
/// @return the name, absolute; empty if nothing was made: errno tells why
template <typename Make>
[[nodiscard]] std::string MakeHidden(const std::string& path, InTheMaking& making, Make make) {
  constexpr int kMostNames = 1000;  // more than this many in one folder is not by chance
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  TidyLeftOvers(folder, IsHiddenName);
  // The name is short, since that of the path may be as long as a name can be.
  const std::string start = folder / (".velmora-" + std::to_string(::getpid()));
  for (int number = 1; number <= kMostNames; ++number) {
    std::string name = start + "-" + std::to_string(number) + ".part";
    if (!make(name)) {
      if (errno != EEXIST) return {};
    } else if (making.Begin(name)) {
      return name;
    }
  }
  errno = EEXIST;
  return {};
}

}  // namespace velmora::host
