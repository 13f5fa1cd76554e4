#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velmora::report {

/// A text as content of an element or as a value between quotation marks. Whatever it holds, it
/// comes out as text: bytes that are not UTF-8, control characters and those that turn the
/// direction of writing become U+FFFD. The one way of a text into the page.
[[nodiscard]] std::string Html(std::string_view text);

/// The text, or its first `bytes` bytes, rounded down to a whole character, and how long it is: a
/// project may give names that would fill the page.
[[nodiscard]] std::string Shortened(std::string_view text, std::size_t bytes);

/// JSON as content of a script element: no text in it can end the element or begin a comment.
/// Stays the same JSON.
[[nodiscard]] std::string ScriptJson(std::string_view json);

}  // namespace velmora::report
