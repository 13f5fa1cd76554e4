#include "Session/SessionPreset.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "Timecode/AdlTime.h"
#include "Timecode/RateTables.h"

namespace velmora::host {
namespace {

constexpr std::size_t kMarkPosition = 2;
constexpr std::size_t kSeparatorPosition = 8;

std::int32_t CodeOf(char mark, char separator) {
  for (std::size_t code = 0; code < kFrameRateCodes.size(); ++code) {
    const FrameRateCode& row = kFrameRateCodes[code];
    if (row.frameRateMark == mark && row.frameSeparator == separator) {
      return static_cast<std::int32_t>(code);
    }
  }
  return 0;
}

}  // namespace

SessionRates PresetFor(const char* timestamp) {
  SessionRates rates;
  if (timestamp == nullptr) return rates;
  const auto rate = static_cast<float>(AdlSampleRate(timestamp));
  if (rate > 0) rates.sampleRate = rate;
  if (std::strlen(timestamp) > kSeparatorPosition) {
    rates.frameRate = CodeOf(timestamp[kMarkPosition], timestamp[kSeparatorPosition]);
  }
  return rates;
}

SessionRates SessionRatesFor(const char* timestamp, std::optional<double> sampleRate,
                             std::optional<std::int32_t> frameRate) {
  SessionRates rates = PresetFor(timestamp);
  if (sampleRate) rates.sampleRate = static_cast<float>(*sampleRate);
  rates.frameRate = frameRate.value_or(rates.frameRate);
  return rates;
}

std::vector<float> OfferedSampleRates() {
  std::vector<float> rates = {44100, 48000, 88200, 96000, 176400, 192000};
  // Whatever a timestamp can name can be a session's rate.
  for (const SampleRateMark& mark : kSampleRateMarks) {
    const auto rate = static_cast<float>(mark.hz);
    if (std::find(rates.begin(), rates.end(), rate) == rates.end()) rates.push_back(rate);
  }
  std::sort(rates.begin() + kCommonSampleRates, rates.end());
  return rates;
}

std::string SampleRateName(double hertz) {
  hertz = ExactSampleRate(hertz);  // a session's 32-bit float and the project's rate read alike
  char text[64];
  const bool whole = std::abs(hertz - std::round(hertz)) < 0.0005;
  std::snprintf(text, sizeof text, whole ? "%.0f Hz" : "%.3f Hz", hertz);
  return text;
}

}  // namespace velmora::host
