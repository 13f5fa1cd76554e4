#pragma once

#include <cstdint>
#include <map>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "Ardour/ArdourPlan.h"
#include "Ardour/SessionJob.h"

namespace velmora::ardour {

/// A region as it was put into the session file.
struct EditedRegion {
  const PlannedRegion* planned = nullptr;
  std::size_t layer = 0;  ///< in its track, 0 for the lowest
};

/// What was put into the session file, by Ardour's ids.
using EditedRegions = std::map<std::string, EditedRegion>;

/// Puts the audio files and regions of a plan into an empty session.
///
/// @param trackIds Ardour's ids of the plan's tracks, in their order
/// @param frameRateCode of the session, for its timecode
/// @param edited takes what was put in; it refers to the plan
/// @return an empty text, or why the session cannot take the plan: it is then half edited
[[nodiscard]] std::string EditSession(const ArdourPlan& plan, const TimeWords& times,
                                      const std::vector<std::string>& trackIds,
                                      std::int32_t frameRateCode, pugi::xml_document& xml,
                                      EditedRegions& edited);

}  // namespace velmora::ardour
