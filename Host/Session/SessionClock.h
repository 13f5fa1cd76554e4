#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "Spot/SessionRates.h"

namespace velmora::host {

/// One of the session's frame rates, by the host's code.
struct FrameRate {
  const char* name;        ///< as a person reads it
  std::int32_t nominal;    ///< frames that timecode counts to a second
  std::int32_t numerator;  ///< true frames per second, over `denominator`
  std::int32_t denominator;
  bool dropFrame;
};

/// By the host's code, 0 to 7.
inline constexpr auto kFrameRates = std::to_array<FrameRate>({
    {"30 (undeclared)", 30, 30, 1, false},
    {"24", 24, 24, 1, false},
    {"25", 25, 25, 1, false},
    {"29.97", 30, 30000, 1001, false},
    {"29.97 drop", 30, 30000, 1001, true},
    {"30", 30, 30, 1, false},
    {"30 drop", 30, 30, 1, true},
    {"23.976", 24, 24000, 1001, false},
});

/// The timebase of the session: what its ruler counts in.
class SessionClock {
 public:
  // Sample rates in Hz that a session may have.
  static constexpr float kLowestRate = 1;
  static constexpr float kHighestRate = 10'000'000;

  /// Another rate counts as 48000 Hz, an unknown code as 0.
  explicit SessionClock(const SessionRates& rates = SessionRates());

  [[nodiscard]] float SampleRate() const { return sampleRate_; }
  [[nodiscard]] std::int32_t FrameRateCode() const { return code_; }
  [[nodiscard]] const FrameRate& Rate() const {
    return kFrameRates[static_cast<std::size_t>(code_)];
  }

  /// Number of the frame that holds a sample; frames are counted from sample 0.
  [[nodiscard]] std::int64_t FrameAt(std::int64_t sample) const;
  /// First sample of a frame.
  [[nodiscard]] std::int64_t FrameStart(std::int64_t frame) const;
  /// Timecode digits of a frame number, HH:MM:SS:FF, with `;` before the frames where numbers are
  /// dropped, and a minus sign before the session's start.
  [[nodiscard]] std::string FrameLabel(std::int64_t frame) const;
  /// Timecode of the frame that holds a sample.
  [[nodiscard]] std::string Timecode(std::int64_t sample) const {
    return FrameLabel(FrameAt(sample));
  }

  bool operator==(const SessionClock& other) const {
    return sampleRate_ == other.sampleRate_ && code_ == other.code_;
  }

 private:
  float sampleRate_;
  std::int32_t code_;
  std::int64_t microHertz_;  ///< the rate as an exact number, so that long sessions do not drift
};

}  // namespace velmora::host
