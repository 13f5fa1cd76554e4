#pragma once

#include <string>

namespace velmora {

/// The part of a path after its last slash; a path without one stays whole.
[[nodiscard]] std::string FileNameOf(const std::string& path);

/// The part of a path before its last slash; a path without one stays whole.
[[nodiscard]] std::string FolderOf(const std::string& path);

/// A path's extension: from the last `.` of the whole path on, the dot included; empty without one.
[[nodiscard]] std::string ExtensionOf(const std::string& path);

}  // namespace velmora
