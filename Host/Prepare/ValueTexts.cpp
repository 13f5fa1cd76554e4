#include "Prepare/ValueTexts.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "Field/EntryTexts.h"
#include "Field/FieldHeader.h"
#include "Field/Keyword.h"
#include "Prepare/AdlText.h"
#include "Timecode/AdlTime.h"

namespace velmora::prepare {
namespace {

bool IsSampleRate(const field::Entry& entry) {
  return field::IsKeyword(entry.label, "SEQ_SAMPLE_RATE");
}
bool IsFrameRate(const field::Entry& entry) {
  return field::IsKeyword(entry.label, "SEQ_FRAME_RATE");
}

}  // namespace

std::string ValueTexts::Text(const field::Value& value) const {
  return AdlText::Value(project_.TextOf(value), value.quoted);
}

std::string ValueTexts::TextOr(const field::Value& value) const {
  return value.IsThere() ? Text(value) : "_";
}

ValueTexts::Values ValueTexts::ValuesOf(const field::Entry& entry) const {
  Values values;
  for (const field::Value& value : project_.tree.ValuesOf(entry)) values.push_back(Text(value));
  return values;
}

ValueTexts::Values ValueTexts::StampedValuesOf(const field::Entry& entry,
                                               std::size_t fewest) const {
  Values values;
  for (const field::Value& value : project_.tree.ValuesOf(entry)) {
    const std::optional<std::int64_t> time = TimeOf(value);
    values.push_back(time ? Stamp(*time) : Text(value));
  }
  while (values.size() < fewest) values.emplace_back("_");
  return values;
}

ValueTexts::Values ValueTexts::ConstantValues(const field::Entry& entry, bool hasTimes) const {
  const field::Value text = ReadLineText(project_.tree, entry, 0);
  if (!text.IsThere()) return {};
  if (!hasTimes || IsSampleRate(entry) || IsFrameRate(entry)) return {Text(text)};
  const std::optional<std::int64_t> time = TimeOf(text);
  if (!time || IsAsPrepared(text)) return {Text(text)};
  // In the form that fade lengths have.
  const bool isFade = field::IsKeyword(entry.label, "SYS_XFADE_LEN");
  return {isFade ? FadeLength(*time).value_or("_") : Stamp(*time)};
}

std::optional<std::string> ValueTexts::OtherRate(const field::Entry& entry) const {
  const bool isSampleRate = IsSampleRate(entry);
  if ((!isSampleRate && !IsFrameRate(entry)) || entry.valueCount == 0) return std::nullopt;
  const std::string_view text = ReadLineText(project_.tree, entry, 0).text;
  const field::TimeRates form = RatesOf(form_);
  if (isSampleRate) {
    if (field::ReadSampleRate(text) == form.sampleRate) return std::nullopt;
    return 'S' + std::to_string(std::llround(form.sampleRate));
  }
  const std::optional<field::TimeRates> rates = field::ReadFrameRate(text);
  const bool isForm = rates && rates->framesPerSecond == form.framesPerSecond &&
                      rates->pulledDown == form.pulledDown;
  if (isForm) return std::nullopt;
  std::array<char, 32> number{};
  std::snprintf(number.data(), number.size(), "%.5g", form.FrameRate());
  return number.data();
}

std::optional<std::int64_t> ValueTexts::TimeOf(const field::Value& value) const {
  const std::optional<field::Time> time = field::ReadTime(value.text, project_.times);
  if (!time) return std::nullopt;
  if (time->rates.sampleRate == form_.sampleRate) return time->samples;
  return field::AtRate(time->samples, time->rates.sampleRate, form_.sampleRate);
}

/// True for a whole timestamp whose marks say what the prepared ones say: it may stay as it is.
/// Drop-frame is left aside: lengths of fades always count so.
bool ValueTexts::IsAsPrepared(const field::Value& value) const {
  const std::optional<field::StampMarks> marks = ReadMarks(value.text, project_.times);
  if (!marks || marks->sampleRateMark == 0 || value.quoted || AdlText::NeedsQuotes(value.text) ||
      value.text.size() != kTimestampLength) {
    return false;
  }
  field::TimeRates rates = marks->rates;
  const field::TimeRates form = RatesOf(form_);
  rates.dropFrame = form.dropFrame;
  return rates == form;
}

std::string ValueTexts::Stamp(std::int64_t samples) const {
  return WriteStamp(samples, form_).value_or("_");
}

std::optional<std::string> ValueTexts::FadeLength(std::int64_t samples) const {
  return WriteFadeLength(samples, form_);
}

}  // namespace velmora::prepare
