#include "BWF/OutputPaths.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "Base/FileNames.h"

namespace velmora {
namespace {

/// So many names in a row that an error hides, and the folder is at fault.
constexpr int kMostHidden = 8;
/// So many names in a row that were free and then held cannot come from other runs alone.
constexpr int kMostLost = 1000;

}  // namespace

NewFile::NewFile(std::string base, std::string extension, std::uint64_t& number)
    : OutputFile(std::string()),
      base_(std::move(base)),
      extension_(std::move(extension)),
      number_(number) {
  GoToFreeName();
}

NewFile::~NewFile() {
  if (created_) RemoveFile(path_.c_str());
}

void NewFile::GoTo(std::uint64_t number) {
  number_ = number;
  path_ = base_;
  if (number != 0) path_.append(".").append(std::to_string(number));
  path_ += extension_;
}

void NewFile::GoToFreeName() {
  int hidden = 0;
  for (GoTo(number_);; GoTo(number_ + 1)) {
    switch (LookUpName(path_.c_str())) {
      case NameState::Free:
        return;
      case NameState::Held:
        hidden = 0;
        break;
      case NameState::Hidden:
        if (++hidden == kMostHidden) return GoTo(number_ + 1 - kMostHidden);
        break;
    }
  }
}

FileStream NewFile::Create() {
  const std::uint64_t first = number_;
  int refused = 0;
  int lost = 0;
  while (refused < kMostHidden && lost < kMostLost) {
    FileStream stream = CreateNewFile(path_.c_str());
    if (stream != nullptr) {
      created_ = true;
      return stream;
    }
    ++(errno == EEXIST ? lost : refused);
    GoTo(number_ + 1);
    GoToFreeName();
  }
  GoTo(first);
  return nullptr;
}

NewFile OutputNames::New(const std::string& source, const char* folder, const char* suffix) {
  std::string base = folder != nullptr ? std::string(folder) + "/" + CopyBaseName(source.c_str())
                                       : source.substr(0, source.rfind('.'));
  base += suffix;
  std::string extension = ExtensionOf(source);
  // The number given last is tried again: its file may not have come to be.
  std::uint64_t& number = lastNumber_[base + '\0' + extension];
  return {std::move(base), std::move(extension), number};
}

std::string OutputNames::Find(const std::string& source, const char* folder, const char* suffix) {
  return New(source, folder, suffix).Path();
}

std::string CopyBaseName(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  const char* const stem = slash != nullptr ? slash + 1 : path;
  return {stem, std::strcspn(stem, ".")};
}

bool FileExists(const char* path) {
  return OpensForReading(path);
}

}  // namespace velmora
