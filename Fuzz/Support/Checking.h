#pragma once

#include <string>

#include "Check/CheckProject.h"
#include "Media/MediaSearch.h"

namespace velmora::fuzz {

/// A check of a project in a work folder, with listings of its own: files come and go there.
[[nodiscard]] inline check::CheckedProject Check(const std::string& path,
                                                 const check::CheckOptions& options) {
  media::FolderListings listings;
  return check::CheckProject(path, options, listings);
}

}  // namespace velmora::fuzz
