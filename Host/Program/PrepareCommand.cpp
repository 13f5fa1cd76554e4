#include "Program/PrepareCommand.h"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <iostream>

#include "Program/ExitStatus.h"
#include "Program/PrepareReport.h"
#include "Program/ProgressBar.h"
#include "Program/TextTable.h"
#include "Program/Usage.h"

namespace velmora::program {
namespace {

std::atomic<bool> isCancelled{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may take no lock");

/// While this lives, Ctrl-C and requests to end only ask the preparation to stop, so that it takes
/// away what it has made.
class CancelOnSignals {
 public:
  CancelOnSignals() {
    struct sigaction action {};
    action.sa_handler = [](int) { isCancelled = true; };
    action.sa_flags = static_cast<int>(SA_RESTART);
    sigaction(SIGINT, &action, &interrupt_);
    sigaction(SIGTERM, &action, &terminate_);
    sigaction(SIGHUP, &action, &hangUp_);
  }
  ~CancelOnSignals() {
    sigaction(SIGINT, &interrupt_, nullptr);
    sigaction(SIGTERM, &terminate_, nullptr);
    sigaction(SIGHUP, &hangUp_, nullptr);
  }
  CancelOnSignals(const CancelOnSignals&) = delete;
  CancelOnSignals& operator=(const CancelOnSignals&) = delete;

 private:
  struct sigaction interrupt_ {};
  struct sigaction terminate_ {};
  struct sigaction hangUp_ {};
};

}  // namespace

prepare::Prepared CheckAndPrepare(const std::string& project,
                                  const prepare::PrepareOptions& options, bool showsBar) {
  const CancelOnSignals signals;
  media::FolderListings listings;
  const check::CheckedProject checked =
      check::CheckProject(project, options.check, listings, [] { return isCancelled.load(); });
  if (isCancelled) {
    prepare::Prepared stopped;
    stopped.outcome = prepare::Outcome::Cancelled;
    return stopped;
  }
  ProgressBar bar(showsBar);
  return prepare::PrepareProject(checked, options, [&](double share, const std::string& /*what*/) {
    bar.Draw(share);
    return !isCancelled;
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
      return BadUsage("--into: " + Printable(prepared.trouble), "prepare");
    case prepare::Outcome::NotAnAdl:
    case prepare::Outcome::Failed:
      std::cerr << "velmora: " << Printable(prepared.trouble) << '\n';
      if (arguments.json) PrintPreparedJson(prepared, status, std::cout);
      return status;
    case prepare::Outcome::Cancelled:
      std::cerr << "velmora: stopped; nothing was made\n";
      return status;
    case prepare::Outcome::Done:
    case prepare::Outcome::Left:
      break;
  }
  if (arguments.json) {
    PrintPreparedJson(prepared, status, std::cout);
  } else {
    PrintPreparedText(prepared, ShowsColours(STDOUT_FILENO), std::cout);
  }
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "velmora: standard output takes no more\n";
    return kLeftOut;
  }
  return status;
}

}  // namespace velmora::program
