#include "Desktop/Shell/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>

namespace velmora::desktop {
namespace {

constexpr int kBadUsage = 1;

constexpr const char* kExamples = R"(
Examples:
  velmora-desktop                                  choose a project in the window
  velmora-desktop Examples/Demo.adl                open with a project loaded
  velmora-desktop Demo.adl --spot                  place its regions at once
  velmora-desktop Demo.adl --snapshot window.png   draw the window to a picture and end
)";

/// Folders are chosen in panels while the program runs: a path must not depend on where it stands.
void MakeAbsolute(std::string& path) {
  if (!path.empty()) path = std::filesystem::absolute(path).lexically_normal().string();
}

}  // namespace

std::optional<int> ParseCommandLine(std::vector<std::string> arguments, ShellOptions& options) {
  CLI::App app("Shows the import view in a window, with a session that its regions land in.",
               "velmora-desktop");
  app.footer(kExamples);
  app.add_option("PROJECT.adl", options.project, "AES31-3 project to open");
  app.add_option("--bundle", options.bundle, "Take the view from this bundle")
      ->type_name("PATH");
  app.add_option("--snapshot", options.snapshot, "Draw the window to a picture and end")
      ->type_name("FILE.png");
  app.add_flag("--spot", options.spot, "Press the spot button once the project is loaded");

  // Options of one dash and a word are how this toolkit's programs spell them.
  std::replace(arguments.begin(), arguments.end(), std::string("-bundle"), std::string("--bundle"));
  std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
  try {
    app.parse(arguments);
  } catch (const CLI::ParseError& error) {
    const int status = app.exit(error, std::cout, std::cerr);
    return status == 0 ? 0 : kBadUsage;
  }
  if (options.spot && options.project.empty()) {
    std::cerr << "velmora-desktop: --spot needs a project to place\n";
    return kBadUsage;
  }
  MakeAbsolute(options.project);
  MakeAbsolute(options.bundle);
  MakeAbsolute(options.snapshot);
  return std::nullopt;
}

}  // namespace velmora::desktop
