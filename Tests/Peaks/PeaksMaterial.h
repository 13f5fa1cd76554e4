#pragma once

#include <gtest/gtest.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "Peaks/Peak.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::peaks {

inline void PrintTo(const Peak& peak, std::ostream* out) {
  *out << '[' << peak.lowest << ' ' << peak.highest << ']';
}

inline std::vector<double> Noise(std::size_t samples, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> any(-1, 1);
  std::vector<double> noise(samples);
  for (double& sample : noise) sample = any(random) * any(random);
  return noise;
}

/// Writes interleaved fractions by libsndfile. False if it does not know the format.
inline bool WriteSound(const std::string& path, int format, int channels,
                       const std::vector<double>& samples) {
  SF_INFO info{};
  info.samplerate = 48000;
  info.channels = channels;
  info.format = format;
  SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &info);
  if (file == nullptr) return false;
  const auto frames = static_cast<sf_count_t>(samples.size()) / channels;
  EXPECT_EQ(sf_writef_double(file, samples.data(), frames), frames);
  return sf_close(file) == 0;
}

/// A mono wave file of 16 bits.
inline std::string WriteWave(const test::TemporaryFolder& folder, const std::string& name,
                             const std::vector<std::int32_t>& samples) {
  return folder.Write(name, test::PlainWave(test::WaveFormat(), samples));
}

/// A mono wave file of 16 bits with so many silent frames: a hole in the file.
inline std::string WriteSilence(const test::TemporaryFolder& folder, const std::string& name,
                                std::uint32_t frames) {
  const std::string path =
      folder.Write(name, test::WaveBytes().Format({}).Claim("data", frames * 2).Bytes());
  std::filesystem::resize_file(path, test::kPlainDataOffset + std::uint64_t{frames} * 2);
  return path;
}

/// The slow and literal way: the whole file, one sample after the other.
class Literal {
 public:
  explicit Literal(const std::string& path) {
    SF_INFO info{};
    SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
    if (file == nullptr) {
      ADD_FAILURE() << path;
      return;
    }
    channels_ = info.channels;
    samples_.resize(static_cast<std::size_t>(info.frames * info.channels));
    frames_ = sf_readf_double(file, samples_.data(), info.frames);
    sf_close(file);
  }

  std::int64_t Frames() const { return frames_; }

  Peak Over(std::int64_t from, std::int64_t to) const {
    Peak peak;
    for (std::int64_t i = from * channels_; i < std::min(to, frames_) * channels_; ++i) {
      const double sample = samples_[static_cast<std::size_t>(i)];
      if (std::isnan(sample)) continue;
      const auto value =
          static_cast<std::int16_t>(std::clamp(std::floor(sample * 32768), -32768.0, 32767.0));
      peak.Add({value, value});
    }
    return peak;
  }

  std::vector<Peak> Stretches(std::int64_t first, std::int64_t end, std::int64_t stretch) const {
    std::vector<Peak> peaks;
    for (end = std::min(end, frames_); first < end; first += stretch) {
      peaks.push_back(Over(first, std::min(first + stretch, end)));
    }
    return peaks;
  }

 private:
  std::int64_t frames_ = 0;
  std::int64_t channels_ = 1;
  std::vector<double> samples_;
};

}  // namespace velmora::peaks
