#include "Ardour/SessionMaker.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <iterator>

#include "Ardour/SessionScript.h"
#include "Ardour/SessionView.h"
#include "Ardour/SessionXml.h"
#include "Base/FileAccess.h"
#include "Session/XmlDocument.h"

namespace velmora::ardour {
namespace {

constexpr const char* kNoSession =
    "Ardour has saved no session that can be read; is the disk full?";
constexpr const char* kScriptName = "make_session.lua";
constexpr const char* kJobName = "job";
constexpr const char* kHome = "home";

/// 0 or an errno.
int WriteText(const std::string& path, std::string_view text) {
  FileStream file = CreateNewFile(path.c_str());
  if (file == nullptr) return errno;
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
  const int error = isWritten ? 0 : errno;
  return std::fclose(file.release()) != 0 && isWritten ? errno : error;
}

std::string CannotWrite(const std::string& what, int error) {
  return what + " cannot be written: " + std::strerror(error);
}

/// What follows a word and a blank at the start of a line.
bool TakeWord(std::string_view& line, std::string_view word) {
  const bool isThere =
      line.starts_with(word) && (line.size() == word.size() || line[word.size()] == ' ');
  if (isThere) line.remove_prefix(std::min(word.size() + 1, line.size()));
  return isThere;
}

std::string SignalText(int number) {
  const char* const name = ::strsignal(number);
  return "signal " + std::to_string(number) + (name != nullptr ? std::string(", ") + name : "");
}

}  // namespace

std::string SessionMaker::Make(const std::string& program, std::chrono::milliseconds patience,
                               const host::TargetProgress& progress) {
  if (std::string trouble = MakeFolders(); !trouble.empty()) return trouble;
  if (std::string trouble = WriteJob(); !trouble.empty()) return trouble;
  ScriptProcess script(patience);
  const int error =
      script.Start({program, {place_.Run(kScriptName), place_.Run(kJobName)}, Environment()});
  if (error != 0) return program + " cannot be started: " + std::strerror(error);
  const auto share = [this] {
    return static_cast<double>(steps_) / static_cast<double>(ExpectedSteps());
  };
  const ScriptEnd end = script.Run([&](std::string_view line) { return Take(line, script); },
                                   [&] { return !progress || progress(share()); });
  if (end.kind == ScriptEnd::Kind::Cancelled) return "it was cancelled";
  std::string trouble = TroubleOf(end, patience);
  return trouble.empty() ? Finish() : program + ": " + trouble;
}

std::string SessionMaker::MakeFolders() const {
  for (const std::string& folder : {place_.folder + "/made", place_.Run(""), place_.Run(kHome)}) {
    std::error_code error;
    std::filesystem::create_directory(folder, error);
    if (error) return CannotWrite("a folder", error.value());
  }
  return {};
}

std::string SessionMaker::WriteJob() const {
  const std::string script = place_.Run(kScriptName), job = place_.Run(kJobName);
  if (const int error = WriteText(script, kSessionScript); error != 0) {
    return CannotWrite("the script", error);
  }
  const int error = WriteText(job, JobText(place_.Session(), place_.name, plan_, times_));
  return error != 0 ? CannotWrite("the script's job", error) : "";
}

/// This program's environment, but with a home of Ardour's own: the user's settings and list of
/// recent sessions are neither read nor changed. Nor are plugins looked for, which takes seconds
/// where there are many: the session has none.
std::vector<std::string> SessionMaker::Environment() const {
  static constexpr std::string_view kOwn[] = {
      "HOME",           "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME",
      "XDG_STATE_HOME", "XDG_RUNTIME_DIR", "LV2_PATH",      "LADSPA_PATH",
      "LXVST_PATH",     "VST_PATH"};
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    const std::string_view name = text.substr(0, text.find('='));
    if (std::find(std::begin(kOwn), std::end(kOwn), name) == std::end(kOwn)) {
      variables.emplace_back(text);
    }
  }
  for (const std::string_view name : kOwn) {
    variables.push_back(std::string(name) + '=' + place_.Run(kHome));
  }
  return variables;
}

LineUse SessionMaker::Refuse(std::string trouble) {
  trouble_ = std::move(trouble);
  return trouble_.empty() ? LineUse::Ignored : LineUse::Failure;
}

LineUse SessionMaker::Take(std::string_view line, const ScriptProcess& script) {
  if (TakeWord(line, "step")) return TakeStep(line);
  if (TakeWord(line, "failed")) return Refuse(std::string(line));
  if (TakeWord(line, "track")) {
    trackIds_.emplace_back(line);
    return trackIds_.size() <= plan_.Tracks().size() ? LineUse::Ignored
                                                     : Refuse("Ardour has too many tracks");
  }
  if (TakeWord(line, "time")) {
    return times_.Add(std::string(line)) ? LineUse::Ignored : Refuse("Ardour tells too many times");
  }
  if (TakeWord(line, "saved")) {
    if (std::string trouble = Edit(); !trouble.empty()) return Refuse(std::move(trouble));
    isEdited_ = true;
    return script.Answer("edited") ? LineUse::Progress : Refuse("Ardour takes no answer");
  }
  if (TakeWord(line, "playlist")) return Refuse(proof_.TakeTrack(line, trackIds_));
  if (TakeWord(line, "region")) return Refuse(proof_.TakeRegion(line));
  if (TakeWord(line, "done")) {
    isDone_ = isEdited_ && line == std::to_string(plan_.Regions());
    return isDone_ ? LineUse::Progress : Refuse("Ardour has not done what it was given");
  }
  return Refuse("Ardour tells what is not known");
}

/// Only the next number is progress, and only as long as there is something to do: a script that
/// says the same for ever hangs, and so does one that counts for ever.
LineUse SessionMaker::TakeStep(std::string_view text) {
  std::size_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  if (number != steps_ + 1 || number > ExpectedSteps()) return LineUse::Ignored;
  steps_ = number;
  return LineUse::Progress;
}

std::string SessionMaker::Edit() {
  if (isEdited_) return "Ardour saves twice";
  if (trackIds_.size() != plan_.Tracks().size()) return "Ardour has not made all tracks";
  if (!times_.IsWhole()) return "Ardour has not told all times";
  host::XmlDocument xml;
  if (!LoadSessionXml(place_.File(), xml)) {
    return kNoSession;
  }
  std::string cause = EditSession(plan_, times_, trackIds_, input_.rates.frameRate, xml, edited_);
  if (!cause.empty()) return cause;
  const int error = SaveXml(place_.File(), xml);
  return error == 0 ? "" : CannotWrite("the session's file", error);
}

std::string SessionMaker::TroubleOf(const ScriptEnd& end, std::chrono::milliseconds patience) {
  std::string said = end.lastWords.empty() ? "" : "; it said last: " + end.lastWords;
  if (steps_ == 0) said += "; the script has not begun, is this Ardour's ardour<N>-lua?";
  switch (end.kind) {
    case ScriptEnd::Kind::Failed:
      return trouble_;
    case ScriptEnd::Kind::Hung: {
      const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(patience).count();
      return "Ardour hung: there was no progress for " + std::to_string(seconds) + " s" + said;
    }
    case ScriptEnd::Kind::Killed:
      return "Ardour crashed (" + SignalText(end.number) + ")" + said;
    case ScriptEnd::Kind::Lost:
      return std::string("Ardour was lost: ") + std::strerror(end.number);
    case ScriptEnd::Kind::Exited:
    case ScriptEnd::Kind::Cancelled:
      break;
  }
  if (end.number != 0) {
    return "Ardour ended with exit status " + std::to_string(end.number) + said;
  }
  if (!isDone_) return "Ardour ended before the session was done" + said;
  return proof_.WhatLacks();
}

/// What is left to do when Ardour has ended well.
std::string SessionMaker::Finish() const {
  // Ardour says nothing of a file that is not there, and plays silence.
  for (const PlannedFile& file : plan_.Files()) {
    if (file.trouble.empty() && ::access(file.path.c_str(), R_OK) != 0) {
      return file.path + " is gone: " + std::strerror(errno);
    }
  }
  host::XmlDocument xml;
  if (!LoadSessionXml(place_.File(), xml)) {
    return kNoSession;
  }
  if (std::string lack = proof_.WhatFileLacks(xml, times_); !lack.empty()) return lack;
  // They tell of the engine of this run. Their user's is another, and would be asked about it.
  xml.child("Session").remove_child("EngineHints");
  if (const int error = SaveXml(place_.File(), xml); error != 0) {
    return CannotWrite("the session's file", error);
  }
  if (const int error = ShowRegions(place_.Session(), plan_); error != 0) {
    return CannotWrite("what Ardour shows first", error);
  }
  // The copy that Ardour made of the session before, which had no regions.
  RemoveFile((place_.File() + ".bak").c_str());
  return {};
}

/// As make_session.lua counts them, some to spare.
std::size_t SessionMaker::ExpectedSteps() const {
  constexpr std::size_t kFixedSteps = 10;
  return kFixedSteps + plan_.Tracks().size() + times_.Samples().size() / 1000 +
         plan_.Regions() / 500;
}

}  // namespace velmora::ardour
