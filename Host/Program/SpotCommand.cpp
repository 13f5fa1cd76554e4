#include "Program/SpotCommand.h"

#include <unistd.h>

#include <functional>
#include <iostream>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

#include "Base/FileNames.h"
#include "Base/SystemLog.h"
#include "Model/ProjectSummary.h"
#include "Model/Tables.h"
#include "Program/CopyFolder.h"
#include "Program/ExitStatus.h"
#include "Program/FindingsHint.h"
#include "Program/InfoCommand.h"
#include "Program/JsonSpotReport.h"
#include "Program/MemoryTrouble.h"
#include "Program/PlannedSpot.h"
#include "Program/SpotPreparation.h"
#include "Program/SpotTargets.h"
#include "Program/StandardOutput.h"
#include "Program/StopRequests.h"
#include "Program/TextSpotReport.h"
#include "Program/TextTable.h"
#include "Program/TruePosition.h"
#include "Program/Usage.h"
#include "Recording/RecordedFindings.h"
#include "Recording/SourceWatch.h"
#include "Recording/SpotNotes.h"
#include "Recording/SpotRecording.h"
#include "Spot/SpotChoices.h"
#include "Spot/SpotRequest.h"

namespace velmora::program {
namespace {

/// What helps where the system warns of a session of other rates.
constexpr const char* kRateRemedy =
    "Spot into a session of the project's rates, or add --true-position, which places every cut "
    "to the sample.";

void SetBoxes(ViewModel& model, const SpotArguments& arguments) {
  // All tracks are on here, so that a row of the event table is an event's index.
  for (std::int32_t i = 0; i < model.numEvents && arguments.events.Chooses(); ++i) {
    SetObjectValue(model, "EventListTable", "Space", i, arguments.events.Ticks(i) ? 1 : 0);
  }
  if (arguments.tracks.Chooses()) {
    model.SetTrackBoxes([&](std::int32_t track) { return arguments.tracks.Ticks(track); });
  }
}

SpotOptions OptionsFor(const SpotArguments& arguments, const ViewModel& model,
                       const host::SessionRates& session) {
  SpotChoices choices;
  choices.positionMode = arguments.positionMode;
  choices.offset = arguments.offset;
  choices.start = arguments.start;
  choices.fades = arguments.fades ? 1 : 0;
  choices.gain = arguments.gain ? 1 : 0;
  choices.depth = arguments.bitDepth == 16 ? 0 : 1;
  choices.copy = !arguments.copyFolder.empty();
  choices.copyFolder = arguments.copyFolder;
  SpotOptions options = BuildSpotOptions(choices, session);
  if (arguments.truePosition) CancelCompensation(options, model.firstEvent);
  // The report tells where the project lands before the run begins.
  ComputePosition(options, model.firstEvent);
  return options;
}

using Kind = host::RecordedMessage::Kind;
using NativeParts = SpotRecording::NativeParts;

SpotProject ProjectOf(const ViewModel& model) {
  return {model.project.get(), model.numEvents, model.minTrack, model.firstEvent};
}

NativeParts NativePartsOf(const SpotArguments& arguments) {
  return {arguments.targets.native, arguments.targets.native};
}

void TellRemarks(const host::Session& session, const host::SessionHost& host,
                 SpotRecording& recording) {
  for (const host::Remark& remark : host.Remarks()) {
    std::cerr << "velmora: note: region of " << Printable(session.Regions()[remark.region].path)
              << ": " << Printable(remark.text) << '\n';
    recording.Remark(remark);
  }
}

/// Takes the lines of the system log while it lives.
class LogReceiver {
 public:
  explicit LogReceiver(std::function<void(const std::string&)> receiver) {
    SetSystemLog(std::move(receiver));
  }
  ~LogReceiver() { SetSystemLog(nullptr); }
  LogReceiver(const LogReceiver&) = delete;
  LogReceiver& operator=(const LogReceiver&) = delete;
};

/// The run itself, told through the report. False if memory ended it.
bool Spot(const ViewModel& model, const host::SessionRates& session, SpotOptions options,
          const SpotArguments& arguments, RegionHost& host, SpotReport& report,
          SpotRecording& recording) {
  const SpotProject project = ProjectOf(model);
  for (const std::string& alert :
       SpotWarnings(model.firstEvent, session.sampleRate, session.frameRate)) {
    report.Warning(alert);
    recording.Message(Kind::Warning, alert, kRateRemedy);
  }
  for (const std::string& note : arguments.notes) {
    std::cerr << "velmora: note: " << note << '\n';
  }
  for (const std::string& note :
       recording::SpotNotes(project, session, options, arguments.truePosition)) {
    std::cerr << "velmora: " << Printable(note) << '\n';
    recording.Message(Kind::Note, note);
  }
  report.Start(options, arguments.plan
                            ? model.numEvents
                            : SpotSteps(model.numEvents, options.doFades, options.doGain));
  bool finished = false;
  {
    const LogReceiver receiver([&](const std::string& line) {
      report.FileTrouble(line);
      recording.Message(Kind::Trouble, line,
                        "See that the disk is sound and has room, and that the folder takes "
                        "files.");
    });
    StopOnInterrupt();
    finished = arguments.plan ? PlanSpot(project, options, host, report, recording)
                              : RunSpot(project, options, host, report);
  }
  report.End(!finished);
  if (finished || Interrupted()) return true;
  TellLackOfMemory();
  recording.Message(Kind::Trouble, "There was not enough memory to finish the spot.",
                    "Close other programs, or place fewer events at once with --only-events.");
  return false;
}

/// Tells what of the ticked cuts is missing. True if nothing is.
bool TellLeftOut(const LeftOut& leftOut) {
  for (const LeftOut::Part& part : leftOut.Parts()) {
    std::cerr << "velmora: left out: " << leftOut.LineOf(part) << '\n';
  }
  return leftOut.Parts().empty();
}

/// Tells the sources that have changed since `watch` last looked. True if there are none.
bool TellChanged(recording::SourceWatch& watch, SpotRecording& recording) {
  const std::vector<std::string> changed = watch.TakeChanged();
  for (const std::string& path : changed) {
    const std::string line = path +
                             " was changed or removed while it was spotted: what was made of "
                             "it may lack audio";
    std::cerr << "velmora: " << Printable(line) << '\n';
    recording.Message(Kind::Trouble, line, "Spot again once nothing writes to the file.");
  }
  return changed.empty();
}

/// All that a page tells: what the run recorded, and what a check finds.
host::SpotRecord FullRecord(const SpotArguments& arguments, const SpotOptions& options,
                            const SpotRecording& recording, host::SpotRecord record) {
  recording.AddDetails(options, arguments.positionMode, record);
  record.isPlan = arguments.plan.has_value();
  record.wasStopped = Interrupted();
  if (arguments.plan) {
    // What is asked for and not made is told.
    if (!arguments.host.target.empty()) {
      record.targets.push_back(
          {arguments.host.kind->target->name, arguments.host.target, true, {}, {}, {}});
    }
    for (const TargetRequest& request : arguments.targets.targets) {
      record.targets.push_back({request.kind->name, request.path, true, {}, {}, {}});
    }
  }
  check::CheckOptions reading;
  reading.sessionRate = arguments.sessionRate;
  reading.sessionFrameRate = arguments.sessionFrameRate;
  record.findings = recording::FindingsOf(arguments.project, reading);
  return record;
}

/// Ends a run without a cut: tells the targets that nothing was placed. Returns the exit status.
int PlaceNothing(const SpotArguments& arguments, const ViewModel& model, SpotTargets& targets) {
  std::cerr << "velmora: " << Printable(arguments.project) << ": there is no cut to place\n";
  targets.ForgetSession();
  const host::SessionRates rates =
      host::SessionRatesFor(model.firstEvent, arguments.sessionRate, arguments.sessionFrameRate);
  host::Session session;
  const host::HeardSession heard(session);
  SpotRecording recording(ProjectOf(model), session, NativePartsOf(arguments));
  recording.Message(Kind::Trouble, "There is no cut to place.",
                    "Export the project again with its cuts; velmora check says what it holds.");
  const SpotOptions options = OptionsFor(arguments, model, rates);
  host::SpotRecord record = recording.RecordOf(arguments.project, options, LeftOut(*model.project));
  if (targets.TellOfTheSpot()) {
    record = FullRecord(arguments, options, recording, std::move(record));
  }
  // It ends with the same status either way.
  static_cast<void>(targets.Write({session, heard, rates, record}, arguments.json, false));
  return kLeftOut;
}

/// A project that was read and does not load, told to the page that somebody asked for by
/// `velmora report`: it says where the trouble is and what helps. No other target tells of a spot
/// that could not begin.
void RecordLoadFailure(const SpotArguments& arguments, const ViewModel& model,
                       const SpotTargets& targets) {
  constexpr std::int64_t kFileAsAWhole = 0;
  if (!arguments.plan || !model.loadFailure || model.loadFailure->line == kFileAsAWhole) return;
  const host::SessionRates rates =
      host::SessionRatesFor(nullptr, arguments.sessionRate, arguments.sessionFrameRate);
  const host::Session session;
  const host::HeardSession heard(session);
  check::CheckOptions reading;
  reading.sessionRate = arguments.sessionRate;
  reading.sessionFrameRate = arguments.sessionFrameRate;
  host::SpotRecord record;
  record.projectPath = arguments.project;
  record.title = FileNameOf(arguments.project);
  record.isPlan = true;
  record.messages.push_back({Kind::Trouble,
                             "The project does not load: " + FailureText(*model.loadFailure),
                             "Export the project again, or let velmora prepare make one that "
                             "loads."});
  record.findings = recording::FindingsOf(arguments.project, reading);
  // It ends with the same status either way.
  static_cast<void>(targets.Write({session, heard, rates, record}, arguments.json, false));
}

/// Spots a loaded project. Returns the exit status.
int SpotModel(const SpotArguments& arguments, ViewModel& model, const SpotTargets& targets) {
  SetBoxes(model, arguments);
  const host::SessionRates rates =
      host::SessionRatesFor(model.firstEvent, arguments.sessionRate, arguments.sessionFrameRate);
  const SpotOptions options = OptionsFor(arguments, model, rates);

  host::Session session;
  const std::unique_ptr<host::SessionHost> host = arguments.host.kind->connect(session);
  MessageTap tap(*host);
  LeftOut leftOut(*model.project);
  recording::FindSilentCuts(ProjectOf(model), leftOut);
  SpotRecording recording(ProjectOf(model), session, NativePartsOf(arguments));
  const host::SessionClock clock(rates);
  const bool showsBar = IsTerminal(STDERR_FILENO) && !arguments.quiet;
  std::unique_ptr<SpotReport> report;
  std::ostream nowhere(nullptr);  // a plan has its page to tell
  if (arguments.json) {
    report = std::make_unique<JsonSpotReport>(leftOut, recording, tap, std::cout);
  } else {
    // A target may have standard output for itself.
    std::ostream& out = arguments.plan                           ? nowhere
                        : arguments.targets.TakeStandardOutput() ? std::cerr
                                                                 : std::cout;
    report = std::make_unique<TextSpotReport>(arguments, leftOut, recording, model, session, clock,
                                              showsBar, out);
  }
  recording::SourceWatch watch(ProjectOf(model));
  RegionHost& receiver = arguments.json ? static_cast<RegionHost&>(tap) : *host;
  const bool finished = Spot(model, rates, options, arguments, receiver, *report, recording);

  TellRemarks(session, *host, recording);
  bool whole = TellLeftOut(leftOut);
  if (!arguments.plan && !TellChanged(watch, recording)) whole = false;
  const host::HeardSession heard(session);
  host::SpotRecord record = recording.RecordOf(arguments.project, options, leftOut);
  if (targets.TellOfTheSpot()) {
    record = FullRecord(arguments, options, recording, std::move(record));
  }
  const bool made = targets.Write({session, heard, rates, record}, arguments.json, showsBar);
  // Targets read the files too, where they have not been copied.
  if (!arguments.plan && !TellChanged(watch, recording)) whole = false;
  const int status = StatusOfOutput(finished && whole && made ? kAllDone : kLeftOut);
  return Interrupted() ? kInterrupted : status;
}

/// The last line of all, where it is read, and not between the system's own alerts.
int WithHint(const SpotArguments& arguments, const ViewModel& model, int status) {
  if (arguments.prepare) return status;  // what is left of a prepared project has been told
  check::CheckOptions options;
  options.sessionRate = arguments.sessionRate;
  options.sessionFrameRate = arguments.sessionFrameRate;
  if (status != kInterrupted) FindingsHint(arguments.project, options).Tell(model);
  return status;
}

}  // namespace

int RunSpotCommand(const SpotArguments& given) {
  SpotArguments arguments = given;
  const std::string badFolder = ComplaintAboutMediaFolders(arguments.preparation.check);
  if (!badFolder.empty()) return BadUsage(badFolder, "spot");
  // Made first, since a target may go into it.
  CopyFolder copies;
  if (!arguments.copyFolder.empty() && !arguments.plan) {
    const std::string complaint = copies.Make(arguments.copyFolder);
    if (!complaint.empty()) return BadUsage("--copy-to: " + complaint, "spot");
  }
  SpotTargets targets;
  const std::string refusal = targets.Claim(arguments);
  if (!refusal.empty()) {
    copies.Remove();
    return BadUsage(refusal, arguments.plan ? "report" : "spot");
  }
  bool prepared = true;
  if (arguments.prepare) {
    const SpotPreparation preparation = PrepareForSpot(arguments);
    if (preparation.status != kAllDone) {
      copies.Remove();
      return preparation.status;
    }
    arguments.project = preparation.project;
    prepared = preparation.whole;
  }
  ViewModel model;
  if (!model.LoadFile(arguments.project)) {
    copies.Remove();
    ComplainAboutLoad(arguments.project, model);
    RecordLoadFailure(arguments, model, targets);
    return WithHint(arguments, model, kDoesNotLoad);
  }
  if (!model.HasCuts()) {
    return WithHint(arguments, model, PlaceNothing(arguments, model, targets));
  }
  const int status = SpotModel(arguments, model, targets);
  return WithHint(arguments, model, status == kAllDone && !prepared ? kLeftOut : status);
}

}  // namespace velmora::program
