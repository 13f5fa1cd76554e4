#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmora::field {

/// The paths that a location may mean, slashes for backslashes, the likeliest first: without
/// `URL:`, scheme and host, with its percent escapes undone, and, if it has any, as it stands, for
/// a name may really hold a `%`.
///
///     URL:file://localhost/Mac/a%20b.wav  ->  /Mac/a b.wav, /Mac/a%20b.wav
///     url:file:///C:/proj/x.wav           ->  C:/proj/x.wav
///     x.wav                               ->  x.wav
[[nodiscard]] std::vector<std::string> PathsOf(std::string_view utf8Location);

/// Percent escapes undone; what is no escape stays.
[[nodiscard]] std::string WithoutEscapes(std::string_view text);

}  // namespace velmora::field
