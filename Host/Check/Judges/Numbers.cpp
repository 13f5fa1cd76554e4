// Numbers of sources and entries that are no numbers, or are given twice.

#include <cstdint>
#include <map>
#include <string>

#include "Base/Text.h"
#include "Check/Judges.h"

namespace velmora::check {
namespace {

bool IsNumber(const std::string& text) {
  const std::size_t first = text.find_first_not_of("+-");
  return first != std::string::npos && first <= 1 && text[first] >= '0' && text[first] <= '9';
}

std::string Ordinal(const std::string& what, std::int32_t number) {
  return what + " " + std::to_string(number);
}

void TellNoNumber(const Case& c, Findings& findings, field::EntryPlace place, Severity severity) {
  findings.Add(Code::IndexMissing, severity, {.offset = c.ValueOffset(place, 0)},
               {c.Show(place, 0), "The system reads number 0, which nothing else names.",
                "Write a number there; velmora prepare does it."});
}

/// The source whose (Index) stands at that place; none for one that a later one replaces.
std::map<field::EntryPlace, std::size_t> SourcesByPlace(const Case& c) {
  std::map<field::EntryPlace, std::size_t> sources;
  for (std::size_t i = 0; i < c.project.sources.size(); ++i)
    sources[c.project.sources[i].place] = i;
  return sources;
}

void JudgeIndices(const Case& c, Findings& findings) {
  const std::map<field::EntryPlace, std::size_t> sources = SourcesByPlace(c);
  std::map<std::int32_t, std::size_t> sourceOf;  // by number: the one that counts
  for (const auto& [place, source] : sources) sourceOf[c.project.sources[source].index] = source;
  std::map<std::int32_t, field::EntryPlace> seen;
  c.ForEachLine("SOURCE_INDEX", [&](field::EntryPlace place) {
    if (!field::IsKeyword(c.Line(place).label, "Index") || c.Line(place).valueCount == 0) return;
    const std::string text = c.SystemText(place, 0);
    const auto own = sources.find(place);
    if (!IsNumber(text) && !text.starts_with('"')) {
      const bool used = own != sources.end() && c.IsUsed(own->second);
      TellNoNumber(c, findings, place, used ? Severity::Lost : Severity::Note);
      return;
    }
    const std::int32_t number = ToInt32(text.c_str());
    if (seen.insert_or_assign(number, place).second) return;
    const auto counting = sourceOf.find(number);
    const bool used = counting != sourceOf.end() && c.IsUsed(counting->second);
    findings.Add(Code::IndexTwice, used ? Severity::Lost : Severity::Note, c.AtLine(place),
                 {c.Show(place, 0),
                  Ordinal("The system forgets what was given before for source", number) +
                      "; all its cuts play this one.",
                  "If both are needed, number one of them anew; velmora prepare keeps the later."});
  });
}

/// Tells each event that shares its number with another: which of them was to keep it, nobody
/// knows.
void JudgeSharedNumber(const Case& c, Findings& findings, std::size_t i) {
  const auto& events = c.project.events;
  const field::Event& event = events[i];
  const auto sharesWith = [&event](const field::Event& other) {
    return other.number == event.number && !other.numberMissing && !event.numberMissing;
  };
  const bool hasEarlier = i > 0 && sharesWith(events[i - 1]);
  const bool hasLater = i + 1 < events.size() && sharesWith(events[i + 1]);
  if (!hasEarlier && !hasLater) return;
  const bool loses = Case::IsLive(event) || (hasEarlier && Case::IsLive(events[i - 1])) ||
                     (hasLater && Case::IsLive(events[i + 1]));
  const bool isSecondCut = event.edit == event.place;  // with no (Entry) of its own
  findings.Add(Code::EntryTwice, loses ? Severity::Lost : Severity::Note,
               {.offset = c.LabelOffset(event.place), .event = i},
               {c.Show(event.place, 0),
                isSecondCut ? "The system keeps one cut for each entry, the first."
                            : "The system keeps one event for each number, the last.",
                "Number the events anew; velmora prepare does it."});
}

void JudgeEntries(const Case& c, Findings& findings) {
  const auto& events = c.project.events;
  for (std::size_t i = 0; i < events.size(); ++i) {
    const field::Event& event = events[i];
    if (event.numberMissing && c.Line(event.place).valueCount > 0) {
      TellNoNumber(c, findings, event.place, Case::IsLive(event) ? Severity::Lost : Severity::Note);
    }
    JudgeSharedNumber(c, findings, i);
  }
}

}  // namespace

void JudgeNumbers(const Case& c, Findings& findings) {
  JudgeIndices(c, findings);
  JudgeEntries(c, findings);
}

}  // namespace velmora::check
