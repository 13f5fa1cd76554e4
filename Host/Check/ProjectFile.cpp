#include "Check/ProjectFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

#include "Base/FileAccess.h"
#include "Base/Text.h"

namespace velmora::check {
namespace {

/// Files up to this size are read without a look into them first.
constexpr std::int64_t kReadAtOnce = std::int64_t{8} << 20;

constexpr auto kWords = std::to_array<std::string_view>({"<adl>", "event_list"});

/// Whether one of the words stands in a text, in any case.
bool HasWord(std::string_view text) {
  const auto equal = [](char a, char b) { return LowerCase(a) == b; };
  return std::any_of(kWords.begin(), kWords.end(), [&](std::string_view word) {
    return std::search(text.begin(), text.end(), word.begin(), word.end(), equal) != text.end();
  });
}

bool CanBeAdl(std::FILE* file, std::int64_t size) {
  constexpr std::size_t kBlock = std::size_t{1} << 20;
  constexpr std::size_t kOverlap = 16;
  std::vector<char> block(kBlock + kOverlap);
  for (std::int64_t at = 0; at < size; at += static_cast<std::int64_t>(kBlock)) {
    const std::size_t count = ReadAt(file, at, block.data(), block.size());
    if (HasWord({block.data(), count})) return true;
    if (count == 0) return errno != 0;  // an error is told by whoever reads it whole
  }
  return false;
}

}  // namespace

ProjectFile ReadProjectFile(const std::string& path) {
  ProjectFile file;
  const FileStream stream = OpenRegularFile(path.c_str());
  if (stream == nullptr) {
    const int error = errno;
    const bool isOdd = error == EISDIR || error == ENODEV || error == ENXIO;
    file.trouble = isOdd ? "this is no regular file"
                         : std::string("the file cannot be opened: ") + std::strerror(error);
    return file;
  }
  const std::int64_t size = FileSize(stream.get());
  if (size < 0) {
    file.trouble = std::string("the size of the file cannot be told: ") + std::strerror(errno);
  } else if (size > kLargestProject) {
    file.trouble = "the file is larger than any ADL: " + std::to_string(size) + " bytes";
  } else if (size > kReadAtOnce && !CanBeAdl(stream.get(), size)) {
    file.trouble = "neither <ADL> nor an EVENT_LIST stands in this file";
  } else {
    file.bytes.resize(static_cast<std::size_t>(size));
    if (std::fread(file.bytes.data(), 1, file.bytes.size(), stream.get()) != file.bytes.size()) {
      file.bytes.clear();
      file.trouble = "the file cannot be read to its end";
      if (std::ferror(stream.get()) != 0) (file.trouble += ": ") += std::strerror(errno);
    }
  }
  return file;
}

}  // namespace velmora::check
