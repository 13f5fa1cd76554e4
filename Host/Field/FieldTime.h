#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace velmora::field {

/// Which rates a timestamp is read at: its own marks, or the header's SEQ_SAMPLE_RATE and
/// SEQ_FRAME_RATE.
enum class Trust { Marks, Header };

/// The rates of a timestamp, and how they are written.
struct TimeRates {
  double sampleRate = 48000;          ///< Hz
  std::int32_t framesPerSecond = 30;  ///< nominal
  bool pulledDown = false;            ///< by 1000/1001
  bool dropFrame = false;

  /// Frames per second as a number: 25, 29.97002997.
  [[nodiscard]] double FrameRate() const;
  bool operator==(const TimeRates&) const = default;
};

/// A time as an ADL gives it: samples at the rates that stand beside it.
struct Time {
  std::int64_t samples = 0;
  TimeRates rates;
  bool operator==(const Time&) const = default;
};

/// Samples at one rate as samples at another, to the nearest, halves up. Exact at the rates that
/// AES31-3 has marks for and at whole ones, however long the time. Wraps nothing: what does not fit
/// counts as the nearest number that does. A rate that is none (0, negative, not finite) changes
/// nothing.
[[nodiscard]] std::int64_t AtRate(std::int64_t samples, double fromRate, double toRate);

/// What a reader of times has to know of a project.
struct TimeContext {
  Trust trust = Trust::Marks;
  /// For a stamp without a sample-rate mark: the mark of the first full stamp, else the header's
  /// rate, else 48000.
  double rateWithoutMark = 48000;
  std::optional<double> headerSampleRate;  ///< Hz; none if unreadable
  std::optional<TimeRates> headerFrames;   ///< frame rate alone; none if unreadable
};

/// What the marks of a stamp say, whatever is trusted. Drop-frame is `;` or `,` before the frames.
struct StampMarks {
  TimeRates rates;
  char frameRateMark = 0;
  char frameSeparator = 0;
  char sampleRateMark = 0;  ///< 0 for a stamp that ends with its frames
};

/// The marks of a text of the form HHiMMiSSiFFissss, of which the last four characters, or the last
/// five, may be missing. None for any other text: a character that is no digit where one belongs,
/// or a mark that AES31-3 does not have, makes it no timestamp.
[[nodiscard]] std::optional<StampMarks> ReadMarks(std::string_view text,
                                                  const TimeContext& context);

/// The time of such a text whose marks were read.
[[nodiscard]] Time TimeOf(std::string_view text, const StampMarks& marks,
                          const TimeContext& context);

/// The time of such a text, by the rule of AdlToSamples. None for any other text, `_` and the empty
/// text among them: the value is not given.
[[nodiscard]] std::optional<Time> ReadTime(std::string_view text, const TimeContext& context);

/// The form alone: digits where they belong, whatever the marks are.
[[nodiscard]] bool LooksLikeTime(std::string_view text);

}  // namespace velmora::field
