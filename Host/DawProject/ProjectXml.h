#pragma once

#include <cstddef>
#include <cstdint>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "DawProject/MediaNames.h"
#include "DawProject/UsableSession.h"
#include "Media/FactsByPath.h"
#include "Session/SessionTarget.h"

namespace velmora::dawproject {

/// A mark on the timeline for something that is not there.
struct Absence {
  std::int64_t position = 0;  ///< samples
  std::string text;
};

/// What project.xml is made of.
struct ProjectParts {
  const host::TargetInput& input;
  const UsableSession& usable;
  media::FactsByPath& media;
  const std::vector<Absence>& absences;
  MediaNames* inside;  ///< takes the files that go inside; null if none do
};

/// Makes project.xml: a track with its channel for each track of the session, what is heard on it
/// as clips, all times in seconds.
/// @param notes takes what the format tells otherwise than the session has it
/// @return false if `progress` cancelled
[[nodiscard]] bool MakeProjectXml(const ProjectParts& parts, pugi::xml_document& xml,
                                  std::vector<std::string>& notes,
                                  const host::TargetProgress& progress);

/// Makes metadata.xml.
void MakeMetadataXml(const host::SpotRecord& record, pugi::xml_document& xml);

}  // namespace velmora::dawproject
