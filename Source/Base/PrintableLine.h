#pragma once

#include <string>
#include <string_view>

namespace velmora {

/// A text as one line that harms no terminal and no window: what IsHarmful (HarmfulCharacters.h)
/// tells is a blank, what is not UTF-8 is U+FFFD. Blanks at its end are dropped.
[[nodiscard]] std::string PrintableLine(std::string_view text);

}  // namespace velmora
