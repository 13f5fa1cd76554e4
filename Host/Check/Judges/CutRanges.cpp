// Cuts that reach outside their file.

#include <cstdint>
#include <optional>
#include <string>

#include "Check/Judges.h"

namespace velmora::check {
namespace {

/// Frames of a source's file in samples at the project's rate; none if that is not known.
std::optional<std::int64_t> FileLength(const Case& c, std::size_t source) {
  const std::optional<media::AudioFacts>& facts = c.media[source].facts;
  if (!facts) return std::nullopt;
  return field::AtRate(facts->frames, facts->sampleRate, c.project.rates.sampleRate);
}

std::string Overhang(std::int64_t offset, std::int64_t end, std::int64_t length) {
  if (offset < 0) return "begins " + std::to_string(-offset) + " samples before its file";
  if (offset >= length) return "begins after the end of its file";
  return "ends " + std::to_string(end - length) + " samples after its file";
}

}  // namespace

void JudgeCutRanges(const Case& c, Findings& findings) {
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    const field::Event& event = c.project.events[i];
    if (event.kind != field::EventKind::Cut || !event.source || !event.complete) continue;
    if (event.end <= event.position) continue;
    const std::optional<std::int64_t> length = FileLength(c, *event.source);
    const std::optional<std::int64_t> offset = c.project.FileOffset(event);
    if (!length || !offset) continue;
    const std::int64_t cut = event.end - event.position;
    if (*offset >= 0 && *offset <= *length && cut <= *length - *offset) continue;
    Place place = c.AtEdit(i);
    place.source = event.source;
    findings.Add(Code::CutOutsideFile, Case::OfCut(event, Severity::Lost), place,
                 {c.Show(*event.edit),
                  "The cut " + Overhang(*offset, *offset + cut, *length) +
                      ": there is nothing to play there.",
                  "Look for a longer copy of " + c.ShowPath(c.media[*event.source].located.path) +
                      "; velmora prepare shortens the cut to what is there."});
  }
}

}  // namespace velmora::check
