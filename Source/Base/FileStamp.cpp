#include "Base/FileStamp.h"

#include <sys/stat.h>

#include <algorithm>
#include <ctime>

namespace velmora {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

std::int64_t Nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * kNanosecondsPerSecond + time.tv_nsec;
}

#if defined(CLOCK_REALTIME_COARSE)
/// The clock that the kernel stamps files by.
std::int64_t Now() {
  timespec now{};
  return clock_gettime(CLOCK_REALTIME_COARSE, &now) == 0 ? Nanoseconds(now) : 0;
}

/// False if the clock does not get past a time: it lies in the future, as another machine's may.
bool WaitUntilAfter(std::int64_t time) {
  constexpr timespec kMillisecond = {0, 1'000'000};
  constexpr int kLongestTick = 10;  // in milliseconds
  for (int waited = 0; Now() <= time; ++waited) {
    if (waited == kLongestTick) return false;
    nanosleep(&kMillisecond, nullptr);
  }
  return true;
}
#endif

}  // namespace

std::optional<FileStamp> CurrentStamp([[maybe_unused]] const std::string& path) {
#if defined(CLOCK_REALTIME_COARSE)
  struct stat facts {};
  if (stat(path.c_str(), &facts) != 0) return std::nullopt;
  return FileStamp{facts.st_dev, facts.st_ino, std::int64_t{facts.st_size},
                   Nanoseconds(facts.st_mtim), Nanoseconds(facts.st_ctim)};
#else
  return std::nullopt;
#endif
}

std::optional<FileStamp> SettledStamp(const std::string& path) {
  const std::optional<FileStamp> stamp = CurrentStamp(path);
#if defined(CLOCK_REALTIME_COARSE)
  if (!stamp) return std::nullopt;
  const std::int64_t changed = std::max(stamp->contentsChanged, stamp->factsChanged);
  // Some file systems keep whole seconds, and a second is a long time to be changed in.
  const bool inWholeSeconds = stamp->factsChanged % kNanosecondsPerSecond == 0;
  if (inWholeSeconds || !WaitUntilAfter(changed) || CurrentStamp(path) != stamp)
    return std::nullopt;
#endif
  return stamp;
}

}  // namespace velmora
