// What the system's readers of sources and events ask of each label. They stop at the first line
// that fails; a check has to find all of them.

#include "Check/Requirements.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "Field/Keyword.h"
#include "Timecode/AdlTime.h"

namespace velmora::check {
namespace {

enum class Part { Source, Edit, Alternative, Fade, Other };

struct Need {
  std::string_view label;
  std::size_t values;
  Part part;
};

constexpr auto kNeeds = std::to_array<Need>({
    {"Entry", 1, Part::Other},
    {"Cut", 8, Part::Edit},
    {"Rem", 0, Part::Other},
    {"Infade", 5, Part::Fade},
    {"Outfade", 5, Part::Fade},
    {"Gain", 2, Part::Other},
    {"Silence", 4, Part::Edit},
    {"Aux", 4, Part::Edit},
    {"Vid", 4, Part::Edit},
    {"Alt", 4, Part::Alternative},
    {"Xfade", 6, Part::Other},
    {"Index", 1, Part::Source},
    {"F", 4, Part::Source},
    {"T", 5, Part::Source},
});

const Need* NeedOf(std::string_view label) {
  const auto found = std::find_if(kNeeds.begin(), kNeeds.end(), [label](const Need& need) {
    return field::IsKeyword(need.label, label);
  });
  return found != kNeeds.end() ? &*found : nullptr;
}

Fault FaultOfLength(const char* length) {
  if (length == nullptr) return Fault::FadeForm;
  if (AdlIsTimestamp(length)) return Fault::None;
  constexpr std::size_t kSeparatorAt = 8;
  std::string text(length, strnlen(length, kTimestampLength));
  if (text.size() < kTimestampLength) return Fault::FadeForm;
  text[kSeparatorAt] = ';';
  return AdlIsTimestamp(text.c_str()) ? Fault::FadeSeparator : Fault::FadeForm;
}

}  // namespace

std::size_t ValuesNeeded(std::string_view label) {
  const Need* const need = NeedOf(label);
  return need != nullptr ? need->values : 0;
}

Fault SourceIndexRules::Take(const LabelLine& line) {
  if (field::IsKeyword(line.label, "Index")) {
    indexSeen_ = true;
    return line.valueCount == 0 ? Fault::IndexMissing : Fault::None;
  }
  const Need* const need = indexSeen_ ? NeedOf(line.label) : nullptr;
  const bool isShort =
      need != nullptr && need->part == Part::Source && line.valueCount < need->values;
  return isShort ? Fault::ValuesMissing : Fault::None;
}

Fault EventListRules::Take(const LabelLine& line) {
  kept_ = true;
  if (field::IsKeyword(line.label, "Entry")) {
    entrySeen_ = true;
    editSeen_ = false;
    return line.valueCount == 0 ? Fault::IndexMissing : Fault::None;
  }
  const Need* const need = entrySeen_ ? NeedOf(line.label) : nullptr;
  const bool isEdit =
      need != nullptr && (need->part == Part::Edit || need->part == Part::Alternative);
  kept_ = need != nullptr && need->part != Part::Source && !(isEdit && editSeen_);
  if (!kept_) return Fault::None;
  if (line.valueCount < need->values) return Fault::ValuesMissing;
  // An alternative is no edit in its own right: the next edit may take its place.
  if (isEdit) editSeen_ = need->part == Part::Edit;
  return need->part == Part::Fade ? FaultOfLength(line.first) : Fault::None;
}

}  // namespace velmora::check
