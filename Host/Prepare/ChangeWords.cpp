#include "Prepare/ChangeWords.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "ADL/ShiftJis.h"
#include "Base/FileNames.h"
#include "Base/Text.h"
#include "Field/TextPlaces.h"
#include "Prepare/ShiftJisWriter.h"

namespace velmora::prepare {
namespace {

using check::Code;

class ChangeWriter {
 public:
  ChangeWriter(const check::CheckedProject& checked, const PrepareOptions& options,
               const Plan& plan, const std::vector<std::size_t>& shortened)
      : checked_(checked),
        options_(options),
        plan_(plan),
        eventStarts_(StartsOf(*checked.project)) {
    const std::vector<field::Event>& events = checked.project->events;
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
      case Code::FadeForm:
        return FadeText(finding) + '.';
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
        return EncodingText(finding);
      default:
        return TextOfAudio(finding);
    }
  }

  /// About the audio, and the channels and gains of cuts.
  std::string TextOfAudio(const check::Finding& finding) const {
    switch (finding.code) {
      case Code::MediaElsewhere:
        return HasFile(finding) ? "Found at " + PlaceOf(finding) + "; now " + NamesOf(finding) + '.'
                                : "";
      case Code::LocationForm:
        return HasFile(finding) ? "Location written plainly: " + NamesOf(finding) + '.' : "";
      case Code::MediaKind:
        return IsMadeAnew(finding) ? KindText(finding) : "";
      case Code::MediaChunks:
        return IsMadeAnew(finding) ? "Written anew with a plain header: " + NamesOf(finding) + '.' +
                                         PartText(finding)
                                   : "";
      case Code::MediaRate:
        return options_.resample && IsMadeAnew(finding)
                   ? "Resampled from " + RateOf(finding) + " Hz, in 24 bits: " + NamesOf(finding) +
                         '.'
                   : "";
      case Code::Channels:
        return ChannelText(finding);
      case Code::GainChannels:
        return KeepsGains(finding) ? "" : "One gain for each cut.";
      default:
        return {};
    }
  }

  /// True for a finding on an event that is left out. Another event of the same number may stay.
  bool IsGone(const check::Finding& finding) const {
    const std::optional<std::size_t> origin = OriginOf(finding);
    if (!origin) return false;
    const auto event = FirstPlanned(*origin);
    return event == plan_.events.end() || event->origin != *origin;
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

  /// What became of a fade's length. The finding's text begins with its label.
  std::string FadeText(const check::Finding& finding) const {
    const std::vector<const PlannedCut*> cuts = CutsOf(finding);
    const std::string& text = finding.text;
    const std::string label = text.substr(0, text.find(')'));
    const bool in = EqualsIgnoringCase(label.c_str(), "(Infade");
    if (cuts.empty() || (!in && !EqualsIgnoringCase(label.c_str(), "(Outfade"))) {
      return "Fade length written as a timestamp";
    }
    const std::optional<std::int64_t> length = in ? cuts.front()->fadeIn : cuts.front()->fadeOut;
    if (!length) return "Fade left out: it has no length";
    return "Fade length written as " + WriteFadeLength(*length, plan_.form).value_or("none");
  }

  static std::string EncodingText(const check::Finding& finding, const std::string& names) {
    if (!names.empty()) return "The file is now " + names + ", which the system finds.";
    const ShiftJisText written = ToShiftJis(finding.text, '?');
    if (written.whole) return "Written in Shift-JIS, which the system reads.";
    return "Written as " + ShiftJisToUtf8(written.bytes.c_str()) +
           ": Shift-JIS does not have all of its characters.";
  }
  std::string EncodingText(const check::Finding& finding) const {
    return EncodingText(finding, HasFile(finding) && !finding.entry ? NamesOf(finding) : "");
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

  bool HasFile(const check::Finding& finding) const { return !FilesOf(finding).empty(); }

  /// The files in the prepared folder: "Audio/a_ch1.wav, Audio/a_ch2.wav".
  std::string NamesOf(const check::Finding& finding) const {
    std::string names;
    for (const PlannedFile* const file : FilesOf(finding)) {
      names += (names.empty() ? "Audio/" : ", Audio/") + file->name;
    }
    return names;
  }

  /// The original's path: what lies below the project's folder from there on.
  std::string PlaceOf(const check::Finding& finding) const {
    const std::string& path = FilesOf(finding).front()->from;
    const std::string folder = FolderOf(checked_.path) + '/';
    return path.starts_with(folder) ? path.substr(folder.size()) : path;
  }

  const media::AudioFacts* FactsOf(const check::Finding& finding) const {
    const PlannedSource* const source = FirstSource(finding);
    if (source == nullptr || !checked_.media[source->origin].facts) return nullptr;
    return &*checked_.media[source->origin].facts;
  }

  std::string FormatOf(const check::Finding& finding) const {
    const media::AudioFacts* const facts = FactsOf(finding);
    return facts != nullptr && !facts->format.empty() ? facts->format : "The file";
  }

  std::string KindText(const check::Finding& finding) const {
    const std::string format = FormatOf(finding);
    const bool isFloat = format.find("float") != std::string::npos;
    return format + (isFloat ? " rounded to 24-bit PCM: " : " made plain PCM: ") +
           NamesOf(finding) + '.' + PartText(finding);
  }

  /// Said of a file of which only a part was written.
  std::string PartText(const check::Finding& finding) const {
    for (const PlannedFile* const file : FilesOf(finding)) {
      if (!file->frameCount) continue;
      return " It holds only what the cuts use: " + std::to_string(*file->frameCount) +
             " samples from sample " + std::to_string(file->firstFrame) + " of the original on.";
    }
    return {};
  }

  std::string RateOf(const check::Finding& finding) const {
    const media::AudioFacts* const facts = FactsOf(finding);
    return std::to_string(facts != nullptr ? facts->sampleRate : 0);
  }

  /// The event in whose lines a finding stands, as a position in Project::events.
  std::optional<std::size_t> OriginOf(const check::Finding& finding) const {
    if (!finding.entry) return std::nullopt;
    const auto next = std::upper_bound(
        eventStarts_.begin(), eventStarts_.end(),
        std::pair<std::int64_t, std::int64_t>(finding.line, finding.column),
        [](const auto& place, const EventStart& start) { return place < start.place; });
    if (next == eventStarts_.begin()) return std::nullopt;
    return std::prev(next)->origin;
  }

  /// The first planned event that was made of that one or of a later one. Planned events stand in
  /// the order of those that they were made of.
  std::vector<PlannedEvent>::const_iterator FirstPlanned(std::size_t origin) const {
    return std::lower_bound(
        plan_.events.begin(), plan_.events.end(), origin,
        [](const PlannedEvent& planned, std::size_t wanted) { return planned.origin < wanted; });
  }

  /// The planned cuts that a finding is about: those made of the event in whose lines it stands.
  std::vector<const PlannedCut*> CutsOf(const check::Finding& finding) const {
    std::vector<const PlannedCut*> cuts;
    const std::optional<std::size_t> origin = OriginOf(finding);
    if (!origin) return cuts;
    for (auto event = FirstPlanned(*origin);
         event != plan_.events.end() && event->origin == *origin; ++event) {
      if (event->cut) cuts.push_back(&*event->cut);
    }
    return cuts;
  }

  bool IsWhole(const check::Finding& finding) const {
    const std::vector<const PlannedCut*> cuts = CutsOf(finding);
    return std::any_of(cuts.begin(), cuts.end(), [](const PlannedCut* cut) { return cut->whole; });
  }

  bool KeepsGains(const check::Finding& finding) const {
    const std::vector<const PlannedCut*> cuts = CutsOf(finding);
    return std::any_of(cuts.begin(), cuts.end(),
                       [](const PlannedCut* cut) { return cut->keepsGainLines; });
  }

  std::string ChannelText(const check::Finding& finding) const {
    const std::vector<const PlannedCut*> cuts = CutsOf(finding);
    if (cuts.empty() || IsWhole(finding)) return {};
    if (cuts.size() == 1) return "Made a mono cut of a mono file.";
    return "Split into " + Counted(cuts.size(), "mono cut") + " of mono files.";
  }

  std::string RateText() const {
    const field::TimeRates rates = RatesOf(plan_.form);
    char text[96];
    std::snprintf(text, sizeof text, "%.10g Hz and %.5g%s frames", rates.sampleRate,
                  rates.FrameRate(), rates.dropFrame ? " drop" : "");
    return text;
  }

  /// Where the first line of an event stands in the text: line and column, both from 1.
  struct EventStart {
    std::pair<std::int64_t, std::int64_t> place;
    std::size_t origin;  ///< position in Project::events
  };

  static std::vector<EventStart> StartsOf(const field::Project& project) {
    const field::TextPlaces places(project.tree.file);
    std::vector<EventStart> starts;
    starts.reserve(project.events.size());
    for (std::size_t i = 0; i < project.events.size(); ++i) {
      const std::size_t label =
          project.tree.OffsetOf(project.tree.entries[project.events[i].place].label);
      const field::TextPlace at = places.At(label > 0 ? label - 1 : 0);
      starts.push_back({{at.line, at.column}, i});
    }
    std::sort(starts.begin(), starts.end(),
              [](const EventStart& a, const EventStart& b) { return a.place < b.place; });
    return starts;
  }

  const check::CheckedProject& checked_;
  const PrepareOptions& options_;
  const Plan& plan_;
  const std::vector<EventStart> eventStarts_;                   ///< by place
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
