// What is told of a plain wave file without its readers is what the readers tell.

#include "Media/PlainWave.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "Media/FactsOfSound.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::media {

void PrintTo(const AudioFacts& facts, std::ostream* out) {
  *out << NameOf(facts.kind) << ' ' << facts.format << ' ' << facts.sampleRate << " Hz "
       << facts.channels << " x " << facts.bitsPerSample << ' ' << facts.frames << " frames "
       << facts.timeReference.value_or(-1) << ' ' << facts.originatorReference;
}

namespace {

std::vector<std::int32_t> Noise(std::size_t count) {
  std::mt19937 random(5);
  std::vector<std::int32_t> samples(count);
  for (std::int32_t& sample : samples) sample = static_cast<std::int32_t>(random());
  return samples;
}

/// `between` is a chunk before the audio, `last` one after it.
std::string WaveOf(const test::WaveFormat& format, std::size_t frames, bool bext = false,
                   const std::string& between = {}, const std::string& last = {}) {
  test::WaveBytes wave;
  if (bext)
    wave.Bext({.reference = "USID 7", .timeLow = 48000, .timeHigh = 1, .history = "A=PCM\n"});
  wave.Format(format);
  if (!between.empty()) wave.Chunk(between, std::string(40, 'x'));
  wave.Data(test::PcmBytes(format.bits, Noise(frames * format.channels)));
  if (!last.empty()) wave.Chunk(last, std::string(12, 'y'));
  return wave.Bytes();
}

class PlainWave : public testing::Test {
 protected:
  std::optional<AudioFacts> Plain(const std::string& bytes) {
    path_ = folder_.Write("x.wav", bytes);
    const FileStream stream = OpenRegularFile(path_.c_str());
    return FactsOfPlainWave(stream.get());
  }

  /// Whether it is plain. Then the readers agree on it.
  bool Hold(const std::string& bytes) {
    const std::optional<AudioFacts> plain = Plain(bytes);
    if (!plain) return false;
    const ComparedFacts read = ReadAndCompare(path_, nullptr);
    EXPECT_EQ(read.obstacle, Obstacle::None) << testing::PrintToString(*plain);
    EXPECT_TRUE(read.read.facts.has_value()) << read.read.trouble;
    if (read.read.facts) {
      EXPECT_EQ(testing::PrintToString(*plain), testing::PrintToString(*read.read.facts));
    }
    return true;
  }

  test::TemporaryFolder folder_;
  std::string path_;
};

TEST_F(PlainWave, isWhatTheFieldRecords) {
  for (const std::uint16_t bits : {std::uint16_t{16}, std::uint16_t{24}, std::uint16_t{32}}) {
    for (const std::uint16_t channels : {std::uint16_t{1}, std::uint16_t{2}, std::uint16_t{8}}) {
      for (const std::uint32_t rate : {44100U, 48000U, 96000U, 192000U}) {
        for (const bool bext : {false, true}) {
          const test::WaveFormat format{.sampleRate = rate, .channels = channels, .bits = bits};
          EXPECT_TRUE(Hold(WaveOf(format, 2, bext)));
          EXPECT_TRUE(Hold(WaveOf(format, 100, bext, "JUNK")));
          EXPECT_TRUE(Hold(WaveOf(format, 7000, bext, "junk", "iXML")));
        }
      }
    }
  }
}

TEST_F(PlainWave, isNothingThatIsReadInSeveralWays) {
  const std::string good = WaveOf({}, 100);
  ASSERT_TRUE(Plain(good));
  EXPECT_FALSE(Plain(WaveOf({.formatTag = 3}, 100))) << "float";
  EXPECT_FALSE(Plain(WaveOf({.bits = 8}, 100)));
  EXPECT_FALSE(Plain(WaveOf({.bits = 16, .blockAlign = std::uint16_t{4}}, 100))) << "wider";
  EXPECT_FALSE(Plain(WaveOf({}, 0))) << "empty";
  EXPECT_FALSE(Plain(WaveOf({}, 100, false, "LIST"))) << "a chunk that is looked into";
  EXPECT_FALSE(Plain(WaveOf({}, 100, false, "data"))) << "two data chunks";
  EXPECT_FALSE(Plain(good + "x")) << "something after the end";
  EXPECT_FALSE(Plain(good.substr(0, good.size() - 2))) << "cut short";
  EXPECT_FALSE(Plain(good.substr(0, 30)));
  EXPECT_FALSE(Plain("RF64" + good.substr(4)));
  EXPECT_FALSE(Plain(test::WaveBytes().Data(std::string(100, 'x')).Bytes())) << "no fmt";
}

/// Every byte of a header is each of some values once: what is still plain the readers read alike.
TEST_F(PlainWave, isReadAlikeWhateverItsHeaderSays) {
  constexpr std::array<unsigned char, 6> kValues = {0, 1, 2, 16, 24, 0xFF};
  std::size_t plain = 0;
  std::size_t all = 0;
  for (const bool bext : {false, true}) {
    const std::string good = WaveOf({.channels = 2, .bits = 24}, 60, bext, "JUNK", "iXML");
    const std::size_t header = good.size() - 60 * 6;
    for (std::size_t at = 0; at < header; ++at) {
      if (bext && at > 40 && at < 350) continue;  // texts
      for (const unsigned char value : kValues) {
        std::string bytes = good;
        bytes[at] = static_cast<char>(value);
        const testing::ScopedTrace trace(
            __FILE__, __LINE__, "byte " + std::to_string(at) + " is " + std::to_string(value));
        plain += Hold(bytes) ? 1 : 0;
        ++all;
      }
    }
  }
  EXPECT_GT(plain, 100U);
  EXPECT_LT(plain, all);
}

}  // namespace
}  // namespace velmora::media
