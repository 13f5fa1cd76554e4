// Rates: stamps at several sample rates, stamps whose marks the system reads otherwise than they
// are meant, and a header that contradicts the marks.

#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "Check/Judges.h"
#include "Check/ProjectRates.h"
#include "Field/EntryTexts.h"
#include "Session/SessionPreset.h"
#include "Timecode/AdlTime.h"

namespace velmora::check {
namespace {

/// Pulled rates are written with few digits: a hundred-thousandth tells all of them apart.
bool SameRate(double a, double b) {
  return std::abs(a - b) <= 1e-5 * b;
}

std::string RateText(const field::TimeRates& rates) {
  char frames[32];
  std::snprintf(frames, sizeof frames, "%.5g", rates.FrameRate());
  return host::SampleRateName(rates.sampleRate) + ", " + frames + " frames";
}

/// The first cut in the text, whose rates are the project's; none without a cut.
std::optional<std::size_t> FirstCut(const Case& c) {
  std::optional<std::size_t> first;
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    const field::Event& event = c.project.events[i];
    if (event.kind != field::EventKind::Cut || !event.edit || !event.complete) continue;
    if (!first || event.place < c.project.events[*first].place) first = i;
  }
  return first;
}

class StampJudge {
 public:
  StampJudge(const Case& c, Findings& findings, bool marksAreTold)
      : c_(c), findings_(findings), marksAreTold_(marksAreTold) {}

  /// The common case, told without working the time out: all its characters stand there, its marks
  /// are believed, and its rate is the project's. The system then reads the same.
  [[nodiscard]] bool IsPlain(const field::Value& stamp) const {
    if (stamp.quoted || stamp.text.size() != kTimestampLength) return false;
    const field::TimeContext& times = c_.project.times;
    const std::optional<field::StampMarks> marks = field::ReadMarks(stamp.text, times);
    return marks && times.trust == field::Trust::Marks &&
           marks->rates.sampleRate == c_.project.rates.sampleRate;
  }

  /// True if something is wrong with the stamp, which is then told.
  bool Judge(field::EntryPlace line, const field::Value& stamp, Severity severity, Place where) {
    if (!stamp.IsGiven() || IsPlain(stamp)) return false;
    const std::optional<field::Time> time = field::ReadTime(stamp.text, c_.project.times);
    if (!time) return false;
    const std::string_view raw = c_.RawOf(stamp);
    where.offset = c_.project.tree.OffsetOf(raw);
    const std::string text = "(" + c_.Show(c_.Line(line).label) + ") " + c_.Show(raw);
    const double project = c_.project.rates.sampleRate;
    if (time->rates.sampleRate != project) {
      findings_.Add(
          Code::RateMixed, severity, where,
          {text,
           "This time counts samples at " + host::SampleRateName(time->rates.sampleRate) +
               ", the project at " + host::SampleRateName(project) + ": the system mixes them up.",
           "Export the project at one rate; velmora prepare writes one rate."});
      return true;
    }
    if (marksAreTold_ || AdlToSamples(std::string(raw).c_str()) == time->samples) return false;
    findings_.Add(Code::MarksDiffer, severity, where,
                  {text,
                   "The system reads another time: it needs all sixteen characters, marks and "
                   "remainder included, without quotation marks.",
                   "Write the time as HH:MM:SS:FF/0000; velmora prepare does it."});
    return true;
  }

 private:
  const Case& c_;
  Findings& findings_;
  bool marksAreTold_;  ///< for the project as a whole
};

bool JudgeHeader(const Case& c, Findings& findings) {
  const std::optional<std::size_t> first = FirstCut(c);
  if (!first) return false;
  const field::EntryPlace cut = *c.project.events[*first].edit;
  const field::Value value = field::ReadCutTexts(c.project.tree, c.Line(cut)).destinationIn;
  // What the marks say, whichever of the two is trusted.
  field::TimeContext marks = c.project.times;
  marks.trust = field::Trust::Marks;
  const std::optional<field::Time> time = field::ReadTime(value.text, marks);
  const std::string header = time ? HeaderContradiction(c.project.times, time->rates) : "";
  if (header.empty()) return false;
  const std::string_view stamp = c.RawOf(value);
  findings.Add(Code::MarksDiffer, Severity::Misplaced,
               {.offset = c.project.tree.OffsetOf(stamp), .event = first},
               {"(Cut) " + c.Show(stamp),
                "The header says " + header + ", the times are marked " + RateText(time->rates) +
                    ". The system believes the marks: if the header is right, all lands elsewhere.",
                "Find out which is right; velmora prepare writes one of them, with --trust marks "
                "or --trust header."});
  return true;
}

}  // namespace

std::string HeaderContradiction(const field::TimeContext& times, const field::TimeRates& marks) {
  std::string text;
  if (times.headerSampleRate && !SameRate(*times.headerSampleRate, marks.sampleRate)) {
    text = host::SampleRateName(*times.headerSampleRate);
  }
  if (times.headerFrames && (times.headerFrames->framesPerSecond != marks.framesPerSecond ||
                             times.headerFrames->pulledDown != marks.pulledDown)) {
    char frames[32];
    std::snprintf(frames, sizeof frames, "%.5g frames", times.headerFrames->FrameRate());
    text += (text.empty() ? "" : ", ") + std::string(frames);
  }
  return text;
}

void JudgeRates(const Case& c, Findings& findings) {
  const bool headerDiffers = JudgeHeader(c, findings);
  StampJudge stamps(c, findings, headerDiffers && c.options.reading.trust == field::Trust::Header);
  const field::Tree& tree = c.project.tree;
  for (std::size_t i = 0; i < c.project.sources.size(); ++i) {
    const field::Source& source = c.project.sources[i];
    if (!source.fPlace || source.startDecided) continue;
    stamps.Judge(*source.fPlace, field::ReadSourceTexts(tree, c.Line(*source.fPlace)).start,
                 c.OfSource(i, Severity::Misplaced), {.source = i});
  }
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    const field::Event& event = c.project.events[i];
    if (event.kind != field::EventKind::Cut || !event.edit) continue;
    const Severity severity = Case::OfCut(event, Severity::Misplaced);
    const field::CutTexts cut = field::ReadCutTexts(tree, c.Line(*event.edit));
    bool told = false;  // one finding for each event is enough
    for (const field::Value* const stamp :
         {&cut.sourceIn, &cut.destinationIn, &cut.destinationOut}) {
      told = told || stamps.Judge(*event.edit, *stamp, severity, {.event = i});
    }
    for (const field::Seldom<field::Fade>* const fade : {&event.fadeIn, &event.fadeOut}) {
      if (told || !*fade) continue;
      const field::EntryPlace line = (*fade)->place;
      const field::Value length = field::ReadFadeTexts(tree, c.Line(line)).length;
      if (stamps.IsPlain(length)) continue;
      // A length that the system refuses is told as such.
      if (!AdlIsTimestamp(c.SystemText(line, 0).c_str())) continue;
      told = stamps.Judge(line, length, severity, {.event = i});
    }
  }
}

}  // namespace velmora::check
