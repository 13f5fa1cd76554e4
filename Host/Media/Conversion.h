#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmora::media {

/// A new file made from an audio file: plain PCM in a Broadcast Wave that the system and everything
/// else read alike.
struct ConversionJob {
  std::string from;
  std::string to;  ///< created exclusively; removed again if the conversion fails or is cancelled
  std::optional<std::int32_t> channel{};     ///< from 0: this one alone; none: all channels
  std::int64_t firstFrame = 0;               ///< of the source file
  std::optional<std::int64_t> frameCount{};  ///< none: to the end
  std::optional<std::int32_t> sampleRate{};  ///< Hz: resampled to it; none: the file's own
};

/// One file of a conversion that makes several at once.
struct ConversionTarget {
  std::string to;  ///< created exclusively
  std::optional<std::int32_t> channel{};
};

struct ConversionResult {
  bool done = false;
  bool cancelled = false;
  std::string trouble;  ///< path and cause, if not done
  /// Of samples that came as floats or were resampled: the largest finite magnitude before
  /// clipping; 1.0 is full scale.
  double peak = 0;
  std::int64_t clipped = 0;  ///< samples beyond full scale, which were clipped
  std::int64_t frames = 0;   ///< of the new file
};

/// How far a conversion is, in bytes written; false cancels it.
using ConversionProgress = std::function<bool(std::int64_t bytesDone)>;

/// Converts without loss: integer samples keep their value and depth, to the next whole byte (8
/// bits become 16). Floats become 24 bits: value times 2^23, to the nearest, ties to even, clipped,
/// what is no number being 0. What is resampled becomes 24 bits in the same way, and frames times
/// new rate by old rate long, to the nearest. The bext chunk is kept; its time reference moves with
/// `firstFrame` and with the sample rate.
///
/// A result of 2 GiB of audio or more is refused before anything is made: the system's reader takes
/// places in the audio as signed 32-bit numbers. Memory is bounded, whatever the file says.
/// @param progress may be empty
[[nodiscard]] ConversionResult Convert(const ConversionJob& job,
                                       const ConversionProgress& progress);

/// The same into several files, for which the source is read once. All of them come to be, or none.
/// `to` and `channel` of the job are not looked at; counts are those of all files together, but
/// `frames`, which is that of each.
[[nodiscard]] ConversionResult ConvertInto(const std::vector<ConversionTarget>& targets,
                                           const ConversionJob& job,
                                           const ConversionProgress& progress);

/// Bytes that Convert would write as audio into one file; none if the source cannot be read. For
/// whoever has to stay below 2 GiB.
[[nodiscard]] std::optional<std::int64_t> AudioBytesOf(const ConversionJob& job);

/// Copies a file whole, with the time of its last change, created exclusively: sharing blocks where
/// the file system can.
/// @param progress may be empty
[[nodiscard]] ConversionResult CopyWhole(const std::string& from, const std::string& to,
                                         const ConversionProgress& progress);

}  // namespace velmora::media
