#include "Session/SessionClock.h"

#include <cmath>
#include <cstdio>
#include <limits>

namespace velmora::host {
namespace {

__extension__ using Wide = __int128;  // products of a position and two rates need 100 bits

Wide FloorDivide(Wide dividend, Wide divisor) {
  const Wide quotient = dividend / divisor;
  return dividend % divisor != 0 && (dividend < 0) != (divisor < 0) ? quotient - 1 : quotient;
}

std::int64_t Saturate(Wide value) {
  using Limits = std::numeric_limits<std::int64_t>;
  if (value > Limits::max()) return Limits::max();
  if (value < Limits::min()) return Limits::min();
  return static_cast<std::int64_t>(value);
}

/// Adds the numbers that drop-frame timecode leaves out: two at each minute but every tenth.
std::uint64_t AddDroppedNumbers(std::uint64_t frame, std::uint64_t nominal) {
  const std::uint64_t perMinute = nominal * 60 - 2;
  const std::uint64_t perBlock = nominal * 600 - 18;
  const std::uint64_t blocks = frame / perBlock;
  const std::uint64_t rest = frame % perBlock;
  // The first minute of ten keeps its numbers 0 and 1, and is two frames longer than the others.
  const std::uint64_t minutes = rest < 2 ? 0 : (rest - 2) / perMinute;
  return frame + 18 * blocks + 2 * minutes;
}

}  // namespace

SessionClock::SessionClock(const SessionRates& rates)
    : sampleRate_(rates.sampleRate >= kLowestRate && rates.sampleRate <= kHighestRate
                      ? rates.sampleRate
                      : SessionRates().sampleRate),
      code_(rates.frameRate >= 0 && rates.frameRate < static_cast<std::int32_t>(kFrameRates.size())
                ? rates.frameRate
                : SessionRates().frameRate),
      microHertz_(std::llround(static_cast<double>(sampleRate_) * 1e6)) {}

std::int64_t SessionClock::FrameAt(std::int64_t sample) const {
  const Wide frames = Wide{sample} * Rate().numerator * 1'000'000;
  return Saturate(FloorDivide(frames, Wide{microHertz_} * Rate().denominator));
}

std::int64_t SessionClock::FrameStart(std::int64_t frame) const {
  // Rounded up: the first whole sample that is not before the frame.
  const Wide samples = Wide{frame} * microHertz_ * Rate().denominator;
  return Saturate(-FloorDivide(-samples, Wide{Rate().numerator} * 1'000'000));
}

std::string SessionClock::FrameLabel(std::int64_t frame) const {
  const bool negative = frame < 0;
  const auto bits = static_cast<std::uint64_t>(frame);
  const FrameRate& rate = Rate();
  const auto nominal = static_cast<std::uint64_t>(rate.nominal);
  std::uint64_t number = negative ? 0 - bits : bits;
  if (rate.dropFrame) number = AddDroppedNumbers(number, nominal);
  const std::uint64_t seconds = number / nominal;
  char text[64];
  std::snprintf(text, sizeof text, "%s%02llu:%02llu:%02llu%c%02llu", negative ? "-" : "",
                static_cast<unsigned long long>(seconds / 3600),
                static_cast<unsigned long long>(seconds / 60 % 60),
                static_cast<unsigned long long>(seconds % 60), rate.dropFrame ? ';' : ':',
                static_cast<unsigned long long>(number % nominal));
  return text;
}

}  // namespace velmora::host
