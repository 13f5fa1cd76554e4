#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Session/Session.h"
#include "Timeline/TimeScale.h"

namespace velmora::timeline {

/// What a region is: a spot renders fades and crossfades as pieces of their own.
enum class PieceKind { Region, FadeIn, Crossfade, FadeOut };

/// Told by the suffix of the region's name, or of its file's where a dot in the file's name has cut
/// the region's short: "Take_FadeIn", "/audio/Take.2_FadeIn.1.wav".
[[nodiscard]] PieceKind KindOfRegion(const host::SessionRegion& region);

/// A stretch of a lane to draw: one piece, or several that are too narrow to tell apart.
struct LaneSpan {
  static constexpr std::size_t kMerged = static_cast<std::size_t>(-1);

  double left = 0;  ///< in view coordinates, not cut at the view's edges
  double right = 0;
  std::size_t region = kMerged;  ///< index of the region, kMerged for several
  std::size_t pieces = 1;        ///< how many pieces stand here
};

/// One track of the timeline: what is heard on it, in rising position, without overlaps.
struct Lane {
  std::int64_t track = 0;  ///< from 0
  std::vector<host::VisiblePiece> pieces;
};

/// The session as the timeline shows it. Takes in regions one by one, and works out a track's
/// pieces anew only when that track has changed and is asked for.
class TimelineModel {
 public:
  void Clear();
  void Add(host::SessionRegion region);

  [[nodiscard]] const std::vector<host::SessionRegion>& Regions() const {
    return session_.Regions();
  }
  [[nodiscard]] std::size_t LaneCount() const { return lanes_.size(); }
  /// Lanes stand in rising order of their tracks; only tracks that hold a region have one. `lane`
  /// is below LaneCount(), here and in what follows.
  [[nodiscard]] const Lane& LaneAt(std::size_t lane);

  /// Span of all regions, in samples; both 0 without regions.
  [[nodiscard]] std::int64_t First() const { return first_; }
  [[nodiscard]] std::int64_t End() const { return end_; }  ///< exclusive

  /// What to draw of a lane between the view's x = 0 and `width`: pieces of a pixel or more one by
  /// one, and runs of narrower ones with less than a pixel between them as one span.
  [[nodiscard]] std::vector<LaneSpan> Spans(std::size_t lane, const TimeScale& scale, double width);

  /// The region that is heard at `x` on a lane. A piece narrower than `reach` pixels answers to
  /// clicks beside it, the nearest first.
  [[nodiscard]] std::optional<std::size_t> HitTest(std::size_t lane, const TimeScale& scale,
                                                   double x, double reach);

 private:
  struct Slot {
    Lane lane;
    bool stale = true;
  };

  host::Session session_;
  std::vector<Slot> lanes_;
  std::int64_t first_ = 0;
  std::int64_t end_ = 0;
};

}  // namespace velmora::timeline
