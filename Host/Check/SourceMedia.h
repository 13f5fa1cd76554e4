#pragma once

#include <optional>
#include <string>

#include "Field/FileStarts.h"
#include "Media/AudioFacts.h"
#include "Media/MediaSearch.h"

namespace velmora::check {

/// A source's file, as far as it was found and can be read.
struct SourceMedia {
  media::Located located;
  std::optional<media::AudioFacts> facts;  ///< none if missing, ambiguous or broken
  media::Obstacle obstacle = media::Obstacle::None;
  std::string trouble;  ///< of a broken file: why
};

/// Looks for a source's file only where the system does.
/// @param folder      the ADL's, absolute
/// @param rawLocation the location's bytes, quotation marks included
[[nodiscard]] media::Located LocateAsSystem(const std::string& folder,
                                            const std::string& rawLocation);

/// What there is to know of a file that was found. `located` of the answer stays empty.
[[nodiscard]] SourceMedia ReadSourceFile(const std::string& path);

/// The same as deciding a file's start needs it; none without facts.
[[nodiscard]] std::optional<field::SourceAudio> AudioOf(const SourceMedia& media);

}  // namespace velmora::check
