// Cuts whose source is no number, or a number that no source has.

#include <string>

#include "Check/Judges.h"

namespace velmora::check {
namespace {

constexpr std::size_t kIndexValue = 1;

}  // namespace

void JudgeCutSources(const Case& c, Findings& findings) {
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    const field::Event& event = c.project.events[i];
    if (event.kind != field::EventKind::Cut || !event.edit) continue;
    if (c.Line(*event.edit).valueCount <= kIndexValue) continue;
    const Place place = {
        .offset = c.ValueOffset(*event.edit, kIndexValue), .event = i, .source = event.source};
    const std::string text = c.Show(*event.edit, kIndexValue);
    if (event.indexIsName) {
      findings.Add(Code::IndexName, Case::OfCut(event, Severity::Lost), place,
                   {text, "The system reads a number there, and finds another source or none.",
                    "Write the number of the source; velmora prepare does it."});
    }
    if (!event.source) {
      findings.Add(Code::SourceMissing, Case::OfCut(event, Severity::Lost), place,
                   {text, "The cut has no audio: no source of the list is meant by this.",
                    "Add the source to the SOURCE_INDEX, or export the project again."});
    }
  }
}

}  // namespace velmora::check
