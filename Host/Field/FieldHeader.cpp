#include "Field/FieldHeader.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Field/EntryTexts.h"
#include "Field/Keyword.h"
#include "Field/NumberText.h"
#include "Timecode/RateTables.h"

namespace velmora::field {
namespace {

bool IsLetter(char c) {
  return LowerCase(c) >= 'a' && LowerCase(c) <= 'z';
}

std::string_view WithoutLeading(std::string_view text, bool (*passedOver)(char)) {
  const auto* const begin = std::find_if_not(text.begin(), text.end(), passedOver);
  return text.substr(static_cast<std::size_t>(begin - text.begin()));
}

std::string_view WithoutBlanks(std::string_view text) {
  return WithoutLeading(text, [](char c) { return c == ' ' || c == '\t' || c == '_' || c == '-'; });
}

/// A rate written with few digits as the rate that a mark names: 47952 is 48000 pulled down.
double NearestMark(double hz) {
  constexpr double kFewDigits = 0.6;
  const SampleRateMark* nearest = nullptr;
  for (const SampleRateMark& row : kSampleRateMarks) {
    const double distance = std::abs(row.hz - hz);
    if (distance < kFewDigits && (nearest == nullptr || distance < std::abs(nearest->hz - hz))) {
      nearest = &row;
    }
  }
  return nearest != nullptr ? nearest->hz : hz;
}

/// Frames per second, nominal, and pulled or not.
std::optional<TimeRates> NearestFrameRate(double framesPerSecond) {
  constexpr auto kNominal = std::to_array<std::int32_t>({24, 25, 30, 48, 50, 60});
  for (const bool pulledDown : {false, true}) {
    for (const std::int32_t nominal : kNominal) {
      const TimeRates rates{.framesPerSecond = nominal, .pulledDown = pulledDown};
      // 23.98 and 29.97 are written for 23.976 and 29.97003; 24 is 0.024 away from 23.976.
      if (std::abs(rates.FrameRate() - framesPerSecond) < 0.006) return rates;
    }
  }
  return std::nullopt;
}

bool SaysDropFrame(std::string_view text) {
  text = WithoutBlanks(text);
  if (BeginsWithKeyword(text, "fps")) text = WithoutBlanks(text.substr(3));
  return !text.empty() && LowerCase(text[0]) == 'd';
}

bool IsHeaderSection(std::string_view name) {
  return !IsEventList(name) && !IsSourceIndex(name);
}

std::optional<EntryPlace>* PlaceOf(HeaderFacts& header, std::string_view label) {
  if (IsKeyword(label, "SEQ_SAMPLE_RATE")) return &header.sampleRatePlace;
  if (IsKeyword(label, "SEQ_FRAME_RATE")) return &header.frameRatePlace;
  if (IsKeyword(label, "SEQ_DEST_START")) return &header.destStartPlace;
  if (IsKeyword(label, "SYS_SRC_OFFSET")) return &header.sourceOffsetPlace;
  return nullptr;
}

Value HeaderText(const Tree& tree, std::optional<EntryPlace> place) {
  return place ? ReadLineText(tree, tree.entries[*place], 0) : Value{};
}

/// The first stamp with all its sixteen characters and marks.
std::optional<TimeRates> FirstFullStamp(const Tree& tree) {
  for (const Value& value : tree.values) {
    if (value.quoted) continue;
    const std::optional<StampMarks> marks = ReadMarks(value.text, {});
    if (marks && marks->sampleRateMark != 0) return marks->rates;
  }
  return std::nullopt;
}

/// An offset as a timestamp or a number.
bool IsNotZero(const Value& value, const TimeContext& times) {
  if (!value.IsGiven()) return false;
  if (const std::optional<Time> time = ReadTime(value.text, times)) return time->samples != 0;
  const std::optional<LeadingDecimal> number = ReadLeadingDecimal(value.text);
  return number && number->number != 0;
}

/// The rates of the first time of a (Cut), places on the timeline first.
std::optional<TimeRates> RatesOfCut(const Project& project, const Entry& entry) {
  const CutTexts cut = ReadCutTexts(project.tree, entry);
  for (const Value& value : {cut.destinationIn, cut.destinationOut, cut.sourceIn}) {
    if (const std::optional<Time> time = ReadTime(value.text, project.times)) return time->rates;
  }
  return std::nullopt;
}

}  // namespace

bool IsProjectHeader(std::string_view sectionName) {
  return IsKeyword(sectionName, "SYSTEM") || IsKeyword(sectionName, "SEQUENCE");
}

bool IsEventList(std::string_view sectionName) {
  return IsKeyword(sectionName, "EVENT_LIST");
}

bool IsSourceIndex(std::string_view sectionName) {
  return IsKeyword(sectionName, "SOURCE_INDEX");
}

std::optional<double> ReadSampleRate(std::string_view text) {
  constexpr double kLowest = 1000;
  constexpr double kHighest = 1000000;
  const std::optional<LeadingDecimal> number = ReadLeadingDecimal(WithoutLeading(
      text, [](char c) { return IsLetter(c) || c == ' ' || c == '\t' || c == '_'; }));
  if (!number) return std::nullopt;
  double hz = number->number;
  if (hz < kLowest) hz *= 1000;  // kilohertz, said or not
  if (!(hz >= kLowest && hz <= kHighest)) return std::nullopt;
  return NearestMark(hz);
}

std::optional<TimeRates> ReadFrameRate(std::string_view text) {
  const std::optional<LeadingDecimal> number = ReadLeadingDecimal(WithoutLeading(
      text, [](char c) { return IsLetter(c) || c == ' ' || c == '\t' || c == '_'; }));
  if (!number) return std::nullopt;
  double rate = number->number;
  std::string_view rest = number->rest;
  if (!rest.empty() && rest[0] == '/') {
    const std::optional<LeadingDecimal> divisor = ReadLeadingDecimal(rest.substr(1));
    if (divisor && divisor->number > 0) {
      rate /= divisor->number;
      rest = divisor->rest;
    }
  }
  // 2997 and 23976 are written for 29.97 and 23.976.
  while (rate >= 1000) rate /= rate >= 10000 ? 1000 : 100;
  std::optional<TimeRates> rates = NearestFrameRate(rate);
  if (rates) rates->dropFrame = SaysDropFrame(rest);
  return rates;
}

void ReadTimeContext(Project& project) {
  const Tree& tree = project.tree;
  ForEachEntryOf(tree, IsHeaderSection, [&](const Entry& entry, EntryPlace place, bool) {
    std::optional<EntryPlace>* const slot = PlaceOf(project.header, entry.label);
    if (slot != nullptr && entry.valueCount > 0) *slot = place;
    return true;
  });
  TimeContext& times = project.times;
  times.headerSampleRate = ReadSampleRate(HeaderText(tree, project.header.sampleRatePlace).text);
  times.headerFrames = ReadFrameRate(HeaderText(tree, project.header.frameRatePlace).text);
  const std::optional<TimeRates> first = FirstFullStamp(tree);
  if (first) {
    times.rateWithoutMark = first->sampleRate;
  } else if (times.headerSampleRate) {
    times.rateWithoutMark = *times.headerSampleRate;
  }
  project.header.hasSourceOffset =
      IsNotZero(HeaderText(tree, project.header.sourceOffsetPlace), times);
}

std::optional<TimeRates> RatesOfCuts(const Project& project) {
  std::optional<TimeRates> rates;
  ForEachEntryOf(project.tree, IsEventList, [&](const Entry& entry, EntryPlace, bool) {
    if (IsKeyword(entry.label, "Cut")) rates = RatesOfCut(project, entry);
    return !rates;
  });
  return rates;
}

std::optional<TimeRates> RatesOfEvents(const Project& project) {
  std::optional<Time> first;
  ForEachEntryOf(project.tree, IsEventList, [&](const Entry& entry, EntryPlace, bool) {
    if (IsKeyword(entry.label, "Rem")) return true;
    for (const Value& value : project.tree.ValuesOf(entry)) {
      if (!first) first = ReadTime(value.text, project.times);
    }
    return !first;
  });
  return first ? std::optional(first->rates) : std::nullopt;
}

TimeRates RatesOfHeader(const Project& project) {
  std::optional<Time> first;
  ForEachEntryOf(project.tree, IsProjectHeader, [&](const Entry& entry, EntryPlace, bool) {
    first = ReadTime(ReadLineText(project.tree, entry, 0).text, project.times);
    return !first;
  });
  if (first) return first->rates;
  TimeRates rates;
  if (project.times.headerFrames) rates = *project.times.headerFrames;
  if (project.times.headerSampleRate) rates.sampleRate = *project.times.headerSampleRate;
  return rates;
}

}  // namespace velmora::field
