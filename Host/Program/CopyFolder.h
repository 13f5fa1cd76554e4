#pragma once

#include <string>

namespace velmora::program {

/// Makes a folder and those above it, all or none; one that is there is good.
/// @return an empty text, or what is wrong
[[nodiscard]] std::string MakeFolder(const std::string& path);

}  // namespace velmora::program
