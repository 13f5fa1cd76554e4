#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velmora {

// The one reading of UTF-8. The fallback is the same everywhere: each byte that belongs to no
// well-formed character counts as one U+FFFD.

/// The character of a UTF-8 text at `at`, which moves past it. `at` must lie inside the text.
[[nodiscard]] char32_t NextCharacter(std::string_view utf8, std::size_t& at);

/// Appends a character, which must be one that Unicode has.
void AppendUtf8(std::string& text, char32_t character);

/// The text with U+FFFD for what is not UTF-8.
[[nodiscard]] std::string ValidUtf8(std::string_view text);

[[nodiscard]] std::u16string Utf16FromUtf8(std::string_view utf8);

/// Half a pair of surrogates becomes U+FFFD.
[[nodiscard]] std::string Utf8FromUtf16(std::u16string_view utf16);

}  // namespace velmora
