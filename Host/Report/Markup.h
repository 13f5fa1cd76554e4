#pragma once

#include <string>
#include <string_view>

namespace velmora::report {

/// A text as content of an element or as a value between quotation marks. Whatever it holds, it
/// comes out as text: bytes that are not UTF-8 and control characters become U+FFFD. The one way of
/// a text into the page.
[[nodiscard]] std::string Html(std::string_view text);

/// JSON as content of a script element: no text in it can end the element or begin a comment.
/// Stays the same JSON.
[[nodiscard]] std::string ScriptJson(std::string_view json);

}  // namespace velmora::report
