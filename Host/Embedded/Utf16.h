#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace velmora::host {

/// The character of a UTF-8 text at `at`, which moves behind it. A byte that belongs to no
/// well-formed character is U+FFFD by itself. `at` must lie inside the text.
char32_t NextCharacter(std::string_view utf8, std::size_t& at);

/// Bytes that are not UTF-8 become U+FFFD.
std::u16string Utf16FromUtf8(std::string_view utf8);

/// Half a pair of surrogates becomes U+FFFD.
std::string Utf8FromUtf16(std::u16string_view utf16);

}  // namespace velmora::host
