#include "Peaks/Pyramid.h"

#include <algorithm>
#include <cmath>
#include <future>
#include <system_error>

namespace velmora::peaks {
namespace {

/// Below this many frames a second thread costs more than it saves.
constexpr std::int64_t kManyFrames = std::int64_t{1} << 23;

std::int64_t CeilingOf(std::int64_t value, std::int64_t step) {
  return value / step + (value % step != 0 ? 1 : 0);
}

std::vector<Peak> CoarserThan(const std::vector<Peak>& level) {
  constexpr auto kStep = static_cast<std::size_t>(Pyramid::kStep);
  std::vector<Peak> coarser((level.size() + kStep - 1) / kStep);
  for (std::size_t i = 0; i < level.size(); ++i) coarser[i / kStep].Add(level[i]);
  return coarser;
}

/// The peaks of the stretches from index `from` to `to`. Returns how many are whole.
std::int64_t ReadPart(PeakSource& source, std::int64_t stretch, std::int64_t from, std::int64_t to,
                      std::vector<Peak>& peaks, const Stopped& stopped) {
  return source.Read(from * stretch, to * stretch, stretch,
                     peaks.data() + static_cast<std::size_t>(from), stopped);
}

/// The same of all stretches, by two threads if that is worth while.
std::int64_t ReadAll(PeakSource& source, std::int64_t stretch, std::vector<Peak>& peaks,
                     const Stopped& stopped) {
  const auto count = static_cast<std::int64_t>(peaks.size());
  const std::int64_t half = count / 2;
  if (!source.ReadsSideBySide() || source.Frames() * source.Channels() < kManyFrames) {
    return ReadPart(source, stretch, 0, count, peaks, stopped);
  }
  std::future<std::int64_t> second;
  try {
    second = std::async(std::launch::async,
                        [&] { return ReadPart(source, stretch, half, count, peaks, stopped); });
  } catch (const std::system_error&) {
    return ReadPart(source, stretch, 0, count, peaks, stopped);  // there is no thread to be had
  }
  const std::int64_t first = ReadPart(source, stretch, 0, half, peaks, stopped);
  const std::int64_t rest = second.get();
  return first < half ? first : half + rest;
}

}  // namespace

std::int64_t ColumnGrid::Edge(std::int64_t column) const {
  // No view is so wide or so far out that this would lose a frame; beyond, nothing is drawn.
  constexpr double kFarthest = 4e18;
  const double frames = std::floor(static_cast<double>(column) * framesPerColumn);
  const double held = std::clamp(frames, -kFarthest, kFarthest);
  const auto distance = static_cast<std::int64_t>(held);
  constexpr std::int64_t kMostOrigin = std::int64_t{1} << 62;
  return std::clamp(origin, -kMostOrigin, kMostOrigin) + distance;
}

std::int64_t Pyramid::FinestFor(std::int64_t frames) {
  std::int64_t finest = kFinest;
  while (CeilingOf(frames, finest) > kMostPeaks) finest *= kStep;
  return finest;
}

std::shared_ptr<const Pyramid> Pyramid::Read(PeakSource& source, const Stopped& stopped) {
  auto pyramid = std::make_shared<Pyramid>();
  const std::int64_t stretch = FinestFor(source.Frames());
  std::vector<Peak> level(static_cast<std::size_t>(CeilingOf(source.Frames(), stretch)));
  const std::int64_t whole = ReadAll(source, stretch, level, stopped);
  if (whole == 0 || (stopped && stopped())) return nullptr;
  level.resize(static_cast<std::size_t>(whole));
  pyramid->finest_ = stretch;
  pyramid->frames_ = std::min(source.Frames(), whole * stretch);
  pyramid->levels_.push_back(std::move(level));
  while (pyramid->levels_.back().size() > 1) {
    pyramid->levels_.push_back(CoarserThan(pyramid->levels_.back()));
  }
  return pyramid;
}

std::size_t Pyramid::Bytes() const {
  std::size_t bytes = sizeof *this;
  for (const std::vector<Peak>& level : levels_) bytes += level.capacity() * sizeof(Peak);
  return bytes;
}

std::size_t Pyramid::LevelFor(double framesPerColumn) const {
  std::size_t level = 0;
  auto frames = static_cast<double>(finest_ * kStep);
  while (level + 1 < levels_.size() && frames * kStep <= framesPerColumn) {
    frames *= kStep;
    ++level;
  }
  return level;
}

void Pyramid::AddColumns(const ColumnGrid& grid, std::int64_t first,
                         std::span<Peak> columns) const {
  const std::size_t chosen = LevelFor(grid.framesPerColumn);
  const std::vector<Peak>& level = levels_[chosen];
  std::int64_t stretch = finest_;
  for (std::size_t i = 0; i < chosen; ++i) stretch *= kStep;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::int64_t column = first + static_cast<std::int64_t>(i);
    const std::int64_t from = std::max<std::int64_t>(grid.Edge(column), 0);
    const std::int64_t to =
        std::min(std::max(grid.Edge(column + 1), grid.Edge(column) + 1), frames_);
    if (from >= to) continue;
    const std::int64_t begin = from / stretch;
    const std::int64_t end =
        std::max(begin + 1, to == frames_ ? CeilingOf(to, stretch) : to / stretch);
    for (std::int64_t peak = begin; peak < end; ++peak) {
      columns[i].Add(level[static_cast<std::size_t>(peak)]);
    }
  }
}

}  // namespace velmora::peaks
