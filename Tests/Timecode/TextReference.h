#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>

#include "Base/Wrapping.h"
#include "Timecode/RateTables.h"

namespace velmora::test {

// The arithmetic in the straightforward way: a timestamp is read position by position, and a typed
// timecode is written as a timestamp and that read again. Slow, but step by step as the rules
// stand.

inline std::int32_t DigitAt(const char* text, std::size_t position) {
  return static_cast<signed char>(text[position]) - '0';
}

/// `text` has 16 characters.
inline std::int64_t ReferenceSamples(const char* text) {
  const std::int32_t hours = 10 * DigitAt(text, 0) + DigitAt(text, 1);
  const std::int32_t minutes = 10 * DigitAt(text, 3) + DigitAt(text, 4);
  const std::int32_t seconds = 10 * DigitAt(text, 6) + DigitAt(text, 7);
  const std::int32_t frames = 10 * DigitAt(text, 9) + DigitAt(text, 10);
  const std::int32_t remainder = 1000 * DigitAt(text, 12) + 100 * DigitAt(text, 13) +
                                 10 * DigitAt(text, 14) + DigitAt(text, 15);
  const FrameRateMark* const rate = FindFrameRateMark(text[2]);
  if (rate == nullptr) {
    return WrapAdd<std::int64_t>(std::numeric_limits<std::int64_t>::min(), remainder);
  }
  const bool drop = text[8] == ',' || text[8] == ';';
  const std::int32_t n = rate->framesPerSecond;
  const std::int32_t block = drop ? 600 * n - 18 : 600 * n;
  std::int32_t count =
      (seconds + 60 * (minutes % 10)) * n + frames + (minutes / 10 + 6 * hours) * block;
  if (drop) count -= 2 * (minutes % 10);
  const double perSecond = rate->pulledDown ? n * 1000.0 / 1001.0 : n;
  const double samples = std::ceil(SampleRateOfMark(text[11]) * count / perSecond);
  return static_cast<std::int64_t>(samples) + remainder;
}

inline std::int64_t ReferenceTimecode(const char* at, std::int32_t code, std::int32_t sampleRate) {
  const FrameRateCode& rate = kFrameRateCodes[static_cast<std::size_t>(code)];
  const auto skipBlanks = [&at] {
    while (*at == ' ') ++at;
  };
  const auto number = [&at](std::uint64_t modulus) {
    std::uint64_t value = 0;
    while (*at >= '0' && *at <= '9') value = value * 10 + static_cast<std::uint64_t>(*at++ - '0');
    return static_cast<unsigned>(value % modulus);
  };
  const auto separated = [&](std::uint64_t modulus) {
    skipBlanks();
    if (*at != '\0') ++at;
    return number(modulus);
  };
  skipBlanks();
  const std::int64_t sign = *at == '-' ? -1 : 1;
  if (*at == '-' || *at == '+') ++at;
  skipBlanks();
  const unsigned hours = number(100);
  const unsigned minutes = separated(60);
  const unsigned seconds = separated(60);
  const unsigned frames = separated(rate.framesModulus);
  std::array<char, 64> timestamp{};
  std::snprintf(timestamp.data(), timestamp.size(), "%02u%c%02u:%02u%c%02u%c0000", hours,
                rate.frameRateMark, minutes, seconds, rate.frameSeparator, frames,
                sampleRate == 44100 ? '|' : '/');
  return sign * ReferenceSamples(timestamp.data());
}

}  // namespace velmora::test
