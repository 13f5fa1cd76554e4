#include "Model/ProjectSummary.h"

#include <algorithm>

#include "ADL/ShiftJis.h"
#include "Base/FileNames.h"
#include "Base/Wrapping.h"
#include "Model/EventWalk.h"
#include "Model/NumberPlaces.h"
#include "Spot/SpotOptions.h"
#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

using Relation = RateComparison::Relation;

/// A location less the quotation marks around it.
std::string WithoutQuotes(std::string text) {
  if (text.size() > 1 && text.front() == '"') text.erase(0, 1);
  if (!text.empty() && text.back() == '"') text.pop_back();
  return text;
}

Relation RelationOf(double projectRate, float sessionRate) {
  if (projectRate <= 0) return Relation::Unknown;
  if (projectRate == static_cast<double>(sessionRate)) return Relation::Same;
  return static_cast<float>(projectRate) == sessionRate ? Relation::AsCloseAsAHostTells
                                                        : Relation::Different;
}

}  // namespace

CutTimes TimesOf(const AES31Cut& cut) {
  return {AdlToSamples(cut.destIn), AdlToSamples(cut.destOut)};
}

void CutSpan::Include(const AES31Cut& cut, const CutTimes& times) {
  if (earliest == nullptr || WrapSubtract(times.destIn, start) < 0) {
    earliest = &cut;
    start = times.destIn;
  }
  if (latest == nullptr || WrapSubtract(times.destOut, end) > 0) {
    latest = &cut;
    end = times.destOut;
  }
  minTrack = std::min(minTrack, cut.destChannel);
  maxTrack = std::max(maxTrack, cut.destChannel);
}

CutSpan SpanOfCuts(const AES31Project& project,
                   const std::function<bool(const AES31Event& cut)>& counts) {
  CutSpan span;
  for (std::size_t i = 0; i < project.events.size(); ++i) {
    PrefetchTimedCut(project.events, i);
    const AES31Event& event = project.events[i];
    if (IsCut(event) && counts(event)) span.Include(event.cut);
  }
  return span;
}

MissingSource MissingSourceAt(const AES31Project& project, std::int32_t index) {
  MissingSource missing;
  missing.index = index;
  const auto source = project.sourceFiles.find(index);
  if (source == project.sourceFiles.end()) return missing;
  missing.isInIndex = true;
  missing.location = ShiftJisToUtf8(source->second.fValues[0]);
  missing.fileName = FileNameOf(WithoutQuotes(missing.location));
  return missing;
}

ProjectSummary Summarize(const AES31Project& project) {
  ProjectSummary summary;
  CutSpan span;
  NumberPlaces sources;
  for (std::size_t i = 0; i < project.events.size(); ++i) {
    PrefetchTimedCut(project.events, i);
    const AES31Event& event = project.events[i];
    if (!IsCut(event)) {
      ++summary.otherEvents;
      continue;
    }
    ++summary.cuts;
    sources.PlaceOf(event.cut.sourceIndex);
    span.Include(event.cut);
  }
  if (span.earliest != nullptr && span.earliest->destIn != nullptr) {
    summary.earliest = span.earliest->destIn;
  }
  std::vector<std::int32_t> named = sources.Numbers();
  std::sort(named.begin(), named.end());
  summary.sources = named.size();
  for (const std::int32_t index : named) {
    const auto source = project.sourceFiles.find(index);
    const bool hasFile = source != project.sourceFiles.end() && source->second.file != nullptr;
    if (!hasFile) summary.missing.push_back(MissingSourceAt(project, index));
  }
  return summary;
}

RateComparison CompareRates(const char* firstEvent, float sessionRate, std::int32_t frameRate) {
  RateComparison rates;
  rates.sessionRate = sessionRate;
  if (firstEvent == nullptr || *firstEvent == '\0') return rates;
  rates.projectRate = AdlSampleRate(firstEvent);
  rates.relation = RelationOf(rates.projectRate, sessionRate);
  SpotOptions options;
  options.sessionRate = Truncate<std::int32_t>(sessionRate);
  options.frameRate = frameRate;
  rates.movedSamples = Compensation(options, firstEvent);
  return rates;
}

std::string FailureText(const LoadFailure& failure) {
  std::string text;
  if (failure.line > 0) text += "line " + std::to_string(failure.line) + ": ";
  if (!failure.section.empty()) {
    text += "<" + ShiftJisToUtf8(failure.section.c_str()) + "> (" +
            ShiftJisToUtf8(failure.label.c_str()) + "): ";
  }
  return text + failure.reason;
}

}  // namespace velmora
