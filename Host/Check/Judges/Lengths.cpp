// Cuts without a length, or without the times that make one.

#include "Check/Judges.h"

namespace velmora::check {
namespace {

/// Whether the line has all values, so that it is not told as one with too few already.
bool IsWhole(const Case& c, const field::Event& event) {
  return c.Line(*event.edit).valueCount >= ValuesNeeded("Cut");
}

}  // namespace

void JudgeLengths(const Case& c, Findings& findings) {
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    const field::Event& event = c.project.events[i];
    if (event.kind != field::EventKind::Cut || !event.edit || !IsWhole(c, event)) continue;
    if (event.complete && event.end > event.position) continue;
    findings.Add(Code::EventEmpty, Case::OfCut(event, Severity::Misplaced), c.AtEdit(i),
                 {c.Show(*event.edit),
                  event.complete ? "The cut ends where it begins or before: a region without a "
                                   "length, or one that runs backwards."
                                 : "The cut does not say where it lies: it would land anywhere.",
                  "Take the event out, or give it its times; velmora prepare leaves it out."});
  }
}

}  // namespace velmora::check
