#include "Prepare/ProjectText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "Base/Text.h"
#include "Field/EntryTexts.h"
#include "Field/FieldHeader.h"
#include "Prepare/AdlText.h"
#include "Prepare/Remarks.h"
#include "Prepare/ValueTexts.h"

namespace velmora::prepare {
namespace {

using Values = ValueTexts::Values;

bool Is(std::string_view text, const char* word) {
  return EqualsIgnoringCase(std::string(text).c_str(), word);
}

/// Labels of an event with the number of values that the system asks for.
struct EventLabel {
  const char* label;
  std::size_t fewestValues;
};
constexpr auto kEventLabels = std::to_array<EventLabel>({
    {"Silence", 4},
    {"Aux", 4},
    {"Vid", 4},
    {"Alt", 4},
    {"Xfade", 6},
});
constexpr std::size_t kFewestFadeValues = 5;
constexpr std::size_t kFewestTimecodeValues = 5;  // of (T)

std::string Number(std::int64_t number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04lld", static_cast<long long>(number));
  return text.data();
}

std::string Decibels(double dB) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), dB).ptr;
  return {text.data(), end};
}

std::string Run(const field::ChannelRun& run) {
  const std::string first = std::to_string(run.first);
  return run.last > run.first ? first + '~' + std::to_string(run.last) : first;
}

class ProjectWriter {
 public:
  ProjectWriter(const check::CheckedProject& checked, const Plan& plan)
      : project_(*checked.project),
        tree_(project_.tree),
        plan_(plan),
        texts_(project_, plan.form),
        remarks_(tree_) {}

  std::string Write() {
    const std::vector<std::size_t> written = WrittenSections();
    const std::size_t end = tree_.sections.size();
    WriteRemarks(remarks_.Before(written.empty() ? end : written.front()));
    for (std::size_t i = 0; i < written.size(); ++i) {
      WriteSection(written[i], i + 1 < written.size() ? written[i + 1] : end);
    }
    LeaveReferenceList();
    return text_.Finish();
  }

 private:
  /// All but labels outside of every section, which nothing reads, and further lists of sources and
  /// events: those go into the first.
  std::vector<std::size_t> WrittenSections() const {
    std::vector<std::size_t> written;
    bool hasSources = false;
    bool hasEvents = false;
    for (std::size_t i = 0; i < tree_.sections.size(); ++i) {
      const field::Section& section = tree_.sections[i];
      if (section.name.empty()) continue;
      if (IsSources(section) && std::exchange(hasSources, true)) continue;
      if (IsEvents(section) && std::exchange(hasEvents, true)) continue;
      written.push_back(i);
    }
    return written;
  }

  static bool IsSources(const field::Section& section) {
    return !section.inReferenceList && field::IsSourceIndex(section.name);
  }
  static bool IsEvents(const field::Section& section) {
    return !section.inReferenceList && field::IsEventList(section.name);
  }

  void WriteSection(std::size_t place, std::size_t next) {
    const field::Section& section = tree_.sections[place];
    EnterOrLeaveReferenceList(section);
    text_.OpenSection(section.name);
    WriteRemarks(remarks_.Between(place, next));
    if (IsSources(section)) {
      WriteSources();
    } else if (IsEvents(section)) {
      WriteEvents();
    } else {
      WriteKept(section);
    }
    text_.CloseSection();
  }

  void WriteRemarks(std::span<const std::string_view> remarks) {
    for (const std::string_view remark : remarks) text_.Comment(project_.TextOf({remark, false}));
  }

  // Sections that are carried over.

  void EnterOrLeaveReferenceList(const field::Section& section) {
    if (!section.inReferenceList) {
      LeaveReferenceList();
      return;
    }
    std::string name = AdlText::SectionName(section.name);
    if (!inReferences_) {
      text_.Tag("REF_LIST");
      text_.Tag("REF");
      inReferences_ = true;
    } else if (referenceNames_.contains(name)) {
      // One reference has one section of a name: this is the next one's.
      text_.Tag("/REF");
      text_.Tag("REF");
      referenceNames_.clear();
    }
    referenceNames_.insert(std::move(name));
  }

  void LeaveReferenceList() {
    if (!std::exchange(inReferences_, false)) return;
    text_.Tag("/REF");
    text_.Tag("/REF_LIST");
    referenceNames_.clear();
  }

  void WriteKept(const field::Section& section) {
    for (const field::Entry& entry : tree_.EntriesOf(section)) {
      const std::span<const field::Value> values = tree_.ValuesOf(entry);
      if (const auto rate = section.inReferenceList ? std::nullopt : texts_.OtherRate(entry)) {
        text_.Line(entry.label, {*rate});
      } else if (entry.counted && !values.empty()) {
        text_.CountedLine(entry.label, project_.TextOf(values.front()));
      } else if (!section.inReferenceList && IsConstants(section)) {
        text_.Line(entry.label, texts_.ConstantValues(entry, field::IsProjectHeader(section.name)));
      } else {
        text_.Line(entry.label, texts_.ValuesOf(entry));
      }
    }
  }

  // Sources.

  std::span<const field::Entry> Entries(field::EntryPlace first, field::EntryPlace end) const {
    return std::span(tree_.entries).subspan(first, end > first ? end - first : 0);
  }

  /// The section of an entry, or its piece where another stands inside it.
  const field::Section& SectionAt(field::EntryPlace place) const {
    const auto after = std::upper_bound(tree_.sections.begin(), tree_.sections.end(), place,
                                        [](field::EntryPlace at, const field::Section& section) {
                                          return at < section.firstEntry;
                                        });
    return *std::prev(after);
  }

  /// The entries of a source: those up to the next (Index), within its section.
  std::span<const field::Entry> EntriesOf(const field::Source& source) const {
    const field::Section& section = SectionAt(source.place);
    const field::EntryPlace end = section.firstEntry + section.entryCount;
    field::EntryPlace next = source.place + 1;
    while (next < end && !Is(tree_.entries[next].label, "Index")) ++next;
    return Entries(source.place, next);
  }

  void WriteSources() {
    for (const PlannedSource& source : plan_.sources) {
      text_.Line("Index", {Number(source.index)});
      WriteFileLine(source);
      for (const field::Entry& entry : EntriesOf(project_.sources[source.origin])) {
        if (Is(entry.label, "F") || Is(entry.label, "Index")) continue;
        const bool timecode = Is(entry.label, "T");
        text_.Line(entry.label, timecode ? texts_.StampedValuesOf(entry, kFewestTimecodeValues)
                                         : texts_.ValuesOf(entry));
      }
    }
  }

  void WriteFileLine(const PlannedSource& source) {
    const field::Source& origin = project_.sources[source.origin];
    field::SourceTexts texts;
    if (origin.fPlace) texts = ReadSourceTexts(tree_, tree_.entries[*origin.fPlace]);
    Values values = {AdlText::Quoted(LocationOf(source)),
                     source.hidesFacts ? "_" : texts_.TextOr(texts.reference),
                     texts_.Stamp(source.fileStart), LengthOf(source)};
    // In the file they may stand on two lines.
    const bool wouldJoin = texts.last.IsThere() && !field::IsMark(texts.last);
    if (wouldJoin && texts.name.IsGiven()) texts.name.quoted = true;
    if (texts.name.IsThere()) values.push_back(texts_.Text(texts.name));
    if (texts.last.IsThere()) values.push_back(texts_.Text(texts.last));
    text_.Line("F", values);
  }

  std::string LocationOf(const PlannedSource& source) const {
    if (!source.file) return project_.sources[source.origin].location;
    // The system looks for the location's ends below the project's folder: this is Audio/NAME.
    return "URL:file://localhost/Audio/" + plan_.files[*source.file].name;
  }

  std::string LengthOf(const PlannedSource& source) const {
    std::optional<std::int64_t> length = project_.sources[source.origin].length;
    if (source.file && (source.ownLength || !length)) length = plan_.files[*source.file].frames;
    return length && !source.hidesFacts ? texts_.Stamp(*length) : "_";
  }

  // Events.

  void WriteEvents() {
    for (const PlannedEvent& event : plan_.events) {
      text_.Line("Entry", {Number(event.number)});
      const field::Event& origin = project_.events[event.origin];
      if (event.cut) WriteCut(*event.cut, origin);
      WriteEventLines(origin, event.cut ? &*event.cut : nullptr);
    }
  }

  /// An event goes on after a section that stands inside its list.
  void WriteEventLines(const field::Event& origin, const PlannedCut* cut) {
    for (field::EntryPlace at = origin.place; at < origin.endPlace;) {
      const field::Section& section = SectionAt(at);
      const field::EntryPlace end =
          std::min(section.firstEntry + section.entryCount, origin.endPlace);
      if (field::IsEventList(section.name)) {
        for (const field::Entry& entry : Entries(at, end)) {
          if (!Is(entry.label, "Entry")) WriteEventLine(entry, cut);
        }
      }
      at = end;
    }
  }

  void WriteCut(const PlannedCut& cut, const field::Event& origin) {
    field::CutTexts texts;
    if (origin.edit) texts = ReadCutTexts(tree_, tree_.entries[*origin.edit]);
    text_.Line("Cut", {texts.sourceType.IsGiven() ? texts_.Text(texts.sourceType) : "I",
                       std::to_string(cut.sourceIndex), Run(cut.sourceChannels), Run(cut.tracks),
                       texts_.Stamp(cut.sourceIn), texts_.Stamp(cut.position),
                       texts_.Stamp(cut.end), std::string(1, origin.status)});
    if (origin.fadeIn) WriteFade("Infade", *origin.fadeIn, cut.fadeIn);
    if (origin.fadeOut) WriteFade("Outfade", *origin.fadeOut, cut.fadeOut);
    if (cut.gainDb && !cut.keepsGainLines && std::isfinite(*cut.gainDb)) {
      text_.Line("Gain", {"_", Decibels(*cut.gainDb)});
    }
  }

  void WriteFade(const char* label, const field::Fade& fade, std::optional<std::int64_t> length) {
    const std::optional<std::string> stamp = length ? texts_.FadeLength(*length) : std::nullopt;
    if (!stamp) return;
    const field::FadeTexts texts = ReadFadeTexts(tree_, tree_.entries[fade.place]);
    Values values = {*stamp, texts_.TextOr(texts.shape)};
    for (const field::Value& level : texts.levels) values.push_back(texts_.TextOr(level));
    if (texts.renderedType.IsThere()) {
      values.push_back(texts_.Text(texts.renderedType));
      values.push_back(texts_.TextOr(texts.renderedIndex));
      const std::optional<std::int64_t> in =
          texts.renderedIn.IsThere() ? texts_.TimeOf(texts.renderedIn) : std::nullopt;
      values.push_back(in ? texts_.Stamp(*in) : texts_.TextOr(texts.renderedIn));
    }
    text_.Line(label, values);
  }

  /// A line of an event other than those that WriteCut has written.
  void WriteEventLine(const field::Entry& entry, const PlannedCut* cut) {
    if (cut != nullptr) {
      const bool written =
          Is(entry.label, "Cut") || Is(entry.label, "Infade") || Is(entry.label, "Outfade");
      if (written) return;
      if (Is(entry.label, "Gain") && !cut->keepsGainLines) return;
    }
    if (Is(entry.label, "Infade") || Is(entry.label, "Outfade")) {
      WriteFadeOfOther(entry);
      return;
    }
    if (Is(entry.label, "Rem") && entry.counted) {
      text_.CountedLine(entry.label, project_.TextOf(tree_.ValuesOf(entry).front()));
      return;
    }
    if (Is(entry.label, "Rem")) {
      const field::Value name = ReadNameText(tree_, entry);
      const Values named = {"NAME", name.IsGiven() ? AdlText::Quoted(project_.TextOf(name)) : ""};
      text_.Line(entry.label, name.IsGiven() ? named : texts_.ValuesOf(entry));
      return;
    }
    text_.Line(entry.label, texts_.StampedValuesOf(entry, FewestValues(entry)));
  }

  static std::size_t FewestValues(const field::Entry& entry) {
    if (Is(entry.label, "Gain")) return 2;
    for (const EventLabel& row : kEventLabels) {
      if (Is(entry.label, row.label)) return row.fewestValues;
    }
    return 0;
  }

  /// A fade of an event that is no cut. Without a length it would fail the load.
  void WriteFadeOfOther(const field::Entry& entry) {
    const std::span<const field::Value> given = tree_.ValuesOf(entry);
    const std::optional<std::int64_t> length =
        given.empty() ? std::nullopt : texts_.TimeOf(given.front());
    const std::optional<std::string> stamp = length ? texts_.FadeLength(*length) : std::nullopt;
    if (!stamp) return;
    Values values = texts_.StampedValuesOf(entry, kFewestFadeValues);
    values[0] = *stamp;
    text_.Line(entry.label, values);
  }

  const field::Project& project_;
  const field::Tree& tree_;
  const Plan& plan_;
  ValueTexts texts_;
  Remarks remarks_;
  AdlText text_;
  bool inReferences_ = false;
  std::set<std::string> referenceNames_;
};

}  // namespace

std::string WriteProject(const check::CheckedProject& checked, const Plan& plan) {
  return ProjectWriter(checked, plan).Write();
}

}  // namespace velmora::prepare
