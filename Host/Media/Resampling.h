#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace velmora::media {

/// `frames` at one rate as frames at another, to the nearest, halves up.
[[nodiscard]] std::int64_t FramesAtRate(std::int64_t frames, std::int32_t rate,
                                        std::int32_t otherRate);

/// Changes the sample rate of a stream of interleaved frames by libsoxr at its highest quality.
/// Output frame 0 stands at the time of input frame 0.
class Resampler {
 public:
  /// Null if libsoxr refuses; then `trouble` says why.
  [[nodiscard]] static std::unique_ptr<Resampler> Create(std::int32_t rate, std::int32_t otherRate,
                                                         std::int32_t channels,
                                                         std::string& trouble);
  ~Resampler();
  Resampler(const Resampler&) = delete;
  Resampler& operator=(const Resampler&) = delete;

  /// Takes frames in, and replaces `out` by those that come out. No frames in: the end, after which
  /// it is to be called until nothing comes out. False after an error.
  [[nodiscard]] bool Process(std::span<const double> in, std::vector<double>& out);

 private:
  struct Engine;
  explicit Resampler(std::unique_ptr<Engine> engine);
  std::unique_ptr<Engine> engine_;
};

}  // namespace velmora::media
