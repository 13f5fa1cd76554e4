#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

// The time from a program's start to its window: who starts it notes when, and it tells how long
// ago that was.
namespace velmora::view {

inline constexpr const char* kStarted =
    "VELMORA_STARTED";  // in nanoseconds, of the monotonic clock

inline std::int64_t Nanoseconds(clockid_t clock) {
  timespec time = {};
  clock_gettime(clock, &time);
  return time.tv_sec * std::int64_t{1000000000} + time.tv_nsec;
}

/// Prints the milliseconds since the start, by the clock and of processor time.
inline void TellStart() {
  const char* const started = std::getenv(kStarted);
  if (started == nullptr) return;
  std::printf("%.3f %.3f\n",
              static_cast<double>(Nanoseconds(CLOCK_MONOTONIC) - std::atoll(started)) / 1e6,
              static_cast<double>(Nanoseconds(CLOCK_PROCESS_CPUTIME_ID)) / 1e6);
  std::fflush(stdout);
}

}  // namespace velmora::view
