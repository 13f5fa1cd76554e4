// Fade lengths, which the system reads more strictly than any other time: one that it refuses fails
// the whole load.

#include "Check/Judges.h"

namespace velmora::check {

void JudgeFadeLengths(const Case& c, Findings& findings) {
  for (const FaultyLine& line : c.FaultyLines()) {
    const bool isMark = line.fault == Fault::FadeSeparator;
    if (!isMark && line.fault != Fault::FadeForm) continue;
    const Place place = {.offset = line.place ? c.ValueOffset(*line.place, 0) : line.offset};
    const std::string text = line.place ? c.Show(*line.place, 0) : "(" + c.Show(line.label) + ")";
    if (isMark) {
      findings.Add(
          Code::FadeSeparator, Severity::Fails, place,
          {text, "The project does not load: a fade length must have ; or , before its frames.",
           "Write ; or , there; velmora prepare does it and keeps every sample."});
    } else {
      findings.Add(Code::FadeForm, Severity::Fails, place,
                   {text, "The project does not load: this is no fade length.",
                    "Write the length as HH:MM:SS;FF/0000, or take the line out if there is no "
                    "fade; velmora prepare does it."});
    }
  }
}

}  // namespace velmora::check
