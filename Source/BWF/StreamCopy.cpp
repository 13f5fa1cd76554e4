#include "BWF/StreamCopy.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <new>

#include "Base/SystemCopy.h"

namespace velmora {
namespace {

/// What became of a copy.
struct Copied {
  bool read = true;    ///< without an error
  int writeError = 0;  ///< an errno
};

/// Copies as far as the system can by itself; both streams stand after what was copied then.
/// @return its bytes
std::uint64_t CopyBySystem(std::FILE* source, std::FILE* target, std::uint64_t count) {
  const auto wanted = static_cast<std::int64_t>(count);
  const std::int64_t held = FileSize(source);
  std::int64_t done = 0;
  // A file shares all blocks or none here, so it must not hold more than is wanted.
  if (held > 0 && held <= wanted && ShareBlocks(fileno(source), fileno(target))) {
    // The source may have grown or shrunk meanwhile.
    const std::int64_t shared = FileSize(target);
    const bool fits = shared <= wanted || ftruncate(fileno(target), wanted) == 0;
    done = fits ? std::min(shared, wanted) : 0;
    lseek(fileno(target), done, SEEK_SET);
  }
  while (done < wanted) {
    const std::int64_t copied =
        CopyInsideSystem(fileno(source), fileno(target), done, wanted - done);
    if (copied == 0) break;
    done += copied;
  }
  fseeko(source, done, SEEK_SET);
  fseeko(target, done, SEEK_SET);
  return static_cast<std::uint64_t>(done);
}

/// Copies from where both streams stand.
Copied CopyByHand(std::FILE* source, std::FILE* target, std::uint64_t count) {
  constexpr std::size_t kBlockBytes = std::size_t{1} << 20;
  const std::unique_ptr<std::uint8_t[]> block(new (std::nothrow) std::uint8_t[kBlockBytes]);
  Copied result;
  if (block == nullptr) result.read = false;
  while (count > 0 && result.read && result.writeError == 0) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, kBlockBytes));
    const std::size_t got = std::fread(block.get(), 1, wanted, source);
    if (got == 0) break;
    if (std::fwrite(block.get(), 1, got, target) != got) result.writeError = errno;
    count -= got;
  }
  if (std::ferror(source) != 0) result.read = false;
  return result;
}

}  // namespace

bool CopyStream(std::FILE* source, FileStream target, std::uint64_t count, OutputFile& file) {
  DisableFileCache(source);
  DisableFileCache(target.get());
  const std::uint64_t done = CopyBySystem(source, target.get(), count);
  Copied copied;
  if (done < count) copied = CopyByHand(source, target.get(), count - done);
  int& error = copied.writeError;
  if (std::fflush(target.get()) != 0 && error == 0) error = errno;
  if ((copied.read && error == 0) || FileSize(target.get()) > 0) file.Keep();
  if (std::fclose(target.release()) != 0 && error == 0) error = errno;
  if (error != 0) LogWriteError(file.Path().c_str(), error);
  return copied.read && error == 0;
}

}  // namespace velmora
