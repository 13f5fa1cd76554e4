#pragma once

#include <string>
#include <string_view>

namespace velmora {

/// The part of a path after its last slash; a path without one stays whole.
[[nodiscard]] std::string FileNameOf(const std::string& path);
/// The same as a part of the caller's own text.
[[nodiscard]] std::string_view FileNameIn(std::string_view path);

/// The part of a path before its last slash; a path without one stays whole.
[[nodiscard]] std::string FolderOf(const std::string& path);

/// A path's extension: from the last `.` of the whole path on, the dot included; empty without one.
[[nodiscard]] std::string ExtensionOf(const std::string& path);

}  // namespace velmora
