#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <vector>

#include "Session/Session.h"
#include "Session/SessionHost.h"

namespace velmora::host {

/// A fade's factor at one sample, as a fraction: what is multiplied comes before the division.
struct FadeFactor {
  std::int64_t numerator = 1;
  std::int64_t denominator = 1;
};

/// A region's fades and gain as they are applied. `fadeIn + fadeOut` is at most the region's
/// length.
struct AppliedShape {
  std::int64_t fadeIn = 0;   ///< samples
  std::int64_t fadeOut = 0;  ///< samples
  double gain = 1;           ///< linear

  [[nodiscard]] bool HasFades() const { return fadeIn > 0 || fadeOut > 0; }
  /// @param sample from the region's start, in a region of `length` samples: i/n in a fade-in of n,
  ///               (n-i)/n in a fade-out
  [[nodiscard]] FadeFactor FactorAt(std::int64_t sample, std::int64_t length) const;
};

/// A stretch of a track in which the same regions sound. The highest lies over the others with its
/// fade's factor a, and what is under it sounds with 1 - a, and so on downward; the lowest lies
/// over silence.
struct HeardStretch {
  std::int64_t position = 0;             ///< on the timeline, in samples
  std::int64_t end = 0;                  ///< exclusive
  std::span<const std::size_t> regions;  ///< indices into Session::Regions(), the lowest first
};

/// What is heard of a session, by the one law that all targets share:
///
/// - later regions lie over earlier ones, and a region without fades hides what is under it;
/// - a fade-out that ends together with the fade-in of a later region on its track, and is not
///   longer than that, is dropped: the later region's fade-in makes the crossfade alone;
/// - a fade-in longer than its region is cut to it, a fade-out to what the fade-in leaves;
/// - a gain that is no finite factor is none.
///
///     earlier  =============\           the fade-out is dropped
///     later              /===========   the fade-in fades over what is under it
///
/// Without fades the stretches are those of Session::Visible.
class HeardSession {
 public:
  /// `session` must outlive this and stay as it is.
  explicit HeardSession(const Session& session);

  /// By region.
  [[nodiscard]] const std::vector<AppliedShape>& Shapes() const { return shapes_; }
  /// Names the fades that were cut and the gains that are none.
  [[nodiscard]] const std::vector<Remark>& Remarks() const { return remarks_; }

  /// Calls `visit` for each stretch of a track that is not silent, in rising position, until it
  /// answers false. The stretch is valid during the call.
  void Walk(std::int64_t track, const std::function<bool(const HeardStretch&)>& visit) const;

 private:
  friend class HeardTrack;

  void CutToLength(std::size_t region);
  void DropCoveredFadeOuts(const std::vector<std::size_t>& regions);

  const Session& session_;
  /// The regions that sound, by track, in order of arrival.
  std::map<std::int64_t, std::vector<std::size_t>> byTrack_;
  std::vector<AppliedShape> shapes_;
  std::vector<Remark> remarks_;
};

/// One track of a HeardSession, a stretch at a time, for those who follow several tracks at once.
/// `heard` must outlive this. Needs memory in the number of the track's regions.
class HeardTrack {
 public:
  HeardTrack(const HeardSession& heard, std::int64_t track);

  /// The next stretch that is not silent, in rising position. Valid until the next call.
  /// @return false after the last one
  [[nodiscard]] bool Next(HeardStretch& stretch);

 private:
  struct Edge {
    std::int64_t position;
    std::size_t region;
    enum { Begins, Changes, Ends } kind;
  };

  [[nodiscard]] bool NextFaded(HeardStretch& stretch);
  void CollectEdges(const std::vector<std::size_t>& regions);
  void CollectLayers(std::int64_t position);
  [[nodiscard]] bool Hides(std::size_t region, std::int64_t position) const;

  const HeardSession& heard_;
  std::size_t next_ = 0;              ///< index into pieces_ or edges_
  std::vector<VisiblePiece> pieces_;  ///< of a track without fades
  std::vector<Edge> edges_;           ///< of a track with fades
  std::set<std::size_t> sounding_;    ///< regions that have begun and not ended
  std::vector<std::size_t> layers_;   ///< of the stretch that is visited
};

}  // namespace velmora::host
