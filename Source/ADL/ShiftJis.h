#pragma once

#include <string>

namespace velmora {

/// Reads the bytes as Shift-JIS X0213 and returns them as UTF-8. Bytes below 0x80 stand for
/// themselves, backslash and tilde too; each byte that cannot be converted gives U+FFFD, and the
/// byte after it is looked at afresh. Null gives the empty text.
[[nodiscard]] std::string ShiftJisToUtf8(const char* text);

}  // namespace velmora
