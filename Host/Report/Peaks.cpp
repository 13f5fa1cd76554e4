#include "Report/Peaks.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "Peaks/PeakSource.h"

namespace velmora::report {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kFewestPoints = 4;
constexpr std::size_t kMostPoints = 400;
/// Samples that are read for all peaks together: 0.1 s of decoding.
constexpr std::int64_t kMostSamples = 12'000'000;
/// A slow disk, or a format that is slow to seek in, must not hold the page up.
constexpr auto kMostTime = std::chrono::milliseconds(1500);

/// How many points each region gets of all: by its length, and a few at least.
std::vector<std::size_t> Shares(const std::vector<host::SessionRegion>& regions,
                                std::size_t points) {
  double total = 0;
  for (const host::SessionRegion& region : regions) {
    total += static_cast<double>(std::max<std::int64_t>(region.Length(), 0));
  }
  const std::size_t fewest = std::clamp<std::size_t>(
      points / 2 / std::max<std::size_t>(regions.size(), 1), kFewestPoints, kMostPoints);
  std::vector<std::size_t> shares;
  for (const host::SessionRegion& region : regions) {
    const auto length = static_cast<double>(std::max<std::int64_t>(region.Length(), 0));
    const double byLength = total > 0 ? static_cast<double>(points) / 2 * length / total : 0;
    const std::size_t share =
        std::clamp<std::size_t>(static_cast<std::size_t>(byLength), fewest, kMostPoints);
    shares.push_back(std::min<std::size_t>(share, static_cast<std::size_t>(length)));
  }
  return shares;
}

/// Lengths are 32-bit numbers, so that nothing overflows.
std::int64_t EdgeOf(const host::SessionRegion& region, std::size_t i, std::size_t points) {
  return region.start +
         region.Length() * static_cast<std::int64_t>(i) / static_cast<std::int64_t>(points);
}

/// None if the file cannot be read there.
std::optional<float> Loudest(peaks::PeakSource& source, std::int64_t from, std::int64_t count) {
  constexpr float kFullScale = 32768;
  if (from < 0 || count <= 0 || from >= source.Frames()) return 0.0F;
  peaks::Peak peak;
  if (source.Read(from, from + count, count, &peak, {}) == 0) return std::nullopt;
  if (peak.IsEmpty()) return 0.0F;
  return static_cast<float>(std::max(-peak.lowest, +peak.highest)) / kFullScale;
}

/// None if the file cannot be read.
std::optional<Peaks> Read(peaks::PeakSource& source, const host::SessionRegion& region,
                          std::size_t points, std::int64_t samplesPerPeak) {
  const std::int64_t most = std::max<std::int64_t>(samplesPerPeak / source.Channels(), 16);
  Peaks peaks;
  for (std::size_t i = 0; i < points; ++i) {
    const std::int64_t from = EdgeOf(region, i, points);
    const std::optional<float> peak =
        Loudest(source, from, std::min(EdgeOf(region, i + 1, points) - from, most));
    if (!peak) return std::nullopt;
    peaks.push_back(*peak);
  }
  return peaks;
}

}  // namespace

AllPeaks PeaksOf(const std::vector<host::SessionRegion>& regions, std::size_t points,
                 const std::function<bool()>& goOn) {
  const std::vector<std::size_t> shares = Shares(regions, points);
  std::size_t total = 0;
  std::map<std::string, std::vector<std::size_t>> byPath;
  for (std::size_t i = 0; i < regions.size(); ++i) {
    total += shares[i];
    byPath[regions[i].path].push_back(i);
  }
  const std::int64_t samplesPerPeak =
      kMostSamples / static_cast<std::int64_t>(std::max<std::size_t>(total, 1));
  const Clock::time_point deadline = Clock::now() + kMostTime;
  AllPeaks all;
  all.byRegion.resize(regions.size());
  for (const auto& [path, users] : byPath) {
    std::unique_ptr<peaks::PeakSource> source = peaks::PeakSource::Open(path);
    // An error that passes does not cost the picture. One that stays is told by the check.
    if (source == nullptr) source = peaks::PeakSource::Open(path);
    if (source == nullptr) continue;
    for (const std::size_t region : users) {
      if (Clock::now() > deadline || (goOn && !goOn())) return all;
      std::optional<Peaks> peaks = Read(*source, regions[region], shares[region], samplesPerPeak);
      if (!peaks) {
        all.unread.push_back(path);
        break;
      }
      all.byRegion[region] = std::move(*peaks);
    }
  }
  return all;
}

}  // namespace velmora::report
