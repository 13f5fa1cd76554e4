#pragma once

#include <string>
#include <string_view>

namespace velmora::host {

/// A text as XML 1.0 can hold it: UTF-8 with U+FFFD for each byte that is none and for each
/// character that XML forbids, even as a reference (clause 2.2: control characters but tab and the
/// two line ends, U+FFFE and U+FFFF). Markup is not escaped; that is for whoever writes the XML.
[[nodiscard]] std::string XmlText(std::string_view text);

}  // namespace velmora::host
