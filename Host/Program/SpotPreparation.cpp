#include "Program/SpotPreparation.h"

#include <unistd.h>

#include <iostream>

#include "Base/FileAccess.h"
#include "Base/FileNames.h"
#include "Program/ExitStatus.h"
#include "Program/PrepareCommand.h"
#include "Program/PrepareReport.h"
#include "Program/TextTable.h"
#include "Program/Usage.h"

namespace velmora::program {
namespace {

/// A free name beside what the spot makes: the session's file, else the folder of copies, else the
/// project.
std::string FreeFolder(const SpotArguments& arguments) {
  std::string neighbour = arguments.project;
  if (!arguments.copyFolder.empty()) neighbour = arguments.copyFolder;
  if (!arguments.host.target.empty()) neighbour = arguments.host.target;
  while (neighbour.size() > 1 && neighbour.back() == '/') neighbour.pop_back();
  std::string name = FileNameOf(arguments.project);
  name = name.substr(0, name.size() - ExtensionOf(name).size()) + " prepared";
  const std::string start = FolderOf(neighbour) + '/' + name;
  std::string folder = start;
  for (int number = 2; LookUpName(folder.c_str()) == NameState::Held; ++number) {
    folder = start + ' ' + std::to_string(number);
  }
  return folder;
}

}  // namespace

SpotPreparation PrepareForSpot(const SpotArguments& arguments) {
  prepare::PrepareOptions options;
  options.into = arguments.prepareInto;
  if (options.into.empty()) {
    options.into = FreeFolder(arguments);
    // Nobody chose this folder, so it leans on nothing: all that the session names lies in it.
    options.copyMedia = true;
  }
  if (arguments.sessionRate) options.check.sessionRate = *arguments.sessionRate;
  options.check.sessionFrameRate = arguments.sessionFrameRate;
  const bool showsBar = IsTerminal(STDERR_FILENO) && !arguments.quiet;
  const prepare::Prepared prepared = CheckAndPrepare(arguments.project, options, showsBar);

  SpotPreparation preparation;
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
  std::cerr << "velmora: prepared in " << Printable(options.into)
            << (arguments.prepareInto.empty() ? ", which stays: the session needs its audio" : "")
            << '\n';
  PrintLeft(prepared, std::cerr);
  preparation.project = prepared.projectPath;
  preparation.whole = prepared.outcome == prepare::Outcome::Done;
  return preparation;
}

}  // namespace velmora::program
