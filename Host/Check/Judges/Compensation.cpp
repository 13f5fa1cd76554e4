// The system's own compensation, which moves a project as a whole when the session's timebase reads
// its first timestamp otherwise than its own marks do.

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include "Base/Wrapping.h"
#include "Check/Judges.h"
#include "Check/ProjectRates.h"
#include "Model/ProjectSummary.h"
#include "Session/SessionPreset.h"
#include "Timecode/AdlTime.h"

namespace velmora::check {
namespace {

constexpr std::size_t kInValue = 5;

struct EarliestCut {
  std::size_t event = 0;
  std::string stamp;
  std::int64_t samples = 0;
};

/// The cut with which the system begins: of equal times the first in its list.
std::optional<EarliestCut> FindEarliestCut(const Case& c) {
  std::optional<EarliestCut> earliest;
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    const field::Event& event = c.project.events[i];
    if (event.kind != field::EventKind::Cut || !event.edit) continue;
    std::string stamp = c.SystemText(*event.edit, kInValue);
    // A cut that does not say where it lies, or that the system misreads, is told as such.
    if (c.IsCutOffCut(event.edit) || !field::ReadTime(stamp, c.project.times)) continue;
    const std::int64_t samples = AdlToSamples(stamp.c_str());
    if (earliest && WrapSubtract(samples, earliest->samples) >= 0) continue;
    earliest = EarliestCut{i, std::move(stamp), samples};
  }
  return earliest;
}

std::string Duration(std::int64_t samples, double rate) {
  char text[64];
  std::snprintf(text, sizeof text, "%.3f s", std::abs(static_cast<double>(samples)) / rate);
  return text;
}

host::SessionRates SessionOf(const std::string& stamp, const CheckOptions& options) {
  return host::SessionRatesFor(stamp.c_str(), options.sessionRate, options.sessionFrameRate);
}

}  // namespace

std::int64_t MovedSamples(const std::string& stamp, const CheckOptions& options) {
  const host::SessionRates session = SessionOf(stamp, options);
  return CompareRates(stamp.c_str(), session.sampleRate, session.frameRate).movedSamples;
}

void JudgeCompensation(const Case& c, Findings& findings) {
  const std::optional<EarliestCut> earliest = FindEarliestCut(c);
  if (!earliest) return;
  const host::SessionRates session = SessionOf(earliest->stamp, c.options);
  const std::int64_t moved = MovedSamples(earliest->stamp, c.options);
  if (moved == 0) return;
  const field::EntryPlace cut = *c.project.events[earliest->event].edit;
  const double rate = session.sampleRate > 0 ? static_cast<double>(session.sampleRate) : 48000.0;
  findings.Add(Code::RateCompensated, Severity::Misplaced,
               {.offset = c.ValueOffset(cut, kInValue), .event = earliest->event},
               {c.Show(cut, kInValue),
                "A spot into a session at " + host::SampleRateName(rate) + " moves everything by " +
                    std::to_string(moved) + " samples, " + Duration(moved, rate) +
                    (moved < 0 ? " earlier." : " later."),
                "Spot it with velmora spot --true-position, or prepare it first."});
}

}  // namespace velmora::check
