#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace velmora::media {

/// True if both are the same file, or hold the same bytes. A file that cannot be read equals
/// nothing but itself. Reads in blocks, and only as far as the files agree.
[[nodiscard]] bool SameContents(const std::string& a, const std::string& b);

/// Of files with the same contents the first one each, as places in `paths`; at most `most`.
[[nodiscard]] std::vector<std::size_t> DifferentFiles(const std::vector<std::string>& paths,
                                                      std::size_t most);

}  // namespace velmora::media
