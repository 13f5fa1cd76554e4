#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace velmora::host {

/// A region as a host received it.
struct SessionRegion {
  std::int64_t track = 0;     ///< from 0, the session's first track
  std::int64_t position = 0;  ///< on the timeline, in samples
  std::int64_t start = 0;     ///< first sample inside the file
  std::int64_t stop = 0;      ///< end inside the file, exclusive
  std::int32_t stream = 1;
  std::string path;  ///< of the wave file, as the alias resolved
  std::string name;

  /// 0 or negative if the stop does not lie after the start. Both come as 32-bit numbers.
  [[nodiscard]] std::int64_t Length() const { return stop - start; }
  /// Exclusive. Held at the limits of 64 bits: positions come from project files, unchecked.
  [[nodiscard]] std::int64_t End() const {
    using Limits = std::numeric_limits<std::int64_t>;
    const std::int64_t samples = Length();
    if (samples > 0 && position > Limits::max() - samples) return Limits::max();
    if (samples < 0 && position < Limits::min() - samples) return Limits::min();
    return position + samples;
  }
};

/// What is heard of one region: later regions cover what lies under them.
struct VisiblePiece {
  std::size_t region = 0;     ///< index into Session::Regions()
  std::int64_t position = 0;  ///< on the timeline, in samples
  std::int64_t end = 0;       ///< exclusive
};

/// What a session amounts to.
struct SessionSummary {
  std::size_t tracks = 0;   ///< that hold a region
  std::size_t regions = 0;  ///< received
  std::size_t files = 0;    ///< different paths
  std::int64_t first = 0;   ///< earliest position, in samples; 0 without regions
  std::int64_t end = 0;     ///< latest end, exclusive, a region of no length ending where it
                            ///< begins; 0 without regions
};

/// The timeline of a session: regions in order of arrival, and for each track what is heard of
/// them. Hosts fill it; whatever shows, writes or plays a session reads it. Not synchronised.
class Session {
 public:
  /// Puts a region on its track, over what is there. One of no length is kept and covers nothing.
  ///
  ///     before  |---- A ----|  |-- B --|       before  |------- A -------|
  ///     placed         |--- C ---|             placed       |-- C --|
  ///     after   |- A --|--- C ---|- B -|       after   |-A--|-- C --|-A--|
  ///
  /// Returns its index. Costs time in the logarithm of the track's pieces and in those it covers.
  std::size_t Place(SessionRegion region);

  [[nodiscard]] const std::vector<SessionRegion>& Regions() const { return regions_; }
  /// Tracks that hold a region, in rising order.
  [[nodiscard]] std::vector<std::int64_t> Tracks() const;
  /// What is heard on a track, in rising position, without overlaps.
  [[nodiscard]] std::vector<VisiblePiece> Visible(std::int64_t track) const;
  [[nodiscard]] SessionSummary Summary() const;

 private:
  using Pieces = std::map<std::int64_t, VisiblePiece>;
  static void Clear(Pieces& pieces, std::int64_t position, std::int64_t end);

  std::vector<SessionRegion> regions_;
  /// By track, then by position.
  std::map<std::int64_t, Pieces> tracks_;
};

}  // namespace velmora::host
