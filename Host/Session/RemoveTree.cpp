#include "Session/RemoveTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <new>
#include <string_view>
#include <system_error>

namespace velmora::host {
namespace {

#if defined(__linux__) && defined(__GLIBC__)

constexpr int kDeepest = 64;  ///< folders in each other; what is made is a few deep

void EmptyFolder(int folder, int depth);

/// Removes what has this name in the folder. False if it stays.
bool Remove(int folder, const char* name, int depth) {
  if (::unlinkat(folder, name, 0) == 0) return true;
  if ((errno != EISDIR && errno != EPERM) || depth == 0) return false;
  const int inner = ::openat(folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (inner < 0) return false;
  EmptyFolder(inner, depth - 1);
  ::close(inner);
  return ::unlinkat(folder, name, AT_REMOVEDIR) == 0;
}

/// The C library's own way to list a folder takes memory.
void EmptyFolder(int folder, int depth) {
  alignas(dirent64) char entries[2048];
  bool hasRemoved = true;
  while (hasRemoved && ::lseek(folder, 0, SEEK_SET) == 0) {  // names may move as others go
    hasRemoved = false;
    ssize_t size = 0;
    while ((size = ::getdents64(folder, entries, sizeof entries)) > 0) {
      for (ssize_t at = 0; at < size;) {
        const auto* const entry = reinterpret_cast<const dirent64*>(entries + at);
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") hasRemoved |= Remove(folder, entry->d_name, depth);
        at += entry->d_reclen;
      }
    }
  }
}

#endif

}  // namespace

void RemoveTree(const std::string& path) noexcept {
#if defined(__linux__) && defined(__GLIBC__)
  static_cast<void>(Remove(AT_FDCWD, path.c_str(), kDeepest));
#else
  try {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  } catch (const std::bad_alloc&) {  // it stays for the next run
  }
#endif
}

}  // namespace velmora::host
