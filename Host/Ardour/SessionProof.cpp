#include "Ardour/SessionProof.h"

#include <algorithm>
#include <cstdint>
#include <sstream>

#include "Session/RegionLabel.h"

namespace velmora::ardour {

using pugi::xml_node;

std::string SessionProof::LabelOf(const EditedRegion& region) const {
  return host::RegionLabel(input_, region.planned->region);
}

std::string SessionProof::TakeRegion(std::string_view line) {
  std::istringstream words{std::string(line)};
  std::string id;
  std::int64_t position = 0, start = 0, length = 0;
  if (!(words >> id >> position >> start >> length)) {
    return "Ardour tells a region in no known form";
  }
  const auto found = edited_.find(id);
  if (found == edited_.end()) return "Ardour has a region that it was not given";
  if (!regions_.insert(id).second) return LabelOf(found->second) + " is there twice";
  const PlannedRegion& planned = *found->second.planned;
  std::string differences;
  const auto compare = [&](const char* what, std::int64_t has, std::int64_t given) {
    if (has == given) return;
    differences += std::string(differences.empty() ? "" : ", ") + what + " " + std::to_string(has) +
                   " in place of " + std::to_string(given);
  };
  compare("position", position, planned.position);
  compare("start", start, planned.start);
  compare("length", length, planned.length);
  if (differences.empty()) return {};
  return "Ardour has placed " + LabelOf(found->second) + " otherwise: " + differences;
}

std::string SessionProof::TakeTrack(std::string_view line,
                                    const std::vector<std::string>& trackIds) {
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos) return "Ardour tells a track in no known form";
  const auto found = std::find(trackIds.begin(), trackIds.end(), line.substr(0, blank));
  if (found == trackIds.end()) return "Ardour has a track that it was not given";
  const PlannedTrack& track = plan_.Tracks()[static_cast<std::size_t>(found - trackIds.begin())];
  ++tracks_;
  if (line.substr(blank + 1) == track.name) return {};
  return "Ardour calls " + track.name + " by another name";
}

std::string SessionProof::WhatLacks() const {
  for (const auto& [id, region] : edited_) {
    if (!regions_.contains(id)) return "Ardour does not have " + LabelOf(region);
  }
  return tracks_ == plan_.Tracks().size() ? "" : "Ardour does not have all tracks";
}

std::string SessionProof::WhatFileLacks(const pugi::xml_document& xml,
                                        const TimeWords& times) const {
  const xml_node session = xml.child("Session");
  if (std::string lack = WhatRegionsLack(session, times); !lack.empty()) return lack;
  for (const xml_node source : session.child("Sources").children("Source")) {
    if (std::string_view(source.attribute("flags").value()).find("Writable") !=
        std::string_view::npos) {
      return "Ardour would be allowed to write to " +
             std::string(source.attribute("origin").value());
    }
  }
  for (const xml_node route : session.child("Routes").children("Route")) {
    const std::string_view use = route.child("PresentationInfo").attribute("flags").value();
    if (use.find("AudioTrack") == std::string_view::npos) continue;
    const xml_node output = route.find_child_by_attribute("IO", "direction", "Output");
    for (const xml_node port : output.children("Port")) {
      if (port.child("Connection")) continue;
      return "the saved session plays " + std::string(route.attribute("name").value()) + " nowhere";
    }
  }
  return {};
}

std::string SessionProof::WhatRegionsLack(const xml_node& session, const TimeWords& times) const {
  std::size_t found = 0;
  for (const xml_node playlist : session.child("Playlists").children("Playlist")) {
    for (const xml_node region : playlist.children("Region")) {
      const auto edited = edited_.find(region.attribute("id").value());
      if (edited == edited_.end()) return "the saved session has a region that it was not given";
      const PlannedRegion& planned = *edited->second.planned;
      if (region.attribute("start").value() != times.Of(planned.start) ||
          region.attribute("length").value() != times.Extent(planned.length, planned.position)) {
        return "the saved session has " + LabelOf(edited->second) + " elsewhere";
      }
      if (region.attribute("layering-index").as_ullong() != edited->second.layer) {
        return "the saved session has " + LabelOf(edited->second) + " above or under others";
      }
      ++found;
    }
  }
  if (found == edited_.size()) return {};
  return "the saved session has " + std::to_string(found) + " of " +
         std::to_string(edited_.size()) + " regions; is the disk full?";
}

}  // namespace velmora::ardour
