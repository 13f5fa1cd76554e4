#include "Base/Utf8.h"

namespace velmora {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Continuation bytes that a lead byte asks for; -1 for a byte that leads nothing.
int ContinuationBytes(unsigned char lead) {
  if (lead < 0x80) return 0;
  if (lead >= 0xC2 && lead <= 0xDF) return 1;
  if (lead >= 0xE0 && lead <= 0xEF) return 2;
  if (lead >= 0xF0 && lead <= 0xF4) return 3;
  return -1;
}

/// A character in more bytes than it needs is as wrong as one that does not exist.
bool IsCharacter(char32_t character, int continuation) {
  if (continuation == 2) {
    return character >= 0x800 && !IsHighSurrogate(character) && !IsLowSurrogate(character);
  }
  return continuation != 3 || (character >= 0x10000 && character <= 0x10FFFF);
}

}  // namespace

void AppendUtf8(std::string& text, char32_t character) {
  const auto append = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (character < 0x80) {
    append(character);
  } else if (character < 0x800) {
    append(0xC0 | character >> 6);
    append(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    append(0xE0 | character >> 12);
    append(0x80 | (character >> 6 & 0x3F));
    append(0x80 | (character & 0x3F));
  } else {
    append(0xF0 | character >> 18);
    append(0x80 | (character >> 12 & 0x3F));
    append(0x80 | (character >> 6 & 0x3F));
    append(0x80 | (character & 0x3F));
  }
}

char32_t NextCharacter(std::string_view utf8, std::size_t& at) {
  const auto lead = static_cast<unsigned char>(utf8[at++]);
  const int continuation = ContinuationBytes(lead);
  if (continuation == 0) return lead;
  if (continuation < 0 || utf8.size() - at < static_cast<std::size_t>(continuation)) {
    return kReplacement;
  }
  char32_t character = lead & (0x3Fu >> continuation);
  for (std::size_t i = 0; i < static_cast<std::size_t>(continuation); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[at + i]);
    if ((byte & 0xC0) != 0x80) return kReplacement;
    character = character << 6 | (byte & 0x3Fu);
  }
  if (!IsCharacter(character, continuation)) return kReplacement;
  at += static_cast<std::size_t>(continuation);
  return character;
}

std::string ValidUtf8(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) AppendUtf8(valid, NextCharacter(text, at));
  return valid;
}

std::u16string Utf16FromUtf8(std::string_view utf8) {
  std::u16string utf16;
  utf16.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t character = NextCharacter(utf8, at);
    if (character < 0x10000) {
      utf16.push_back(static_cast<char16_t>(character));
    } else {
      utf16.push_back(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
      utf16.push_back(static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF)));
    }
  }
  return utf16;
}

std::string Utf8FromUtf16(std::u16string_view utf16) {
  std::string utf8;
  utf8.reserve(utf16.size());
  for (std::size_t i = 0; i < utf16.size(); ++i) {
    char32_t character = utf16[i];
    if (IsHighSurrogate(character) && i + 1 < utf16.size() && IsLowSurrogate(utf16[i + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10) + (utf16[++i] - 0xDC00u);
    } else if (IsHighSurrogate(character) || IsLowSurrogate(character)) {
      character = kReplacement;
    }
    AppendUtf8(utf8, character);
  }
  return utf8;
}

}  // namespace velmora
