#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Bounce/BounceKind.h"
#include "Session/HeardSession.h"
#include "Session/SessionTarget.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::bounce {

using host::BounceDepth;
using host::RegionOrigin;
using host::RegionShape;
using host::Session;
using host::SessionRegion;
using host::TargetOutcome;

/// A wave file of a test, with its samples as fractions of full scale.
struct TestSource {
  std::string path;
  std::size_t channels = 1;
  std::vector<double> samples;  ///< interleaved

  [[nodiscard]] std::int64_t Frames() const {
    return static_cast<std::int64_t>(samples.size() / channels);
  }
};

struct SourceForm {
  std::uint16_t bits = 24;  ///< 8 (unsigned), 16, 24, 32, or floats of 32 and 64 with isFloat
  std::uint16_t channels = 1;
  bool isFloat = false;
  std::uint32_t rate = 48000;
};

/// A chunk of a written file, as its bytes tell it.
struct WaveFile {
  std::string form;                         ///< RIFF or RF64
  std::map<std::string, std::string> body;  ///< by identifier, but of data
  std::vector<std::string> order;           ///< of the identifiers
  std::uint64_t riffBytes = 0;              ///< as the header claims it
  std::uint64_t dataBytes = 0;              ///< as the header claims it
  std::size_t dataAt = 0;                   ///< where the first sample stands
};

inline std::uint64_t NumberAt(const std::string& bytes, std::size_t at, std::size_t count) {
  std::uint64_t value = 0;
  for (std::size_t i = count; i-- > 0;) {
    value = value << 8 | static_cast<unsigned char>(bytes.at(at + i));
  }
  return value;
}

/// Walks the chunks up to the data, by RIFF and EBU Tech 3306, and fails the test where they are
/// not in order.
inline WaveFile ParseWave(const std::string& bytes) {
  WaveFile wave;
  wave.form = bytes.substr(0, 4);
  const bool isLong = wave.form == "RF64";
  EXPECT_TRUE(isLong || wave.form == "RIFF");
  EXPECT_EQ(bytes.substr(8, 4), "WAVE");
  wave.riffBytes = NumberAt(bytes, 4, 4);
  for (std::size_t at = 12; at + 8 <= bytes.size();) {
    const std::string identifier = bytes.substr(at, 4);
    const std::uint64_t size = NumberAt(bytes, at + 4, 4);
    wave.order.push_back(identifier);
    if (identifier == "data") {
      wave.dataBytes = size;
      wave.dataAt = at + 8;
      break;
    }
    EXPECT_EQ(size % 2, 0u) << identifier;
    wave.body[identifier] = bytes.substr(at + 8, size);
    at += 8 + size;
  }
  if (isLong) {
    EXPECT_EQ(wave.riffBytes, 0xFFFFFFFFu);
    EXPECT_EQ(wave.dataBytes, 0xFFFFFFFFu);
    wave.riffBytes = NumberAt(wave.body["ds64"], 0, 8);
    wave.dataBytes = NumberAt(wave.body["ds64"], 8, 8);
  }
  return wave;
}

/// One session and what is bounced of it.
class BounceFixture : public testing::Test {
 public:
  BounceFixture() { record_.title = "Storm"; }

  /// A file full of seeded noise that reaches full scale.
  TestSource MakeSource(const std::string& name, const SourceForm& form, std::int64_t frames) {
    std::vector<double> samples(static_cast<std::size_t>(frames) * form.channels);
    const double scale = std::ldexp(1.0, form.isFloat ? 23 : form.bits - 1);
    for (double& sample : samples) {
      seed_ = seed_ * 6364136223846793005u + 1442695040888963407u;
      const double noise = static_cast<double>(seed_ >> 11) * 0x1p-53;  // 0 to 1
      sample = std::floor((noise * 2 - 1) * scale) / scale;
    }
    return MakeSource(name, form, std::move(samples));
  }

  TestSource MakeSource(const std::string& name, const SourceForm& form,
                        std::vector<double> samples) {
    test::LittleEndian data;
    for (const double sample : samples) AppendSample(data, form, sample);
    const std::uint16_t frameBytes = static_cast<std::uint16_t>(form.bits / 8 * form.channels);
    test::LittleEndian file;
    file.Text("RIFF").U32(static_cast<std::uint32_t>(36 + data.bytes.size())).Text("WAVEfmt ");
    file.U32(16).U16(form.isFloat ? 3 : 1).U16(form.channels).U32(form.rate);
    file.U32(form.rate * frameBytes).U16(frameBytes).U16(form.bits);
    file.Text("data").U32(static_cast<std::uint32_t>(data.bytes.size())).Text(data.bytes);
    return {folder_.Write(name, file.bytes), form.channels, std::move(samples)};
  }

  /// A region of `length` samples from `start` in the file on.
  void Place(std::int64_t track, std::int64_t position, const TestSource& source,
             std::int64_t start, std::int64_t length, const RegionShape& shape = {},
             const char* name = "name") {
    Place({track, position, start, start + length, 1, source.path, name, shape, {}});
    sources_[source.path] = source;
  }
  std::size_t Place(const SessionRegion& region) { return session_.Place(region); }

  [[nodiscard]] TargetOutcome Write(host::SessionTarget& target,
                                    const host::TargetProgress& progress = {}) const {
    const host::HeardSession heard(session_);
    return target.Write({session_, heard, rates_, record_}, progress);
  }
  /// To a new file or folder, which must go well.
  [[nodiscard]] TargetOutcome Bounce(const host::TargetKind& kind, const std::string& path,
                                     BounceDepth depth,
                                     const host::TargetProgress& progress = {}) const {
    host::ClaimedTarget claimed = kind.claim(path, {false, depth});
    EXPECT_EQ(claimed.complaint, "");
    if (claimed.target == nullptr) return {claimed.complaint, {}, {}};
    return Write(*claimed.target, progress);
  }

  /// The track as the law has it, sample by sample, interleaved, in the target's unit before
  /// rounding.
  [[nodiscard]] std::vector<double> Law(std::int64_t track, std::size_t width) const {
    const host::SessionSummary span = session_.Summary();
    std::vector<double> heard;
    for (std::int64_t t = span.first; t < span.end; ++t) {
      for (std::size_t channel = 0; channel < width; ++channel) {
        heard.push_back(LawAt(track, t, channel));
      }
    }
    return heard;
  }

  [[nodiscard]] std::size_t Width(std::int64_t track) const {
    std::size_t width = 1;
    for (const SessionRegion& region : session_.Regions()) {
      if (region.track == track) width = std::max(width, sources_.at(region.path).channels);
    }
    return width;
  }

  /// The bytes of samples at a depth.
  static std::string Packed(const std::vector<double>& samples, BounceDepth depth) {
    test::LittleEndian bytes;
    for (const double sample : samples) {
      if (depth == BounceDepth::Float32) {
        AppendSample(bytes, {32, 1, true}, sample);
        continue;
      }
      const int bits = depth == BounceDepth::Bits16 ? 16 : 24;
      const double most = std::ldexp(1.0, bits - 1);
      const double rounded = std::nearbyint(sample * most);
      const auto value = static_cast<std::int64_t>(std::max(-most, std::min(rounded, most - 1)));
      bytes.Number(static_cast<std::uint64_t>(value), static_cast<std::size_t>(bits / 8));
    }
    return bytes.bytes;
  }

  /// The audio of the whole session by the law, all tracks side by side.
  [[nodiscard]] std::string Expected(BounceDepth depth) const {
    std::vector<std::vector<double>> tracks;
    std::vector<std::size_t> widths;
    for (const std::int64_t track : session_.Tracks()) {
      widths.push_back(Width(track));
      tracks.push_back(Law(track, widths.back()));
    }
    std::vector<double> interleaved;
    const host::SessionSummary span = session_.Summary();
    for (std::size_t frame = 0; frame < static_cast<std::size_t>(span.end - span.first); ++frame) {
      for (std::size_t i = 0; i < tracks.size(); ++i) {
        const auto from = tracks[i].begin() + static_cast<std::ptrdiff_t>(frame * widths[i]);
        interleaved.insert(interleaved.end(), from, from + static_cast<std::ptrdiff_t>(widths[i]));
      }
    }
    return Packed(interleaved, depth);
  }

  /// The audio of a written file.
  static std::string AudioOf(const std::string& path) {
    const std::string bytes = test::TemporaryFolder::Read(path);
    const WaveFile wave = ParseWave(bytes);
    EXPECT_EQ(wave.riffBytes + 8, bytes.size());
    EXPECT_EQ(bytes.size(), wave.dataAt + wave.dataBytes + wave.dataBytes % 2);
    return bytes.substr(wave.dataAt, wave.dataBytes);
  }

  [[nodiscard]] std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
      names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 protected:
  test::TemporaryFolder folder_;
  Session session_;
  SessionRates rates_ = {48000, 0};
  host::SpotRecord record_;

 private:
  static void AppendSample(test::LittleEndian& out, const SourceForm& form, double sample) {
    if (form.isFloat && form.bits == 32) {
      const auto value = static_cast<float>(sample);
      std::uint32_t bits = 0;
      std::memcpy(&bits, &value, sizeof bits);
      out.U32(bits);
    } else if (form.isFloat) {
      std::uint64_t bits = 0;
      std::memcpy(&bits, &sample, sizeof bits);
      out.Number(bits, 8);
    } else {
      const auto value = static_cast<std::int64_t>(std::ldexp(sample, form.bits - 1));
      out.Number(static_cast<std::uint64_t>(form.bits == 8 ? value + 128 : value), form.bits / 8u);
    }
  }

  /// What every region of the track that reaches to `t` makes of what lies under it, the earliest
  /// first.
  [[nodiscard]] double LawAt(std::int64_t track, std::int64_t t, std::size_t channel) const {
    double under = 0;
    const std::vector<SessionRegion>& regions = session_.Regions();
    for (std::size_t i = 0; i < regions.size(); ++i) {
      const SessionRegion& region = regions[i];
      const std::int64_t at = t - region.position;
      if (region.track != track || at < 0 || at >= region.Length()) continue;
      const TestSource& source = sources_.at(region.path);
      const std::int64_t frame = region.start + at;
      double x = 0;
      if (frame >= 0 && frame < source.Frames()) {
        x = source.samples[static_cast<std::size_t>(frame) * source.channels +
                           channel % source.channels];
      }
      const auto [fadeIn, fadeOut] = Fades(i);
      double a = 1, n = 1;
      if (at < fadeIn) {
        a = static_cast<double>(at);
        n = static_cast<double>(fadeIn);
      } else if (region.Length() - at <= fadeOut) {
        a = static_cast<double>(region.Length() - at);
        n = static_cast<double>(fadeOut);
      }
      const double gain = std::pow(10.0, region.shape.gainDb / 20.0);
      under = (x * gain * a + under * (n - a)) / n;
    }
    return under;
  }

  [[nodiscard]] std::pair<std::int64_t, std::int64_t> CutFades(const SessionRegion& region) const {
    const std::int64_t fadeIn = std::min(region.shape.fadeIn, region.Length());
    return {fadeIn, std::min(region.shape.fadeOut, region.Length() - fadeIn)};
  }

  [[nodiscard]] std::pair<std::int64_t, std::int64_t> Fades(std::size_t index) const {
    const std::vector<SessionRegion>& regions = session_.Regions();
    auto [fadeIn, fadeOut] = CutFades(regions[index]);
    for (std::size_t later = index + 1; later < regions.size(); ++later) {
      const std::int64_t over = CutFades(regions[later]).first;
      if (regions[later].track == regions[index].track && over >= fadeOut && over > 0 &&
          regions[later].position + over == regions[index].End()) {
        fadeOut = 0;
      }
    }
    return {fadeIn, fadeOut};
  }

  std::map<std::string, TestSource> sources_;
  std::uint64_t seed_ = 7;
};

}  // namespace velmora::bounce
