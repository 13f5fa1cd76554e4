#include "Check/CheckProject.h"

#include <algorithm>
#include <array>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "Base/FileNames.h"
#include "Base/Text.h"
#include "Check/Case.h"
#include "Check/Judges.h"
#include "Check/ProjectFile.h"
#include "Check/SourceMedia.h"

namespace velmora::check {
namespace {

/// What the judges have of a file that no text could be read of.
Finding Unreadable(std::string text, std::string effect, std::string remedy) {
  Finding finding;
  finding.code = Code::NotAnAdl;
  finding.severity = Severity::Fails;
  finding.text = std::move(text);
  finding.effect = std::move(effect);
  finding.remedy = std::move(remedy);
  return finding;
}

/// Finds and reads the files of one project.
class MediaReader {
 public:
  MediaReader(const field::Project& project, const CheckOptions& options,
              media::FolderListings& listings, const std::string& folder,
              const std::function<bool()>& cancelled)
      : project_(project),
        folder_(folder),
        atAGlance_(options.atAGlance),
        search_(listings, folder, options.mediaFolders, cancelled) {}

  SourceMedia Read(const field::Source& source) {
    SourceMedia media;
    media.located = Locate(source);
    if (media.located.result != media::SearchResult::Found) return media;
    // The same file may stand in many sources, and its header is read once.
    const auto [known, isNew] = files_.try_emplace(media.located.path);
    if (isNew) known->second = ReadSourceFile(media.located.path);
    const SourceMedia& file = known->second;
    media.facts = file.facts;
    media.obstacle = file.obstacle;
    media.trouble = file.trouble;
    return media;
  }

 private:
  std::string RawLocation(const field::Source& source) const {
    if (!source.fPlace) return {};
    // The system takes the first value whatever it is.
    const auto values = project_.tree.ValuesOf(project_.tree.entries[*source.fPlace]);
    return values.empty() ? "" : std::string(project_.tree.RawText(values[0]));
  }

  media::Located Locate(const field::Source& source) {
    const std::string raw = RawLocation(source);
    if (atAGlance_) return LocateAsSystem(folder_, raw);
    media::Wanted wanted;
    wanted.rawLocation = raw;
    wanted.location = source.location;
    wanted.reference = source.reference;
    wanted.length = source.length;
    wanted.start = source.givenStart;
    wanted.sampleRate = project_.rates.sampleRate;
    return search_.Find(wanted);
  }

  const field::Project& project_;
  const std::string& folder_;
  const bool atAGlance_;
  media::MediaSearch search_;
  std::map<std::string, SourceMedia> files_;  ///< by path
};

std::vector<std::optional<field::SourceAudio>> AudioOf(const SourceMediaList& media) {
  std::vector<std::optional<field::SourceAudio>> audio;
  audio.reserve(media.size());
  for (std::size_t i = 0; i < media.size(); ++i) audio.push_back(AudioOf(media[i]));
  return audio;
}

Verdict VerdictOf(const std::vector<Finding>& findings) {
  const bool loses = std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
    return finding.severity != Severity::Note;
  });
  return loses ? Verdict::Loses : Verdict::Clean;
}

/// The two readings of one text, which know nothing of each other. `system` is none for what is no
/// ADL.
struct Readings {
  std::unique_ptr<field::Project> project;
  std::optional<SystemReading> system;
};

/// Runs the system's reading on a thread of its own; the future is not valid if none is to be had.
std::future<void> ReadBeside(SystemReading& system) {
  try {
    return std::async(std::launch::async, [&system] { system.Read(); });
  } catch (const std::system_error&) {
    return {};
  }
}

/// Reads a large text both ways at once, which takes a third off the whole check.
Readings ReadBothWays(std::string bytes, const std::string& path,
                      const field::ReadOptions& options) {
  constexpr std::size_t kWorthAThread = std::size_t{1} << 20;
  Readings readings;
  // A given encoding may ask for another text than the file's, and of noise one copy is enough.
  const bool beside = options.encoding.empty() && bytes.size() >= kWorthAThread && bytes[0] == '<';
  std::future<void> systemRead;
  if (beside) systemRead = ReadBeside(readings.system.emplace(bytes));
  readings.project = field::ReadProject(std::move(bytes), path, options);
  if (systemRead.valid()) {
    systemRead.get();
  } else if (readings.project->isAdl) {
    readings.system.emplace(readings.project->tree.file).Read();
  }
  return readings;
}

void AskJudges(CheckedProject& checked, const CheckOptions& options, const std::string& folder,
               SystemReading system) {
  Findings findings(*checked.project);
  const Case c(*checked.project, checked.media, options, folder, std::move(system));
  for (const auto& judge : Judges()) judge(c, findings);
  checked.findings = std::move(findings).Finish();
  checked.verdict = VerdictOf(checked.findings);
}

}  // namespace

const char* NameOf(Verdict verdict) {
  constexpr std::array kNames = {"clean", "loses", "unreadable"};
  return kNames[static_cast<std::size_t>(verdict)];
}

std::size_t CheckedProject::Count(Severity severity) const {
  return static_cast<std::size_t>(
      std::count_if(findings.begin(), findings.end(),
                    [severity](const Finding& finding) { return finding.severity == severity; }));
}

CheckedProject CheckProject(const std::string& path, const CheckOptions& options,
                            media::FolderListings& listings,
                            const std::function<bool()>& cancelled) {
  CheckedProject checked;
  checked.path = path;
  ProjectFile file = ReadProjectFile(path);
  if (!file.trouble.empty()) {
    checked.findings.push_back(Unreadable(std::move(file.trouble), "The project does not load.",
                                          "Name an ADL file that can be read."));
    return checked;
  }
  Readings readings = ReadBothWays(std::move(file.bytes), path, options.reading);
  checked.project = std::move(readings.project);
  if (!checked.project->isAdl) {
    checked.findings.push_back(
        Unreadable("neither <ADL> nor an EVENT_LIST stands in this file",
                   "The system would take it for a project without any event.",
                   "Export the project as an AES31 ADL."));
    return checked;
  }
  const std::string folder = FolderOf(path);
  MediaReader media(*checked.project, options, listings, folder, cancelled);
  checked.media.Reserve(checked.project->sources.size());
  for (const field::Source& source : checked.project->sources) {
    if (cancelled && cancelled()) return checked;
    checked.media.Add(media.Read(source));
  }
  field::DecideFileStarts(*checked.project, AudioOf(checked.media));
  AskJudges(checked, options, folder, std::move(*readings.system));
  return checked;
}

CheckedProject OutOfMemory(const std::string& path) {
  CheckedProject checked;
  checked.path = path;
  checked.findings.push_back(Unreadable("the project needs more memory than there is",
                                        "It cannot be told what would become of it.",
                                        "Check it alone, on a machine with more memory."));
  return checked;
}

std::string SummaryLine(const CheckedProject& checked) {
  if (checked.verdict == Verdict::Unreadable) return "this is no ADL that can be read";
  struct Phrase {
    Severity severity;
    const char* one;
    const char* many;
  };
  constexpr auto kPhrases = std::to_array<Phrase>({
      {Severity::Fails, "keeps it from loading", "keep it from loading"},
      {Severity::Misplaced, "misplaces something", "misplace something"},
      {Severity::Lost, "loses something", "lose something"},
  });
  std::string text;
  std::size_t all = 0;
  for (const Phrase& phrase : kPhrases) {
    const std::size_t count = checked.Count(phrase.severity);
    if (count == 0) continue;
    text += (text.empty() ? "" : ", ") + std::to_string(count) + " " +
            (count == 1 ? phrase.one : phrase.many);
    all += count;
  }
  return all == 0 ? "" : Counted(all, "finding") + ": " + text;
}

}  // namespace velmora::check
