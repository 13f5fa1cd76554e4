#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace velmora {

/// What the frame-rate mark at position 2 of a timestamp names (AES31-3).
struct FrameRateMark {
  char mark;
  std::int32_t framesPerSecond;  ///< nominal
  bool pulledDown;               ///< by 1000/1001
};

inline constexpr auto kFrameRateMarks = std::to_array<FrameRateMark>({
    {'?', 30, false},
    {'|', 30, false},
    {':', 30, true},
    {'!', 25, false},
    {'.', 25, false},
    {'/', 25, true},
    {'=', 24, false},
    {'#', 24, false},
    {'-', 24, true},
});

/// What the sample-rate mark at position 11 of a timestamp names (AES31-3).
struct SampleRateMark {
  char mark;
  double hz;
};

inline constexpr auto kSampleRateMarks = std::to_array<SampleRateMark>({
    {'(', 30720.0},
    {'\'', 32000.0 * 1000.0 / 1001.0},
    {'=', 32000.0},
    {'"', 32000.0 * 1001.0 / 1000.0},
    {')', 33333.333333333336},
    {'[', 42336.0},
    {'~', 44100.0 * 1000.0 / 1001.0},
    {'|', 44100.0},
    {'^', 44100.0 * 1001.0 / 1000.0},
    {']', 45937.5},
    {'<', 46080.0},
    {'-', 48000.0 * 1000.0 / 1001.0},
    {'/', 48000.0},
    {'+', 48000.0 * 1001.0 / 1000.0},
    {'>', 50000.0},
    {'`', 84672.0},
    {'?', 88200.0 * 1000.0 / 1001.0},
    {'@', 88200.0},
    {'$', 88200.0 * 1001.0 / 1000.0},
    {'!', 91875.0},
    {'{', 92160.0},
    {'&', 96000.0 * 1000.0 / 1001.0},
    {'*', 96000.0},
    {'#', 96000.0 * 1001.0 / 1000.0},
    {'}', 100000.0},
});

/// How a host's frame-rate code is written in a timestamp. Indexed by the code, 0 to 7.
struct FrameRateCode {
  char frameRateMark;   ///< at position 2
  char frameSeparator;  ///< at position 8
  std::uint32_t framesModulus;
  const char* name;
};

inline constexpr auto kFrameRateCodes = std::to_array<FrameRateCode>({
    {'?', ':', 30, "undeclared"},
    {'=', ':', 24, "24"},
    {'.', ':', 25, "25"},
    {':', ':', 30, "29.97"},
    {':', ';', 30, "29.97df"},
    {'|', ':', 30, "30"},
    {'|', ';', 30, "30df"},
    {'-', ':', 24, "23.976"},
});

/// The entry of a frame-rate mark, null for any other character.
[[nodiscard]] constexpr const FrameRateMark* FindFrameRateMark(char mark) {
  for (const FrameRateMark& row : kFrameRateMarks) {
    if (row.mark == mark) return &row;
  }
  return nullptr;
}

namespace detail {

inline constexpr std::size_t kAsciiCodes = 128;

/// The sample rates by character code, 0.0 where no mark stands.
inline constexpr auto kSampleRateByCode = [] {
  std::array<double, kAsciiCodes> rates{};
  for (const SampleRateMark& row : kSampleRateMarks) {
    rates[static_cast<unsigned char>(row.mark)] = row.hz;
  }
  return rates;
}();

}  // namespace detail

/// Samples per second that a mark names, 0.0 for any other character.
[[nodiscard]] constexpr double SampleRateOfMark(char mark) {
  const auto code = static_cast<unsigned char>(mark);
  return code < detail::kAsciiCodes ? detail::kSampleRateByCode[code] : 0.0;
}

/// The rate of a timestamp's mark to which `hz` is as close as a host tells it, in a 32-bit float;
/// `hz` itself if there is none.
[[nodiscard]] constexpr double ExactSampleRate(double hz) {
  for (const SampleRateMark& row : kSampleRateMarks) {
    if (static_cast<float>(row.hz) == static_cast<float>(hz)) return row.hz;
  }
  return hz;
}

}  // namespace velmora
