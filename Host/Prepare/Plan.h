#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Check/CheckProject.h"
#include "Prepare/PrepareProject.h"
#include "Prepare/Stamps.h"

namespace velmora::prepare {

/// One file that is to stand in the prepared folder's Audio/.
struct PlannedFile {
  std::string from;  ///< as the search found it
  std::string name;  ///< in Audio/, UTF-8, unique without regard to case
  HowMade how = HowMade::Linked;
  // Of a file that is made anew:
  std::optional<std::int32_t> channel;  ///< from 0: that one alone
  std::int64_t firstFrame = 0;
  std::optional<std::int64_t> frameCount;
  std::optional<std::int32_t> sampleRate;  ///< Hz: resampled to it
  bool tooLong = false;  ///< not converted: the cuts use more of it than one file may hold
  /// Frames of the file at the project's rate, as far as they are known.
  std::optional<std::int64_t> frames;
  std::int64_t bytes = 0;  ///< of work, about
};

/// One source of the prepared project. A file of several channels may come to several sources.
struct PlannedSource {
  std::int32_t index = 0;
  std::size_t origin = 0;           ///< position in Project::sources
  std::optional<std::size_t> file;  ///< position in Plan::files; none: its location stays
  std::int64_t fileStart = 0;       ///< samples at the project's rate
  bool ownLength = false;           ///< its length is the file's, not the one that the ADL tells
  /// Reference and length are left out: by them a file of the prepared folder would be taken for
  /// the one that is missing.
  bool hidesFacts = false;
};

struct PlannedCut {
  std::optional<std::size_t> source;  ///< position in Plan::sources
  std::int32_t sourceIndex = 0;
  field::ChannelRun sourceChannels;
  field::ChannelRun tracks;
  // Samples at the project's rate.
  std::int64_t sourceIn = 0;
  std::int64_t position = 0;
  std::int64_t end = 0;
  std::optional<std::int64_t> fadeIn;  ///< length
  std::optional<std::int64_t> fadeOut;
  std::optional<double> gainDb;
  bool whole = false;           ///< plays all channels of a file that has several
  bool keepsGainLines = false;  ///< the gain lines stay as they are
};

struct PlannedEvent {
  std::size_t origin = 0;  ///< position in Project::events
  std::int32_t number = 0;
  std::optional<PlannedCut> cut;  ///< none: an event of another kind, kept as it is
};

/// What prepare makes of a project. Positions in vectors are used in place of pointers.
struct Plan {
  StampForm form;
  std::vector<PlannedFile> files;
  std::vector<PlannedSource> sources;
  std::vector<PlannedEvent> events;
  std::vector<Change> changes;
  /// What of the original is not in the prepared project, and no check of that can tell.
  std::vector<check::Finding> lost;
};

/// Works out what is to be done. Looks at no file but to see through links.
/// @return none if the project's sample rate cannot be written
[[nodiscard]] std::optional<Plan> MakePlan(const check::CheckedProject& checked,
                                           const PrepareOptions& options);

}  // namespace velmora::prepare
