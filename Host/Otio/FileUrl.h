#pragma once

#include <string>
#include <string_view>

namespace velmora::otio {

/// An absolute path as a URL, "file:///a%20b.wav" (RFC 8089, RFC 3986). All bytes but letters,
/// digits, `-._~` and the slashes are percent-encoded, so a name of any bytes comes through.
[[nodiscard]] std::string FileUrl(std::string_view path);

}  // namespace velmora::otio
