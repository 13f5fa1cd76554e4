#include "Session/InTheMaking.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <vector>

#include "Session/RemoveTree.h"

namespace velmora::host {
namespace {

namespace fs = std::filesystem;

// All that this process has in the making.
constinit std::mutex listMutex;
constinit InTheMaking* list = nullptr;

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
  const bool isOurs = Hold(path);
  if (isOurs) Enlist(path);
  return isOurs;
}

bool InTheMaking::Hold(const std::string& path) {
  descriptor_ = OpenToLock(path);
  if (descriptor_ < 0) return errno != ENOENT;
  if (!IsLocked(descriptor_)) return errno != EWOULDBLOCK;
  struct stat facts {};
  return ::fstat(descriptor_, &facts) != 0 || facts.st_nlink > 0;
}

void InTheMaking::End() {
  Delist();
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}

void InTheMaking::Enlist(const std::string& path) {
  path_ = path;
  const std::lock_guard lock(listMutex);
  next_ = list;
  if (next_ != nullptr) next_->holder_ = &next_;
  holder_ = &list;
  list = this;
}

void InTheMaking::Delist() {
  const std::lock_guard lock(listMutex);
  if (holder_ == nullptr) return;
  *holder_ = next_;
  if (next_ != nullptr) next_->holder_ = holder_;
  next_ = nullptr;
  holder_ = nullptr;
}

void InTheMaking::RemoveAll() noexcept {
  // Whoever holds the lock may be the one that cannot go on.
  const std::unique_lock lock(listMutex, std::try_to_lock);
  if (!lock.owns_lock()) return;
  for (const InTheMaking* one = list; one != nullptr; one = one->next_) RemoveTree(one->path_);
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
