#pragma once

#include <string>

namespace velmora::desktop {

/// A path that nothing holds, not even a dangling link: `base` and `extension`, else with a number
/// between them, "Demo 2.wav". One that cannot be looked at counts as free: whoever makes it is
/// told.
[[nodiscard]] std::string FreeName(const std::string& base, const std::string& extension = {});

/// The file's name without its extension, or `otherwise` if nothing is left of it.
[[nodiscard]] std::string StemOf(const std::string& path, const std::string& otherwise);

}  // namespace velmora::desktop
