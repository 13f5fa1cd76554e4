#pragma once

#include <cstdint>
#include <string>

namespace velmora::check {

/// Bytes of the largest file that is taken for a project. One with a million events has a tenth.
inline constexpr std::int64_t kLargestProject = std::int64_t{1} << 30;

/// A project's bytes, or why there are none.
struct ProjectFile {
  std::string bytes;
  std::string trouble;  ///< in plain words; empty if all went well
};

/// Reads a regular file whole. Never blocks. A large file that cannot be an ADL, because neither
/// of the words that make one stands in it, is refused without taking the memory that it would
/// need; so is one that is larger than any ADL.
[[nodiscard]] ProjectFile ReadProjectFile(const std::string& path);

}  // namespace velmora::check
