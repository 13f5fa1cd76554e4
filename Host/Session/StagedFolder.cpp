#include "Session/StagedFolder.h"

#include <sys/stat.h>

#include "Session/HiddenName.h"
#include "Session/MoveToFreeName.h"
#include "Session/RemoveTree.h"
#include "Session/StagedFile.h"

namespace velmora::host {
namespace {

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
  if (!written_.empty()) RemoveTree(written_);
}

bool StagedFolder::Create() {
  written_ = MakeHidden(path_, making_,
                        [](const std::string& name) { return ::mkdir(name.c_str(), 0777) == 0; });
  return !written_.empty();
}

int StagedFolder::Publish() {
  const int error = MoveToFreeName(written_, path_);
  if (error == 0) {
    written_.clear();
    making_.End();
  }
  return error;
}

std::string StagedFolder::Trouble(int error) const {
  return StagedFile(path_).Trouble(error);
}

}  // namespace velmora::host
