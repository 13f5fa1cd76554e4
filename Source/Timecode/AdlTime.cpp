#include "Timecode/AdlTime.h"

#include <array>
#include <cstring>
#include <limits>

#include "Base/Wrapping.h"
#include "Timecode/RateTables.h"

namespace velmora {
namespace {

constexpr std::size_t kFrameRateMarkAt = 2;
constexpr std::size_t kFrameSeparatorAt = 8;
constexpr std::size_t kSampleRateMarkAt = 11;
constexpr std::size_t kRemainderAt = 12;
/// Two a minute but for the tenth, SMPTE 12M.
constexpr std::int32_t kFramesDroppedInTenMinutes = 18;

using TimestampText = std::array<char, kTimestampLength>;

TimestampText TextOf(const char* timestamp) {
  TimestampText text{};
  if (timestamp != nullptr) std::memcpy(text.data(), timestamp, strnlen(timestamp, text.size()));
  return text;
}

bool IsDropSeparator(char separator) {
  return separator == ',' || separator == ';';
}

/// What a timestamp says. The numbers are not limited: any character in place of a digit has a
/// value, its code minus '0', so they range from -1936 to 869, the remainder from -195536 to 87769.
struct Timestamp {
  std::int32_t hours;
  std::int32_t minutes;
  std::int32_t seconds;
  std::int32_t frames;
  std::int32_t remainder;  ///< samples
  char frameRateMark;
  char frameSeparator;
  char sampleRateMark;
};

std::int32_t TwoDigitsAt(const char* text, std::size_t position) {
  const auto digit = [text](std::size_t at) { return static_cast<signed char>(text[at]) - '0'; };
  return 10 * digit(position) + digit(position + 1);
}

/// Of a text of all sixteen characters.
Timestamp ParseWhole(const char* text) {
  return {.hours = TwoDigitsAt(text, 0),
          .minutes = TwoDigitsAt(text, 3),
          .seconds = TwoDigitsAt(text, 6),
          .frames = TwoDigitsAt(text, 9),
          .remainder = 100 * TwoDigitsAt(text, kRemainderAt) + TwoDigitsAt(text, kRemainderAt + 2),
          .frameRateMark = text[kFrameRateMarkAt],
          .frameSeparator = text[kFrameSeparatorAt],
          .sampleRateMark = text[kSampleRateMarkAt]};
}

Timestamp Parse(const char* timestamp) {
  const bool isWhole =
      timestamp != nullptr && strnlen(timestamp, kTimestampLength) == kTimestampLength;
  return ParseWhole(isWhole ? timestamp : TextOf(timestamp).data());
}

/// Frames since zero. Drop-frame depends on the separator alone, whatever the frame rate.
std::int32_t FrameCount(const Timestamp& time, std::int32_t framesPerSecond) {
  const std::int32_t tenMinuteBlocks = time.minutes / 10 + 6 * time.hours;
  const std::int32_t minutesInBlock = time.minutes % 10;
  const bool drop = IsDropSeparator(time.frameSeparator);
  const std::int32_t framesInBlock =
      600 * framesPerSecond - (drop ? kFramesDroppedInTenMinutes : 0);
  const std::int32_t seconds = time.seconds + 60 * minutesInBlock;
  const std::int32_t count =
      seconds * framesPerSecond + time.frames + tenMinuteBlocks * framesInBlock;
  return drop ? count - 2 * minutesInBlock : count;
}

/// The next whole number at or above one that 64 bits hold. std::ceil is a call where the processor
/// may be one without an instruction for it.
std::int64_t RoundUp(double number) {
  const auto whole = static_cast<std::int64_t>(number);
  return static_cast<double>(whole) < number ? whole + 1 : whole;
}

std::int64_t Samples(const Timestamp& time) {
  const FrameRateMark* const rate = FindFrameRateMark(time.frameRateMark);
  const std::int32_t nominal = rate != nullptr ? rate->framesPerSecond : 0;
  double framesPerSecond = nominal;
  if (rate != nullptr && rate->pulledDown) framesPerSecond = framesPerSecond * 1000.0 / 1001.0;

  // With no frame rate the numerator's sign does not matter: infinity and NaN both give the lowest
  // number.
  const double samples = SampleRateOfMark(time.sampleRateMark) * FrameCount(time, nominal);
  const std::int64_t whole =
      nominal != 0 ? RoundUp(samples / framesPerSecond) : std::numeric_limits<std::int64_t>::min();
  return WrapAdd<std::int64_t>(whole, time.remainder);
}

/// `0` to `9`, whatever the locale.
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Reads a typed timecode from left to right; past its end it stands still.
class TimecodeReader {
 public:
  explicit TimecodeReader(const char* text) : at_(text) {}

  bool ReadMinus() {
    SkipBlanks();
    const bool minus = *at_ == '-';
    if (minus || *at_ == '+') ++at_;
    SkipBlanks();
    return minus;
  }
  /// A run of digits of any length, or 0; below the modulus.
  std::int32_t ReadNumber(std::uint32_t modulus) {
    std::uint32_t number = 0;
    for (; IsDigit(*at_); ++at_) {
      number = (number * 10 + static_cast<std::uint32_t>(*at_ - '0')) % modulus;
    }
    SkipBlanks();
    return static_cast<std::int32_t>(number);
  }
  /// One character of any kind, then a number.
  std::int32_t ReadSeparatedNumber(std::uint32_t modulus) {
    if (*at_ != '\0') ++at_;
    return ReadNumber(modulus);
  }

 private:
  void SkipBlanks() {
    while (*at_ == ' ') ++at_;
  }
  const char* at_;
};

}  // namespace

double AdlSampleRate(const char* timestamp) {
  return SampleRateOfMark(Parse(timestamp).sampleRateMark);
}

std::int64_t AdlToSamples(const char* timestamp) {
  return Samples(Parse(timestamp));
}

std::int64_t TimecodeToSamples(const char* text, std::int32_t frameRateCode,
                               std::int32_t sampleRate) {
  const auto code = static_cast<std::size_t>(static_cast<std::uint32_t>(frameRateCode));
  const FrameRateCode& rate = kFrameRateCodes[code < kFrameRateCodes.size() ? code : 0];

  TimecodeReader reader(text != nullptr ? text : "");
  const bool negative = reader.ReadMinus();
  Timestamp time{};
  time.hours = reader.ReadNumber(100);
  time.minutes = reader.ReadSeparatedNumber(60);
  time.seconds = reader.ReadSeparatedNumber(60);
  time.frames = reader.ReadSeparatedNumber(rate.framesModulus);
  time.frameRateMark = rate.frameRateMark;
  time.frameSeparator = rate.frameSeparator;
  // Deliberately coarse: every session but one of 44100 Hz counts as one of 48000 Hz.
  time.sampleRateMark = sampleRate == 44100 ? '|' : '/';
  const std::int64_t samples = Samples(time);
  return negative ? -samples : samples;
}

std::int64_t AdlDifference(const char* first, const char* second) {
  return WrapSubtract(AdlToSamples(second), AdlToSamples(first));
}

bool AdlIsTimestamp(const char* timestamp) {
  const TimestampText text = TextOf(timestamp);
  const auto upTo = [&text](std::size_t position, char highest) {
    return text[position] >= '0' && text[position] <= highest;
  };
  for (const std::size_t position : {1U, 4U, 7U, 10U, 12U, 13U, 14U, 15U}) {
    if (!upTo(position, '9')) return false;
  }
  // Stricter than AdlToSamples: a fade length with a non-drop separator is refused.
  return upTo(0, '2') && upTo(3, '5') && upTo(6, '5') && upTo(9, '2') &&
         IsDropSeparator(text[kFrameSeparatorAt]) &&
         FindFrameRateMark(text[kFrameRateMarkAt]) != nullptr &&
         SampleRateOfMark(text[kSampleRateMarkAt]) != 0.0;
}

std::string TimestampTimecode(const char* text) {
  return std::string(TimestampTimecodeView(text));
}

std::string_view TimestampTimecodeView(const char* text) {
  if (text == nullptr) return {};
  const char* end = text;
  while (*end != '\0' && *end != '/') ++end;  // at once for eleven characters; strcspn takes 25 ns
  return {text, static_cast<std::size_t>(end - text)};
}

}  // namespace velmora
