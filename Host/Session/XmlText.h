#pragma once

#include <string>
#include <string_view>

namespace velmora::host {

/// A text as XML 1.0 can hold it: UTF-8 with U+FFFD for each byte that is none and for each
/// character that XML forbids, even as a reference (clause 2.2: control characters but tab and the
/// two line ends, U+FFFE and U+FFFF). Markup is not escaped; that is for whoever writes the XML.
[[nodiscard]] std::string XmlText(std::string_view text);

/// Markup that a writer of XML has made of such texts, with a reference, such as `&#x9B;`, in place
/// of each character that nobody is to be shown as it is (Base/HarmfulCharacters.h). Whoever reads
/// it has the same values. The markup must be whole characters.
[[nodiscard]] std::string WithReferences(std::string_view markup);

}  // namespace velmora::host
