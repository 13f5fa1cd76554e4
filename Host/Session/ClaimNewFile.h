#pragma once

#include <memory>
#include <string>
#include <utility>

#include "Session/SessionTarget.h"
#include "Session/StagedFile.h"

namespace velmora::host {

/// Claims a target that is one new file: nothing may hold the name, and its folder must take files.
/// @param path absolute
/// @param more what a `Target` is made of beside the path
template <class Target, class... More>
[[nodiscard]] ClaimedTarget ClaimNewFile(const std::string& path, More&&... more) {
  std::string complaint = StagedFile::WhyNot(path);
  if (!complaint.empty()) return {nullptr, std::move(complaint)};
  return {std::make_unique<Target>(path, std::forward<More>(more)...), {}};
}

}  // namespace velmora::host
