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
  std::uint64_t bytes = 0;
  int readError = 0;  ///< an errno
  int writeError = 0;
};

/// Copies as far as the system can by itself; both streams stand after what was copied then. That
/// it cannot is no error.
Copied CopyBySystem(std::FILE* source, std::FILE* target, std::uint64_t count) {
  const auto wanted = static_cast<std::int64_t>(count);
  const std::int64_t held = FileSize(source);
  std::int64_t done = 0;
  Copied result;
  // A file shares all blocks or none here, so it must not hold more than is wanted.
  if (held > 0 && held <= wanted && ShareBlocks(fileno(source), fileno(target))) {
    // The source may have grown or shrunk meanwhile.
    const std::int64_t shared = FileSize(target);
    const bool fits = shared <= wanted || ftruncate(fileno(target), wanted) == 0;
    done = std::clamp<std::int64_t>(shared, 0, wanted);
    if (!fits || lseek(fileno(target), done, SEEK_SET) != done) result.writeError = errno;
  }
  while (done < wanted && result.writeError == 0) {
    const std::int64_t copied =
        CopyInsideSystem(fileno(source), fileno(target), done, wanted - done);
    if (copied == 0) break;
    done += copied;
  }
  // A copy that went on from anywhere else would be of other bytes.
  if (fseeko(source, done, SEEK_SET) != 0) result.readError = errno;
  if (fseeko(target, done, SEEK_SET) != 0) result.writeError = errno;
  result.bytes = static_cast<std::uint64_t>(done);
  return result;
}

/// Copies from where both streams stand.
Copied CopyByHand(std::FILE* source, std::FILE* target, std::uint64_t count) {
  constexpr std::size_t kBlockBytes = std::size_t{1} << 20;
  const std::unique_ptr<std::uint8_t[]> block(new (std::nothrow) std::uint8_t[kBlockBytes]);
  Copied result;
  if (block == nullptr) result.readError = ENOMEM;
  while (result.bytes < count && result.readError == 0 && result.writeError == 0) {
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(count - result.bytes, kBlockBytes));
    const std::size_t got = std::fread(block.get(), 1, wanted, source);
    if (std::ferror(source) != 0) result.readError = errno;
    if (got == 0) break;
    if (std::fwrite(block.get(), 1, got, target) != got) result.writeError = errno;
    result.bytes += got;
  }
  return result;
}

}  // namespace

bool CopyStream(std::FILE* source, const char* sourcePath, FileStream target, std::uint64_t count,
                OutputFile& file) {
  DisableFileCache(source);
  DisableFileCache(target.get());
  Copied copied = CopyBySystem(source, target.get(), count);
  int& error = copied.writeError;
  if (copied.bytes < count && copied.readError == 0 && error == 0) {
    copied = CopyByHand(source, target.get(), count - copied.bytes);
  }
  if (std::fflush(target.get()) != 0 && error == 0) error = errno;
  const bool isWhole = copied.readError == 0 && error == 0;
  if (isWhole || FileSize(target.get()) > 0) file.Keep();
  if (std::fclose(target.release()) != 0 && error == 0) error = errno;
  if (copied.readError != 0) LogReadError(sourcePath, copied.readError);
  if (error != 0) LogWriteError(file.Path().c_str(), error);
  return copied.readError == 0 && error == 0;
}

}  // namespace velmora
