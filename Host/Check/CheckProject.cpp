#include "Check/CheckProject.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "ADL/SourceSearch.h"
#include "Base/FileNames.h"
#include "Base/Text.h"
#include "Check/Case.h"
#include "Check/Judges.h"
#include "Check/ProjectFile.h"

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
    if (isNew) known->second = ReadFile(media.located.path);
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
    if (atAGlance_) {
      media::Located located;
      located.path = FindSourceFile(folder_, raw.c_str());
      if (!located.path.empty()) located.result = media::SearchResult::Found;
      return located;
    }
    media::Wanted wanted;
    wanted.rawLocation = raw;
    wanted.location = source.location;
    wanted.reference = source.reference;
    wanted.length = source.length;
    wanted.start = source.givenStart;
    wanted.sampleRate = project_.rates.sampleRate;
    return search_.Find(wanted);
  }

  static SourceMedia ReadFile(const std::string& path) {
    SourceMedia media;
    media::FactsOrTrouble read = media::ReadFacts(path);
    media.facts = std::move(read.facts);
    media.trouble = std::move(read.trouble);
    media.obstacle =
        media.facts ? media::CompareReaders(path, *media.facts) : media::Obstacle::Broken;
    if (media.obstacle == media::Obstacle::Broken) media.facts.reset();
    return media;
  }

  const field::Project& project_;
  const std::string& folder_;
  const bool atAGlance_;
  media::MediaSearch search_;
  std::map<std::string, SourceMedia> files_;  ///< by path
};

std::vector<std::optional<field::SourceAudio>> AudioOf(const std::vector<SourceMedia>& media) {
  std::vector<std::optional<field::SourceAudio>> audio;
  for (const SourceMedia& source : media) {
    audio.emplace_back();
    if (!source.facts) continue;
    audio.back() = field::SourceAudio{.sampleRate = static_cast<double>(source.facts->sampleRate),
                                      .frames = source.facts->frames,
                                      .timeReference = source.facts->timeReference};
  }
  return audio;
}

Verdict VerdictOf(const std::vector<Finding>& findings) {
  const bool loses = std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
    return finding.severity != Severity::Note;
  });
  return loses ? Verdict::Loses : Verdict::Clean;
}

void AskJudges(CheckedProject& checked, const CheckOptions& options, const std::string& folder) {
  Findings findings(*checked.project);
  const Case c(*checked.project, checked.media, options, folder);
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
  checked.project = field::ReadProject(std::move(file.bytes), path, options.reading);
  if (!checked.project->isAdl) {
    checked.findings.push_back(
        Unreadable("neither <ADL> nor an EVENT_LIST stands in this file",
                   "The system would take it for a project without any event.",
                   "Export the project as an AES31 ADL."));
    return checked;
  }
  const std::string folder = FolderOf(path);
  MediaReader media(*checked.project, options, listings, folder, cancelled);
  for (const field::Source& source : checked.project->sources) {
    if (cancelled && cancelled()) return checked;
    checked.media.push_back(media.Read(source));
  }
  field::DecideFileStarts(*checked.project, AudioOf(checked.media));
  AskJudges(checked, options, folder);
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
