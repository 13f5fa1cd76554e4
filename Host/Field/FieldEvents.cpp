// The EVENT_LIST: (Entry) opens an event, and all up to the next (Entry) belongs to it.

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

#include "Field/EntryTexts.h"
#include "Field/FieldHeader.h"
#include "Field/Keyword.h"
#include "Field/NumberText.h"
#include "Field/ProjectReader.h"
#include "Field/SourceNames.h"

namespace velmora::field {
namespace {

/// Writers without a rendered file fill its places with `_` and 0.
bool NamesRenderedFile(const FadeTexts& fade) {
  if (!fade.renderedIndex.IsGiven()) return false;
  return fade.renderedType.IsGiven() || fade.renderedIn.IsGiven() ||
         ReadNumber(fade.renderedIndex.text) != 0;
}

enum class LineKind { Entry, Cut, Silence, Aux, Vid, Infade, Outfade, Gain, Rem, Other };

struct LineForm {
  std::string_view label;
  LineKind kind;
};

constexpr auto kLineForms = std::to_array<LineForm>({
    {"Entry", LineKind::Entry},
    {"Cut", LineKind::Cut},
    {"Infade", LineKind::Infade},
    {"Outfade", LineKind::Outfade},
    {"Rem", LineKind::Rem},
    {"Gain", LineKind::Gain},
    {"Silence", LineKind::Silence},
    {"Aux", LineKind::Aux},
    {"Vid", LineKind::Vid},
});

LineKind KindOf(std::string_view label) {
  for (const LineForm& form : kLineForms) {
    if (IsKeyword(label, form.label)) return form.kind;
  }
  return LineKind::Other;
}

/// Reads the events of a project, one label after another.
class EventReader {
 public:
  EventReader(ProjectReader& reader, Project& project)
      : reader_(reader), project_(project), tree_(project.tree), names_(project.sources) {
    sources_.reserve(project.sources.size());
    for (std::size_t i = 0; i < project.sources.size(); ++i) {
      sources_.emplace(project.sources[i].index, i);
    }
    std::size_t count = 0;
    ForEachEntryOf(tree_, IsEventList, [&count](const Entry& entry, EntryPlace, bool) {
      count += IsKeyword(entry.label, "Entry") ? 1 : 0;
      return true;
    });
    project.events.reserve(count);
  }

  void Take(const Entry& entry, EntryPlace place) {
    const LineKind kind = KindOf(entry.label);
    if (kind == LineKind::Entry) {
      OpenEntry(entry, place);
    } else if (kind == LineKind::Cut && (!open_ || Last().edit)) {
      OpenFurtherCut(place);
    }
    if (!open_) return;
    Last().endPlace = place + 1;
    TakeLine(kind, entry, place);
  }

  /// A new section: what stands before its first (Entry) belongs to none.
  void EndEntry() { open_ = false; }

 private:
  Event& Last() { return project_.events.back(); }

  void OpenEntry(const Entry& entry, EntryPlace place) {
    ++entriesSeen_;
    const std::optional<LeadingNumber> number = ReadLeadingNumber(ValueAt(tree_, entry, 0).text);
    Event& event = project_.events.emplace_back();
    event.number = number ? number->number : entriesSeen_;
    event.numberMissing = !number;
    event.place = place;
    open_ = true;
  }

  /// A second (Cut) after one (Entry), or one without any.
  void OpenFurtherCut(EntryPlace place) {
    if (!open_) ++entriesSeen_;
    const std::int32_t number = open_ ? Last().number : entriesSeen_;
    const bool missing = open_ ? Last().numberMissing : true;
    Event& event = project_.events.emplace_back();
    event.number = number;
    event.numberMissing = missing;
    event.place = place;
    open_ = true;
  }

  void TakeLine(LineKind kind, const Entry& entry, EntryPlace place) {
    switch (kind) {
      case LineKind::Cut:
        TakeCut(entry, place);
        break;
      case LineKind::Silence:
        TakeEdit(EventKind::Silence, place);
        break;
      case LineKind::Aux:
        TakeEdit(EventKind::Aux, place);
        break;
      case LineKind::Vid:
        TakeEdit(EventKind::Video, place);
        break;
      case LineKind::Infade:
        Last().fadeInPlace = place;
        Last().fadeIn = ReadFade(entry, place);
        break;
      case LineKind::Outfade:
        Last().fadeOutPlace = place;
        Last().fadeOut = ReadFade(entry, place);
        break;
      case LineKind::Gain:
        TakeGain(entry, place);
        break;
      case LineKind::Rem:
        TakeRemark(entry);
        break;
      case LineKind::Entry:
      case LineKind::Other:
        break;
    }
  }

  /// Of several edits the first counts.
  void TakeEdit(EventKind kind, EntryPlace place) {
    if (Last().edit) return;
    Last().edit = place;
    Last().kind = kind;
  }

  void TakeCut(const Entry& entry, EntryPlace place) {
    TakeEdit(EventKind::Cut, place);
    Event& event = Last();
    const CutTexts cut = ReadCutTexts(tree_, entry);
    LinkSource(event, cut.index);
    event.sourceChannels = ReadChannelRun(cut.sourceChannels.text);
    event.tracks = ReadChannelRun(cut.destinationChannels.text);
    event.status = ReadStatus(cut.status.text);
    const auto in = reader_.ReadSamples(cut.sourceIn, TimeRole::Cut);
    const auto position = reader_.ReadSamples(cut.destinationIn, TimeRole::Cut);
    const auto end = reader_.ReadSamples(cut.destinationOut, TimeRole::Cut);
    event.sourceIn = in.value_or(0);
    event.position = position.value_or(0);
    event.end = end.value_or(0);
    event.complete = in && position && end && !IsCut(entry, place);
  }

  /// The text's end cuts the last time that the line has, or may do so.
  [[nodiscard]] bool IsCut(const Entry& entry, EntryPlace place) const {
    if (tree_.cutEntry != place || !tree_.cutInsideValue) return false;
    constexpr std::size_t kTimestampLength = 16;
    constexpr std::uint32_t kUpToLastTime = 7;
    const Value last = tree_.ValuesOf(entry).back();
    return entry.valueCount <= kUpToLastTime && last.text.size() < kTimestampLength;
  }

  void LinkSource(Event& event, const Value& index) {
    if (!index.IsGiven()) return;
    event.sourceIndex = ReadNumber(index.text);
    event.indexIsName = !event.sourceIndex;
    if (event.indexIsName) {
      event.source = names_.Find(reader_.ReadText(index));
      return;
    }
    const auto found = sources_.find(*event.sourceIndex);
    if (found != sources_.end()) event.source = found->second;
  }

  std::optional<Fade> ReadFade(const Entry& entry, EntryPlace place) {
    const FadeTexts texts = ReadFadeTexts(tree_, entry);
    const std::optional<std::int64_t> length = reader_.ReadSamples(texts.length, TimeRole::Fade);
    if (!length || *length <= 0) return std::nullopt;
    Fade fade;
    fade.place = place;
    fade.length = *length;
    fade.shape = reader_.ReadText(texts.shape);
    for (std::size_t i = 0; i < fade.levelsDb.size(); ++i) {
      if (texts.levels[i].IsGiven()) fade.levelsDb[i] = ReadDecibels(texts.levels[i].text);
    }
    if (NamesRenderedFile(texts)) {
      std::string source = reader_.ReadText(texts.renderedType);
      if (!source.empty()) source += ' ';
      source += reader_.ReadText(texts.renderedIndex);
      fade.rendered =
          Rendered{std::move(source), reader_.ReadSamples(texts.renderedIn, TimeRole::Fade)};
    }
    return fade;
  }

  void TakeGain(const Entry& entry, EntryPlace place) {
    const GainTexts texts = ReadGainTexts(tree_, entry);
    const std::optional<double> level = ReadDecibels(texts.level.text);
    if (!level) return;
    Gain gain{.place = place, .channels = {}, .dB = *level};
    if (texts.channels.IsGiven()) gain.channels = ReadChannelRun(texts.channels.text);
    Last().gains.push_back(gain);
  }

  void TakeRemark(const Entry& entry) {
    const Value name = ReadNameText(tree_, entry);
    if (name.IsGiven()) Last().name = reader_.ReadText(name);
  }

  ProjectReader& reader_;
  Project& project_;
  const Tree& tree_;
  SourceNames names_;
  std::unordered_map<std::int32_t, std::size_t> sources_;  ///< by index, the place in the list
  std::int32_t entriesSeen_ = 0;
  bool open_ = false;
};

/// By rising number, events of one number in file order.
void SortByNumber(std::vector<Event>& events) {
  const auto isBefore = [](const Event& a, const Event& b) { return a.number < b.number; };
  if (std::is_sorted(events.begin(), events.end(), isBefore)) return;
  std::stable_sort(events.begin(), events.end(), isBefore);
}

}  // namespace

std::optional<double> Event::GainOf(std::int32_t destinationChannel) const {
  for (auto gain = gains.rbegin(); gain != gains.rend(); ++gain) {
    const auto& channels = gain->channels;
    if (!channels ||
        (channels->first <= destinationChannel && destinationChannel <= channels->last)) {
      return gain->dB;
    }
  }
  return std::nullopt;
}

void ProjectReader::ReadEvents() {
  EventReader reader(*this, project_);
  ForEachEntryOf(project_.tree, IsEventList,
                 [&reader](const Entry& entry, EntryPlace place, bool first) {
                   if (first) reader.EndEntry();
                   reader.Take(entry, place);
                   return true;
                 });
  SortByNumber(project_.events);
}

}  // namespace velmora::field
