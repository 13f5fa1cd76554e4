#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

namespace velmora {

/// The format tag of integer PCM (RIFF WAVE), the only format whose samples are read or written.
inline constexpr std::uint16_t kIntegerPcm = 1;

/// So many bytes of samples a file can have: the sizes of chunks are read with a sign, and a data
/// chunk of 2 GiB is not found.
inline constexpr std::int32_t kMostAudioBytes = std::numeric_limits<std::int32_t>::max();

/// And so many bytes a frame: the fmt chunk has 16 bits for them (RIFF WAVE).
inline constexpr std::int32_t kMostFrameBytes = std::numeric_limits<std::uint16_t>::max();
inline constexpr const char* kFramesTooLarge =
    "its frames would have more bytes than a wave file can say";

/// The fields of a fmt chunk (RIFF WAVE).
struct BwfFormat {
  std::uint16_t formatTag = 0;
  std::uint16_t channels = 0;
  std::uint32_t samplesPerSec = 0;
  std::uint32_t avgBytesPerSec = 0;
  std::uint16_t blockAlign = 0;  ///< bytes of one frame
  std::uint16_t bitsPerSample = 0;
};

/// The fields of a bext chunk (EBU Tech 3285), byte for byte, no text with a terminator of its own.
/// Kept but not interpreted: positions come from the project's timestamps alone.
///
/// A chunk may claim fewer bytes than these fields have. All of them are read even so, from what
/// follows in the file, and are all ones after its end: whoever shows a text takes a field's own
/// length at most, and makes it fit to be shown.
struct BwfBext {
  std::array<char, 256> description{};
  std::array<char, 32> originator{};
  std::array<char, 32> originatorReference{};
  std::array<char, 10> originationDate{};
  std::array<char, 8> originationTime{};
  std::uint32_t timeReferenceLow = 0;
  std::uint32_t timeReferenceHigh = 0;
  std::uint16_t version = 0;
  std::array<std::uint8_t, 254> umidAndReserved{};
  /// Terminated; null if the chunk has no more than 602 bytes. Owned by the AES31BWF.
  const char* codingHistory = nullptr;
};

/// A chunk that is kept but not understood.
struct BwfChunk {
  std::uint32_t identifier = 0;    ///< the four bytes as a little-endian number
  std::uint32_t size = 0;          ///< bytes in `data`
  std::vector<std::uint8_t> data;  ///< the body, as much as the file holds
};

}  // namespace velmora
