#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Spot/SpotWorker.h"

namespace velmora::host {

/// What of the project a region is. Its message does not tell it, so it is known only where the one
/// who sent the message is.
struct RegionOrigin {
  std::int32_t event = 0;  ///< position in the project's list
  std::int32_t entry = 0;  ///< number of the (Entry)
  std::optional<std::int32_t>
      source;  ///< number of the (Index), none for a number that is not listed
  RegionPiece piece = RegionPiece::Main;

  bool operator==(const RegionOrigin&) const = default;
};

/// Fades and gain that a region has as facts, to be applied where it is played. A region whose
/// fades and gain are rendered into its file has none.
struct RegionShape {
  std::int64_t fadeIn = 0;   ///< samples from the region's start on, not negative
  std::int64_t fadeOut = 0;  ///< samples before the region's end, not negative
  double gainDb = 0;

  bool operator==(const RegionShape&) const = default;
};

/// A region as a host received it.
struct SessionRegion {
  std::int64_t track = 0;     ///< from 0, the session's first track
  std::int64_t position = 0;  ///< on the timeline, in samples
  std::int64_t start = 0;     ///< first sample inside the file
  std::int64_t stop = 0;      ///< end inside the file, exclusive
  std::int32_t stream = 1;
  std::string path;  ///< of the wave file, as the alias resolved
  std::string name;
  RegionShape shape = {};
  std::optional<RegionOrigin> origin = {};

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
  /// Samples of the timeline that it takes, 0 or negative for none: as far as 64 bits reach.
  [[nodiscard]] std::int64_t SoundingLength() const { return End() - position; }
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

  /// Adds what is known of a region beside its message. `region` is an index of Regions().
  void Describe(std::size_t region, const RegionOrigin& origin) {
    regions_[region].origin = origin;
  }
  /// Takes that back: what was known no longer holds.
  void ForgetOrigin(std::size_t region) { regions_[region].origin.reset(); }
  void Shape(std::size_t region, const RegionShape& shape) { regions_[region].shape = shape; }

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
