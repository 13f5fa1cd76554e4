#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace velmora::media {

/// A new file made from an audio file: plain PCM in a Broadcast Wave that the system reads.
struct ConversionJob {
  std::string from;
  std::string to;  ///< created exclusively; removed again if the conversion fails or is cancelled
  std::optional<std::int32_t> channel;     ///< from 0: this one alone; none: all channels
  std::int64_t firstFrame = 0;             ///< of the source file
  std::optional<std::int64_t> frameCount;  ///< none: to the end
  std::optional<std::int32_t> sampleRate;  ///< Hz: resampled to it; none: the file's own
};

struct ConversionResult {
  bool done = false;
  bool cancelled = false;
  std::string trouble;       ///< path and cause, if not done
  double peak = 0;           ///< of float sources: the largest magnitude; 1.0 is full scale
  std::int64_t clipped = 0;  ///< samples beyond full scale, which were clipped
  std::int64_t frames = 0;   ///< of the new file
};

/// How far a conversion is, in bytes of work; false cancels it.
using ConversionProgress = std::function<bool(std::int64_t bytesDone)>;

/// Converts without loss: integer samples keep their value and depth (8 bits become 16), float
/// becomes 24 bits as value times 2^23, to nearest, clipped. The bext chunk is kept; its time
/// reference moves with `firstFrame` and with the sample rate.
[[nodiscard]] ConversionResult Convert(const ConversionJob& job,
                                       const ConversionProgress& progress);

/// Copies a file whole, sharing blocks where the file system can, created exclusively.
[[nodiscard]] ConversionResult CopyWhole(const std::string& from, const std::string& to,
                                         const ConversionProgress& progress);

}  // namespace velmora::media
