// Cuts that their status switches off, which the system does not look at.

#include "Check/Judges.h"

namespace velmora::check {

void JudgeStatus(const Case& c, Findings& findings) {
  constexpr std::size_t kStatusValue = 7;
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    const field::Event& event = c.project.events[i];
    if (event.kind != field::EventKind::Cut || !event.edit || !event.IsOff()) continue;
    const Place place = {.offset = c.ValueOffset(*event.edit, kStatusValue), .event = i};
    if (event.status == 'E') {
      findings.Add(
          Code::EventError, Severity::Lost, place,
          {c.Show(*event.edit), "The cut is marked as an error; the system places it all the same.",
           "Find out what was meant; velmora prepare leaves it out unless --keep-off."});
      continue;
    }
    findings.Add(Code::EventOff, Severity::Misplaced, place,
                 {c.Show(*event.edit),
                  event.status == 'M' ? "The cut is muted; the system places it all the same."
                                      : "The cut is disabled; the system places it all the same.",
                  "Leave the event out; velmora prepare does it unless --keep-off."});
  }
}

}  // namespace velmora::check
