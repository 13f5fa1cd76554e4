#pragma once

#include <iosfwd>

#include "Media/FactsByPath.h"
#include "Session/SessionTarget.h"

namespace velmora::otio {

enum class Writing { Done, Failed, Cancelled };

/// Writes a session as an OpenTimelineIO timeline:
///
///     Timeline.1  the project's constants; global_start_time 0, or where the session begins if
///                 that is before 0
///       Stack.1   a Marker.2 for each thing that was left out
///         Track.1 for each track: Gap.1, Clip.2, Transition.1
///
/// A track begins at the global start. A transition between two clips is a crossfade: it ends where
/// they meet. One between a clip and a gap is a fade; where there is no silence next to it the gap
/// has no length.
///
/// Only one track is held in memory at a time.
/// @return Failed if the stream took not all of it
[[nodiscard]] Writing WriteTimeline(const host::TargetInput& input, media::FactsByPath& media,
                                    std::ostream& out, host::TargetOutcome& outcome,
                                    const host::TargetProgress& progress);

}  // namespace velmora::otio
