#include "Base/RoomInFile.h"

#if defined(__linux__)
#include <fcntl.h>
#include <linux/falloc.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>
#endif

namespace velmora {
#if defined(__linux__)
namespace {

bool IsBookedBlockByBlock(int descriptor) {
  struct stat facts {};
  if (fstat(descriptor, &facts) != 0 || !S_ISREG(facts.st_mode)) return false;
  const int flags = fcntl(descriptor, F_GETFL);
  if (flags < 0 || (flags & O_APPEND) != 0) return false;
  struct statfs system {};
  return fstatfs(descriptor, &system) == 0 && system.f_type == EXT4_SUPER_MAGIC;
}

}  // namespace
#endif

RoomInFile::RoomInFile(int descriptor) : descriptor_(descriptor), canBook_(false) {
#if defined(__linux__)
  canBook_ = IsBookedBlockByBlock(descriptor);
#endif
}

void RoomInFile::Book([[maybe_unused]] std::size_t bytes) {
#if defined(__linux__)
  constexpr std::size_t kLeast = std::size_t{1} << 16;  // less is not worth the call
  if (!canBook_ || bytes < kLeast) return;
  const off_t place = lseek(descriptor_, 0, SEEK_CUR);
  canBook_ = place >= 0 &&
             fallocate(descriptor_, FALLOC_FL_KEEP_SIZE, place, static_cast<off_t>(bytes)) == 0;
#endif
}

}  // namespace velmora
