#include "Check/GlanceEvents.h"

#include <algorithm>
#include <string>

#include "Base/Text.h"
#include "Check/ProjectRates.h"
#include "Check/Requirements.h"
#include "Field/FieldProject.h"
#include "Field/Keyword.h"
#include "Field/NumberText.h"

namespace velmora::check {
namespace {

/// Labels that the system takes for an edit, or for something like it. The cut apart.
bool IsOtherEdit(std::string_view label) {
  return field::IsKeyword(label, "Silence") || field::IsKeyword(label, "Aux") ||
         field::IsKeyword(label, "Vid") || field::IsKeyword(label, "Alt");
}

/// "3", "1~2"; also "1-2" and `_` if that may stand there.
std::optional<field::ChannelRun> ReadPlainRun(const field::Value& value) {
  if (const std::optional<std::int32_t> channel = ReadPlainNumber(value)) {
    return field::ChannelRun{*channel, *channel};
  }
  const std::size_t mark = value.text.find_first_of("~-");
  if (value.quoted || mark == std::string_view::npos) return std::nullopt;
  const bool areNumbers = ReadPlainNumber({value.text.substr(0, mark), false}) &&
                          ReadPlainNumber({value.text.substr(mark + 1), false});
  if (!areNumbers) return std::nullopt;
  return field::ReadChannelRun(value.text);
}

/// Three digits and a point at the most before the places after it: every reader of numbers reads
/// these alike.
bool IsPlainLevel(std::string_view text) {
  constexpr std::size_t kLongest = 12;
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) text.remove_prefix(1);
  const std::size_t whole = std::min(text.find('.'), text.size());
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  return whole > 0 && whole <= 3 && text.size() <= kLongest &&
         std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(whole), isDigit) &&
         std::all_of(text.begin() + static_cast<std::ptrdiff_t>(std::min(whole + 1, text.size())),
                     text.end(), isDigit);
}

}  // namespace

bool GlanceEvents::Take(const PlainLine& line) {
  const std::string_view label = line.label;
  if (field::IsKeyword(label, "Entry")) return TakeEntry(line);
  if (entries_ == 0) return false;  // the system passes it over
  if (field::IsKeyword(label, "Cut")) return TakeCut(line);
  if (field::IsKeyword(label, "Infade")) return TakeFade(line, event_.fadeIn);
  if (field::IsKeyword(label, "Outfade")) return TakeFade(line, event_.fadeOut);
  if (field::IsKeyword(label, "Gain")) return TakeGain(line);
  if (!IsOtherEdit(label)) return true;  // a remark, say: nothing depends on it
  const bool isFirst = !event_.hasEdit && !field::IsKeyword(label, "Alt");
  event_.hasEdit = true;
  return isFirst;
}

bool GlanceEvents::TakeEntry(const PlainLine& line) {
  JudgeEvent();
  if (line.valueCount == 0) return false;
  const std::optional<std::int32_t> number = ReadPlainNumber(line.values[0]);
  if (!number) return false;
  if (entries_ > 0 && *number <= event_.number) numbersRise_ = false;
  ++entries_;
  event_ = {};
  event_.number = *number;
  return true;
}

bool GlanceEvents::TakeCut(const PlainLine& line) {
  enum { kIndex = 1, kChannels, kTracks, kIn, kPosition, kEnd, kStatus, kNeeded };
  if (event_.hasEdit || line.valueCount < kNeeded) return false;
  event_.hasEdit = true;
  const auto& values = line.values;
  if (!first_) {
    const std::optional<PlainTime> time = ReadPlainTime(values[kPosition]);
    if (!time) return false;
    first_ = time->rates;
  }
  const auto index = ReadPlainNumber(values[kIndex]);
  const bool isFirstChannel = !values[kChannels].IsGiven();
  const auto channels = isFirstChannel ? field::ChannelRun() : ReadPlainRun(values[kChannels]);
  const auto tracks = ReadPlainRun(values[kTracks]);
  const auto in = Samples(values[kIn]);
  const auto position = Samples(values[kPosition]);
  const auto end = Samples(values[kEnd]);
  if (!index || !channels || !tracks || !in || !position || !end) return false;
  NoteEarliest(*position, values[kPosition].text);
  // The system takes the first number of a run, whichever is the lower.
  const std::int32_t firstTrack =
      tracks->Count() == 1 ? tracks->first : field::ReadLeadingNumber(values[kTracks].text)->number;
  lowestTrack_ = std::min<std::int64_t>(lowestTrack_, firstTrack);
  event_.length = *end - *position;
  event_.tracks = *tracks;
  const char status = field::ReadStatus(values[kStatus].text);
  JudgeStatus(status);
  event_.isLive = !field::IsOffStatus(status);
  if (!event_.isLive) return true;
  highestLiveTrack_ = std::max<std::int64_t>(highestLiveTrack_, tracks->first);
  if (channels->Count() > 1 || tracks->Count() > 1) found_.loses = true;
  if (event_.length <= 0) found_.misplaces = true;
  return sources_.Play({.source = *index,
                        .channel = channels->first,
                        .sourceIn = *in,
                        .length = event_.length,
                        .projectRate = first_->sampleRate},
                       found_);
}

void GlanceEvents::JudgeStatus(char status) {
  if (status == 'E') {
    found_.loses = true;
  } else if (field::IsOffStatus(status)) {
    found_.misplaces = true;
  }
}

/// A time at the project's rate; none for any other text.
std::optional<std::int64_t> GlanceEvents::Samples(const field::Value& value) {
  const std::optional<PlainTime> time = times_.Read(value);
  if (!time || time->rates.sampleRate != first_->sampleRate) return std::nullopt;
  return time->samples;
}

/// Of equal times the first in the system's list, which is by rising number.
void GlanceEvents::NoteEarliest(std::int64_t position, std::string_view stamp) {
  const bool isEarlier = !earliest_ || position < earliest_->position ||
                         (position == earliest_->position && event_.number < earliest_->number);
  if (!isEarlier) return;
  earliest_ = {.position = position, .number = event_.number};
  std::copy(stamp.begin(), stamp.end(), earliest_->stamp.begin());
}

bool GlanceEvents::TakeFade(const PlainLine& line, std::optional<std::int64_t>& fade) {
  constexpr std::size_t kNeeded = 5;
  if (fade || line.valueCount < kNeeded) return false;
  // A fade before its event's cut, in the first event: the project's rate is not known yet.
  if (!first_) return false;
  const field::Value& length = line.values[0];
  fade = Samples(length);
  return fade && AdlIsTimestamp(length.text.data());
}

bool GlanceEvents::TakeGain(const PlainLine& line) {
  constexpr std::size_t kNeeded = 2;
  const field::Value& channels = line.values[0];
  const field::Value& level = line.values[1];
  if (event_.hasGain || line.valueCount < kNeeded || channels.quoted || level.quoted) return false;
  if (IsPlainLevel(level.text)) {
    event_.isSilent = level.text.find_first_of("123456789") == std::string_view::npos;
  } else if (const std::optional<double> meant = field::ReadDecibels(level.text)) {
    const double system = ToDouble(std::string(level.text).c_str());
    event_.isLevelRight = *meant == system;
    event_.isSilent = system == 0;
  } else {
    return true;  // a gain of no level is none
  }
  event_.hasGain = true;
  if (channels.IsGiven()) event_.gainChannels = field::ReadChannelRun(channels.text);
  return true;
}

/// What an event's lines tell together.
void GlanceEvents::JudgeEvent() {
  if (!event_.isLive) return;
  for (const std::optional<std::int64_t>& fade : {event_.fadeIn, event_.fadeOut}) {
    if (fade && event_.length > 0 && *fade > event_.length) found_.loses = true;
  }
  if (!event_.hasGain) return;
  const auto& channels = event_.gainChannels;
  const std::int32_t track = event_.tracks.first;
  const bool holds = !channels || (channels->first <= track && track <= channels->last);
  if (!(holds ? event_.isLevelRight : event_.isSilent)) found_.loses = true;
}

void GlanceEvents::Close(const field::TimeContext& times, const CheckOptions& options,
                         GlanceResult& result) {
  constexpr std::int64_t kMostTracks = std::numeric_limits<std::int16_t>::max();
  JudgeEvent();
  event_ = {};
  if (first_ && !HeaderContradiction(times, *first_).empty()) found_.misplaces = true;
  if (earliest_) {
    const std::string stamp(earliest_->stamp.begin(), earliest_->stamp.end());
    if (MovedSamples(stamp, options) != 0) found_.misplaces = true;
  }
  if (highestLiveTrack_ - lowestTrack_ >= kMostTracks) found_.loses = true;
  sources_.Judge(found_);
  result.found = found_;
  result.entries = entries_;
  result.numbersRise = numbersRise_;
}

}  // namespace velmora::check
