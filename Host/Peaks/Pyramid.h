#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "Peaks/Peak.h"
#include "Peaks/PeakSource.h"

namespace velmora::peaks {

/// The columns of a picture over the frames of a file: column c shows the frames from Edge(c) to
/// Edge(c + 1), and one at least.
struct ColumnGrid {
  std::int64_t origin = 0;     ///< the frame at the left edge of column 0, perhaps outside the file
  double framesPerColumn = 1;  ///< above 0

  [[nodiscard]] std::int64_t Edge(std::int64_t column) const;
};

/// The peaks of a whole file at zooms from kFinest frames per column on, each level four times as
/// coarse as the one before:
///
///     256   |..|..|..|..|..|..|..|..|
///     1024  |...........|...........|
///     ...   |.......................|      up to one peak
///
/// Takes 4 bytes for a stretch of the finest level, and a third more for the levels above: 3.6
/// million bytes for an hour at 48 kHz, whatever the number of channels. Of a file so long that its
/// finest level would have more than kMostPeaks that level is coarser.
class Pyramid {
 public:
  static constexpr std::int64_t kFinest = 256;
  static constexpr std::int64_t kStep = 4;
  static constexpr std::int64_t kMostPeaks = std::int64_t{1} << 22;  ///< 6 hours at 48 kHz

  /// Reads the whole file, as far as it goes. Null if it was stopped or holds no audio. A large
  /// plain file is read by two threads; the outcome is the same.
  [[nodiscard]] static std::shared_ptr<const Pyramid> Read(PeakSource& source,
                                                           const Stopped& stopped);

  /// Frames of one peak of the finest level in a file of so many frames.
  [[nodiscard]] static std::int64_t FinestFor(std::int64_t frames);

  [[nodiscard]] std::int64_t Frames() const { return frames_; }
  [[nodiscard]] std::int64_t Finest() const { return finest_; }
  [[nodiscard]] std::size_t Bytes() const;

  /// Adds the peaks of successive columns, the first of which is `first`. Edges are moved to those
  /// of the peaks: by a quarter of a column at most where there is a level that fine. No peak is in
  /// two columns, unless they are narrower than the finest. Columns outside the file stay as they
  /// are.
  void AddColumns(const ColumnGrid& grid, std::int64_t first, std::span<Peak> columns) const;

 private:
  [[nodiscard]] std::size_t LevelFor(double framesPerColumn) const;

  std::int64_t frames_ = 0;
  std::int64_t finest_ = kFinest;
  std::vector<std::vector<Peak>> levels_;  ///< the finest first
};

}  // namespace velmora::peaks
