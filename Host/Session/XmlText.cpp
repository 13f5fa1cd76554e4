#include "Session/XmlText.h"

#include <cstddef>
#include <cstdio>

#include "Base/HarmfulCharacters.h"
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

std::string WithReferences(std::string_view markup) {
  std::string written;
  written.reserve(markup.size());
  for (std::size_t at = 0; at < markup.size();) {
    const std::size_t begin = at;
    const char32_t character = NextCharacter(markup, at);
    if (character < 0x7F || !IsHarmful(character)) {
      written.append(markup, begin, at - begin);
      continue;
    }
    char reference[16];
    std::snprintf(reference, sizeof reference, "&#x%X;", static_cast<unsigned>(character));
    written += reference;
  }
  return written;
}

}  // namespace velmora::host
