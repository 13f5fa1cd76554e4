#pragma once

#include <string>
#include <string_view>

namespace velmora::media {

/// A name by which names that differ only in case are equal, beyond ASCII too, and in the way
/// accents are stored: some systems write "é" as one character, others as "e" and an accent. A name
/// that is no UTF-8 has only its ASCII letters folded.
[[nodiscard]] std::string FoldedName(std::string_view name);

/// A name without its extension: a dot and one to five letters or digits, at least one of them a
/// letter.
[[nodiscard]] std::string_view StemOf(std::string_view name);

/// True for an extension that sound files have: ".wav", ".BWF".
[[nodiscard]] bool HasSoundExtension(std::string_view name);

}  // namespace velmora::media
