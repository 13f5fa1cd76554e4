#pragma once

#include <string>

namespace velmora::program {

/// A path as the project and the file system are to see it: absolute. What is absolute already
/// stays as it was typed, and so does the empty path, which names nothing.
[[nodiscard]] std::string AbsolutePath(const std::string& path);

}  // namespace velmora::program
