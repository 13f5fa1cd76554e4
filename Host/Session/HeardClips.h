#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "Session/HeardSession.h"
#include "Session/Session.h"
#include "Session/SessionHost.h"

namespace velmora::host {

/// A clip of a track on which clips never overlap: what exchange formats and most workstations
/// have. Times are samples of the timeline.
struct HeardClip {
  std::size_t region = 0;  ///< index into Session::Regions()
  std::int64_t position = 0;
  std::int64_t end = 0;      ///< exclusive
  std::int64_t fadeIn = 0;   ///< after `position`, out of silence
  std::int64_t fadeOut = 0;  ///< before `end`, into silence
  /// Before `position`. The clip sounds from `position - crossfade` on, over the end of the clip
  /// before it, which ends at `position`: at sample i of n it has the factor i/n, the clip before
  /// it 1 - i/n.
  std::int64_t crossfade = 0;

  [[nodiscard]] std::int64_t Length() const { return end - position; }
};

/// What is heard of one track, told in clips.
struct HeardClips {
  std::vector<HeardClip> clips;  ///< in rising position
  /// Fades that clips cannot tell, by region: what lies under them begins, ends or fades there
  /// itself, or a later region hides a part of them. They are told as near as clips can.
  std::vector<Remark> remarks;
};

/// Tells what is heard of a track in clips. Where there are no remarks they sound as the session
/// does:
///
///     session   earlier  ================          clips   ============|
///               later           /============                     /____|=======
///                               |-n-|                             crossfade n
///
/// A fade-out over an earlier region is a crossfade back to it: with straight ramps the two are the
/// same.
[[nodiscard]] HeardClips ClipsOf(const Session& session, const HeardSession& heard,
                                 std::int64_t track);

/// Samples of a region's file; none if that is not known.
using FramesOf = std::function<std::optional<std::int64_t>(const SessionRegion& region)>;

/// Cuts clips to what their files hold: what lies beyond them is silence either way, and some
/// programs refuse a clip that is longer than its file, or fill it up with something else. An end
/// of a clip at which it fades or crosses over stays, so that no ramp changes.
void CutToFiles(const Session& session, const FramesOf& framesOf, std::vector<HeardClip>& clips);

}  // namespace velmora::host
