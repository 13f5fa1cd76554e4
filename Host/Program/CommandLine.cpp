#include "Program/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <system_error>
#include <vector>

#include "Program/ExitStatus.h"
#include "Program/SessionFile.h"
#include "Timecode/RateTables.h"
#include "Timecode/TimecodeEntry.h"

namespace velmora::program {
namespace {

constexpr const char* kExamples = R"(Examples:
  velmora info Radio.adl                         header, tracks, events, missing files
  velmora info Radio.adl --json | jq .sources
  velmora spot Radio.adl                         place every cut where the project has it
  velmora spot Radio.adl --fades --gain --copy-to Audio
  velmora spot Radio.adl --position start --start 10:00:00:00 --depth 16
  velmora spot Radio.adl --only-tracks 1,3-5 --host embedded:session.json

Exit status: 0 all done; 1 bad usage; 2 the project does not load; 3 spotted, but
something of a ticked cut was left out; 130 interrupted (Ctrl-C stops between events).)";

const std::map<std::string, std::int32_t> kPositions = {
    {"project", 0}, {"offset", 1}, {"start", 2}, {"first", 3}};

/// The project sees absolute paths alone; what is absolute already stays as it was typed.
std::string AbsolutePath(const std::string& path) {
  const std::filesystem::path given(path);
  if (given.is_absolute()) return path;
  const std::filesystem::path absolute = std::filesystem::absolute(given);
  // Taking ".." away would change the way through a symbolic link.
  const bool climbs = std::find(given.begin(), given.end(), "..") != given.end();
  return climbs ? absolute.string() : absolute.lexically_normal().string();
}

/// Puts a typed timecode through the entry field's own limits. Empty if it has another form.
std::string EnteredTimecode(const std::string& typed, bool isSigned) {
  std::string text = typed;
  const bool hasSign = !text.empty() && (text[0] == '+' || text[0] == '-');
  if (hasSign && !isSigned) return {};
  if (isSigned && !hasSign) text.insert(0, "+");
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  std::size_t colons = 0;
  for (std::size_t i = isSigned ? 1 : 0; i < text.size(); ++i) {
    const bool colon = text[i] == ':';
    const bool betweenDigits =
        i > 0 && i + 1 < text.size() && isDigit(text[i - 1]) && isDigit(text[i + 1]);
    if (colon ? !betweenDigits : !isDigit(text[i])) return {};
    colons += colon ? 1 : 0;
  }
  if (colons != 3) return {};
  TimecodeValue value;
  value.sign = isSigned;
  value.DigestString(text.c_str());
  return value.ComposeString();
}

/// Options as they are typed, without the library's notes on types and relations.
class PlainFormatter : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override {
    if (option->get_type_size() == 0) return {};
    const std::string value = option->get_default_str();
    return " " + option->get_type_name() + (value.empty() ? "" : " (" + value + ")");
  }
};

CLI::Validator TimecodeForm(bool isSigned) {
  const std::string form = isSigned ? "[+-]HH:MM:SS:FF" : "HH:MM:SS:FF";
  return CLI::Validator(
      [isSigned, form](std::string& text) -> std::string {
        const std::string entered = EnteredTimecode(text, isSigned);
        if (entered.empty()) return "'" + text + "' is no timecode of the form " + form;
        text = entered;
        return {};
      },
      "");
}

CLI::Validator NumberListForm() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        if (NumberSet::Parse(text)) return {};
        return "'" + text + "' is no list of numbers and rising ranges such as 1,3-5";
      },
      "");
}

std::optional<std::int32_t> FrameRateCodeOf(const std::string& text) {
  for (std::size_t code = 0; code < kFrameRateCodes.size(); ++code) {
    const bool named = code > 0 && text == kFrameRateCodes[code].name;
    if (named || text == std::to_string(code)) return static_cast<std::int32_t>(code);
  }
  return std::nullopt;
}

CLI::Validator FrameRateForm() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        if (FrameRateCodeOf(text)) return {};
        return "'" + text +
               "' is no frame rate; take a code from 0 to 7, or 24, 25, 29.97, 29.97df, 30, 30df "
               "or 23.976";
      },
      "");
}

/// The texts of options that need more than a validator.
struct RawOptions {
  std::string position = "project";
  std::string skipTracks, onlyTracks, skipEvents, onlyEvents;
  std::string frameRate;
  double sessionRate = 0;
  std::string host = "embedded";
  std::string copyFolder;
};

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
  skipTracks->excludes(onlyTracks);
  skipEvents->excludes(onlyEvents);
}

void AddPlaceOptions(CLI::App& spot, SpotArguments& arguments, RawOptions& raw) {
  spot.add_option("--position", raw.position,
                  "Where the project lands: where it has it,\nmoved by --offset, with its first "
                  "cut at --start,\nor with its first cut at 0")
      ->type_name("project|offset|start|first")
      ->check(CLI::IsMember({"project", "offset", "start", "first"}).description(""))
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
  spot.add_option("--depth", arguments.bitDepth, "Bits per sample of the audio that is placed")
      ->type_name("16|24")
      ->check(CLI::IsMember({16, 24}).description(""))
      ->capture_default_str();
  spot.add_flag("--fades", arguments.fades, "Make fade and crossfade pieces");
  spot.add_flag("--gain", arguments.gain, "Make files with the project's gains in them");
  spot.add_option("--copy-to", raw.copyFolder,
                  "Copy all audio into this folder, which is\nmade if missing")
      ->type_name("DIR");
}

CLI::Validator SampleRateForm() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        double rate = 0;
        const bool good = CLI::detail::lexical_cast(text, rate) && std::isfinite(rate) &&
                          rate > 0 && std::isfinite(static_cast<float>(rate));
        return good ? "" : "'" + text + "' is no sample rate in Hz";
      },
      "");
}

void AddSpotOptions(CLI::App& spot, SpotArguments& arguments, RawOptions& raw) {
  spot.add_option("project", arguments.project, "The ADL file")->type_name("FILE")->required();
  AddPlaceOptions(spot, arguments, raw);
  AddAudioOptions(spot, arguments, raw);
  spot.add_option("--session-rate", raw.sessionRate,
                  "The session's sample rate; otherwise that of\nthe project's first cut")
      ->type_name("HZ")
      ->check(SampleRateForm());
  spot.add_option("--session-frame-rate", raw.frameRate,
                  "The session's frame rate: a code from 0 to 7, or\n24, 25, 29.97, 29.97df, 30, "
                  "30df, 23.976;\notherwise that of the project's first cut")
      ->type_name("CODE")
      ->check(FrameRateForm());
  spot.add_option("--host", raw.host,
                  "Where the regions go; embedded:FILE.json also\nwrites the session there")
      ->type_name("NAME[:TARGET]")
      ->capture_default_str();
  spot.add_flag("--json", arguments.json, "Tell every step as JSON Lines");
  spot.add_flag("--quiet", arguments.quiet, "No progress bar");
}

/// Makes a folder and those above it, all or none. An empty answer, or what is wrong.
std::string MakeFolder(const std::string& path) {
  namespace fs = std::filesystem;
  std::vector<fs::path> made;
  std::error_code error;
  fs::path folder;
  for (const fs::path& part : fs::path(path)) {
    folder /= part;
    if (!error && fs::create_directory(folder, error)) made.push_back(folder);
  }
  std::error_code ignored;
  if (error == std::errc::file_exists || (!error && !fs::is_directory(path, ignored))) {
    error = std::make_error_code(std::errc::not_a_directory);
  }
  if (!error) return {};
  for (auto last = made.rbegin(); last != made.rend(); ++last) fs::remove(*last, ignored);
  return "--copy-to: " + path + " cannot be made: " + error.message();
}

/// Takes over what the validators have let through; an empty answer, or what is wrong.
std::string Finish(SpotArguments& arguments, const RawOptions& raw, const CLI::App& spot) {
  arguments.positionMode = kPositions.at(raw.position);
  const auto numbers = [](const std::string& text) {
    return text.empty() ? std::nullopt : NumberSet::Parse(text);
  };
  arguments.tracks = {numbers(raw.skipTracks), numbers(raw.onlyTracks)};
  arguments.events = {numbers(raw.skipEvents), numbers(raw.onlyEvents)};
  if (spot.count("--session-rate") > 0) {
    arguments.sessionRate = static_cast<float>(raw.sessionRate);
  }
  if (!raw.frameRate.empty()) arguments.sessionFrameRate = FrameRateCodeOf(raw.frameRate);

  const std::size_t colon = raw.host.find(':');
  const std::string target = colon == std::string::npos ? "" : raw.host.substr(colon + 1);
  if (raw.host.substr(0, colon) != "embedded") {
    return "--host: there is no host '" + raw.host.substr(0, colon) + "'; hosts: embedded";
  }
  if (colon != std::string::npos) {
    if (target.empty()) return "--host: embedded: needs the name of a file behind its colon";
    arguments.sessionFile = AbsolutePath(target);
    const std::string complaint = SessionFileComplaint(arguments.sessionFile);
    if (!complaint.empty()) return "--host: " + complaint;
  }

  if (spot.count("--copy-to") == 0) return {};
  if (raw.copyFolder.empty()) return "--copy-to: the name of the folder is empty";
  arguments.copyFolder = AbsolutePath(raw.copyFolder);
  return MakeFolder(arguments.copyFolder);
}

int Complain(const std::string& what, const char* command) {
  std::fprintf(stderr, "velmora: %s\nTry 'velmora %s--help'.\n", what.c_str(), command);
  return kBadUsage;
}

}  // namespace

Command ReadCommandLine(int argc, const char* const* argv) {
  CLI::App app("Brings AES31-3 Audio Decision List projects onto a timeline.", "velmora");
  app.footer(kExamples);
  app.set_version_flag("--version", "velmora " VELMORA_VERSION);
  app.require_subcommand(1);
  const auto formatter = std::make_shared<PlainFormatter>();
  formatter->column_width(30);
  app.formatter(formatter);

  InfoArguments infoArguments;
  CLI::App* const info = app.add_subcommand("info", "Show what a project holds");
  info->add_option("project", infoArguments.project, "The ADL file")->type_name("FILE")->required();
  info->add_flag("--json", infoArguments.json, "As one JSON object on standard output");

  SpotArguments spotArguments;
  RawOptions raw;
  CLI::App* const spot = app.add_subcommand("spot", "Prepare the audio and place every cut");
  AddSpotOptions(*spot, spotArguments, raw);

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {  // help or version was asked for
    return app.exit(request);
  } catch (const CLI::ParseError& error) {
    const char* const command = spot->parsed() ? "spot " : info->parsed() ? "info " : "";
    return Complain(error.what(), command);
  }
  if (info->parsed()) {
    infoArguments.project = AbsolutePath(infoArguments.project);
    return infoArguments;
  }
  spotArguments.project = AbsolutePath(spotArguments.project);
  const std::string complaint = Finish(spotArguments, raw, *spot);
  if (!complaint.empty()) return Complain(complaint, "spot ");
  return spotArguments;
}

}  // namespace velmora::program
