#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "Media/Conversion.h"
#include "Media/SoundFile.h"
#include "Media/WaveWriter.h"

namespace velmora::media {

inline constexpr const char* kEndsEarly =
    "the audio ends earlier than its header says, or is damaged";

/// What a conversion reads and what it writes.
struct Plan {
  std::int32_t sourceRate = 0;
  std::int32_t rate = 0;
  std::int64_t firstFrame = 0;
  std::int64_t sourceFrames = 0;
  std::int64_t frames = 0;
  std::int32_t bits = 0;
  bool rounds = false;  ///< the samples go through doubles

  [[nodiscard]] bool Resamples() const { return rate != sourceRate; }
};

/// @param job its range is taken as far as the file goes
[[nodiscard]] Plan PlanOf(const SoundFile& sound, const ConversionJob& job);

[[nodiscard]] WaveShape ShapeOf(const Plan& plan, std::int32_t channels);

/// True if so many channels in one file would be 2 GiB of audio or more.
[[nodiscard]] bool IsTooLong(const Plan& plan, std::int32_t channels);

/// The body of the source's bext chunk for the new file, with the time reference of the new first
/// frame; empty if there is none. None if the system cannot read it: a file must not lose its time
/// for that.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> BextFor(const Plan& plan, std::FILE* source);

}  // namespace velmora::media
