#include "Program/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "Destinations/Destinations.h"
#include "Program/AbsolutePath.h"
#include "Program/OptionForms.h"
#include "Program/StandardOutput.h"
#include "Program/Usage.h"
#include "Spot/SpotOptions.h"

namespace velmora::program {
namespace {

constexpr const char* kExamples = R"(Examples:
  velmora info Radio.adl                         header, tracks, events, missing files
  velmora info Radio.adl --json | jq .sources
  velmora spot Radio.adl                         place every cut where the project has it
  velmora spot Radio.adl --fades --gain --copy-to Audio
  velmora spot Radio.adl --position start --start 10:00:00:00 --depth 16
  velmora spot Radio.adl --only-tracks 1,3-5 --host embedded:session.json
  velmora report Radio.adl -o Radio.html         a page to send to a colleague
  velmora check Radio.adl --media Takes          what would go wrong, where, what helps
  velmora check . --json | jq -r .verdict        every project below a folder
  velmora prepare Radio.adl --into Clean         a project that spots as it was meant
  velmora spot Radio.adl --prepare --host embedded:session.json

Exit status: 0 all done; 1 bad usage; 2 the project does not load, or is no ADL;
3 spotted, but something of a ticked cut was left out, or checked, and something would
fail, be misplaced or be lost, or prepared, and something of that is left;
130 interrupted (Ctrl-C stops a spot between events, and leaves nothing of a prepare).)";

/// Words of --position, in the order of help.
constexpr std::pair<const char*, PositionMode> kPositions[] = {{"project", PositionAsProject},
                                                               {"offset", PositionWithOffset},
                                                               {"start", PositionAtStart},
                                                               {"first", PositionFromFirst}};

std::vector<std::string> PositionWords() {
  std::vector<std::string> words;
  for (const auto& [word, mode] : kPositions) words.emplace_back(word);
  return words;
}

PositionMode PositionOf(const std::string& text) {
  for (const auto& [word, mode] : kPositions) {
    if (text == word) return mode;
  }
  return PositionAsProject;
}

/// Options as they are typed, without the library's notes on types and relations.
class PlainFormatter : public CLI::Formatter {
 public:
  std::string make_option_name(const CLI::Option* option, bool isPositional) const override {
    const std::string name = CLI::Formatter::make_option_name(option, isPositional);
    // A flag that may have a value would show the text that stands for none.
    const std::size_t brace = name.find('{');
    return brace == std::string::npos ? name : name.substr(0, brace) + "[=DIR]";
  }
  std::string make_option_opts(const CLI::Option* option) const override {
    if (option->get_type_size() == 0) return {};
    const std::string value = option->get_default_str();
    return " " + option->get_type_name() + (value.empty() ? "" : " (" + value + ")");
  }
};

/// The texts of options that need more than a validator.
struct RawOptions {
  std::string position = kPositions[0].first;
  std::string depth = "24";
  std::string skipTracks, onlyTracks, skipEvents, onlyEvents;
  std::string frameRate;
  double sessionRate = 0;
  std::string host = host::Hosts().front()->name;
  RawTargets targets;
  std::string copyFolder;
  std::string prepare;
  RawReadingOptions reading;
  std::vector<std::string> forPrepare;  ///< options that go with --prepare alone
};

/// What --prepare stands for without a folder: a text that names none.
constexpr const char* kNoFolder = "//";

void AddBoxOptions(CLI::App& spot, RawOptions& raw) {
  auto* const skipTracks =
      spot.add_option("--skip-tracks", raw.skipTracks, "Tracks to leave out, by number: 1,3-5");
  auto* const onlyTracks =
      spot.add_option("--only-tracks", raw.onlyTracks, "The only tracks to place");
  auto* const skipEvents =
      spot.add_option("--skip-events", raw.skipEvents, "Events to leave out, by index from 0");
  auto* const onlyEvents =
      spot.add_option("--only-events", raw.onlyEvents, "The only events to place");
  for (CLI::Option* const option : {skipTracks, onlyTracks, skipEvents, onlyEvents}) {
    option->type_name("LIST")->check(NumberListForm());
  }
}

void AddPlaceOptions(CLI::App& spot, SpotArguments& arguments, RawOptions& raw) {
  spot.add_option("--position", raw.position,
                  "Where the project lands: where it has it,\nmoved by --offset, with its first "
                  "cut at --start,\nor with its first cut at 0")
      ->type_name(CLI::detail::join(PositionWords(), "|"))
      ->check(OneOf(PositionWords()))
      ->capture_default_str();
  spot.add_option("--offset", arguments.offset, "For --position offset; without a sign it is +")
      ->type_name("[+-]HH:MM:SS:FF")
      ->transform(TimecodeForm(true));
  spot.add_option("--start", arguments.start, "For --position start")
      ->type_name("HH:MM:SS:FF")
      ->transform(TimecodeForm(false));
  AddBoxOptions(spot, raw);
}

void AddAudioOptions(CLI::App& spot, SpotArguments& arguments, RawOptions& raw) {
  spot.add_option("--depth", raw.depth, "Bits per sample of the audio that is placed")
      ->type_name("16|24")
      ->check(OneOf({"16", "24"}))
      ->capture_default_str();
  spot.add_flag("--fades", arguments.fades, "Make fade and crossfade pieces");
  spot.add_flag("--gain", arguments.gain, "Make files with the project's gains in them");
  spot.add_option("--copy-to", raw.copyFolder,
                  "Copy all audio into this folder, which is\nmade if missing")
      ->type_name("DIR");
}

/// What a preparation is to keep and to change. Answers the names of these options.
std::vector<std::string> AddPreparingOptions(CLI::App& command, prepare::PrepareOptions& options) {
  command.add_flag("--copy-media", options.copyMedia,
                   "Copy the audio that stays as it is; otherwise\nit is linked");
  command.add_flag("--keep-stereo", options.keepStereo,
                   "Leave cuts whole that play all channels of a file");
  command.add_flag("--keep-off", options.keepOff, "Keep events that are switched off");
  command.add_flag("--resample", options.resample,
                   "Bring audio of another sample rate to the\nproject's");
  return {"--copy-media", "--keep-stereo", "--keep-off", "--resample"};
}

void AddPreparationOptions(CLI::App& spot, SpotArguments& arguments, RawOptions& raw) {
  spot.add_flag(std::string("--prepare{") + kNoFolder + '}', raw.prepare,
                "Spot what velmora prepare makes of the project,\nat its true position; "
                "--prepare=DIR names the\nfolder to make, which must not exist or be empty;\n"
                "the next seven options go with it alone");
  raw.forPrepare = AddProjectOptions(spot, raw.reading);
  for (std::string& name : AddPreparingOptions(spot, arguments.preparation)) {
    raw.forPrepare.push_back(std::move(name));
  }
}

/// What --host does, from the table of hosts.
std::string HostHelp() {
  std::string help = "Where the regions go:";
  for (const host::HostKind* const kind : host::Hosts()) {
    help += "\n" + host::HostForm(*kind) + "\n" + kind->help;
  }
  return help;
}

/// What spot and report have in common.
void AddCommonOptions(CLI::App& spot, SpotArguments& arguments, RawOptions& raw) {
  spot.add_option("project", arguments.project, "The ADL file")->type_name("FILE")->required();
  AddPlaceOptions(spot, arguments, raw);
  AddAudioOptions(spot, arguments, raw);
  spot.add_option("--session-rate", raw.sessionRate,
                  "The session's sample rate, from 1 to 10000000;\notherwise that of the project's "
                  "first cut")
      ->type_name("HZ")
      ->check(SampleRateForm());
  spot.add_option("--session-frame-rate", raw.frameRate,
                  "The session's frame rate: a code from 0 to 7, or\n24, 25, 29.97, 29.97df, 30, "
                  "30df, 23.976;\notherwise that of the project's first cut")
      ->type_name("CODE")
      ->check(FrameRateForm());
  spot.add_flag("--true-position", arguments.truePosition,
                "Place every cut to the sample where the project\nhas it, whatever the session "
                "makes of its timecode");
  spot.add_option("--host", raw.host, HostHelp())
      ->type_name("NAME[:TARGET]")
      ->capture_default_str();
  AddTargetOptions(spot, raw.targets);
  spot.add_flag("--json", arguments.json, "Tell every step as JSON Lines");
  spot.add_flag("--quiet", arguments.quiet, "No progress bar");
}

void AddSpotOptions(CLI::App& spot, SpotArguments& arguments, RawOptions& raw) {
  AddCommonOptions(spot, arguments, raw);
  AddPreparationOptions(spot, arguments, raw);
}

void AddReportOptions(CLI::App& report, SpotArguments& arguments, RawOptions& raw,
                      std::string& page) {
  report.add_option("-o,--output", page, "Required: the page to make, which must not exist")
      ->type_name("FILE.html");
  AddCommonOptions(report, arguments, raw);
}

/// Takes over what the validators have let through; an empty answer, or what is wrong.
std::string Finish(SpotArguments& arguments, const RawOptions& raw, const CLI::App& spot) {
  arguments.positionMode = PositionOf(raw.position);
  arguments.bitDepth = raw.depth == "16" ? 16 : 24;
  if (!raw.skipTracks.empty() && !raw.onlyTracks.empty()) {
    return "--skip-tracks and --only-tracks exclude each other";
  }
  if (!raw.skipEvents.empty() && !raw.onlyEvents.empty()) {
    return "--skip-events and --only-events exclude each other";
  }
  const auto numbers = [](const std::string& text) {
    return text.empty() ? std::nullopt : NumberSet::Parse(text);
  };
  arguments.tracks = {numbers(raw.skipTracks), numbers(raw.onlyTracks)};
  arguments.events = {numbers(raw.skipEvents), numbers(raw.onlyEvents)};
  if (spot.count("--session-rate") > 0) {
    arguments.sessionRate = static_cast<float>(raw.sessionRate);
  }
  if (!raw.frameRate.empty()) arguments.sessionFrameRate = FrameRateCodeOf(raw.frameRate);

  const std::string complaint = host::ParseHost(host::Hosts(), raw.host, arguments.host);
  if (!complaint.empty()) return "--host: " + complaint;
  if (arguments.host.target == kStandardOutput) return NoStandardOutput("--host");
  arguments.host.target = AbsolutePath(arguments.host.target);
  std::string wrong = FinishTargets(raw.targets, arguments.targets);
  if (!wrong.empty()) return wrong;
  if (arguments.targets.native && (arguments.fades || arguments.gain)) {
    return "--native excludes --fades and --gain: they render what it leaves to the workstation";
  }
  if (arguments.json && arguments.targets.TakeStandardOutput()) {
    return "--json and a bounce to - exclude each other: both take standard output";
  }

  arguments.prepare = !raw.forPrepare.empty() && spot.count("--prepare") > 0;
  for (const std::string& name : raw.forPrepare) {
    if (!arguments.prepare && spot.count(name) > 0) return name + " goes with --prepare alone";
  }
  arguments.preparation.check = FinishReadingOptions(raw.reading, spot);
  arguments.preparation.check.sessionRate = arguments.sessionRate;
  arguments.preparation.check.sessionFrameRate = arguments.sessionFrameRate;
  if (raw.prepare != kNoFolder) arguments.preparation.into = AbsolutePath(raw.prepare);
  arguments.truePosition = arguments.truePosition || arguments.prepare;

  if (spot.count("--copy-to") > 0 && raw.copyFolder.empty()) {
    return "--copy-to: the name of the folder is empty";
  }
  arguments.copyFolder = AbsolutePath(raw.copyFolder);
  return {};
}

/// A line for each option that goes with another one which is not there: it changes nothing.
std::vector<std::string> NotesOnIdleOptions(const CLI::App& spot, const SpotArguments& arguments) {
  struct Row {
    const char* option;
    bool counts;
    std::string with;
  };
  const auto& chosen = arguments.targets.targets;
  const auto goesWith = [&](const char* option, bool host::OfferedChoices::*offer) {
    Row row{option, false, ""};
    row.counts = std::any_of(chosen.begin(), chosen.end(), [&](const TargetRequest& target) {
      return target.kind->offers.*offer;
    });
    for (const host::TargetKind* const kind : host::Targets()) {
      if (kind->offers.*offer)
        row.with += (row.with.empty() ? "" : " or ") + std::string(kind->option);
    }
    return row;
  };
  const Row rows[] = {
      {"--offset", arguments.positionMode == PositionWithOffset, "--position offset"},
      {"--start", arguments.positionMode == PositionAtStart, "--position start"},
      goesWith("--embed-media", &host::OfferedChoices::embedMedia),
      goesWith("--bounce-depth", &host::OfferedChoices::bounceDepth),
  };
  std::vector<std::string> notes;
  for (const Row& row : rows) {
    if (row.counts || spot.count(row.option) == 0) continue;
    notes.push_back(std::string(row.option) + " counts only with " + row.with);
  }
  return notes;
}

/// The table's target that tells of a spot.
const host::TargetKind* ReportKind() {
  const auto& targets = host::Targets();
  const auto found = std::find_if(targets.begin(), targets.end(), [](const auto* kind) {
    return kind->use == host::TargetKind::Use::Record;
  });
  return found != targets.end() ? *found : nullptr;
}

/// What a report asks beyond what a spot does; an empty answer, or what is wrong.
std::string FinishReport(SpotArguments& arguments, const std::string& page,
                         const CLI::App& report) {
  if (report.count("-o") == 0) return "-o is missing: name the page to make";
  if (page.empty()) return "-o: the name is empty";
  if (page == kStandardOutput) return NoStandardOutput("-o");
  arguments.plan = TargetRequest{ReportKind(), AbsolutePath(page)};
  return {};
}

struct RawCheckOptions {
  RawReadingOptions reading;
  std::uint32_t jobs = 0;
};

void AddCheckOptions(CLI::App& check, CheckArguments& arguments, RawCheckOptions& raw) {
  check
      .add_option("projects", arguments.projects, "ADL files, and folders: every *.adl below them")
      ->type_name("PROJECT...")
      ->required();
  AddReadingOptions(check, raw.reading);
  check
      .add_option("--jobs", raw.jobs,
                  "Projects that are read side by side; otherwise\none for each processor")
      ->type_name("N")
      ->check(JobsForm());
  check.add_flag("--json", arguments.json, "As JSON Lines, one object for each project");
}

CheckArguments FinishCheck(CheckArguments arguments, const RawCheckOptions& raw,
                           const CLI::App& check) {
  arguments.options = FinishReadingOptions(raw.reading, check);
  arguments.jobs = raw.jobs;
  return arguments;
}

/// The texts of prepare's options that need more than a validator.
struct RawPrepare {
  std::string into;
  RawReadingOptions reading;
};

void AddPrepareOptions(CLI::App& prepare, PrepareArguments& arguments, RawPrepare& raw) {
  prepare.add_option("project", arguments.project, "The ADL file")->type_name("FILE")->required();
  prepare
      .add_option("--into", raw.into,
                  "Required: the folder to make, with the project and\nAudio/; it must not exist "
                  "or be empty")
      ->type_name("DIR");
  AddReadingOptions(prepare, raw.reading);
  AddPreparingOptions(prepare, arguments.options);
  prepare.add_flag("--json", arguments.json, "As one JSON object on standard output");
}

std::string FinishPrepare(PrepareArguments& arguments, const RawPrepare& raw,
                          const CLI::App& prepare) {
  if (prepare.count("--into") == 0) return "--into is missing: name the folder to make";
  if (raw.into.empty()) return "--into: the name of the folder is empty";
  arguments.project = AbsolutePath(arguments.project);
  arguments.options.into = AbsolutePath(raw.into);
  arguments.options.check = FinishReadingOptions(raw.reading, prepare);
  return {};
}

/// The words of the command line. Options are made for the commands among them alone: those of all
/// commands take a millisecond, half of what showing a small project takes.
class Words {
 public:
  Words(int count, const char* const* words) : words_(words, words + count) {}
  [[nodiscard]] bool Has(std::string_view word) const {
    return std::find(words_.begin(), words_.end(), word) != words_.end();
  }

 private:
  std::vector<std::string_view> words_;
};

}  // namespace

Command ReadCommandLine(int argc, const char* const* argv) {
  CLI::App app("Brings AES31-3 Audio Decision List projects onto a timeline.", "velmora");
  app.footer(kExamples);
  app.set_version_flag("--version", "velmora " VELMORA_VERSION);
  app.require_subcommand(1);
  const auto formatter = std::make_shared<PlainFormatter>();
  formatter->column_width(30);
  app.formatter(formatter);

  const Words words(argc, argv);
  InfoArguments infoArguments;
  CLI::App* const info = app.add_subcommand("info", "Show what a project holds");
  info->add_option("project", infoArguments.project, "The ADL file")->type_name("FILE")->required();
  info->add_flag("--json", infoArguments.json, "As one JSON object on standard output");
  info->add_flag("--summary", infoArguments.summary,
                 "Counts in place of the rows of sources, tracks\nand events");

  SpotArguments spotArguments;
  RawOptions raw;
  CLI::App* const spot = app.add_subcommand("spot", "Prepare the audio and place every cut");
  if (words.Has("spot")) AddSpotOptions(*spot, spotArguments, raw);

  SpotArguments reportArguments;
  RawOptions rawReport;
  std::string page;
  CLI::App* const report = app.add_subcommand(
      "report",
      "Make a page of what a spot would place, make and leave out,\nand nothing else: what the "
      "options name is planned, not made");
  if (words.Has("report")) AddReportOptions(*report, reportArguments, rawReport, page);

  CheckArguments checkArguments;
  RawCheckOptions rawCheck;
  CLI::App* const check = app.add_subcommand("check", "Say what would go wrong in a spot, and why");
  if (words.Has("check")) AddCheckOptions(*check, checkArguments, rawCheck);

  PrepareArguments prepareArguments;
  RawPrepare rawPrepare;
  CLI::App* const prepare =
      app.add_subcommand("prepare", "Make a clean project out of one that is not");
  if (words.Has("prepare")) AddPrepareOptions(*prepare, prepareArguments, rawPrepare);

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {  // help or version was asked for
    return StatusOfOutput(app.exit(request));
  } catch (const CLI::ParseError& error) {
    return BadUsage(app, argc > 1 ? argv[1] : "", error);
  }
  const bool isReport = report->parsed();
  std::vector<std::string> projects = checkArguments.projects;
  if (info->parsed()) projects = {infoArguments.project};
  if (prepare->parsed()) projects = {prepareArguments.project};
  if (spot->parsed()) projects = {spotArguments.project};
  if (isReport) projects = {reportArguments.project};
  if (std::find(projects.begin(), projects.end(), "") != projects.end()) {
    return BadUsage("the name of the project is empty", app.get_subcommands().front()->get_name());
  }
  if (info->parsed()) {
    if (infoArguments.json && infoArguments.summary) {
      return BadUsage("--json and --summary exclude each other", "info");
    }
    infoArguments.project = AbsolutePath(infoArguments.project);
    return infoArguments;
  }
  if (prepare->parsed()) {
    const std::string complaint = FinishPrepare(prepareArguments, rawPrepare, *prepare);
    if (!complaint.empty()) return BadUsage(complaint, "prepare");
    return prepareArguments;
  }
  if (check->parsed()) return FinishCheck(std::move(checkArguments), rawCheck, *check);
  const char* const command = isReport ? "report" : "spot";
  // The library takes an empty value for none.
  if (words.Has("--prepare=")) {
    return BadUsage("--prepare: the name of the folder is empty", command);
  }
  SpotArguments& arguments = isReport ? reportArguments : spotArguments;
  arguments.project = AbsolutePath(arguments.project);
  std::string complaint = Finish(arguments, isReport ? rawReport : raw, isReport ? *report : *spot);
  if (complaint.empty() && isReport) complaint = FinishReport(arguments, page, *report);
  if (!complaint.empty()) return BadUsage(complaint, command);
  arguments.notes = NotesOnIdleOptions(isReport ? *report : *spot, arguments);
  return arguments;
}

}  // namespace velmora::program
