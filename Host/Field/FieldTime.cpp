#include "Field/FieldTime.h"

#include <cmath>
#include <limits>
#include <numeric>

#include "Timecode/AdlTime.h"
#include "Timecode/RateTables.h"

namespace velmora::field {
namespace {

constexpr std::size_t kFrameRateMarkAt = 2;
constexpr std::size_t kFrameSeparatorAt = 8;
constexpr std::size_t kSampleRateMarkAt = 11;
constexpr std::size_t kRemainderAt = 12;
/// Two a minute but for the tenth, SMPTE 12M.
constexpr std::int64_t kFramesDroppedInTenMinutes = 18;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool AreTwoDigits(std::string_view text, std::size_t at) {
  return IsDigit(text[at]) && IsDigit(text[at + 1]);
}

std::int64_t TwoDigitsAt(std::string_view text, std::size_t at) {
  return (text[at] - '0') * 10 + (text[at + 1] - '0');
}

/// std::ceil of what fits into 64 bits, without a call: three times of each cut need it.
std::int64_t RoundUp(double number) {
  const auto whole = static_cast<std::int64_t>(number);
  return static_cast<double>(whole) < number ? whole + 1 : whole;
}

/// Frames since zero, and of them samples: the rule of AdlToSamples, for any rates.
std::int64_t SamplesOf(std::string_view text, const TimeRates& rates) {
  const std::int64_t minutes = TwoDigitsAt(text, 3);
  const std::int64_t tenMinuteBlocks = minutes / 10 + 6 * TwoDigitsAt(text, 0);
  const std::int64_t minutesInBlock = minutes % 10;
  const std::int64_t seconds = TwoDigitsAt(text, 6) + 60 * minutesInBlock;
  std::int64_t frames = seconds * rates.framesPerSecond + TwoDigitsAt(text, 9) +
                        tenMinuteBlocks * 600 * rates.framesPerSecond;
  if (rates.dropFrame) {
    frames -= tenMinuteBlocks * kFramesDroppedInTenMinutes + 2 * minutesInBlock;
  }
  const std::int64_t samples =
      RoundUp(rates.sampleRate * static_cast<double>(frames) / rates.FrameRate());
  if (text.size() != kTimestampLength) return samples;
  return samples + 100 * TwoDigitsAt(text, kRemainderAt) + TwoDigitsAt(text, kRemainderAt + 2);
}

/// A rate in Hz as a fraction. Pulled rates are whole numbers of 1/1001 or of 1/10.
struct Fraction {
  std::int64_t numerator = 0;
  std::int64_t denominator = 1;
};

Fraction FractionOf(double rate) {
  for (const std::int64_t denominator : {1, 2, 3, 10, 1000, 1001}) {
    const double scaled = rate * static_cast<double>(denominator);
    const double whole = std::round(scaled);
    // A product of two doubles is off by its own last bits at the most.
    if (std::abs(scaled - whole) <= whole * 1e-15) {
      return {static_cast<std::int64_t>(whole), denominator};
    }
  }
  constexpr std::int64_t kFine = 100000;
  return {static_cast<std::int64_t>(std::round(rate * kFine)), kFine};
}

bool IsRate(double rate) {
  return std::isfinite(rate) && rate >= 1 && rate <= 1e8;
}

}  // namespace

double TimeRates::FrameRate() const {
  return pulledDown ? framesPerSecond * 1000.0 / 1001.0 : framesPerSecond;
}

std::int64_t AtRate(std::int64_t samples, double fromRate, double toRate) {
  if (fromRate == toRate || !IsRate(fromRate) || !IsRate(toRate)) return samples;
  __extension__ using Wide = __int128;
  const Fraction from = FractionOf(fromRate);
  const Fraction to = FractionOf(toRate);
  std::int64_t up = to.numerator * from.denominator;
  std::int64_t down = to.denominator * from.numerator;
  const std::int64_t common = std::gcd(up, down);
  up /= common;
  down /= common;
  // Both factors are below 2^60, so that nothing here passes 2^125.
  const Wide doubled = Wide{samples} * up * 2 + down;
  const Wide divisor = Wide{down} * 2;
  Wide result = doubled / divisor;
  if (doubled % divisor < 0) --result;
  if (result > std::numeric_limits<std::int64_t>::max()) {
    return std::numeric_limits<std::int64_t>::max();
  }
  if (result < std::numeric_limits<std::int64_t>::min()) {
    return std::numeric_limits<std::int64_t>::min();
  }
  return static_cast<std::int64_t>(result);
}

bool LooksLikeTime(std::string_view text) {
  if (text.size() != kSampleRateMarkAt && text.size() != kRemainderAt &&
      text.size() != kTimestampLength) {
    return false;
  }
  return AreTwoDigits(text, 0) && AreTwoDigits(text, 3) && AreTwoDigits(text, 6) &&
         AreTwoDigits(text, 9) &&
         (text.size() != kTimestampLength ||
          (AreTwoDigits(text, kRemainderAt) && AreTwoDigits(text, kRemainderAt + 2)));
}

std::optional<StampMarks> ReadMarks(std::string_view text, const TimeContext& context) {
  if (!LooksLikeTime(text)) return std::nullopt;
  const FrameRateMark* const frames = FindFrameRateMark(text[kFrameRateMarkAt]);
  if (frames == nullptr) return std::nullopt;
  StampMarks marks;
  marks.frameRateMark = frames->mark;
  marks.frameSeparator = text[kFrameSeparatorAt];
  marks.rates = {.sampleRate = context.rateWithoutMark,
                 .framesPerSecond = frames->framesPerSecond,
                 .pulledDown = frames->pulledDown,
                 .dropFrame = marks.frameSeparator == ';' || marks.frameSeparator == ','};
  if (text.size() > kSampleRateMarkAt) {
    marks.sampleRateMark = text[kSampleRateMarkAt];
    marks.rates.sampleRate = SampleRateOfMark(marks.sampleRateMark);
    if (marks.rates.sampleRate == 0) return std::nullopt;
  }
  return marks;
}

Time TimeOf(std::string_view text, const StampMarks& marks, const TimeContext& context) {
  TimeRates rates = marks.rates;
  if (context.trust == Trust::Header) {
    if (context.headerSampleRate) rates.sampleRate = *context.headerSampleRate;
    if (context.headerFrames) {
      rates.framesPerSecond = context.headerFrames->framesPerSecond;
      rates.pulledDown = context.headerFrames->pulledDown;
    }
  }
  return {SamplesOf(text, rates), rates};
}

std::optional<Time> ReadTime(std::string_view text, const TimeContext& context) {
  const std::optional<StampMarks> marks = ReadMarks(text, context);
  if (!marks) return std::nullopt;
  return TimeOf(text, *marks, context);
}

}  // namespace velmora::field
