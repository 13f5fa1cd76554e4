#include "Program/AbsolutePath.h"

#include <algorithm>
#include <filesystem>

namespace velmora::program {

std::string AbsolutePath(const std::string& path) {
  if (path.empty()) return path;  // names nothing, and is complained about as such
  const std::filesystem::path given(path);
  if (given.is_absolute()) return path;
  const std::filesystem::path absolute = std::filesystem::absolute(given);
  // Taking ".." away would change the way through a symbolic link.
  const bool climbs = std::find(given.begin(), given.end(), "..") != given.end();
  return climbs ? absolute.string() : absolute.lexically_normal().string();
}

}  // namespace velmora::program
