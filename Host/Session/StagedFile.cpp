#include "Session/StagedFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "Session/HiddenName.h"
#include "Session/MoveToFreeName.h"

namespace velmora::host {
namespace fs = std::filesystem;

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
  written_ = MakeHidden(path_, making_, [this](const std::string& name) {
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
  if (error == 0) {
    Forget();
    making_.End();
  }
  return error;
}

std::string StagedFile::Trouble(int error) const {
  if (error == EEXIST) return path_ + " has appeared meanwhile; it is not written over";
  return path_ + " cannot be written: " + std::strerror(error);
}

}  // namespace velmora::host
