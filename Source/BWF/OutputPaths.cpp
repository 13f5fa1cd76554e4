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

NewFile::NewFile(std::string base, std::string extension, NameSeries& series)
    : OutputFile(std::string()),
      base_(std::move(base)),
      extension_(std::move(extension)),
      series_(series) {}

NewFile::~NewFile() {
  if (created_ && !kept_) RemoveFile(path_.c_str());
}

void NewFile::GoTo(std::uint64_t number) {
  if (number != series_.number) series_ = {number, false};
  path_ = base_;
  if (number != 0) path_.append(".").append(std::to_string(number));
  path_ += extension_;
}

void NewFile::GoToFreeName() {
  named_ = true;
  int hidden = 0;
  for (GoTo(series_.number);; GoTo(series_.number + 1)) {
    switch (LookUpName(path_.c_str())) {
      case NameState::Free:
        return;
      case NameState::Held:
        hidden = 0;
        break;
      case NameState::Hidden:
        if (++hidden == kMostHidden) return GoTo(series_.number + 1 - kMostHidden);
        break;
    }
  }
}

const std::string& NewFile::Path() {
  if (!named_) GoToFreeName();
  return path_;
}

FileStream NewFile::CreateHere() {
  FileStream stream = CreateNewFile(path_.c_str());
  if (stream != nullptr) named_ = created_ = true;
  return stream;
}

/// The first name that is likely to be free: the next one, where this run has made a file under the
/// last one and it is still there.
void NewFile::GoToLikelyName() {
  GoTo(series_.number);
  if (series_.made && LookUpName(path_.c_str()) == NameState::Held) GoTo(series_.number + 1);
}

FileStream NewFile::Create() {
  int refused = 0;
  if (!named_) {
    // Where that name is free, creating the file is all the look-up that it needs: one call to the
    // system less for each file.
    GoToLikelyName();
    if (FileStream stream = CreateHere()) return stream;
    const bool isHeld = errno == EEXIST;
    const std::uint64_t tried = series_.number;
    GoToFreeName();
    refused = !isHeld && series_.number == tried ? 1 : 0;
  }
  const std::uint64_t first = series_.number;
  int lost = 0;
  while (refused < kMostHidden && lost < kMostLost) {
    if (refused + lost > 0) {
      GoTo(series_.number + 1);
      GoToFreeName();
    }
    if (FileStream stream = CreateHere()) return stream;
    ++(errno == EEXIST ? lost : refused);
  }
  GoTo(first);
  return nullptr;
}

void NewFile::Keep() {
  if (created_) series_.made = kept_ = true;
}

void NewFile::Discard() {
  kept_ = false;
}

NewFile OutputNames::New(const std::string& source, const char* folder, const char* suffix) {
  std::string base = folder != nullptr ? std::string(folder) + "/" + CopyBaseName(source.c_str())
                                       : source.substr(0, source.rfind('.'));
  base += suffix;
  std::string extension = ExtensionOf(source);
  // The number given last is tried again: its file may not have come to be, or have gone.
  NameSeries& series = series_[base + '\0' + extension];
  return {std::move(base), std::move(extension), series};
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
