#include "Prepare/Stamps.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "Timecode/AdlTime.h"
#include "Timecode/RateTables.h"

namespace velmora::prepare {
namespace {

constexpr char kDropSeparator = ';';
constexpr std::int32_t kHighestRemainder = 9999;  // four digits

bool IsDrop(const StampForm& form) {
  return form.separator == kDropSeparator || form.separator == ',';
}

const SampleRateMark* FindSampleRate(double hz) {
  for (const SampleRateMark& row : kSampleRateMarks) {
    if (row.hz == hz) return &row;
  }
  return nullptr;
}

/// How badly a session's frame-rate code stands for a project's frame rate; 0 if it is the same.
double Distance(const FrameRateCode& code, const field::TimeRates& rates) {
  const FrameRateMark& mark = *FindFrameRateMark(code.frameRateMark);
  const double rate =
      mark.pulledDown ? mark.framesPerSecond * 1000.0 / 1001.0 : mark.framesPerSecond;
  const bool drop = code.frameSeparator == kDropSeparator;
  // Only where two rates are equally far away does drop-frame decide.
  return std::abs(rate - rates.FrameRate()) + (drop == rates.dropFrame ? 0 : 1e-6);
}

const FrameRateCode& NearestCode(const field::TimeRates& rates) {
  constexpr std::size_t kFirstDeclared = 1;  // code 0 is what hosts answer that do not know
  const FrameRateCode* nearest = &kFrameRateCodes[kFirstDeclared];
  for (std::size_t code = kFirstDeclared; code < kFrameRateCodes.size(); ++code) {
    if (Distance(kFrameRateCodes[code], rates) < Distance(*nearest, rates)) {
      nearest = &kFrameRateCodes[code];
    }
  }
  return *nearest;
}

/// Hours, minutes, seconds and frames of a frame count.
struct Digits {
  std::int64_t hours, minutes, seconds, frames;
};

Digits PlainDigits(std::int64_t count, std::int64_t nominal) {
  return {count / (3600 * nominal), count / (60 * nominal) % 60, count / nominal % 60,
          count % nominal};
}

/// Drop-frame counting passes over frames 0 and 1 of each minute but the tenth (SMPTE 12M).
Digits DropDigits(std::int64_t count, std::int64_t nominal) {
  const std::int64_t inMinute = 60 * nominal - 2;
  const std::int64_t inBlock = 600 * nominal - 18;
  const std::int64_t blocks = count / inBlock;
  const std::int64_t rest = count % inBlock;
  const std::int64_t minute = rest < 60 * nominal ? 0 : 1 + (rest - 60 * nominal) / inMinute;
  return PlainDigits(blocks * 600 * nominal + rest + 2 * minute, nominal);
}

/// The timestamp of a frame count with a remainder. None if it has no room.
std::optional<std::string> Compose(std::int64_t count, std::int64_t remainder,
                                   const StampForm& form) {
  const std::int64_t nominal = FindFrameRateMark(form.frameRateMark)->framesPerSecond;
  const Digits digits = IsDrop(form) ? DropDigits(count, nominal) : PlainDigits(count, nominal);
  if (digits.hours > 99) return std::nullopt;
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%02d%c%02d:%02d%c%02d%c%04d",
                static_cast<int>(digits.hours), form.frameRateMark,
                static_cast<int>(digits.minutes), static_cast<int>(digits.seconds), form.separator,
                static_cast<int>(digits.frames), form.sampleRateMark, static_cast<int>(remainder));
  return text.data();
}

}  // namespace

std::optional<StampForm> FormFor(const field::TimeRates& rates,
                                 std::optional<std::int32_t> frameRateCode) {
  const SampleRateMark* const sampleRate = FindSampleRate(rates.sampleRate);
  if (sampleRate == nullptr) return std::nullopt;
  const bool given = frameRateCode && *frameRateCode >= 0 &&
                     static_cast<std::size_t>(*frameRateCode) < kFrameRateCodes.size();
  const FrameRateCode& code =
      given ? kFrameRateCodes[static_cast<std::size_t>(*frameRateCode)] : NearestCode(rates);
  return StampForm{sampleRate->hz, sampleRate->mark, code.frameRateMark, code.frameSeparator};
}

field::TimeRates RatesOf(const StampForm& form) {
  const FrameRateMark& mark = *FindFrameRateMark(form.frameRateMark);
  return {.sampleRate = form.sampleRate,
          .framesPerSecond = mark.framesPerSecond,
          .pulledDown = mark.pulledDown,
          .dropFrame = IsDrop(form)};
}

std::optional<std::string> WriteStamp(std::int64_t samples, const StampForm& form) {
  if (samples < 0) return std::nullopt;
  // The last frame that begins at or before the place: what is left fits the remainder, since no
  // frame of any pair of rates has 10000 samples. The reader rounds, so it is asked, not imitated.
  const double frame =
      std::floor(static_cast<double>(samples) * RatesOf(form).FrameRate() / form.sampleRate);
  if (!(frame < 1e9)) return std::nullopt;
  constexpr std::int64_t kNeighbours = 2;
  const auto near = static_cast<std::int64_t>(frame);
  for (std::int64_t count = near + 1; count >= std::max<std::int64_t>(0, near - kNeighbours);
       --count) {
    const std::optional<std::string> whole = Compose(count, 0, form);
    if (!whole) continue;
    const std::int64_t remainder = samples - AdlToSamples(whole->c_str());
    if (remainder > kHighestRemainder) return std::nullopt;
    if (remainder >= 0) return Compose(count, remainder, form);
  }
  return std::nullopt;
}

std::optional<std::string> WriteFadeLength(std::int64_t samples, const StampForm& form) {
  StampForm drop = form;
  drop.separator = kDropSeparator;
  std::optional<std::string> text = WriteStamp(samples, drop);
  if (text && !AdlIsTimestamp(text->c_str())) return std::nullopt;
  return text;
}

}  // namespace velmora::prepare
