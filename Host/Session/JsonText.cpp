#include "Session/JsonText.h"

#include <string_view>
#include <utility>

#include "Base/HarmfulCharacters.h"
#include "Base/Utf8.h"
#include "Session/PrintableAscii.h"

namespace velmora::host {
namespace {

/// Keys are our own words; only values come from projects.
void MendTexts(Json& value) {
  if (value.is_string()) {
    auto& text = value.get_ref<std::string&>();
    text = ValidUtf8(text);
  } else if (value.is_structured()) {
    for (Json& element : value) MendTexts(element);
  }
}

void AppendEscaped(std::string& json, char16_t unit) {
  constexpr std::string_view kHex = "0123456789abcdef";
  json += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) json += kHex[unit >> shift & 0xF];
}

/// JSON means the same with a character as it stands and escaped, and somebody may have it on a
/// terminal. Of ASCII the library has
/// escaped what must be, and terminals pass 0x7F over.
std::string EscapeHarmful(std::string json) {
  if (IsPrintableAscii(json)) return json;
  std::string escaped;
  escaped.reserve(json.size() + json.size() / 8);
  for (std::size_t at = 0; at < json.size();) {
    const std::size_t begin = at;
    const char32_t character = NextCharacter(json, at);
    if (character < 0x80 || !IsHarmful(character)) {
      escaped.append(json, begin, at - begin);
    } else {
      for (const char16_t unit : Utf16FromUtf8(std::string_view(json).substr(begin, at - begin))) {
        AppendEscaped(escaped, unit);
      }
    }
  }
  return escaped;
}

}  // namespace

std::string JsonText(Json value) {
  MendTexts(value);
  return EscapeHarmful(value.dump());
}

}  // namespace velmora::host
