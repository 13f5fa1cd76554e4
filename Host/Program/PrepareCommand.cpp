#include "Program/PrepareCommand.h"

#include <unistd.h>

#include <iostream>

#include "Program/ExitStatus.h"
#include "Program/PrepareReport.h"
#include "Program/ProgressBar.h"
#include "Program/StandardOutput.h"
#include "Program/StopRequests.h"
#include "Program/TextTable.h"
#include "Program/Usage.h"

namespace velmora::program {

prepare::Prepared CheckAndPrepare(const std::string& project,
                                  const prepare::PrepareOptions& options, bool showsBar) {
  const OnlyAskToStop requests;
  media::FolderListings listings;
  const check::CheckedProject checked =
      check::CheckProject(project, options.check, listings, Interrupted);
  if (Interrupted()) {
    prepare::Prepared stopped;
    stopped.outcome = prepare::Outcome::Cancelled;
    return stopped;
  }
  ProgressBar bar(showsBar);
  return prepare::PrepareProject(checked, options, [&](double share, const std::string& /*what*/) {
    bar.Draw(share);
    return !Interrupted();
  });
}

int ExitStatusOf(prepare::Outcome outcome) {
  switch (outcome) {
    case prepare::Outcome::Done:
      return kAllDone;
    case prepare::Outcome::FolderTaken:
      return kBadUsage;
    case prepare::Outcome::NotAnAdl:
      return kDoesNotLoad;
    case prepare::Outcome::Cancelled:
      return kInterrupted;
    case prepare::Outcome::Left:
    case prepare::Outcome::Failed:
      break;
  }
  return kLeftOut;
}

int RunPrepareCommand(const PrepareArguments& arguments) {
  const std::string complaint = ComplaintAboutMediaFolders(arguments.options.check);
  if (!complaint.empty()) return BadUsage(complaint, "prepare");
  const bool showsBar = IsTerminal(STDERR_FILENO);
  const prepare::Prepared prepared =
      CheckAndPrepare(arguments.project, arguments.options, showsBar);
  const int status = ExitStatusOf(prepared.outcome);
  switch (prepared.outcome) {
    case prepare::Outcome::FolderTaken:
      // It ends with the same status.
      static_cast<void>(BadUsage("--into: " + Printable(prepared.trouble), "prepare"));
      break;
    case prepare::Outcome::NotAnAdl:
    case prepare::Outcome::Failed:
      std::cerr << "velmora: " << Printable(prepared.trouble) << '\n';
      break;
    case prepare::Outcome::Cancelled:
      std::cerr << "velmora: stopped; nothing was made\n";
      break;
    case prepare::Outcome::Done:
    case prepare::Outcome::Left:
      if (!arguments.json) PrintPreparedText(prepared, ShowsColours(STDOUT_FILENO), std::cout);
      break;
  }
  if (arguments.json) PrintPreparedJson(prepared, status, std::cout);
  return StatusOfOutput(status);
}

}  // namespace velmora::program
