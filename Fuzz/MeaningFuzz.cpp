// What a check calls clean spots as it is meant, and so does what a preparation makes of a project.
// The input is the project; its last byte chooses how it is prepared.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

#include "Model/ViewModel.h"
#include "Prepare/PrepareProject.h"
#include "Support/Checking.h"
#include "Support/Holds.h"
#include "Support/Input.h"
#include "Support/Meaning.h"
#include "Support/WorkFolder.h"

namespace velmora::fuzz {
namespace {

constexpr unsigned kMostFileBytes = 1U << 20;

/// The session that test::Spotted spots into.
check::CheckOptions SessionOptions() {
  check::CheckOptions options;
  options.sessionRate = 48000;
  options.sessionFrameRate = 2;  // 25
  return options;
}

void HoldGuarantee(const std::string& path, const check::CheckedProject& checked) {
  ViewModel model;
  const bool loads = model.LoadFile(path);
  if (checked.verdict == check::Verdict::Unreadable) return;
  Hold(loads || checked.Count(check::Severity::Fails) > 0, "what does not load has a finding");
  if (checked.verdict != check::Verdict::Clean || checked.project->events.empty()) return;
  const std::string meant = test::Meant(checked);
  const std::string spotted = loads ? test::Spotted(model, RunWithoutFiles) : "nothing";
  Hold(meant == spotted, "what is clean spots as meant", "meant\n" + meant + "spotted\n" + spotted);
}

/// Tracks and places of all cuts, whatever their files are called.
std::string Places(const field::Project& project) {
  std::vector<std::string> lines;
  for (const field::Event& event : project.events) {
    if (event.kind != field::EventKind::Cut || !event.source) continue;
    lines.push_back(std::to_string(event.tracks.first) + " at " + std::to_string(event.position) +
                    " to " + std::to_string(event.end) + " from " +
                    std::to_string(project.FileOffset(event).value_or(0)) + "\n");
  }
  std::sort(lines.begin(), lines.end());
  if (lines.empty()) return {};  // then the rate is anybody's
  std::string text = std::to_string(project.rates.sampleRate) + " Hz\n";
  for (const std::string& line : lines) text += line;
  return text;
}

/// Changes under which every cut stays where it was, with all of its audio.
bool KeepsPlaces(const prepare::Prepared& prepared) {
  using check::Code;
  constexpr Code kHarmless[] = {
      Code::FadeSeparator,  Code::FadeForm,     Code::ValuesMissing,   Code::IndexMissing,
      Code::IndexName,      Code::StrayText,    Code::EntryTwice,      Code::FileStartMissing,
      Code::MediaElsewhere, Code::LocationForm, Code::MediaKind,       Code::MediaChunks,
      Code::FadeCurve,      Code::FadeRendered, Code::XfadeLabel,      Code::FadeOverlong,
      Code::GainChannels,   Code::MarksDiffer,  Code::RateCompensated, Code::TextEncoding};
  return prepared.outcome == prepare::Outcome::Done &&
         std::all_of(prepared.changes.begin(), prepared.changes.end(), [&](const auto& change) {
           return std::find(std::begin(kHarmless), std::end(kHarmless), change.code) !=
                  std::end(kHarmless);
         });
}

class Preparations {
 public:
  Preparations() {
    WriteSounds(source_);
    LimitFiles(kMostFileBytes);
  }

  void Take(const ProjectInput& input) {
    const std::string path = source_.Write("project.adl", input.text);
    const check::CheckedProject checked = Check(path, SessionOptions());
    HoldGuarantee(path, checked);
    const prepare::Prepared first = Prepare(checked, input.choice, "first");
    if (IsMade(first)) HoldPrepared(checked, first, input.choice);
    target_.Clear("");
  }

 private:
  static bool IsMade(const prepare::Prepared& prepared) {
    return prepared.outcome == prepare::Outcome::Done || prepared.outcome == prepare::Outcome::Left;
  }
  [[nodiscard]] prepare::Prepared Prepare(const check::CheckedProject& checked, std::uint8_t choice,
                                          const char* name) const {
    prepare::PrepareOptions options;
    options.check = SessionOptions();
    options.into = target_.Path(name);
    options.keepStereo = (choice & 2) != 0;
    options.keepOff = (choice & 4) != 0;
    options.resample = (choice & 8) != 0;
    return prepare::PrepareProject(checked, options);
  }
  void HoldPrepared(const check::CheckedProject& original, const prepare::Prepared& first,
                    std::uint8_t choice) const {
    const check::CheckedProject checked = Check(first.projectPath, SessionOptions());
    HoldGuarantee(first.projectPath, checked);
    if (KeepsPlaces(first)) {
      const std::string before = Places(*original.project);
      const std::string after = Places(*checked.project);
      Hold(before == after, "a preparation moves no cut", "before\n" + before + "after\n" + after);
    }
    const prepare::Prepared second = Prepare(checked, choice, "second");
    const std::string once = target_.Read("first/project.adl");
    Hold(IsMade(second), "what was prepared can be prepared", second.trouble + "\n" + once);
    const std::string twice = target_.Read("second/project.adl");
    Hold(once == twice, "a second preparation changes nothing", once + "\nthen\n" + twice);
  }

  WorkFolder source_;
  WorkFolder target_;  // not below the project: its files would be found there
};

}  // namespace
}  // namespace velmora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace velmora::fuzz;
  static Preparations preparations;
  preparations.Take(ProjectInput(bytes, size));
  return 0;
}
