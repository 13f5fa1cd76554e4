#include "Prepare/MediaNames.h"

#include <algorithm>
#include <string_view>

#include "ADL/ShiftJis.h"
#include "Base/Text.h"
#include "Prepare/ShiftJisWriter.h"

namespace velmora::prepare {
namespace {

/// Room for the suffixes that a spot appends, in the 255 bytes that file systems give a name.
constexpr std::size_t kLongestStem = 160;
constexpr std::size_t kLongestExtension = 16;

/// What some file system, shell or URL reads as more than a letter.
constexpr std::string_view kUnsafe = "/\\:*?\"<>|%";

std::string Lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), LowerCase);
  return text;
}

/// At most so many bytes of a UTF-8 text, cut between characters.
std::string Shortened(const std::string& text, std::size_t most) {
  if (text.size() <= most) return text;
  std::size_t end = most;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end);
}

std::string SafeText(const std::string& text) {
  std::string safe = ShiftJisToUtf8(ToShiftJis(text, '_').bytes.c_str());
  for (char& c : safe) {
    if (kUnsafe.find(c) != std::string_view::npos) c = '_';
  }
  return safe;
}

struct NameParts {
  std::string stem;
  std::string extension;  ///< with its dot
};

NameParts Split(const std::string& fileName) {
  const std::size_t dot = fileName.rfind('.');
  const bool hasExtension =
      dot != std::string::npos && dot > 0 && fileName.size() - dot <= kLongestExtension;
  if (!hasExtension) return {fileName, ""};
  return {fileName.substr(0, dot), fileName.substr(dot)};
}

/// A stem that begins with no dot, which would hide the file, and ends in no blank or dot.
std::string SafeStem(const std::string& stem) {
  std::string safe = Shortened(SafeText(stem), kLongestStem);
  while (!safe.empty() && (safe.back() == ' ' || safe.back() == '.')) safe.pop_back();
  if (!safe.empty() && (safe.front() == '.' || safe.front() == ' ')) safe.front() = '_';
  return safe.empty() ? "audio" : safe;
}

}  // namespace

void MediaNames::Reserve(const std::string& fileName) {
  reserved_.insert(Lowered(SafeStem(Split(fileName).stem)));
}

std::string MediaNames::NameFor(const std::string& fileName, const std::string& suffix,
                                const std::string& extension) {
  const NameParts parts = Split(fileName);
  const std::string stem = SafeStem(parts.stem);
  const std::string ending = extension.empty() ? SafeText(parts.extension) : extension;
  for (std::size_t number = 1;; ++number) {
    const std::string end = suffix + (number > 1 ? '_' + std::to_string(number) : "");
    const std::string candidate = Shortened(stem, kLongestStem - end.size()) + end;
    if (reserved_.contains(Lowered(candidate))) continue;
    if (taken_.insert(Lowered(candidate + ending)).second) return candidate + ending;
  }
}

}  // namespace velmora::prepare
