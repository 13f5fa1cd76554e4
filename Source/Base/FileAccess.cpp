#include "Base/FileAccess.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <string>

#include "Base/SystemLog.h"

namespace velmora {
namespace {

constexpr mode_t kMode = 0666;  // less the user's mask
constexpr int kForWriting = O_WRONLY | O_NONBLOCK | O_CLOEXEC;

/// Opening a FIFO for reading blocks until somebody writes, unless told not to.
int OpenDescriptor(const char* path) {
  return open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

/// 0 for a regular file, else the errno that tells what it is. It is asked before anything is
/// opened: to open a device is an act that may wind a tape back or start a watchdog, and to open a
/// FIFO lets its writer go on.
int RefusalOf(const struct stat& facts) {
  if (S_ISREG(facts.st_mode)) return 0;
  return S_ISDIR(facts.st_mode) ? EISDIR : ENODEV;
}

}  // namespace

FileStream OpenRegularFile(const char* path) {
  struct stat facts {};
  int error = stat(path, &facts) == 0 ? RefusalOf(facts) : errno;
  const int descriptor = error == 0 ? OpenDescriptor(path) : -1;
  if (descriptor < 0) {
    if (error != 0) errno = error;
    return nullptr;
  }
  // The path may lead to something else by now.
  error = fstat(descriptor, &facts) == 0 ? RefusalOf(facts) : errno;
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

std::size_t ReadSomeAt(std::FILE* stream, std::int64_t place, void* bytes, std::size_t count) {
  ssize_t got = 0;
  do {
    got = pread(fileno(stream), bytes, count, place);
  } while (got < 0 && errno == EINTR);
  if (got >= 0) errno = 0;
  return got > 0 ? static_cast<std::size_t>(got) : 0;
}

std::size_t ReadAt(std::FILE* stream, std::int64_t place, void* bytes, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    const std::size_t got = ReadSomeAt(stream, place + static_cast<std::int64_t>(done),
                                       static_cast<char*>(bytes) + done, count - done);
    if (got == 0) break;
    done += got;
  }
  return done;
}

FileStream CreateFile(const char* path) {
  int descriptor = open(path, kForWriting | O_TRUNC);
  if (descriptor < 0 && errno == ENOENT)
    descriptor = open(path, kForWriting | O_CREAT | O_TRUNC, kMode);
  if (descriptor < 0) return nullptr;
  std::FILE* const stream = fdopen(descriptor, "wb");
  if (stream == nullptr) close(descriptor);
  return FileStream(stream);
}

FileStream CreateNewFile(const char* path) {
  // O_EXCL alone follows no link; O_NOFOLLOW says so where a file system does not keep to it.
  const int descriptor = open(path, kForWriting | O_CREAT | O_EXCL | O_NOFOLLOW, kMode);
  if (descriptor < 0) return nullptr;
  std::FILE* const stream = fdopen(descriptor, "wb");
  if (stream == nullptr) {
    const int error = errno;
    close(descriptor);
    RemoveFile(path);
    errno = error;
  }
  return FileStream(stream);
}

void RemoveFile(const char* path) {
  unlink(path);
}

NameState LookUpName(const char* path) {
  struct stat facts {};
  if (lstat(path, &facts) == 0) return NameState::Held;
  return errno == ENOENT ? NameState::Free : NameState::Hidden;
}

bool OpensForReading(const char* path) {
  struct stat facts {};
  if (stat(path, &facts) != 0 || S_ISSOCK(facts.st_mode)) return false;
  return faccessat(AT_FDCWD, path, R_OK, AT_EACCESS) == 0;
}

namespace {

/// What has gone wrong is told by a status too: without memory the line stays away.
void LogFault(const char* path, const char* fault, int error) {
  try {
    SystemLog(std::string(path) + fault + std::strerror(error));
  } catch (const std::bad_alloc&) {
  }
}

}  // namespace

void LogReadError(const char* path, int error) {
  LogFault(path, ": cannot be read: ", error);
}

void LogWriteError(const char* path, int error) {
  LogFault(path, ": cannot be written in full: ", error);
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
