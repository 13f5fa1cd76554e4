#pragma once

#include <string>

namespace velmora::host {

/// Gives a file or folder a name that must be free, even of a link, on the same file system; its
/// old name is gone then. 0, EEXIST if something holds the new name, or another errno.
[[nodiscard]] int MoveToFreeName(const std::string& from, const std::string& to);

}  // namespace velmora::host
