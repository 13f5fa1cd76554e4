#include "Session/StagedFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "Session/HiddenName.h"
#include "Session/StagedFile.h"

namespace velmora::host {
namespace {

/// 0 or an errno, EEXIST if something holds `to`.
int MoveToFreeName(const std::string& from, const std::string& to) {
#if defined(RENAME_NOREPLACE)
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
#endif
  // Where the system knows no such move, an empty folder holds the name meanwhile.
  if (::mkdir(to.c_str(), 0777) != 0) return errno;
  if (std::rename(from.c_str(), to.c_str()) == 0) return 0;
  const int error = errno;
  ::rmdir(to.c_str());
  return error;
}

std::string WithoutSlashAtItsEnd(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

}  // namespace

std::string StagedFolder::WhyNot(const std::string& path) {
  return StagedFile::WhyNot(WithoutSlashAtItsEnd(path));
}

StagedFolder::StagedFolder(std::string path) : path_(WithoutSlashAtItsEnd(std::move(path))) {}

StagedFolder::~StagedFolder() {
  std::error_code ignored;
  if (!written_.empty()) std::filesystem::remove_all(written_, ignored);
}

bool StagedFolder::Create() {
  written_ =
      MakeHidden(path_, [](const std::string& name) { return ::mkdir(name.c_str(), 0777) == 0; });
  return !written_.empty();
}

int StagedFolder::Publish() {
  const int error = MoveToFreeName(written_, path_);
  if (error == 0) written_.clear();
  return error;
}

std::string StagedFolder::Trouble(int error) const {
  return StagedFile(path_).Trouble(error);
}

}  // namespace velmora::host
