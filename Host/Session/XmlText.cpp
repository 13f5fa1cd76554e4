#include "Session/XmlText.h"

#include <cstddef>

#include "Base/Utf8.h"

namespace velmora::host {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsAllowed(char32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
  return character != 0xFFFE && character != 0xFFFF;
}

}  // namespace

std::string XmlText(std::string_view text) {
  std::string allowed;
  allowed.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const char32_t character = NextCharacter(text, at);
    AppendUtf8(allowed, IsAllowed(character) ? character : kReplacement);
  }
  return allowed;
}

}  // namespace velmora::host
