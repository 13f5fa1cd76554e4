#include "Session/MoveToFreeName.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "Base/FileAccess.h"

namespace velmora::host {
namespace {

/// In one step, where the system and the file system know it. -1 where they do not.
int MoveAtOnce(const std::string& from, const std::string& to) {
#if defined(RENAME_NOREPLACE)
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
#elif defined(RENAME_EXCL)
  if (::renamex_np(from.c_str(), to.c_str(), RENAME_EXCL) == 0) return 0;
#else
  errno = ENOSYS;
#endif
  const bool isUnknown = errno == EINVAL || errno == ENOSYS || errno == ENOTSUP;
  return isUnknown ? -1 : errno;
}

/// Something empty holds the new name meanwhile.
int MoveFolder(const std::string& from, const std::string& to) {
  if (::mkdir(to.c_str(), 0777) != 0) return errno;
  if (std::rename(from.c_str(), to.c_str()) == 0) return 0;
  const int error = errno;
  ::rmdir(to.c_str());
  return error;
}

int MoveFile(const std::string& from, const std::string& to) {
  if (::link(from.c_str(), to.c_str()) == 0) {
    RemoveFile(from.c_str());
    return 0;
  }
  if (errno == EEXIST) return EEXIST;
  // Some file systems have no second names.
  if (CreateNewFile(to.c_str()) == nullptr) return errno;
  if (std::rename(from.c_str(), to.c_str()) == 0) return 0;
  const int error = errno;
  RemoveFile(to.c_str());
  return error;
}

}  // namespace

int MoveToFreeName(const std::string& from, const std::string& to) {
  const int moved = MoveAtOnce(from, to);
  if (moved >= 0) return moved;
  struct stat facts {};
  if (::lstat(from.c_str(), &facts) != 0) return errno;
  return S_ISDIR(facts.st_mode) ? MoveFolder(from, to) : MoveFile(from, to);
}

}  // namespace velmora::host
