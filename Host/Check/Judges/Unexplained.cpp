// The last judge. It holds what the system would place against what is meant, cut by cut, and
// speaks where the two differ though nobody has found a reason. So nothing is called clean that
// does not arrive, whatever a writer comes up with.

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>

#include "Base/Text.h"
#include "Base/Wrapping.h"
#include "Check/Judges.h"
#include "Timecode/AdlTime.h"

namespace velmora::check {
namespace {

/// A cut as the system would place it.
struct PlacedCut {
  const SystemSource* source = nullptr;
  std::int32_t track = 0;
  std::int64_t position = 0;
  std::int64_t end = 0;
  std::int64_t fileOffset = 0;
};

const char* TextAt(const AES31Entry* line, std::size_t i) {
  return line != nullptr && i < line->values.size() ? line->values[i] : nullptr;
}

PlacedCut BySystem(const Case& c, const AES31Entry& cut) {
  PlacedCut placed;
  placed.source = c.system.SourceOf(ToInt32(TextAt(&cut, 1)));
  placed.track = ToInt32(TextAt(&cut, 3));
  placed.position = AdlToSamples(TextAt(&cut, 5));
  placed.end = AdlToSamples(TextAt(&cut, 6));
  if (placed.source != nullptr) {
    placed.fileOffset = AdlDifference(TextAt(placed.source->file, 2), TextAt(&cut, 4));
  }
  return placed;
}

struct Difference {
  Code code;
  Severity severity;
  std::string effect;
};

/// The first way in which a cut does not arrive as it is meant; none if it does.
std::optional<Difference> Compare(const Case& c, const field::Event& meant) {
  if (meant.numberMissing) {
    return Difference{Code::IndexMissing, Severity::Lost,
                      "The system passes over what stands before the first (Entry)."};
  }
  const SystemEvent* const event = c.system.EventOf(c.System(meant.place));
  const AES31Entry* const line = c.System(*meant.edit);
  if (!meant.source) {
    return Difference{Code::SourceMissing, Severity::Lost, "No source is meant by this cut."};
  }
  if (!meant.complete) {
    return Difference{Code::EventEmpty, Severity::Misplaced,
                      "The cut does not say where it lies: it would land anywhere."};
  }
  if (event == nullptr || line == nullptr || event->edit != line) {
    return Difference{Code::StrayText, Severity::Lost, "The system does not have this cut."};
  }
  if (!event->kept) {
    return Difference{Code::EntryTwice, Severity::Lost,
                      "Another event has the same number for the system: this one is lost."};
  }
  const PlacedCut placed = BySystem(c, *line);
  const field::Source& source = c.project.sources[*meant.source];
  const AES31Entry* const file = source.fPlace ? c.System(*source.fPlace) : nullptr;
  if (source.numberMissing && placed.source == nullptr) {
    return Difference{Code::IndexMissing, Severity::Lost,
                      "The source has no number, so the system does not find it."};
  }
  if (placed.source == nullptr || placed.source->file != file) {
    return Difference{Code::SourceMissing, Severity::Lost,
                      "The system takes another source for this cut, or none."};
  }
  if (placed.track != meant.tracks.first) {
    return Difference{Code::Channels, Severity::Lost,
                      "The system reads track " + std::to_string(placed.track) + "."};
  }
  if (placed.position != meant.position || placed.end != meant.end) {
    return Difference{Code::MarksDiffer, Severity::Misplaced,
                      "The system places the cut at sample " + std::to_string(placed.position) +
                          " to " + std::to_string(placed.end) + ", not " +
                          std::to_string(meant.position) + " to " + std::to_string(meant.end) +
                          "."};
  }
  if (placed.fileOffset != c.project.FileOffset(meant)) {
    return Difference{
        Code::FileStartMissing, Severity::Misplaced,
        "The system plays the file from sample " + std::to_string(placed.fileOffset) + " on."};
  }
  return std::nullopt;
}

bool IsPlaced(const SystemEvent& event) {
  return event.kept && event.edit != nullptr && field::IsKeyword(event.edit->label, "Cut");
}

/// Cuts that the system would place though no event of the project means them.
void JudgeUnmeant(const Case& c, Findings& findings) {
  std::unordered_set<const AES31Entry*> meant;
  for (const field::Event& event : c.project.events) {
    if (event.edit) meant.insert(c.System(*event.edit));
  }
  for (const SystemEvent& event : c.system.Events()) {
    if (!IsPlaced(event) || meant.contains(event.edit)) continue;
    const std::size_t letter = c.system.OffsetOf(event.edit->label);
    findings.Add(Code::StrayText, Severity::Lost, {.offset = letter > 0 ? letter - 1 : 0},
                 {"(" + c.Show(event.edit->label) + ")",
                  "The system places a cut here that belongs to no event of the project.",
                  "Take the line out, or put it where it belongs; velmora prepare leaves it out."});
  }
}

}  // namespace

void JudgeUnexplained(const Case& c, Findings& findings) {
  JudgeUnmeant(c, findings);
  // A text that ends the reading explains all that is missing after it.
  const bool readingEnds = findings.Has(Code::StrayText, Severity::Lost);
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    const field::Event& event = c.project.events[i];
    if (!Case::IsLive(event) || !event.edit || findings.HasSeriousAtEvent(i)) continue;
    if (event.source && findings.HasSeriousAtSource(*event.source)) continue;
    const std::optional<Difference> difference = Compare(c, event);
    if (!difference) continue;
    if (readingEnds && c.System(*event.edit) == nullptr) continue;
    findings.Add(difference->code, difference->severity, c.AtEdit(i),
                 {c.Show(*event.edit), difference->effect,
                  "Write the line plainly; velmora prepare does it."});
  }
}

}  // namespace velmora::check
