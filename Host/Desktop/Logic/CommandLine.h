#pragma once

#include <optional>
#include <string>
#include <vector>

namespace velmora::desktop {

/// What the program was asked to do.
struct ShellOptions {
  std::string project;   ///< absolute path of the ADL file, empty for none
  std::string bundle;    ///< absolute path of the view's bundle, empty for the program's own
  std::string snapshot;  ///< absolute path of the picture to draw before ending, empty for none
  bool spot = false;     ///< start a spot as soon as the project is loaded
};

/// Reads the arguments that follow the program's name. Help goes to standard output and a complaint
/// to standard error, from here; the answer is then the status with which the program is to end at
/// once (ExitStatus.h).
[[nodiscard]] std::optional<int> ParseCommandLine(std::vector<std::string> arguments,
                                                  ShellOptions& options);

}  // namespace velmora::desktop
