#pragma once

#include <cstdint>
#include <cstdio>

#include "BWF/OutputFile.h"
#include "Base/FileAccess.h"

namespace velmora {

/// Copies the first `count` bytes of an open file, or as many as it has, into a file that was just
/// created, and closes that. By the system itself as far as it can: that costs no more than the
/// system's own `cp`, and next to nothing where files share blocks. In bounded memory.
/// @param sourcePath what the log calls the source
/// @param target the stream that `file` gave; the file is kept if anything came to stand in it
/// @return false after a read or write error, of which the system log has been told
[[nodiscard]] bool CopyStream(std::FILE* source, const char* sourcePath, FileStream target,
                              std::uint64_t count, OutputFile& file);

}  // namespace velmora
