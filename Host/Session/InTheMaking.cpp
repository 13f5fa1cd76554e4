#include "Session/InTheMaking.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

namespace velmora::host {
namespace {

namespace fs = std::filesystem;

int OpenToLock(const std::string& path) {
  return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
}

bool IsLocked(int descriptor) {
  return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
}

/// Whether a name still means what is open: it may have got its final name since.
bool IsStillNamed(int descriptor, const std::string& path) {
  struct stat opened {
  }, named{};
  return ::fstat(descriptor, &opened) == 0 && ::lstat(path.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino &&
         opened.st_uid == ::geteuid() && (S_ISREG(opened.st_mode) || S_ISDIR(opened.st_mode));
}

}  // namespace

bool InTheMaking::Begin(const std::string& path) {
  End();
  descriptor_ = OpenToLock(path);
  if (descriptor_ < 0) return errno != ENOENT;
  if (!IsLocked(descriptor_)) return errno != EWOULDBLOCK;
  struct stat facts {};
  return ::fstat(descriptor_, &facts) != 0 || facts.st_nlink > 0;
}

void InTheMaking::End() {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}

void TidyLeftOvers(const std::string& folder,
                   const std::function<bool(std::string_view name)>& isOurs) {
  std::vector<std::string> paths;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (isOurs(entry->path().filename().native())) paths.push_back(entry->path());
  }
  for (const std::string& path : paths) {
    const int descriptor = OpenToLock(path);
    if (descriptor < 0) continue;
    // Whoever has just made it and not said so yet finds the lock taken, and makes another.
    if (IsLocked(descriptor) && IsStillNamed(descriptor, path)) fs::remove_all(path, error);
    ::close(descriptor);
  }
}

}  // namespace velmora::host
