#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace velmora::media {

/// What a bext chunk (EBU Tech 3285) says, and where its body stands.
struct BextFacts {
  std::int64_t timeReference = 0;   ///< samples since midnight
  std::string originatorReference;  ///< up to its first NUL
  std::int64_t place = 0;           ///< of the chunk's body in the file, in bytes
  std::int64_t size = 0;            ///< as much of it as the file holds
};

/// The header of a WAVE file (RIFF) or of one of its forms beyond 4 GiB (RF64 and BW64, EBU Tech
/// 3306 and ITU-R BS.2088), as its writer meant it: chunks of odd size may have a pad byte or not,
/// sizes may reach past the end of the file.
struct WaveHeader {
  bool longForm = false;        ///< RF64 or BW64
  std::uint16_t formatTag = 0;  ///< of an extensible format that of its subformat
  bool extensible = false;
  std::uint16_t channels = 0;
  std::uint32_t sampleRate = 0;  ///< Hz
  std::uint16_t blockAlign = 0;  ///< bytes of one frame
  std::uint16_t bits = 0;        ///< of a sample as it is meant; the container is wider or as wide
  bool hasFormat = false;
  bool hasData = false;
  std::int64_t dataPlace = 0;         ///< of the first sample in the file, in bytes
  std::int64_t dataBytes = 0;         ///< as many as the file holds
  std::int64_t claimedDataBytes = 0;  ///< as many as the header says
  std::optional<BextFacts> bext;
  /// Nothing in it needs mending: RIFF with a short fmt chunk and one data chunk after it, beside
  /// them only common chunks, all of even size, and all sizes fit each other and the file.
  bool isRegular = false;

  /// Bytes of one sample in a frame; 0 if the header makes no sense.
  [[nodiscard]] std::int32_t ContainerBytes() const {
    return channels != 0 ? blockAlign / channels : 0;
  }
  /// Whole frames of uncompressed audio that the file holds.
  [[nodiscard]] std::int64_t Frames() const { return blockAlign != 0 ? dataBytes / blockAlign : 0; }
};

inline constexpr std::uint16_t kTagPcm = 1;    // RIFF WAVE: integers
inline constexpr std::uint16_t kTagFloat = 3;  // RIFF WAVE: IEEE floating point

/// What there is of a header. Where `readFailed`, the system could not read a part of it, twice:
/// that counts as past the end of the file.
struct HeaderOrFailure {
  std::optional<WaveHeader> header;  ///< none if it is no WAVE file of any form
  bool readFailed = false;
};

/// Reads the header of an open file. Reads no audio, and looks at a bounded number of chunks.
[[nodiscard]] HeaderOrFailure TryReadWaveHeader(std::FILE* stream);

/// The same for whoever cannot tell the two apart; none too if the header could not be read.
[[nodiscard]] std::optional<WaveHeader> ReadWaveHeader(std::FILE* stream);

/// The body of the bext chunk: at most `limit` bytes. None if the system cannot read it.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> ReadBext(std::FILE* stream,
                                                                const BextFacts& bext,
                                                                std::int64_t limit);

}  // namespace velmora::media
