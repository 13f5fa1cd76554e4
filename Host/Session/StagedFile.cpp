#include "Session/StagedFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "Session/HiddenName.h"

namespace velmora::host {
namespace {

namespace fs = std::filesystem;

/// Gives a file a name that must be free, and takes its old one away. 0 or an errno.
int MoveToFreeName(const std::string& from, const std::string& to) {
  if (::link(from.c_str(), to.c_str()) == 0) {
    RemoveFile(from.c_str());
    return 0;
  }
  if (errno == EEXIST) return EEXIST;
  // Some file systems have no second names: there an empty file holds the name meanwhile.
  if (CreateNewFile(to.c_str()) == nullptr) return errno;
  if (::rename(from.c_str(), to.c_str()) == 0) return 0;
  const int error = errno;
  RemoveFile(to.c_str());
  return error;
}

}  // namespace

std::string StagedFile::WhyNot(const std::string& path) {
  struct stat facts {};
  if (::lstat(path.c_str(), &facts) == 0) return path + " is there; it is not written over";
  if (errno != ENOENT) return StagedFile(path).Trouble(errno);
  const std::string folder = fs::path(path).parent_path();
  return ::access(folder.c_str(), W_OK | X_OK) == 0 ? "" : StagedFile(path).Trouble(errno);
}

StagedFile::~StagedFile() {
  if (!written_.empty()) RemoveFile(written_.c_str());
}

bool StagedFile::Create() {
  written_ = MakeHidden(path_, [this](const std::string& name) {
    stream_ = CreateNewFile(name.c_str());
    return stream_ != nullptr;
  });
  return stream_ != nullptr;
}

int StagedFile::Close() {
  // A network may report a full disk as late as here.
  return stream_ == nullptr || std::fclose(stream_.release()) == 0 ? 0 : errno;
}

int StagedFile::Publish() {
  const int error = MoveToFreeName(written_, path_);
  if (error == 0) Forget();
  return error;
}

std::string StagedFile::Trouble(int error) const {
  if (error == EEXIST) return path_ + " has appeared meanwhile; it is not written over";
  return path_ + " cannot be written: " + std::strerror(error);
}

}  // namespace velmora::host
