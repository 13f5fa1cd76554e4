#pragma once

#include <string>

namespace velmora::ardour {

struct FoundArdour {
  std::string program;  ///< absolute path; empty if there is none
  std::string trouble;  ///< why there is none, and what to install
};

/// Finds the program that runs Lua scripts inside Ardour without a window: the one that the
/// environment variable ARDOUR_LUA names, by a path or by a name in PATH; without that the
/// ardour<N>-lua in PATH with the highest N, which is Ardour's version and 7 at least.
[[nodiscard]] FoundArdour FindArdour();

}  // namespace velmora::ardour
