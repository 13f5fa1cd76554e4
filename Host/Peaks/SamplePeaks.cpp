#include "Peaks/SamplePeaks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace velmora::peaks {
namespace {

/// How many values are compared side by side. Both compilers make vector instructions of such a
/// loop. 24 numbers of 16 bits are a whole number of samples of 16, 24 and 32 bits.
constexpr std::size_t kLanes = 24;

template <typename Value>
struct Extremes {
  std::array<Value, kLanes> low;
  std::array<Value, kLanes> high;

  Extremes() {
    low.fill(std::numeric_limits<Value>::max());
    high.fill(std::numeric_limits<Value>::lowest());
  }
  /// Takes in `count` rows of kLanes values. A comparison with what is no number is false.
  void Take(const std::uint8_t* bytes, std::size_t count) {
    std::array<Value, kLanes> row;
    for (std::size_t i = 0; i < count; ++i) {
      std::memcpy(row.data(), bytes + i * sizeof row, sizeof row);
      for (std::size_t lane = 0; lane < kLanes; ++lane) {
        low[lane] = row[lane] < low[lane] ? row[lane] : low[lane];
        high[lane] = row[lane] > high[lane] ? row[lane] : high[lane];
      }
    }
  }
};

/// The upper 16 bits of each sample are enough. They are compared without being unpacked: the bytes
/// are read as a row of 16-bit numbers, of which those at every `period`-th place, from `phase` on,
/// are such upper halves, and the rest is not looked at in the end.
///
///     24 bits, from byte 0:  |b0 b1|b2 B3|B4 B5|   B4 B5: upper half of the second sample
///     24 bits, from byte 1:     |B1 B2|b3 b4|b5 ..  B1 B2: of the first
void TakeUpperHalves(const std::uint8_t* bytes, std::size_t rows, std::size_t phase,
                     std::size_t period, Peak& peak) {
  Extremes<std::int16_t> extremes;
  extremes.Take(bytes, rows);
  for (std::size_t lane = phase; lane < kLanes; lane += period) {
    peak.Add({extremes.low[lane], extremes.high[lane]});
  }
}

Peak PeakOfIntegers(const std::uint8_t* bytes, std::size_t samples, std::size_t sampleBytes) {
  constexpr std::size_t kRowBytes = kLanes * sizeof(std::int16_t);
  Peak peak;
  const std::size_t rows = samples * sampleBytes / kRowBytes;
  if (rows > 0 && sampleBytes == 3) {
    TakeUpperHalves(bytes, rows, 2, 3, peak);
    TakeUpperHalves(bytes + 1, rows, 0, 3, peak);
  } else if (rows > 0) {
    TakeUpperHalves(bytes, rows, sampleBytes / 2 - 1, sampleBytes / 2, peak);
  }
  for (std::size_t i = rows * kRowBytes / sampleBytes; i < samples; ++i) {
    std::int16_t upper = 0;
    std::memcpy(&upper, bytes + (i + 1) * sampleBytes - sizeof upper, sizeof upper);
    peak.Add({upper, upper});
  }
  return peak;
}

std::int16_t Rounded(double fraction) {
  return static_cast<std::int16_t>(std::clamp(std::floor(fraction * 32768), -32768.0, 32767.0));
}

template <typename Fraction>
Peak PeakOf(const std::uint8_t* bytes, std::size_t samples) {
  Extremes<Fraction> extremes;
  const std::size_t rows = samples / kLanes;
  extremes.Take(bytes, rows);
  Fraction low = *std::min_element(extremes.low.begin(), extremes.low.end());
  Fraction high = *std::max_element(extremes.high.begin(), extremes.high.end());
  for (std::size_t i = rows * kLanes; i < samples; ++i) {
    Fraction value = 0;
    std::memcpy(&value, bytes + i * sizeof value, sizeof value);
    low = value < low ? value : low;
    high = value > high ? value : high;
  }
  if (samples == 0) return {};
  if (low > high) return {0, 0};
  return {Rounded(static_cast<double>(low)), Rounded(static_cast<double>(high))};
}

}  // namespace

Peak PeakOfBytes(SampleForm form, const std::uint8_t* bytes, std::size_t samples) {
  if (form == SampleForm::Floats32) return PeakOf<float>(bytes, samples);
  return PeakOfIntegers(bytes, samples, BytesOf(form));
}

Peak PeakOfFractions(const double* fractions, std::size_t samples) {
  return PeakOf<double>(reinterpret_cast<const std::uint8_t*>(fractions), samples);
}

}  // namespace velmora::peaks
