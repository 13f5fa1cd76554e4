#pragma once

#include <functional>
#include <string>
#include <vector>

namespace velmora::program {

/// The projects that arguments of the command line stand for.
struct ProjectList {
  std::vector<std::string> paths;       ///< absolute, in the order in which they are told
  std::vector<std::string> complaints;  ///< folders not read to their end, or without a project
};

/// A folder stands for every *.adl below it, in any case, in bytewise order of path; links are
/// followed, no folder twice. Anything else stands for itself, whether it is there or not.
[[nodiscard]] ProjectList FindProjects(const std::vector<std::string>& arguments,
                                       const std::function<bool()>& cancelled);

}  // namespace velmora::program
