#pragma once

#include <cstdint>
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

/// A project as it is meant: a line for each cut that sounds, with its track, place, stretch and
/// file. Cuts of several channels have none: they are no regions of this system.
[[nodiscard]] std::string Meant(const check::CheckedProject& checked);

/// The same as the system spots it, without a file that a spot makes. A project that does not load
/// is "nothing".
[[nodiscard]] std::string Spotted(const std::string& path);

}  // namespace velmora::fuzz
