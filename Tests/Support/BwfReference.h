#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "Support/WaveBytes.h"

namespace velmora::test {

// The bext chunk of a written file is as long as the record that holds it: its pointer and its
// alignment make it longer on a 64-bit build.
inline constexpr std::uint32_t kBextBytes = sizeof(void*) == 8 ? 616 : 608;
inline constexpr std::uint32_t kHeaderBytes = kBextBytes + 52;
inline constexpr std::uint32_t kRiffSizeBeyondData = kHeaderBytes - 8;

/// The header of a written file, field by field.
inline std::string WrittenHeader(std::uint32_t sampleRate, std::uint32_t channels,
                                 std::int32_t bits, std::int32_t frames) {
  const auto sampleBytes = static_cast<std::uint32_t>(bits / 8);
  const auto dataBytes = static_cast<std::uint32_t>(frames) * channels * sampleBytes;
  return LittleEndian()
      .Text("RIFF")
      .U32(dataBytes + kRiffSizeBeyondData)
      .Text("WAVE")
      .Text("bext")
      .U32(kBextBytes)
      .Zeros(kBextBytes)
      .Text("fmt ")
      .U32(16)
      .U16(1)
      .U16(static_cast<std::uint16_t>(channels))
      .U32(sampleRate)
      .U32(sampleRate * channels * sampleBytes)
      .U16(static_cast<std::uint16_t>(channels * sampleBytes))
      .U16(static_cast<std::uint16_t>(bits))
      .Text("data")
      .U32(dataBytes)
      .bytes;
}

/// The value of a sample of `bits` bits: a fraction of full scale, rounded to a float's 24 bits.
inline float Decoded(std::int32_t sample, std::int32_t bits) {
  return std::ldexp(static_cast<float>(sample), 1 - bits);
}

/// The sample of `bits` bits (8 to 32) that a value is stored as: scaled to one below full scale,
/// truncated toward zero, its low bytes kept.
inline std::int32_t Encoded(float value, std::int32_t bits) {
  const float product = value * static_cast<float>((std::int64_t{1} << (bits - 1)) - 1);
  const bool fits = product >= -2147483648.0F && product < 2147483648.0F;
  const std::int32_t whole =
      fits ? static_cast<std::int32_t>(product) : std::numeric_limits<std::int32_t>::min();
  const std::uint32_t left = static_cast<std::uint32_t>(whole) << (32 - bits);
  return static_cast<std::int32_t>(left) >> (32 - bits);
}

/// A depth change worked out in whole numbers alone: the magnitude times the target's scale,
/// rounded to 24 significant bits as a float product is (ties to even), and cut.
inline std::int32_t Requantised(std::int32_t sample, std::int32_t from, std::int32_t to) {
  const auto toFloat = [](std::uint64_t magnitude) {
    int shift = 0;
    while ((magnitude >> shift) >= (1U << 24)) ++shift;
    if (shift == 0) return magnitude;
    const std::uint64_t rest = magnitude & ((std::uint64_t{1} << shift) - 1);
    const std::uint64_t half = std::uint64_t{1} << (shift - 1);
    std::uint64_t kept = magnitude >> shift;
    if (rest > half || (rest == half && (kept & 1) != 0)) ++kept;
    return kept << shift;
  };
  const bool negative = sample < 0;
  const auto wide = static_cast<std::int64_t>(sample);
  const std::uint64_t magnitude = toFloat(static_cast<std::uint64_t>(negative ? -wide : wide));
  const std::uint64_t scale = toFloat((std::uint64_t{1} << (to - 1)) - 1);
  // The magnitude has 24 significant bits; without its trailing zeros the product fits 64 bits.
  int zeros = 0;
  while (magnitude != 0 && ((magnitude >> zeros) & 1) == 0) ++zeros;
  const int shift = from - 1 - zeros;
  const std::uint64_t product = toFloat((magnitude >> zeros) * scale);
  const std::uint64_t whole = shift >= 0 ? product >> shift : product << -shift;
  if (!negative && whole >= (std::uint64_t{1} << 31)) return std::numeric_limits<int>::min();
  return static_cast<std::int32_t>(negative ? -static_cast<std::int64_t>(whole)
                                            : static_cast<std::int64_t>(whole));
}

/// A stream over a file's bytes and the position that is tracked beside it, as random reads move
/// them: a read seeks only where its offset differs from the tracked position, and then that
/// position only grows by one sample, so that it soon tells something else than the stream.
class StreamModel {
 public:
  StreamModel(std::string file, const WaveFormat& format, std::int64_t dataOffset,
              std::uint64_t frames)
      : file_(std::move(file)), format_(format), dataOffset_(dataOffset), frames_(frames) {}

  void OpenAtData() {
    at_ = dataOffset_;
    if (!open_) position_ = dataOffset_;
    open_ = true;
  }
  void Close() { open_ = false; }

  float SampleAt(std::int32_t frame, std::uint32_t channel) {
    if (!open_) OpenAtData();
    if (frame < 0 || channel >= format_.channels || static_cast<std::uint64_t>(frame) >= frames_) {
      return 0;
    }
    const std::int64_t sampleBytes = format_.bits / 8;
    const std::int64_t offset = dataOffset_ + std::int64_t{frame} * format_.channels * sampleBytes +
                                std::int64_t{channel} * sampleBytes;
    if (offset != position_) at_ = offset;
    position_ += sampleBytes;
    return Read();
  }

  std::int64_t Position() const { return position_; }

 private:
  float Read() {
    std::uint64_t sample = 0;
    const int width = format_.bits / 8;
    for (int i = 0; i < width; ++i) {
      const bool there = at_ < static_cast<std::int64_t>(file_.size());
      const std::uint64_t byte =
          there ? static_cast<unsigned char>(file_[static_cast<std::size_t>(at_++)]) : 0xFFU;
      sample |= byte << (8 * i);
    }
    const std::uint32_t left = static_cast<std::uint32_t>(sample << (32 - 8 * width));
    return Decoded(static_cast<std::int32_t>(left) >> (32 - 8 * width), 8 * width);
  }

  std::string file_;
  WaveFormat format_;
  std::int64_t dataOffset_;
  std::uint64_t frames_;
  std::int64_t at_ = 0;
  std::int64_t position_ = 0;
  bool open_ = false;
};

}  // namespace velmora::test
