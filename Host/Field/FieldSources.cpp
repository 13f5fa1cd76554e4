// The SOURCE_INDEX: (Index) opens a source, and all up to the next (Index) belongs to it.

#include <unordered_map>
#include <utility>

#include "Field/EntryTexts.h"
#include "Field/FieldHeader.h"
#include "Field/Keyword.h"
#include "Field/NumberText.h"
#include "Field/ProjectReader.h"

namespace velmora::field {
namespace {

/// The places of one source, before its values are read.
struct SourceLines {
  std::int32_t index = 0;
  bool numberMissing = false;
  EntryPlace place = 0;
  std::optional<EntryPlace> fPlace;
  bool replaced = false;
};

std::vector<SourceLines> FindSources(const Tree& tree) {
  std::vector<SourceLines> sources;
  bool open = false;
  const auto begin = [&](EntryPlace place, std::optional<LeadingNumber> number) {
    const auto place1 = static_cast<std::int32_t>(sources.size() + 1);
    sources.push_back({number ? number->number : place1, !number, place, {}, false});
    open = true;
  };
  ForEachEntryOf(tree, IsSourceIndex, [&](const Entry& entry, EntryPlace place, bool first) {
    if (first) open = false;
    if (IsKeyword(entry.label, "Index")) {
      begin(place, ReadLeadingNumber(ValueAt(tree, entry, 0).text));
    } else if (IsKeyword(entry.label, "F")) {
      if (!open) begin(place, std::nullopt);
      sources.back().fPlace = place;
    }
    return true;
  });
  return sources;
}

/// Marks each source that a later one with its number replaces.
void MarkReplaced(std::vector<SourceLines>& sources) {
  std::unordered_map<std::int32_t, std::size_t> byNumber;
  byNumber.reserve(sources.size());
  for (std::size_t i = 0; i < sources.size(); ++i) {
    const auto [found, isNew] = byNumber.emplace(sources[i].index, i);
    if (isNew) continue;
    sources[found->second].replaced = true;
    found->second = i;
  }
}

/// Those of the first source that counts and has a time.
std::optional<TimeRates> RatesOfSources(const Project& project,
                                        const std::vector<SourceLines>& sources) {
  for (const SourceLines& source : sources) {
    if (source.replaced || !source.fPlace) continue;
    const SourceTexts texts = ReadSourceTexts(project.tree, project.tree.entries[*source.fPlace]);
    for (const Value& value : {texts.start, texts.length}) {
      if (const std::optional<Time> time = ReadTime(value.text, project.times)) return time->rates;
    }
  }
  return std::nullopt;
}

}  // namespace

void ProjectReader::ReadSources() {
  const Tree& tree = project_.tree;
  std::vector<SourceLines> lines = FindSources(tree);
  MarkReplaced(lines);
  std::optional<TimeRates> rates = RatesOfCuts(project_);
  if (!rates) rates = RatesOfSources(project_, lines);
  if (!rates) rates = RatesOfEvents(project_);
  project_.rates = rates ? *rates : RatesOfHeader(project_);
  project_.sources.reserve(lines.size());
  for (const SourceLines& line : lines) {
    if (line.replaced) {
      project_.replacedSources.push_back(line.place);
      continue;
    }
    Source& source = project_.sources.emplace_back();
    source.index = line.index;
    source.numberMissing = line.numberMissing;
    source.place = line.place;
    source.fPlace = line.fPlace;
    if (!line.fPlace) continue;
    const SourceTexts texts = ReadSourceTexts(tree, tree.entries[*line.fPlace]);
    source.location = ReadText(texts.location);
    source.reference = ReadText(texts.reference);
    source.givenStart = ReadSamples(texts.start, TimeRole::Source);
    source.length = ReadSamples(texts.length, TimeRole::Source);
    source.name = ReadText(texts.name);
    source.fileStart = source.givenStart.value_or(0);
  }
}

}  // namespace velmora::field
