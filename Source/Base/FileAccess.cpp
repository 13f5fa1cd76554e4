#include "Base/FileAccess.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "Base/SystemLog.h"

namespace velmora {
namespace {

/// Opening a FIFO for reading blocks until somebody writes, unless told not to.
int OpenDescriptor(const char* path) {
  return open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

}  // namespace

FileStream OpenRegularFile(const char* path) {
  const int descriptor = OpenDescriptor(path);
  if (descriptor < 0) return nullptr;
  struct stat facts {};
  int error = fstat(descriptor, &facts) == 0 ? 0 : errno;
  if (error == 0 && S_ISDIR(facts.st_mode)) error = EISDIR;
  if (error == 0 && !S_ISREG(facts.st_mode)) error = ENODEV;
  std::FILE* const stream = error == 0 ? fdopen(descriptor, "rb") : nullptr;
  if (stream == nullptr) {
    if (error == 0) error = errno;
    close(descriptor);
    errno = error;
  }
  return FileStream(stream);
}

std::int64_t FileSize(std::FILE* stream) {
  struct stat facts {};
  return fstat(fileno(stream), &facts) == 0 ? std::int64_t{facts.st_size} : -1;
}

FileStream CreateFile(const char* path) {
  constexpr mode_t kMode = 0666;  // less the user's mask
  const int descriptor = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, kMode);
  if (descriptor < 0) return nullptr;
  std::FILE* const stream = fdopen(descriptor, "wb");
  if (stream == nullptr) close(descriptor);
  return FileStream(stream);
}

bool OpensForReading(const char* path) {
  const int descriptor = OpenDescriptor(path);
  if (descriptor < 0) return false;
  close(descriptor);
  return true;
}

void LogWriteError(const char* path, int error) {
  SystemLog(std::string(path) + ": cannot be written in full: " + std::strerror(error));
}

void DisableFileCache(std::FILE* stream) {
  if (stream == nullptr) return;
#if defined(F_NOCACHE)
  fcntl(fileno(stream), F_NOCACHE, 1);
#else
  posix_fadvise(fileno(stream), 0, 0, POSIX_FADV_NOREUSE);
#endif
}

}  // namespace velmora
