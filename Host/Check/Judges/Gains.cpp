// Gains: the system has one for an event, that of its last (Gain) line.

#include <algorithm>
#include <cstdint>
#include <string>

#include "Base/Text.h"
#include "Check/Judges.h"

namespace velmora::check {
namespace {

/// Whether one gain, the one that the system takes, is right for all channels.
bool HoldsForAll(const Case& c, const field::Event& event) {
  constexpr std::size_t kDecibelValue = 1;
  const double system = ToDouble(c.SystemText(event.gains.back().place, kDecibelValue).c_str());
  // Tracks beyond what any cut has would only make the loop long.
  constexpr std::int32_t kMost = 1024;
  for (std::int32_t i = 0; i < std::min(event.tracks.Count(), kMost); ++i) {
    const double meant = event.GainOf(event.tracks.first + i).value_or(0);
    if (!(meant == system)) return false;
  }
  return true;
}

}  // namespace

void JudgeGains(const Case& c, Findings& findings) {
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    const field::Event& event = c.project.events[i];
    if (event.kind != field::EventKind::Cut || event.gains.empty()) continue;
    if (event.gains.size() == 1 && HoldsForAll(c, event)) continue;
    const field::EntryPlace last = event.gains.back().place;
    // A line with too few values is told as such.
    if (c.Line(last).valueCount < ValuesNeeded("Gain")) continue;
    findings.Add(
        Code::GainChannels, Case::OfCut(event, Severity::Lost),
        {.offset = c.LabelOffset(last), .event = i},
        {c.Show(last),
         event.gains.size() > 1 ? "The system takes the last of " +
                                      Counted(event.gains.size(), "gain") + " for the whole event."
                                : "The system takes this gain for the whole event.",
         "velmora prepare writes one gain for each mono cut."});
  }
}

}  // namespace velmora::check
