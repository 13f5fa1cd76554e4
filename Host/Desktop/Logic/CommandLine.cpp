#include "Desktop/Logic/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>

#include "Desktop/Logic/ExitStatus.h"
#include "Session/Printable.h"

namespace velmora::desktop {
namespace {

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

int Complain(const std::string& what) {
  std::cerr << "velmora-desktop: " << host::Printable(what) << "\nTry 'velmora-desktop --help'.\n";
  return kBadUsage;
}

bool LooksLikeOption(const std::string& word) {
  return word.size() > 1 && word.front() == '-';
}

/// What is wrong with words that nothing takes; an option among them is the likelier mistake.
std::string ExtraText(const std::vector<std::string>& words) {
  const auto option = std::find_if(words.begin(), words.end(), LooksLikeOption);
  if (option != words.end()) return "there is no option '" + *option + "'";
  return "one project at a time: '" + words.front() + "' is one too many";
}

/// What is wrong with an option that is there. The parser's own text begins with its name.
std::string OptionText(const CLI::App& app, const CLI::ParseError& error) {
  std::string text = error.what();
  const auto* const option = app.get_option_no_throw(text.substr(0, text.find(':')));
  if (option == nullptr) return text;
  if (option->count() > 1) return option->get_name() + ": given more than once";
  return option->get_name() + ": a value must follow: " + option->get_type_name();
}

}  // namespace

std::optional<int> ParseCommandLine(std::vector<std::string> arguments, ShellOptions& options) {
  CLI::App app("Shows the import view in a window, with a session that its regions land in.",
               "velmora-desktop");
  app.footer(kExamples);
  app.allow_extras();  // they are named one by one, in words of this program's
  app.set_version_flag("--version", "velmora-desktop " VELMORA_VERSION,
                       "Print the version and end");
  app.add_option("PROJECT.adl", options.project, "AES31-3 project to open");
  app.add_option("--bundle", options.bundle, "Take the view from this bundle")->type_name("PATH");
  app.add_option("--snapshot", options.snapshot, "Draw the window to a picture and end")
      ->type_name("FILE.png");
  app.add_flag("--spot", options.spot, "Press the spot button once the project is loaded");

  // Options of one dash and a word are how this toolkit's programs spell them.
  std::replace(arguments.begin(), arguments.end(), std::string("-bundle"), std::string("--bundle"));
  std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
  try {
    app.parse(arguments);
  } catch (const CLI::Success& request) {  // help or the version was asked for
    return app.exit(request);
  } catch (const CLI::ParseError& error) {
    return Complain(OptionText(app, error));
  }
  const std::vector<std::string> extras = app.remaining();
  if (!extras.empty()) return Complain(ExtraText(extras));
  if (options.spot && options.project.empty()) return Complain("--spot needs a project to place");
  MakeAbsolute(options.project);
  MakeAbsolute(options.bundle);
  MakeAbsolute(options.snapshot);
  return std::nullopt;
}

}  // namespace velmora::desktop
