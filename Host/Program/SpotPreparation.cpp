#include "Program/SpotPreparation.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string_view>
#include <system_error>

#include "Base/FileAccess.h"
#include "Base/FileNames.h"
#include "Program/ExitStatus.h"
#include "Program/PrepareCommand.h"
#include "Program/PrepareReport.h"
#include "Program/TextTable.h"
#include "Program/Usage.h"

namespace velmora::program {
namespace {

/// A folder that nobody has asked for by name.
struct OwnFolder {
  std::string path;
  std::string complaint;  ///< why there is none
  bool made = false;      ///< it is there already, and empty
};

/// The project's name as that of a folder. A very long one is cut, so that a number or the random
/// characters of a temporary folder go with it.
std::string NameStart(const SpotArguments& arguments) {
  constexpr std::size_t kLongestName = 255;
  constexpr std::string_view kMark = " prepared", kMore = " XXXXXX";
  constexpr std::size_t kMost = kLongestName - kMark.size() - kMore.size();
  const std::string name = FileNameOf(arguments.project);
  std::size_t length = name.size() - ExtensionOf(name).size();
  if (length > kMost) {
    length = kMost;
    // Not within a character of UTF-8.
    while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) --length;
  }
  return name.substr(0, length).append(kMark);
}

/// A free name beside the session's file or the folder of copies.
OwnFolder FolderBeside(std::string neighbour, const std::string& name) {
  while (neighbour.size() > 1 && neighbour.back() == '/') neighbour.pop_back();
  const std::string start = FolderOf(neighbour) + '/' + name;
  std::string folder = start;
  for (int number = 2; LookUpName(folder.c_str()) == NameState::Held; ++number) {
    folder = start + ' ' + std::to_string(number);
  }
  return {folder, "", false};
}

/// A new folder among the system's temporary ones.
OwnFolder TemporaryFolder(const std::string& name) {
  std::error_code error;
  const std::filesystem::path place = std::filesystem::temp_directory_path(error);
  if (error) return {"", "there is no folder for temporary files: " + error.message(), false};
  std::string path = (place / (name + " XXXXXX")).string();
  if (mkdtemp(path.data()) == nullptr) {
    return {"", path + " cannot be made: " + std::strerror(errno), false};
  }
  return {path, "", true};
}

OwnFolder FindFolder(const SpotArguments& arguments) {
  const std::string name = NameStart(arguments);
  if (!arguments.host.target.empty()) return FolderBeside(arguments.host.target, name);
  if (!arguments.copyFolder.empty()) return FolderBeside(arguments.copyFolder, name);
  return TemporaryFolder(name);
}

}  // namespace

SpotPreparation PrepareForSpot(const SpotArguments& arguments) {
  SpotPreparation preparation;
  prepare::PrepareOptions options = arguments.preparation;
  OwnFolder own;
  if (options.into.empty()) {
    own = FindFolder(arguments);
    if (!own.complaint.empty()) {
      preparation.status = BadUsage("--prepare: " + Printable(own.complaint), "spot");
      return preparation;
    }
    options.into = own.path;
    // Nobody chose this folder, so it leans on nothing: all that the session names lies in it.
    options.copyMedia = true;
  }
  const bool showsBar = IsTerminal(STDERR_FILENO) && !arguments.quiet;
  const prepare::Prepared prepared = CheckAndPrepare(arguments.project, options, showsBar);

  const bool done =
      prepared.outcome == prepare::Outcome::Done || prepared.outcome == prepare::Outcome::Left;
  if (own.made && !done) rmdir(own.path.c_str());
  switch (prepared.outcome) {
    case prepare::Outcome::Done:
    case prepare::Outcome::Left:
      break;
    case prepare::Outcome::FolderTaken:
      preparation.status = BadUsage("--prepare: " + Printable(prepared.trouble), "spot");
      return preparation;
    case prepare::Outcome::Cancelled:
      std::cerr << "velmora: stopped; nothing was made\n";
      preparation.status = kInterrupted;
      return preparation;
    case prepare::Outcome::NotAnAdl:
    case prepare::Outcome::Failed:
      std::cerr << "velmora: " << Printable(prepared.trouble) << '\n';
      preparation.status = ExitStatusOf(prepared.outcome);
      return preparation;
  }
  std::cerr << "velmora: prepared in " << Printable(FolderOf(prepared.projectPath))
            << (arguments.preparation.into.empty() ? ", which stays: the session needs its audio"
                                                   : "")
            << '\n';
  PrintLeft(prepared, std::cerr);
  preparation.project = prepared.projectPath;
  preparation.whole = prepared.outcome == prepare::Outcome::Done;
  return preparation;
}

}  // namespace velmora::program
