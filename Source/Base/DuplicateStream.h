#pragma once

#include <cstdio>

#include "Base/FileAccess.h"

namespace velmora {

/// A second stream of a file that is open, closed for itself; null if that fails, and errno tells
/// why. Nothing is looked up by a path. Both have one place in the file: what one of them seeks or
/// reads moves the other, ReadAt and its like apart.
[[nodiscard]] FileStream DuplicateStream(std::FILE* stream);

}  // namespace velmora
