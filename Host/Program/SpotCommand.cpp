#include "Program/SpotCommand.h"

#include <unistd.h>

#include <iostream>
#include <memory>

#include "Base/SystemLog.h"
#include "Model/Tables.h"
#include "Program/CopyFolder.h"
#include "Program/ExitStatus.h"
#include "Program/FindingsHint.h"
#include "Program/InfoCommand.h"
#include "Program/JsonSpotReport.h"
#include "Program/SpotNotes.h"
#include "Program/SpotPreparation.h"
#include "Program/SpotRecording.h"
#include "Program/SpotTargets.h"
#include "Program/TextSpotReport.h"
#include "Program/TextTable.h"
#include "Program/TruePosition.h"
#include "Program/Usage.h"
#include "Spot/SpotChoices.h"
#include "Spot/SpotRequest.h"

namespace velmora::program {
namespace {

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

void PrintRemarks(const host::Session& session, const host::SessionHost& host) {
  for (const host::Remark& remark : host.Remarks()) {
    std::cerr << "velmora: note: region of " << Printable(session.Regions()[remark.region].path)
              << ": " << remark.text << '\n';
  }
}

/// The run itself, told through the report.
void Spot(const ViewModel& model, const host::SessionRates& session, SpotOptions options,
          bool truePosition, RegionHost& host, SpotReport& report) {
  for (const std::string& alert :
       SpotWarnings(model.firstEvent, session.sampleRate, session.frameRate)) {
    report.Warning(alert);
  }
  for (const std::string& note : SpotNotes(model, session, options, truePosition)) {
    std::cerr << "velmora: " << note << '\n';
  }
  report.Start(options, SpotSteps(model.numEvents, options.doFades, options.doGain));
  SetSystemLog([&report](const std::string& line) { report.FileTrouble(line); });
  StopOnInterrupt();
  const SpotProject project = {model.project.get(), model.numEvents, model.minTrack,
                               model.firstEvent};
  const bool finished = RunSpot(project, options, host, report);
  SetSystemLog(nullptr);
  report.End(!finished);
}

/// Tells what of the ticked cuts is missing. True if nothing is.
bool TellLeftOut(const LeftOut& leftOut) {
  for (const LeftOut::Part& part : leftOut.Parts()) {
    std::cerr << "velmora: left out: " << leftOut.LineOf(part) << '\n';
  }
  return leftOut.Parts().empty();
}

/// False if standard output took not all of what was written.
bool StandardOutputHolds() {
  if (std::cout) return true;
  std::cerr << "velmora: standard output takes no more\n";
  return false;
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
  LeftOut leftOut(model);
  FindSilentCuts(model, leftOut);
  SpotRecording recording(model, session, arguments.targets.native);
  const host::SessionClock clock(rates);
  const bool showsBar = IsTerminal(STDERR_FILENO) && !arguments.quiet;
  std::unique_ptr<SpotReport> report;
  if (arguments.json) {
    report = std::make_unique<JsonSpotReport>(leftOut, recording, tap, std::cout);
  } else {
    // A target may have standard output for itself.
    std::ostream& out = arguments.targets.TakeStandardOutput() ? std::cerr : std::cout;
    report = std::make_unique<TextSpotReport>(arguments, leftOut, recording, model, session, clock,
                                              showsBar, out);
  }
  RegionHost& receiver = arguments.json ? static_cast<RegionHost&>(tap) : *host;
  Spot(model, rates, options, arguments.truePosition, receiver, *report);

  PrintRemarks(session, *host);
  const bool whole = TellLeftOut(leftOut);
  const host::HeardSession heard(session);
  const host::SpotRecord record = recording.RecordOf(arguments.project, options, leftOut);
  const bool made = targets.Write({session, heard, rates, record}, arguments.json, showsBar);
  const bool told = StandardOutputHolds();
  if (Interrupted()) return kInterrupted;
  return whole && made && told ? kAllDone : kLeftOut;
}

/// The last line of all, where it is read, and not between the system's own alerts.
int WithHint(const SpotArguments& arguments, const ViewModel& model, int status) {
  if (arguments.prepare) return status;  // what is left of a prepared project has been told
  check::CheckOptions options;
  options.sessionRate = arguments.sessionRate;
  options.sessionFrameRate = arguments.sessionFrameRate;
  if (status != kInterrupted) HintAtFindings(arguments.project, model.loadFailure, options);
  return status;
}

}  // namespace

int RunSpotCommand(const SpotArguments& given) {
  SpotArguments arguments = given;
  const std::string badFolder = ComplaintAboutMediaFolders(arguments.preparation.check);
  if (!badFolder.empty()) return BadUsage(badFolder, "spot");
  SpotTargets targets;
  const std::string refusal = targets.Claim(arguments);
  if (!refusal.empty()) return BadUsage(refusal, "spot");
  if (!arguments.copyFolder.empty()) {
    const std::string complaint = MakeFolder(arguments.copyFolder);
    if (!complaint.empty()) return BadUsage("--copy-to: " + complaint, "spot");
  }
  bool prepared = true;
  if (arguments.prepare) {
    const SpotPreparation preparation = PrepareForSpot(arguments);
    if (preparation.status != kAllDone) return preparation.status;
    arguments.project = preparation.project;
    prepared = preparation.whole;
  }
  ViewModel model;
  if (!model.LoadFile(arguments.project)) {
    ComplainAboutLoad(arguments.project, model);
    return WithHint(arguments, model, kDoesNotLoad);
  }
  if (!model.HasCuts()) {
    std::cerr << "velmora: " << arguments.project << ": there is no cut to place\n";
    return WithHint(arguments, model, kLeftOut);
  }
  const int status = SpotModel(arguments, model, targets);
  return WithHint(arguments, model, status == kAllDone && !prepared ? kLeftOut : status);
}

}  // namespace velmora::program
