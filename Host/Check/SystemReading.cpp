#include "Check/SystemReading.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <numeric>

#include "ADL/AdlScanner.h"
#include "Base/Text.h"

namespace velmora::check {
namespace {

LabelLine LineOf(const AES31Entry& entry) {
  return {.label = entry.label,
          .valueCount = entry.values.size(),
          .first = entry.values.empty() ? nullptr : entry.values[0]};
}

std::int32_t NumberOf(const AES31Entry& entry) {
  return entry.values.empty() ? 0 : ToInt32(entry.values[0]);
}

/// Marks, from `first` on, all but the last of those that share a number. Answers the kept ones by
/// rising number.
template <class Record>
std::vector<std::size_t> KeepLastOfEach(std::vector<Record>& records, std::size_t first) {
  std::vector<std::size_t> order(records.size() - first);
  std::iota(order.begin(), order.end(), first);
  const auto rises = [&records](std::size_t a, std::size_t b) {
    return records[a].number < records[b].number;
  };
  if (!std::is_sorted(order.begin(), order.end(), rises)) {
    std::stable_sort(order.begin(), order.end(), rises);
  }
  std::vector<std::size_t> kept;
  kept.reserve(order.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    const bool replaced =
        i + 1 < order.size() && records[order[i]].number == records[order[i + 1]].number;
    records[order[i]].kept = !replaced;
    if (!replaced) kept.push_back(order[i]);
  }
  return kept;
}

}  // namespace

SystemReading::SystemReading(std::string_view bytes)
    : block_(new char[bytes.size() + 1]), blockEnd_(block_.get() + bytes.size()) {
  std::memcpy(block_.get(), bytes.data(), bytes.size());
  *blockEnd_ = '\0';
}

void SystemReading::Read() {
  std::vector<std::vector<AES31Section>> refLists;
  std::vector<const char*> comments;
  AdlScanner(block_.get(), blockEnd_, refLists, comments).Scan(sections_);

  for (AES31Section& section : sections_) {
    for (const AES31Entry& line : section.entries) lines_.push_back(&line);
    if (EqualsIgnoringCase(section.name, "SOURCE_INDEX")) TakeSources(section);
    if (EqualsIgnoringCase(section.name, "EVENT_LIST")) TakeEvents(section);
  }
  byNumber_ = KeepLastOfEach(sources_, 0);
}

void SystemReading::TakeSources(AES31Section& section) {
  SourceIndexRules rules;
  bool indexSeen = false;
  for (const AES31Entry& line : section.entries) {
    const Fault fault = rules.Take(LineOf(line));
    if (fault != Fault::None) faults_.push_back({&line, fault});
    if (EqualsIgnoringCase(line.label, "Index")) {
      indexSeen = true;
      sources_.push_back({.index = &line, .number = NumberOf(line)});
    } else if (indexSeen && EqualsIgnoringCase(line.label, "F")) {
      sources_.back().file = &line;
    }
  }
}

void SystemReading::TakeEvents(AES31Section& section) {
  const std::size_t first = events_.size();
  EventListRules rules;
  for (const AES31Entry& line : section.entries) {
    const Fault fault = rules.Take(LineOf(line));
    if (fault != Fault::None) faults_.push_back({&line, fault});
    if (!rules.Kept()) continue;
    if (EqualsIgnoringCase(line.label, "Entry")) {
      events_.push_back({.entry = &line, .number = NumberOf(line)});
    } else {
      TakeLine(events_.back(), line);
    }
  }
  KeepLastOfEach(events_, first);  // numbers are keys within one section
}

void SystemReading::TakeLine(SystemEvent& event, const AES31Entry& line) {
  if (EqualsIgnoringCase(line.label, "Infade")) {
    event.infade = &line;
  } else if (EqualsIgnoringCase(line.label, "Outfade")) {
    event.outfade = &line;
  } else if (EqualsIgnoringCase(line.label, "Gain")) {
    event.gain = &line;
  } else if (event.edit == nullptr && !EqualsIgnoringCase(line.label, "Alt") &&
             !EqualsIgnoringCase(line.label, "Rem") && !EqualsIgnoringCase(line.label, "Xfade")) {
    event.edit = &line;
  }
}

const AES31Entry* SystemReading::LineAt(std::size_t offset, std::size_t& hint) const {
  const char* const label = block_.get() + offset;
  if (hint < lines_.size() && lines_[hint]->label == label) return lines_[hint++];
  const auto at = std::lower_bound(
      lines_.begin(), lines_.end(), label,
      [](const AES31Entry* line, const char* place) { return std::less<>()(line->label, place); });
  if (at == lines_.end() || (*at)->label != label) return nullptr;
  hint = static_cast<std::size_t>(at - lines_.begin()) + 1;
  return *at;
}

const SystemEvent* SystemReading::EventOf(const AES31Entry* entry) const {
  if (entry == nullptr) return nullptr;
  const auto at = std::lower_bound(events_.begin(), events_.end(), entry->label,
                                   [](const SystemEvent& event, const char* place) {
                                     return std::less<>()(event.entry->label, place);
                                   });
  return at != events_.end() && at->entry == entry ? &*at : nullptr;
}

const SystemSource* SystemReading::SourceOf(std::int32_t number) const {
  const auto at =
      std::lower_bound(byNumber_.begin(), byNumber_.end(), number,
                       [this](std::size_t i, std::int32_t n) { return sources_[i].number < n; });
  return at != byNumber_.end() && sources_[*at].number == number ? &sources_[*at] : nullptr;
}

}  // namespace velmora::check
