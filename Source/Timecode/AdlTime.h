#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

/// Characters of a timestamp.
inline constexpr std::size_t kTimestampLength = 16;

/// Timestamps of AES31-3: sixteen characters, read by position.
///
///     01:00:00;00/0000
///     |  |  |  | ||
///     |  |  |  | |+-- 12-15  remainder in samples
///     |  |  |  | +--- 11     sample-rate mark
///     |  |  |  +----- 9-10   frames; position 8 tells drop-frame (`;` or `,`)
///     |  |  +-------- 6-7    seconds
///     |  +----------- 3-4    minutes
///     +-------------- 0-1    hours; position 2 is the frame-rate mark
///
/// A text that ends early counts as continued by NUL characters; null counts as the empty text.
/// Nothing here validates but AdlIsTimestamp: any character has a value, its code minus '0'.

/// Samples per second that the timestamp's own mark names; 0.0 for a mark that names none.
[[nodiscard]] double AdlSampleRate(const char* timestamp);

/// Position in samples at the timestamp's own rates, rounded up to a whole sample before the
/// remainder is added. An unknown frame-rate mark gives the lowest 64-bit number plus the
/// remainder.
[[nodiscard]] std::int64_t AdlToSamples(const char* timestamp);

/// Position in samples of a typed timecode or of a timestamp's digits, read in the session's
/// timebase. `frameRateCode` is the host's, 0 to 7; any other counts as 0. `sampleRate` is in Hz,
/// and only 44100 is told from all others, which count as 48000.
[[nodiscard]] std::int64_t TimecodeToSamples(const char* text, std::int32_t frameRateCode,
                                             std::int32_t sampleRate);

/// Samples from `first` to `second`, wrapping at 64 bits.
[[nodiscard]] std::int64_t AdlDifference(const char* first, const char* second);

/// True if the text has the form of a fade length: every field in range, known marks, and `;` or
/// `,` before the frames.
[[nodiscard]] bool AdlIsTimestamp(const char* text);

/// What a person is shown of a timestamp: the text up to its first `/`, which at 48 kHz leaves the
/// timecode. Null gives the empty text.
[[nodiscard]] std::string TimestampTimecode(const char* text);
/// The same as a part of the caller's own text.
[[nodiscard]] std::string_view TimestampTimecodeView(const char* text);

}  // namespace velmora
