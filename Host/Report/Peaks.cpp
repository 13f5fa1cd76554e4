#include "Report/Peaks.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <memory>
#include <utility>

#include "Media/SoundFile.h"

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

/// Reads peaks out of one file.
class PeakReader {
 public:
  explicit PeakReader(const std::string& path) {
    std::string trouble;
    file_ = media::SoundFile::Open(path, trouble);
    if (file_ != nullptr && file_->Info().seekable == 0) file_.reset();
  }

  [[nodiscard]] Peaks Read(const host::SessionRegion& region, std::size_t points,
                           std::int64_t samplesPerPeak) {
    if (file_ == nullptr || points == 0) return {};
    const std::int64_t channels = file_->Info().channels;
    const std::int64_t most = std::max<std::int64_t>(samplesPerPeak / channels, 16);
    Peaks peaks;
    for (std::size_t i = 0; i < points; ++i) {
      const std::int64_t from = EdgeOf(region, i, points);
      const std::int64_t to = EdgeOf(region, i + 1, points);
      peaks.push_back(Loudest(from, std::min(to - from, most)));
    }
    return peaks;
  }

 private:
  /// Lengths are 32-bit numbers, so that nothing overflows.
  static std::int64_t EdgeOf(const host::SessionRegion& region, std::size_t i, std::size_t points) {
    return region.start +
           region.Length() * static_cast<std::int64_t>(i) / static_cast<std::int64_t>(points);
  }

  float Loudest(std::int64_t from, std::int64_t count) {
    count = std::min(count, file_->Info().frames - from);
    if (from < 0 || count <= 0 || sf_seek(file_->Handle(), from, SEEK_SET) != from) return 0;
    block_.resize(static_cast<std::size_t>(count * file_->Info().channels));
    const sf_count_t got = sf_readf_float(file_->Handle(), block_.data(), count);
    float peak = 0;
    const auto samples = static_cast<std::size_t>(std::max<sf_count_t>(got, 0)) *
                         static_cast<std::size_t>(file_->Info().channels);
    for (std::size_t i = 0; i < samples; ++i) {
      const float size = std::fabs(block_[i]);
      if (size > peak) peak = size;  // a sample that is no number is passed over
    }
    return std::min(peak, 1.0F);
  }

  std::unique_ptr<media::SoundFile> file_;
  std::vector<float> block_;
};

}  // namespace

std::vector<Peaks> PeaksOf(const std::vector<host::SessionRegion>& regions, std::size_t points,
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
  std::vector<Peaks> peaks(regions.size());
  for (const auto& [path, users] : byPath) {
    PeakReader reader(path);
    for (const std::size_t region : users) {
      if (Clock::now() > deadline || (goOn && !goOn())) return peaks;
      peaks[region] = reader.Read(regions[region], shares[region], samplesPerPeak);
    }
  }
  return peaks;
}

}  // namespace velmora::report
