#pragma once

#include <string>
#include <string_view>

namespace velmora::host {

/// A text as one line that harms no terminal and no window: what IsHarmful (HarmfulCharacters.h)
/// tells is a blank, what is not UTF-8 is U+FFFD.
[[nodiscard]] std::string Printable(std::string_view text);

}  // namespace velmora::host
