#pragma once

#include <cstddef>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <string_view>

#include "Ardour/SessionEdit.h"
#include "Session/SessionTarget.h"

namespace velmora::ardour {

/// Holds what Ardour has after loading a session against what it was given. Ardour cuts, moves and
/// drops without a word what it does not like.
class SessionProof {
 public:
  /// All must outlive this.
  SessionProof(const host::TargetInput& input, const ArdourPlan& plan, const EditedRegions& edited)
      : input_(input), plan_(plan), edited_(edited) {}

  /// Takes a line of what Ardour has of a region: its id, position, start, length.
  /// @return an empty text, or what is wrong with the region, which it names
  [[nodiscard]] std::string TakeRegion(std::string_view line);
  /// The same for a track: its id and name.
  [[nodiscard]] std::string TakeTrack(std::string_view line,
                                      const std::vector<std::string>& trackIds);
  /// Whether everything that was given has been taken.
  [[nodiscard]] std::string WhatLacks() const;
  /// Whether the file that Ardour saved after that holds every region, and no file of the user's
  /// that it may write to, and whether every track is heard.
  [[nodiscard]] std::string WhatFileLacks(const pugi::xml_document& xml,
                                          const TimeWords& times) const;

 private:
  [[nodiscard]] std::string WhatRegionsLack(const pugi::xml_node& session,
                                            const TimeWords& times) const;
  [[nodiscard]] std::string LabelOf(const EditedRegion& region) const;

  const host::TargetInput& input_;
  const ArdourPlan& plan_;
  const EditedRegions& edited_;
  std::set<std::string> regions_;  ///< ids that were taken
  std::size_t tracks_ = 0;
};

}  // namespace velmora::ardour
