#include "Check/PlainTimes.h"

#include <cstddef>
#include <string_view>

#include "Timecode/AdlTime.h"

namespace velmora::check {
namespace {

constexpr std::uint64_t kOnes = 0x0101010101010101;
// Where digits stand in the two halves of a timestamp, the first character in the lowest byte.
constexpr std::uint64_t kDigitsOfFirstHalf = 0xFFFF00FFFF00FFFF;
constexpr std::uint64_t kDigitsOfSecondHalf = 0xFFFFFFFF00FFFF00;

std::uint64_t EightBytes(const char* text) {
  std::uint64_t bytes = 0;
  for (std::size_t i = 8; i-- > 0;) bytes = bytes << 8 | static_cast<unsigned char>(text[i]);
  return bytes;
}

/// The numbers of two digits each that stand in eight characters.
class DigitPairs {
 public:
  /// @param places 0xFF for each character that has to be a digit
  DigitPairs(const char* text, std::uint64_t places)
      : digits_((EightBytes(text) ^ '0' * kOnes) & places), pairs_(digits_ * 10 + (digits_ >> 8)) {}

  /// A digit is below 10 now. Adding 0x76 takes whatever is not past 0x7F; what was there before
  /// has told already if the sum leaves its byte.
  [[nodiscard]] bool AreDigits() const {
    return ((digits_ | (digits_ + 0x76 * kOnes)) & 0x80 * kOnes) == 0;
  }
  /// The number whose first digit is character `at`.
  [[nodiscard]] std::int64_t At(unsigned at) const {
    return static_cast<std::int64_t>(pairs_ >> at * 8 & 0xFF);
  }

 private:
  std::uint64_t digits_;
  std::uint64_t pairs_;  ///< of each byte and the next
};

/// The marks that tell the rates.
std::uint32_t MarksOf(std::string_view text) {
  return static_cast<unsigned char>(text[2]) | std::uint32_t{static_cast<unsigned char>(text[11])}
                                                   << 8;
}

bool IsPlain(const field::Value& value) {
  return !value.quoted && value.text.size() == kTimestampLength;
}

}  // namespace

std::optional<PlainTime> ReadPlainTime(const field::Value& value) {
  if (!IsPlain(value)) return std::nullopt;
  const field::TimeContext ownMarks;
  const std::optional<field::StampMarks> marks = field::ReadMarks(value.text, ownMarks);
  if (!marks) return std::nullopt;
  return PlainTime{field::TimeOf(value.text, *marks, ownMarks).samples, marks->rates};
}

std::optional<PlainTime> PlainTimes::Read(const field::Value& value) {
  if (!IsPlain(value)) return std::nullopt;
  const std::uint32_t marks = MarksOf(value.text);
  if (samplesPerFrame_ == 0 || marks != marks_) {
    const std::optional<PlainTime> time = ReadPlainTime(value);
    if (time) Know(marks, time->rates);
    return time;
  }
  const DigitPairs first(value.text.data(), kDigitsOfFirstHalf);
  const DigitPairs second(value.text.data() + 8, kDigitsOfSecondHalf);
  if (!first.AreDigits() || !second.AreDigits()) return std::nullopt;
  const char separator = value.text[8];
  PlainTime time{0, rates_};
  time.rates.dropFrame = separator == ';' || separator == ',';
  const std::int64_t minutes = first.At(0) * 60 + first.At(3);
  std::int64_t frames = (minutes * 60 + first.At(6)) * rates_.framesPerSecond + second.At(1);
  // Two a minute but for the tenth, SMPTE 12M.
  if (time.rates.dropFrame) frames -= 2 * (minutes - minutes / 10);
  time.samples = frames * samplesPerFrame_ + second.At(4) * 100 + second.At(6);
  return time;
}

/// Takes note of marks at whose rates a frame has a whole number of samples.
void PlainTimes::Know(std::uint32_t marks, const field::TimeRates& rates) {
  const auto sampleRate = static_cast<std::int64_t>(rates.sampleRate);
  const bool isWhole = static_cast<double>(sampleRate) == rates.sampleRate && !rates.pulledDown &&
                       sampleRate % rates.framesPerSecond == 0;
  if (!isWhole) return;
  marks_ = marks;
  rates_ = rates;
  samplesPerFrame_ = sampleRate / rates.framesPerSecond;
}

}  // namespace velmora::check
