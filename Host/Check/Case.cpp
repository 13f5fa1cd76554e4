#include "Check/Case.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace velmora::check {
namespace {

constexpr std::size_t kShownBytes = 160;

bool StandsBefore(const FaultyLine& a, const FaultyLine& b) {
  return a.offset < b.offset;
}

}  // namespace

Case::Case(const field::Project& fieldProject, const SourceMediaList& sourceMedia,
           const CheckOptions& checkOptions, std::string projectFolder, SystemReading systemReading)
    : project(fieldProject),
      media(sourceMedia),
      options(checkOptions),
      folder(std::move(projectFolder)),
      system(std::move(systemReading)),
      used_(fieldProject.sources.size()) {
  seen_.reserve(project.tree.entries.size());
  std::size_t hint = 0;
  for (const field::Entry& entry : project.tree.entries) {
    seen_.push_back(system.LineAt(project.tree.OffsetOf(entry.label), hint));
  }
  for (const field::Event& event : project.events) {
    if (IsLive(event) && event.source) used_[*event.source] = true;
  }
  FindFaultyLines();
}

void Case::FindFaultyLines() {
  const bool seesAll = std::find(seen_.begin(), seen_.end(), nullptr) == seen_.end();
  if (seesAll && system.Faults().empty()) return;
  faultyLines_.reserve(system.Faults().size());
  for (const SystemFault& fault : system.Faults()) {
    const std::size_t letter = system.OffsetOf(fault.line->label);
    faultyLines_.push_back({.fault = fault.fault,
                            .offset = static_cast<std::uint32_t>(letter > 0 ? letter - 1 : 0),
                            .place = std::nullopt,
                            .label = fault.line->label});
  }
  FindFaultyLines<SourceIndexRules>("SOURCE_INDEX");
  FindFaultyLines<EventListRules>("EVENT_LIST");
  if (std::is_sorted(faultyLines_.begin(), faultyLines_.end(), StandsBefore)) return;
  std::stable_sort(faultyLines_.begin(), faultyLines_.end(), StandsBefore);
}

/// Lines that the system sees have been judged by its own reading, and only learn their place here.
/// All others are held against the same rules.
template <class Rules>
void Case::FindFaultyLines(std::string_view section) {
  const auto firstOwn = static_cast<std::ptrdiff_t>(system.Faults().size());
  Rules rules;
  ForEachLine(section, [&](field::EntryPlace place) {
    const field::Value* const first = ValueAt(place, 0);
    const std::string text(first != nullptr ? RawOf(*first) : std::string_view());
    const Fault fault = rules.Take({.label = Line(place).label,
                                    .valueCount = Line(place).valueCount,
                                    .first = first != nullptr ? text.c_str() : nullptr});
    const FaultyLine line = {fault, static_cast<std::uint32_t>(LabelOffset(place)), place,
                             Line(place).label};
    if (System(place) == nullptr) {
      if (fault != Fault::None) faultyLines_.push_back(line);
      return;
    }
    const auto end = faultyLines_.begin() + firstOwn;
    const auto known = std::lower_bound(faultyLines_.begin(), end, line, StandsBefore);
    if (known != end && known->offset == line.offset) known->place = place;
  });
}

bool Case::IsCutOffCut(std::optional<field::EntryPlace> place) const {
  return project.tree.cutOff && place && place == project.tree.cutEntry &&
         field::IsKeyword(Line(*place).label, "Cut") &&
         Line(*place).valueCount < ValuesNeeded("Cut");
}

const field::Value* Case::ValueAt(field::EntryPlace place, std::size_t i) const {
  const std::span<const field::Value> values = Values(place);
  return i < values.size() ? &values[i] : nullptr;
}

std::size_t Case::LabelOffset(field::EntryPlace place) const {
  const std::size_t letter = OffsetOf(place);
  return letter > 0 ? letter - 1 : 0;
}

std::size_t Case::ValueOffset(field::EntryPlace place, std::size_t i) const {
  const field::Value* const value = ValueAt(place, i);
  if (value == nullptr) return LabelOffset(place);
  const std::size_t offset = project.tree.OffsetOf(value->text);
  return value->quoted && offset > 0 ? offset - 1 : offset;
}

std::string Case::Show(field::EntryPlace place, std::size_t i) const {
  std::string text = "(" + Show(Line(place).label) + ")";
  const field::Value* const value = ValueAt(place, i);
  return value != nullptr ? text + " " + Show(RawOf(*value)) : text;
}

std::string Case::ShowPath(const std::string& path) const {
  return path.starts_with(folder + '/') ? path.substr(folder.size() + 1) : path;
}

std::string Case::Show(field::EntryPlace place) const {
  std::string text = "(" + Show(Line(place).label) + ")";
  for (const field::Value& value : Values(place)) {
    if (text.size() > kShownBytes) return text + " ...";
    text += " " + Show(RawOf(value));
  }
  return text;
}

std::string Case::Show(std::string_view piece) const {
  piece = piece.substr(0, piece.find_last_not_of(" \t\r\n") + 1);
  const bool isLong = piece.size() > kShownBytes;
  const field::Value value{piece.substr(0, kShownBytes), false};
  return project.TextOf(value) + (isLong ? "..." : "");
}

bool Case::SeesValue(field::EntryPlace place, std::size_t i) const {
  const AES31Entry* const line = System(place);
  const field::Value* const value = ValueAt(place, i);
  if (line == nullptr) return false;
  if (value == nullptr || i >= line->values.size()) {
    return value == nullptr && i >= line->values.size();
  }
  const std::string_view raw = RawOf(*value);
  const char* const text = line->values[i];
  return std::strncmp(text, raw.data(), raw.size()) == 0 && text[raw.size()] == '\0';
}

std::string Case::SystemText(field::EntryPlace place, std::size_t i) const {
  const AES31Entry* const line = System(place);
  if (line != nullptr) return i < line->values.size() ? line->values[i] : "";
  const field::Value* const value = ValueAt(place, i);
  return value != nullptr ? std::string(RawOf(*value)) : "";
}

Place Case::AtEdit(std::size_t event) const {
  const field::Event& meant = project.events[event];
  return {.offset = LabelOffset(meant.edit.value_or(meant.place)), .event = event};
}

}  // namespace velmora::check
