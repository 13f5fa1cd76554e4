#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

/// Little-endian fields in file order, one call a field:
///
///     LittleEndian().U16(1).U16(2).U32(48000).Text("data").bytes
struct LittleEndian {
  std::string bytes;

  /// The low `count` bytes of `value`, low byte first.
  LittleEndian& Number(std::uint64_t value, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, value >>= 8) {
      bytes.push_back(static_cast<char>(static_cast<unsigned char>(value & 0xFF)));
    }
    return *this;
  }
  LittleEndian& U8(std::uint8_t value) { return Number(value, 1); }
  LittleEndian& U16(std::uint16_t value) { return Number(value, 2); }
  LittleEndian& U32(std::uint32_t value) { return Number(value, 4); }
  /// The bytes as they stand, with no terminator.
  LittleEndian& Text(std::string_view text) {
    bytes += text;
    return *this;
  }
  /// The text, filled up with NUL bytes or cut to `width`.
  LittleEndian& Padded(std::string_view text, std::size_t width) {
    bytes += text.substr(0, width);
    bytes.append(width - text.substr(0, width).size(), '\0');
    return *this;
  }
  LittleEndian& Zeros(std::size_t count) {
    bytes.append(count, '\0');
    return *this;
  }
};

/// Two's complement samples of `bits` / 8 bytes, a rest of bits dropped from the byte count.
inline std::string PcmBytes(std::int32_t bits, const std::vector<std::int32_t>& samples) {
  LittleEndian out;
  for (const std::int32_t sample : samples) {
    out.Number(static_cast<std::uint32_t>(sample), static_cast<std::size_t>(bits / 8));
  }
  return out.bytes;
}

/// The reverse of PcmBytes, from byte `offset` to the end.
inline std::vector<std::int32_t> PcmSamples(std::int32_t bits, std::string_view bytes,
                                            std::size_t offset = 0) {
  const auto width = static_cast<std::size_t>(bits / 8);
  std::vector<std::int32_t> samples;
  for (std::size_t at = offset; width > 0 && at + width <= bytes.size(); at += width) {
    std::uint32_t left = 0;  // the sample at the left end of 32 bits
    for (std::size_t i = 0; i < width; ++i) {
      left = (left >> 8) |
             (static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i])) << 24);
    }
    samples.push_back(static_cast<std::int32_t>(left) >> (32 - 8 * static_cast<int>(width)));
  }
  return samples;
}

/// What a fmt chunk says. Unset fields follow from the others.
struct WaveFormat {
  std::uint32_t sampleRate = 48000;
  std::uint16_t channels = 1;
  std::uint16_t bits = 16;
  std::uint16_t formatTag = 1;
  std::optional<std::uint16_t> blockAlign = std::nullopt;
  std::optional<std::uint32_t> bytesPerSecond = std::nullopt;
};

/// The body of a plain fmt chunk: 16 bytes.
inline std::string FormatBody(const WaveFormat& format) {
  const auto frameBytes =
      format.blockAlign.value_or(static_cast<std::uint16_t>(format.channels * (format.bits / 8)));
  return LittleEndian()
      .U16(format.formatTag)
      .U16(format.channels)
      .U32(format.sampleRate)
      .U32(format.bytesPerSecond.value_or(format.sampleRate * frameBytes))
      .U16(frameBytes)
      .U16(format.bits)
      .bytes;
}

/// What a bext chunk says.
struct BextText {
  std::string description{};
  std::string originator{};
  std::string reference{};
  std::string date{};
  std::string time{};
  std::uint32_t timeLow = 0;
  std::uint32_t timeHigh = 0;
  std::uint16_t version = 0;
  std::string umidAndReserved{};
  std::string history{};
};

/// The body of a bext chunk: 602 bytes and the history.
inline std::string BextBody(const BextText& bext) {
  return LittleEndian()
      .Padded(bext.description, 256)
      .Padded(bext.originator, 32)
      .Padded(bext.reference, 32)
      .Padded(bext.date, 10)
      .Padded(bext.time, 8)
      .U32(bext.timeLow)
      .U32(bext.timeHigh)
      .U16(bext.version)
      .Padded(bext.umidAndReserved, 254)
      .Text(bext.history)
      .bytes;
}

/// A RIFF WAVE file put together chunk by chunk, in any order, with true or false sizes.
class WaveBytes {
 public:
  /// A chunk with its true size and no pad byte after an odd one.
  WaveBytes& Chunk(std::string_view identifier, std::string_view body) {
    return Claim(identifier, static_cast<std::uint32_t>(body.size()), body);
  }
  /// A chunk whose size field says `size`, whatever the body holds.
  WaveBytes& Claim(std::string_view identifier, std::uint32_t size, std::string_view body = {}) {
    form_ += LittleEndian().Text(identifier).U32(size).Text(body).bytes;
    return *this;
  }
  WaveBytes& Format(const WaveFormat& format) { return Chunk("fmt ", FormatBody(format)); }
  WaveBytes& Bext(const BextText& bext) { return Chunk("bext", BextBody(bext)); }
  WaveBytes& Data(std::string_view samples) { return Chunk("data", samples); }
  /// Bytes that belong to no chunk: a pad byte, say.
  WaveBytes& Raw(std::string_view bytes) {
    form_ += bytes;
    return *this;
  }
  /// Makes the RIFF size field say `size`; without this it is true.
  WaveBytes& RiffSize(std::uint32_t size) {
    riffSize_ = size;
    return *this;
  }
  /// The file offset at which the next chunk begins.
  std::size_t Offset() const { return 12 + form_.size(); }

  std::string Bytes() const {
    return LittleEndian()
        .Text("RIFF")
        .U32(riffSize_.value_or(static_cast<std::uint32_t>(4 + form_.size())))
        .Text("WAVE")
        .Text(form_)
        .bytes;
  }

 private:
  std::string form_;
  std::optional<std::uint32_t> riffSize_;
};

/// A whole file of a fmt chunk and a data chunk: 44 bytes, then the samples.
inline std::string PlainWave(const WaveFormat& format, const std::vector<std::int32_t>& samples) {
  return WaveBytes().Format(format).Data(PcmBytes(format.bits, samples)).Bytes();
}
/// Where the samples of a PlainWave begin.
inline constexpr std::size_t kPlainDataOffset = 44;

}  // namespace velmora::test
