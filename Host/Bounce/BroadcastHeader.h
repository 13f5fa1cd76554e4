#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "Session/SessionTarget.h"

namespace velmora::bounce {

/// Bytes of one sample in a file of this depth: 2, 3 or 4.
[[nodiscard]] constexpr std::size_t SampleBytes(host::BounceDepth depth) {
  if (depth == host::BounceDepth::Bits16) return 2;
  return depth == host::BounceDepth::Bits24 ? 3 : 4;
}

/// What a Broadcast Wave file says before its audio.
struct BroadcastFacts {
  host::BounceDepth depth = host::BounceDepth::Bits24;
  std::uint32_t sampleRate = 48000;  ///< Hz
  std::uint32_t channels = 1;
  std::int64_t frames = 0;
  std::int64_t timeReference = 0;  ///< samples since midnight, not negative
  std::string description;         ///< UTF-8; what goes beyond 256 bytes is left out
};

/// A file's size, known before its first byte is written.
struct BroadcastSize {
  std::string complaint;       ///< empty, or why no wave file can hold this
  std::int64_t dataBytes = 0;  ///< of audio
  std::int64_t padBytes = 0;   ///< 0 or 1: chunks have even sizes
};

[[nodiscard]] BroadcastSize SizeOf(const BroadcastFacts& facts);

/// The bytes before the audio, by RIFF and EBU Tech 3285: bext (version 1), fmt (tag 1, or 3 with a
/// fact chunk) and the head of the data chunk. Beyond 4 GiB RF64 with ds64, by EBU Tech 3306. The
/// date is that of this moment, or of SOURCE_DATE_EPOCH.
/// @param size must be without a complaint
[[nodiscard]] std::string BroadcastHeader(const BroadcastFacts& facts, const BroadcastSize& size);

}  // namespace velmora::bounce
