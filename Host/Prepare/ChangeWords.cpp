#include "Prepare/ChangeWords.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "Base/Text.h"

namespace velmora::prepare {
namespace {

using check::Code;

class ChangeWriter {
 public:
  ChangeWriter(const check::CheckedProject& checked, const PrepareOptions& options,
               const Plan& plan, const std::vector<std::size_t>& shortened)
      : checked_(checked), options_(options), plan_(plan) {
    const std::vector<field::Event>& events = checked.project->events;
    for (const field::Event& event : events) ++eventsOf_[event.number];
    for (const PlannedEvent& event : plan.events) {
      ++plannedOf_[events[event.origin].number];
    }
    for (const std::size_t event : shortened) shortened_.insert(events[event].number);
    for (std::size_t i = 0; i < plan.sources.size(); ++i) {
      const std::int32_t index = checked.project->sources[plan.sources[i].origin].index;
      sourcesOf_[index].push_back(i);
    }
  }

  std::vector<Change> Run() {
    std::vector<Change> changes;
    for (const check::Finding& finding : checked_.findings) {
      std::string text = TextOf(finding);
      if (text.empty()) continue;
      changes.push_back(
          {finding.code, finding.line, finding.entry, finding.source, std::move(text)});
    }
    return changes;
  }

 private:
  /// What was done about a finding; empty if nothing was.
  std::string TextOf(const check::Finding& finding) const {
    if (IsGone(finding)) return TextOfGone(finding.code);
    switch (finding.code) {
      case Code::FadeSeparator:
        return "Fade length written with \";\" before the frames, the same number of samples.";
      case Code::FadeForm:
        return "Fade length written as a timestamp; a fade without a length is left out.";
      case Code::ValuesMissing:
        return "Missing values filled in.";
      case Code::IndexMissing:
        return "Given a number.";
      case Code::IndexName:
        return "File name replaced by the number of its source.";
      case Code::IndexTwice:
        return "The later one of this number is kept, the earlier one left out.";
      case Code::StrayText:
        return "Left out of what the system reads.";
      case Code::EntryTwice:
        return "Entries numbered anew.";
      case Code::TextCutOff:
        return "The text is closed properly.";
      case Code::FileStartMissing:
        return StartText(finding);
      case Code::CutOutsideFile:
        return IsShortened(finding) ? "Shortened to what its file holds." : "";
      case Code::FadeOverlong:
        return "Fade shortened to its cut.";
      case Code::RateMixed:
        return "All times written at " + RateText() + ", each at its place.";
      case Code::MarksDiffer:
        return "Header and timestamps both say " + RateText() + ".";
      case Code::RateCompensated:
        return "Timestamps written with marks that a session's frame rate stands for: nothing "
               "moves.";
      case Code::TextEncoding:
        return "Written in Shift-JIS, which the system reads.";
      default:
        return TextOfAudio(finding);
    }
  }

  /// About the audio, and the channels and gains of cuts.
  std::string TextOfAudio(const check::Finding& finding) const {
    switch (finding.code) {
      case Code::MediaElsewhere:
      case Code::LocationForm:
        return FileText(finding, "");
      case Code::MediaKind:
      case Code::MediaChunks:
        return IsMadeAnew(finding) ? FileText(finding, FormatText(finding)) : "";
      case Code::MediaRate:
        return options_.resample && IsMadeAnew(finding) ? FileText(finding, "") : "";
      case Code::Channels:
        return ChannelText(finding);
      case Code::GainChannels:
        return IsWhole(finding) ? "" : "One gain for each mono cut.";
      default:
        return {};
    }
  }

  /// True for a finding on an event that is left out.
  bool IsGone(const check::Finding& finding) const {
    if (!finding.entry || !eventsOf_.contains(*finding.entry)) return false;
    return !plannedOf_.contains(*finding.entry);
  }

  static std::string TextOfGone(Code code) {
    switch (code) {
      case Code::EventOff:
        return "Left out: it is switched off.";
      case Code::EventError:
        return "Left out: it is marked as an error.";
      case Code::EventEmpty:
        return "Left out: it has no length.";
      case Code::TextCutOff:
        return "Left out: the text ends inside it.";
      case Code::ValuesMissing:
        return "Left out: it does not say where it lies.";
      case Code::CutOutsideFile:
        return "Left out: nothing of it lies in its file.";
      default:
        return {};
    }
  }

  bool IsShortened(const check::Finding& finding) const {
    return finding.entry && shortened_.contains(*finding.entry);
  }

  std::string StartText(const check::Finding& finding) const {
    const PlannedSource* const source = FirstSource(finding);
    if (source == nullptr) return {};
    const std::optional<std::string> stamp = WriteStamp(source->fileStart, plan_.form);
    return "File start written as " + stamp.value_or("zero") + '.';
  }

  const PlannedSource* FirstSource(const check::Finding& finding) const {
    if (!finding.source) return nullptr;
    const auto sources = sourcesOf_.find(*finding.source);
    return sources == sourcesOf_.end() ? nullptr : &plan_.sources[sources->second.front()];
  }

  std::vector<const PlannedFile*> FilesOf(const check::Finding& finding) const {
    std::vector<const PlannedFile*> files;
    const auto sources = finding.source ? sourcesOf_.find(*finding.source) : sourcesOf_.end();
    if (sources == sourcesOf_.end()) return files;
    for (const std::size_t source : sources->second) {
      if (plan_.sources[source].file) files.push_back(&plan_.files[*plan_.sources[source].file]);
    }
    return files;
  }

  static bool IsMade(const PlannedFile& file) {
    return file.how != HowMade::Linked && file.how != HowMade::Copied;
  }

  bool IsMadeAnew(const check::Finding& finding) const {
    const std::vector<const PlannedFile*> files = FilesOf(finding);
    return !files.empty() && std::all_of(files.begin(), files.end(),
                                         [](const PlannedFile* file) { return IsMade(*file); });
  }

  std::string FileText(const check::Finding& finding, const std::string& format) const {
    const std::vector<const PlannedFile*> files = FilesOf(finding);
    if (files.empty()) return {};
    std::string names;
    for (const PlannedFile* const file : files) {
      names += (names.empty() ? "Audio/" : ", Audio/") + file->name;
    }
    constexpr const char* kVerbs[] = {"Linked", "Copied", "Converted", "Split", "Resampled"};
    return kVerbs[static_cast<std::size_t>(files.front()->how)] + (" from " + files.front()->from) +
           format + " to " + names + '.';
  }

  std::string FormatText(const check::Finding& finding) const {
    const PlannedSource& source = *FirstSource(finding);
    const std::optional<media::AudioFacts>& facts = checked_.media[source.origin].facts;
    return facts && !facts->format.empty() ? " (" + facts->format + ")" : "";
  }

  /// The planned cuts that a finding is about.
  std::vector<const PlannedCut*> CutsOf(const check::Finding& finding) const {
    std::vector<const PlannedCut*> cuts;
    if (!finding.entry) return cuts;
    const auto numberOf = [&](const PlannedEvent& event) {
      return checked_.project->events[event.origin].number;
    };
    // Events stand by rising number, and so do the planned ones.
    auto event = std::lower_bound(
        plan_.events.begin(), plan_.events.end(), *finding.entry,
        [&](const PlannedEvent& planned, std::int32_t entry) { return numberOf(planned) < entry; });
    for (; event != plan_.events.end() && numberOf(*event) == *finding.entry; ++event) {
      if (event->cut) cuts.push_back(&*event->cut);
    }
    return cuts;
  }

  bool IsWhole(const check::Finding& finding) const {
    const std::vector<const PlannedCut*> cuts = CutsOf(finding);
    return std::any_of(cuts.begin(), cuts.end(),
                       [](const PlannedCut* cut) { return cut->keepsGainLines; });
  }

  std::string ChannelText(const check::Finding& finding) const {
    const std::vector<const PlannedCut*> cuts = CutsOf(finding);
    if (cuts.empty() || IsWhole(finding)) return {};
    return "Split into " + Counted(cuts.size(), "mono cut") + " of mono files.";
  }

  std::string RateText() const {
    const field::TimeRates rates = RatesOf(plan_.form);
    char text[96];
    std::snprintf(text, sizeof text, "%.10g Hz and %.5g%s frames", rates.sampleRate,
                  rates.FrameRate(), rates.dropFrame ? " drop" : "");
    return text;
  }

  const check::CheckedProject& checked_;
  const PrepareOptions& options_;
  const Plan& plan_;
  std::map<std::int32_t, std::size_t> eventsOf_;                ///< by entry number
  std::map<std::int32_t, std::size_t> plannedOf_;               ///< by entry number of the original
  std::set<std::int32_t> shortened_;                            ///< entry numbers
  std::map<std::int32_t, std::vector<std::size_t>> sourcesOf_;  ///< by index of the original
};

}  // namespace

std::vector<Change> WriteChanges(const check::CheckedProject& checked,
                                 const PrepareOptions& options, const Plan& plan,
                                 const std::vector<std::size_t>& shortened) {
  return ChangeWriter(checked, options, plan, shortened).Run();
}

}  // namespace velmora::prepare
