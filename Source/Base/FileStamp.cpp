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
  constexpr int kLongestWait = 30;  // in milliseconds
  for (int waited = 0; Now() <= time; ++waited) {
    if (waited == kLongestWait) return false;
    nanosleep(&kMillisecond, nullptr);
  }
  return true;
}

/// The end of the time in which a change leaves the stamp as it is. The clock stands still for up
/// to 10 ms; and where file systems cut times to hundredths of a second or to 100 ns, the clock is
/// past them at once.
std::int64_t LastMoment(const FileStamp& stamp) {
  constexpr std::int64_t kFinestCut = 100;
  constexpr std::int64_t kLongestMoment = 20'000'000;
  const std::int64_t last = std::max(stamp.contentsChanged, stamp.factsChanged);
  return last % kFinestCut == 0 ? last + kLongestMoment : last;
}

/// Some file systems keep whole seconds, and a second is a long time to be changed in.
bool IsInWholeSeconds(const FileStamp& stamp) {
  return stamp.factsChanged % kNanosecondsPerSecond == 0;
}
#endif

}  // namespace

FileStamp StampOf(const struct stat& facts) {
  FileStamp stamp{facts.st_dev, facts.st_ino, std::int64_t{facts.st_size}};
#if defined(CLOCK_REALTIME_COARSE)
  stamp.contentsChanged = Nanoseconds(facts.st_mtim);
  stamp.factsChanged = Nanoseconds(facts.st_ctim);
#endif
  return stamp;
}

bool IsSettled([[maybe_unused]] const FileStamp& stamp) {
#if defined(CLOCK_REALTIME_COARSE)
  return !IsInWholeSeconds(stamp) && Now() > LastMoment(stamp);
#else
  return false;
#endif
}

std::optional<FileStamp> CurrentStamp([[maybe_unused]] const std::string& path) {
#if defined(CLOCK_REALTIME_COARSE)
  struct stat facts {};
  if (stat(path.c_str(), &facts) == 0) return StampOf(facts);
#endif
  return std::nullopt;
}

std::optional<FileStamp> CurrentStamp([[maybe_unused]] std::FILE* stream) {
#if defined(CLOCK_REALTIME_COARSE)
  struct stat facts {};
  if (fstat(fileno(stream), &facts) == 0) return StampOf(facts);
#endif
  return std::nullopt;
}

std::optional<FileStamp> SettledStamp(const std::string& path) {
  const std::optional<FileStamp> stamp = CurrentStamp(path);
#if defined(CLOCK_REALTIME_COARSE)
  if (!stamp || IsInWholeSeconds(*stamp) || !WaitUntilAfter(LastMoment(*stamp)) ||
      CurrentStamp(path) != stamp) {
    return std::nullopt;
  }
#endif
  return stamp;
}

}  // namespace velmora
