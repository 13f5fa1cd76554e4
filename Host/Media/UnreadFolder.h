#pragma once

#include <string>

namespace velmora::media {

/// A folder that could not be read to its end, or a link that may lead to one: files may stand
/// below it of which nobody knows.
struct UnreadFolder {
  std::string path;
  std::string reason;  ///< the system's words
};

}  // namespace velmora::media
