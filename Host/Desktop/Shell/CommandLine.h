#pragma once

#include <optional>
#include <string>
#include <vector>

namespace velmora::desktop {

/// What the program was asked to do.
struct ShellOptions {
  std::string project;  ///< absolute path of the ADL file, empty for none
  std::string bundle;  ///< absolute path of the view's bundle, empty for the program's own
  std::string snapshot;  ///< absolute path of the picture to draw before ending, empty for none
  bool spot = false;     ///< start a spot as soon as the project is loaded
};

/// Reads the arguments behind the program's name. Help, version and errors are printed here, and
/// give the exit status with which the program is to end at once.
std::optional<int> ParseCommandLine(std::vector<std::string> arguments, ShellOptions& options);

}  // namespace velmora::desktop
