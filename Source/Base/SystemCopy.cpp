#include "Base/SystemCopy.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#if defined(__linux__)
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif

namespace velmora {

bool ShareBlocks([[maybe_unused]] int from, [[maybe_unused]] int to) {
#if defined(FICLONE)
  return ioctl(to, FICLONE, from) == 0;
#else
  return false;
#endif
}

std::int64_t CopyInsideSystem([[maybe_unused]] int from, [[maybe_unused]] int to,
                              [[maybe_unused]] std::int64_t place,
                              [[maybe_unused]] std::int64_t count) {
#if defined(__linux__)
  constexpr std::int64_t kMostAtOnce = std::int64_t{1} << 30;  // fits a size of 32 bits
  off_t source = place;
  ssize_t copied = 0;
  do {
    const auto wanted = static_cast<std::size_t>(std::min(count, kMostAtOnce));
    copied = copy_file_range(from, &source, to, nullptr, wanted, 0);
  } while (copied < 0 && errno == EINTR);
  return std::max<std::int64_t>(copied, 0);
#else
  return 0;
#endif
}

}  // namespace velmora
