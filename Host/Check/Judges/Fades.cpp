// Fades: their shapes, rendered files, lengths, and (Xfade).

#include <algorithm>
#include <string>

#include "Check/Judges.h"

namespace velmora::check {
namespace {

bool IsCurve(const field::Fade& fade) {
  if (field::IsKeyword(fade.shape, "LIN")) return false;  // whatever numbers stand after it
  const bool hasLevel = std::any_of(fade.levelsDb.begin(), fade.levelsDb.end(),
                                    [](const auto& level) { return level.has_value(); });
  return hasLevel || !(fade.shape.empty() || fade.shape == "_");
}

void JudgeFade(const Case& c, Findings& findings, std::size_t index, const field::Fade& fade) {
  const field::Event& event = c.project.events[index];
  const Place place = {.offset = c.LabelOffset(fade.place), .event = index};
  if (fade.length > event.end - event.position && event.end > event.position) {
    findings.Add(
        Code::FadeOverlong, Case::OfCut(event, Severity::Lost), place,
        {c.Show(fade.place, 0),
         "The fade is longer than its cut of " + std::to_string(event.end - event.position) +
             " samples: the piece made for it reaches beyond the cut.",
         "Shorten the fade; velmora prepare shortens it to the cut."});
  }
  if (IsCurve(fade)) {
    findings.Add(Code::FadeCurve, Severity::Note, place,
                 {c.Show(fade.place), "The system makes every fade a straight line.",
                  "Look at the fade after the spot if its curve matters."});
  }
  if (fade.rendered) {
    findings.Add(Code::FadeRendered, Severity::Note, place,
                 {c.Show(fade.place),
                  "The system makes the fade from the source and leaves the rendered file alone.",
                  "Nothing needs to be done."});
  }
}

}  // namespace

void JudgeFades(const Case& c, Findings& findings) {
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    const field::Event& event = c.project.events[i];
    if (event.kind != field::EventKind::Cut) continue;
    if (event.fadeIn) JudgeFade(c, findings, i, *event.fadeIn);
    if (event.fadeOut) JudgeFade(c, findings, i, *event.fadeOut);
  }
  c.ForEachLine("EVENT_LIST", [&](field::EntryPlace place) {
    if (!field::IsKeyword(c.Line(place).label, "Xfade")) return;
    findings.Add(
        Code::XfadeLabel, Severity::Note, c.AtLine(place),
        {c.Show(place), "The system makes crossfades of an (Outfade) and an (Infade) alone.",
         "Look at the crossfade after the spot."});
  });
}

}  // namespace velmora::check
