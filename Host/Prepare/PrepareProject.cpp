#include "Prepare/PrepareProject.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <set>
#include <unordered_map>
#include <utility>

#include "Base/FileAccess.h"
#include "Base/FileNames.h"
#include "Prepare/MediaFiles.h"
#include "Prepare/Plan.h"
#include "Prepare/ProjectText.h"
#include "Prepare/Staging.h"

namespace velmora::prepare {
namespace {

using check::Code;
using check::Finding;

/// The prepared project's name is that of the original, its extension in small letters.
std::string ProjectNameFor(const std::string& path) {
  const std::string name = FileNameOf(path);
  const std::size_t dot = name.rfind('.');
  const bool hasExtension = dot != std::string::npos && dot > 0;
  return (hasExtension ? name.substr(0, dot) : name) + ".adl";
}

/// Writes a new file whole. An empty text, or path and cause.
std::string WriteWhole(const std::string& path, const std::string& bytes) {
  FileStream file = CreateNewFile(path.c_str());
  bool written =
      file != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  // A full disk may show only here.
  if (file != nullptr && std::fclose(file.release()) != 0) written = false;
  return written ? "" : path + ": " + std::strerror(errno);
}

void ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

/// True if a project is not whole with this among what is left.
bool IsLoss(const Finding& finding) {
  return finding.severity != check::Severity::Note && finding.code != Code::RateCompensated;
}

/// One preparation, from a plan to a folder in its place.
class Preparation {
 public:
  Preparation(const check::CheckedProject& checked, const PrepareOptions& options,
              const PrepareProgress& progress)
      : checked_(checked),
        options_(options),
        progress_(progress),
        into_(WithoutDetours(options.into)) {}

  Prepared Run() {
    if (checked_.verdict == check::Verdict::Unreadable || checked_.project == nullptr ||
        !checked_.project->isAdl) {
      prepared_ = Stop(Outcome::NotAnAdl, checked_.path + " is no ADL" + Cause());
      prepared_.left = checked_.findings;
      return std::move(prepared_);
    }
    std::string complaint = staging_.Begin(into_);
    if (!complaint.empty()) return Stop(Outcome::FolderTaken, complaint);
    std::optional<Plan> plan = MakePlan(checked_, options_);
    if (!plan) {
      return Stop(Outcome::Failed, checked_.path + ": no timestamp can say its sample rate");
    }
    plan_ = std::move(*plan);
    if (!MakeAudio() || !MakeProject()) return std::move(prepared_);
    complaint = staging_.Commit();
    if (!complaint.empty()) return Stop(Outcome::Failed, complaint);
    const bool whole = std::none_of(prepared_.left.begin(), prepared_.left.end(), IsLoss);
    prepared_.outcome = whole ? Outcome::Done : Outcome::Left;
    return std::move(prepared_);
  }

 private:
  /// Why nothing could be read of the project, where something is known of that.
  [[nodiscard]] std::string Cause() const {
    return checked_.findings.empty() ? "" : ": " + checked_.findings.front().text;
  }

  // Of the whole, as far as a person notices: the audio takes the time.
  static constexpr double kShareOfAudio = 0.95;

  Prepared Stop(Outcome outcome, const std::string& trouble) const {
    Prepared stopped;
    stopped.outcome = outcome;
    stopped.trouble = trouble;
    ReplaceAll(stopped.trouble, staging_.Path().empty() ? into_ : staging_.Path(), into_);
    return stopped;
  }

  /// False if the preparation has come to its end.
  bool MakeAudio() {
    const std::string folder = staging_.Path() + "/Audio";
    if (mkdir(folder.c_str(), 0777) != 0) {
      prepared_ = Stop(Outcome::Failed, folder + ": " + std::strerror(errno));
      return false;
    }
    const PrepareProgress tell = [this](double share, const std::string& what) {
      return !progress_ || progress_(share * kShareOfAudio, what);
    };
    const std::vector<MediaOutcome> outcomes = MakeMediaFiles(plan_.files, folder, tell);
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
      if (outcomes[i].cancelled) {
        prepared_ = Stop(Outcome::Cancelled, "");
        return false;
      }
      if (!outcomes[i].done) {
        prepared_ = Stop(Outcome::Failed, outcomes[i].trouble);
        return false;
      }
      const PlannedFile& file = plan_.files[i];
      prepared_.files.push_back({file.from, into_ + "/Audio/" + file.name, file.how});
      NamePeak(i, outcomes[i]);
    }
    return true;
  }

  /// Says at the change that converted a float file whether it passed full scale.
  void NamePeak(std::size_t file, const MediaOutcome& outcome) {
    if (outcome.clipped == 0) return;
    char text[160];
    std::snprintf(text, sizeof text,
                  " Its peak is %+.2f dBFS, above full scale: %lld samples were clipped.",
                  20 * std::log10(outcome.peak), static_cast<long long>(outcome.clipped));
    std::set<std::int32_t> indices;  // of the sources that play the file
    for (const PlannedSource& source : plan_.sources) {
      if (source.file == file) indices.insert(checked_.project->sources[source.origin].index);
    }
    for (Change& change : plan_.changes) {
      const bool same =
          change.code == Code::MediaKind && change.source && indices.contains(*change.source);
      if (same) change.text += " Audio/" + plan_.files[file].name + ':' + text;
    }
  }

  /// Writes the project and checks it as anybody would who gets the folder. False if that has come
  /// to its end.
  bool MakeProject() {
    const std::string name = ProjectNameFor(checked_.path);
    const std::string path = staging_.Path() + '/' + name;
    std::optional<check::CheckedProject> result;
    do {
      std::remove(path.c_str());
      const std::string complaint = WriteWhole(path, WriteProject(checked_, plan_));
      if (!complaint.empty()) {
        prepared_ = Stop(Outcome::Failed, complaint);
        return false;
      }
      result = Check(path);
      if (!result) {
        prepared_ = Stop(Outcome::Cancelled, "");
        return false;
      }
    } while (HideWhatWouldMislead(*result));
    prepared_.projectPath = into_ + '/' + name;
    prepared_.changes = std::move(plan_.changes);
    prepared_.left = std::move(plan_.lost);
    prepared_.leftOut = prepared_.left.size();
    TakeFindings(result->findings);
    return true;
  }

  /// None if cancelled.
  std::optional<check::CheckedProject> Check(const std::string& path) const {
    check::CheckOptions options;
    options.sessionRate = options_.check.sessionRate;
    options.sessionFrameRate = options_.check.sessionFrameRate;
    bool cancelled = false;
    const auto ask = [&] {
      cancelled = cancelled || (progress_ && !progress_(kShareOfAudio, "Checking the result"));
      return cancelled;
    };
    media::FolderListings listings;
    check::CheckedProject result = check::CheckProject(path, options, listings, ask);
    if (cancelled || (progress_ && !progress_(1, "Done"))) return std::nullopt;
    return result;
  }

  /// A source whose file is missing must not find another's in the prepared folder, which stood
  /// elsewhere before. True if the project has to be written anew.
  bool HideWhatWouldMislead(const check::CheckedProject& result) {
    bool hides = false;
    for (std::size_t i = 0; i < plan_.sources.size() && i < result.media.size(); ++i) {
      PlannedSource& source = plan_.sources[i];
      const bool found = result.media[i].located.result != media::SearchResult::Missing;
      if (source.file || source.hidesFacts || !found) continue;
      source.hidesFacts = true;
      hides = true;
    }
    return hides;
  }

  static void TakeTexts(Finding& finding, const Finding& from) {
    finding.text = from.text;
    finding.effect = from.effect;
    finding.remedy = from.remedy;
  }

  using FindingBySource = std::unordered_map<std::int32_t, const Finding*>;

  /// What the first check says of missing files that may stand in a folder that could not be read,
  /// by the number of the source in the prepared project. Only that check has been there.
  [[nodiscard]] FindingBySource WhatWasNotRead() const {
    std::vector<const PlannedSource*> doubtful;
    for (const PlannedSource& planned : plan_.sources) {
      if (!checked_.media[planned.origin].located.unread.empty()) doubtful.push_back(&planned);
    }
    if (doubtful.empty()) return {};
    FindingBySource missing;  // by the number in the original
    for (const Finding& finding : checked_.findings) {
      if (finding.code == Code::MediaMissing && finding.source) {
        missing.emplace(*finding.source, &finding);
      }
    }
    FindingBySource unread;
    for (const PlannedSource* const planned : doubtful) {
      const auto first = missing.find(checked_.project->sources[planned->origin].index);
      if (first != missing.end()) unread.emplace(planned->index, first->second);
    }
    return unread;
  }

  void TakeFindings(std::vector<Finding>& findings) {
    const FindingBySource unread = WhatWasNotRead();
    bool moves = false;
    for (Finding& finding : findings) {
      // The folder is known by the name that it will have.
      for (check::SharedText* const shared : {&finding.text, &finding.effect, &finding.remedy}) {
        if (shared->Text().find(staging_.Path()) == std::string::npos) continue;
        std::string text = *shared;
        ReplaceAll(text, staging_.Path(), into_);
        *shared = std::move(text);
      }
      if (finding.code == Code::MediaMissing && finding.source) {
        const auto first = unread.find(*finding.source);
        if (first != unread.end()) TakeTexts(finding, *first->second);
      }
      if (finding.code == Code::RateCompensated) {
        moves = true;
        finding.remedy = "Spot it with velmora spot --true-position.";
      }
      prepared_.left.push_back(std::move(finding));
    }
    if (moves) {
      std::erase_if(prepared_.changes,
                    [](const Change& change) { return change.code == Code::RateCompensated; });
    }
  }

  const check::CheckedProject& checked_;
  const PrepareOptions& options_;
  const PrepareProgress& progress_;
  std::string into_;
  Staging staging_;
  Plan plan_;
  Prepared prepared_;
};

}  // namespace

Prepared PrepareProject(const check::CheckedProject& checked, const PrepareOptions& options,
                        const PrepareProgress& progress) {
  return Preparation(checked, options, progress).Run();
}

}  // namespace velmora::prepare
