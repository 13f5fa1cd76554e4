#include "DawProject/MediaNames.h"

#include "Base/FileNames.h"
#include "Session/XmlText.h"

namespace velmora::dawproject {
namespace {

constexpr std::size_t kMostBytes = 200;  // systems take names of 255 bytes

/// Without what a file name may not hold somewhere.
std::string SafeName(std::string_view fileName) {
  std::string name = host::XmlText(fileName);
  for (char& character : name) {
    const bool isForbidden =
        std::string_view("<>:\"/\\|?*\t\n\r\x7F").find(character) != std::string_view::npos;
    if (isForbidden) character = '_';
  }
  return name;
}

/// Cuts a UTF-8 text between two characters.
void CutTo(std::string& text, std::size_t most) {
  if (text.size() <= most) return;
  while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) --most;
  text.resize(most);
}

std::string LowerCase(std::string text) {
  for (char& character : text) {
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character + 32);
  }
  return text;
}

}  // namespace

const std::string& MediaNames::Of(const std::string& path) {
  const auto [row, isNew] = byPath_.try_emplace(path, entries_.size());
  if (isNew) entries_.push_back({path, "audio/" + FreeName(FileNameOf(path))});
  return entries_[row->second].name;
}

std::string MediaNames::FreeName(std::string_view fileName) {
  std::string stem = SafeName(fileName);
  std::string extension = ExtensionOf(stem);
  if (extension.size() > kMostBytes / 4) extension.clear();
  stem.resize(stem.size() - extension.size());
  CutTo(stem, kMostBytes);
  if (stem.empty()) stem = "audio";

  std::string name = stem + extension;
  // The number goes on from the last one of that name, so that many files of one name cost no
  // search each.
  int& number = lastNumber_[LowerCase(name)];
  while (!taken_.insert(LowerCase(name)).second) {
    number = number == 0 ? 2 : number + 1;
    name = stem;
    name += '-' + std::to_string(number);
    name += extension;
  }
  return name;
}

}  // namespace velmora::dawproject
