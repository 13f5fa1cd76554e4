#pragma once

#include <string>
#include <string_view>

namespace velmora::host {

/// A text as one line that harms no terminal and no window: control characters and those that turn
/// a line's direction are blanks, what is not UTF-8 is U+FFFD.
[[nodiscard]] std::string Printable(std::string_view text);

}  // namespace velmora::host
