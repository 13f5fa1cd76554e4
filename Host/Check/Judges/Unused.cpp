// What a project holds and the system does not use: names, tracks, automation, markers, an offset.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Base/Text.h"
#include "Check/Judges.h"

namespace velmora::check {
namespace {

constexpr const char* kNothing = "Nothing needs to be done.";

struct UnusedSection {
  std::string_view word;  ///< the section's name begins with it
  Code code;
  const char* what;
};

constexpr auto kSections = std::to_array<UnusedSection>({
    {"TRACK", Code::TracksUnused, "Tracks are named by their numbers alone."},
    {"FADER", Code::AutomationUnused, "Fader moves are not placed."},
    {"PAN", Code::AutomationUnused, "Pan moves are not placed."},
    {"MUTE", Code::AutomationUnused, "Mutes are not placed."},
    {"AUTOMATION", Code::AutomationUnused, "Automation is not placed."},
    {"MARK", Code::MarkersUnused, "Markers are not placed."},
});

void JudgeNames(const Case& c, Findings& findings) {
  std::optional<std::size_t> first;
  std::size_t count = 0;
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    if (c.project.events[i].name.empty()) continue;
    ++count;
    if (!first || c.project.events[i].place < c.project.events[*first].place) first = i;
  }
  if (!first) return;
  const field::Event& event = c.project.events[*first];
  findings.Add(
      Code::NamesUnused, Severity::Note, {.offset = c.LabelOffset(event.place), .event = first},
      {Counted(count, "event") + (count == 1 ? " has a name, " : " have names, the first ") + "\"" +
           event.name + "\"",
       "Regions are named after their files.", kNothing});
}

void JudgeSections(const Case& c, Findings& findings) {
  for (const field::Section& section : c.project.tree.sections) {
    if (section.inReferenceList) continue;
    for (const UnusedSection& row : kSections) {
      if (!field::BeginsWithKeyword(section.name, row.word)) continue;
      const std::size_t offset = c.project.tree.OffsetOf(section.name);
      findings.Add(row.code, Severity::Note, {.offset = offset > 0 ? offset - 1 : 0},
                   {"<" + c.Show(section.name) + "> with " + Counted(section.entryCount, "line"),
                    row.what, kNothing});
      break;
    }
  }
}

void JudgeOffset(const Case& c, Findings& findings) {
  if (!c.project.header.hasSourceOffset || !c.project.header.sourceOffsetPlace) return;
  const field::EntryPlace place = *c.project.header.sourceOffsetPlace;
  findings.Add(Code::OffsetUnused, Severity::Note, {.offset = c.ValueOffset(place, 0)},
               {c.Show(place, 0), "The system does not add it to any source time.",
                "Compare one cut with its source after the spot."});
}

}  // namespace

void JudgeUnused(const Case& c, Findings& findings) {
  JudgeNames(c, findings);
  JudgeSections(c, findings);
  JudgeOffset(c, findings);
}

}  // namespace velmora::check
