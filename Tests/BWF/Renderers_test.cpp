#include "BWF/Renderers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "ADL/AES31Event.h"
#include "BWF/AES31BWF.h"
#include "BwfReference.h"
#include "Spot/EventFiles.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"
#include "SystemConditions.h"

namespace velmora::test {
namespace {

using Ints = std::vector<std::int32_t>;
constexpr std::int32_t kMostNegative = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kOne = 0x7FFFFFFF;  // decodes as exactly 1.0

class Renderer : public testing::Test {
 protected:
  std::string Source(const WaveFormat& format, const Ints& samples) {
    return folder.Write("source.wav", PlainWave(format, samples));
  }
  std::string TargetBytes() const { return TemporaryFolder::Read(target); }
  Ints TargetSamples(std::int32_t bits) const {
    return PcmSamples(bits, TargetBytes(), kHeaderBytes);
  }
  // What a caller may count on: closed, valid, readable, and on disk after it is gone.
  void ExpectUsable(std::unique_ptr<AES31BWF> file) {
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(file->IsValid());
    EXPECT_EQ(file->stream, nullptr);
    EXPECT_EQ(file->GetPath(), target);
    EXPECT_FALSE(file->WriteFailed());
    if (file->GetFrames() > 0) {
      const auto bits = static_cast<std::int32_t>(file->GetBitsPerSample());
      EXPECT_EQ(file->GetSampleAt(0, 0), Decoded(TargetSamples(bits).at(0), bits));
    }
    file.reset();
    EXPECT_TRUE(std::filesystem::exists(target));
  }

  TemporaryFolder folder;
  const std::string target = folder.Path("target.wav");
};

class GainRenderer : public Renderer {
 protected:
  std::unique_ptr<AES31BWF> Render(AES31BWF* source, double gainDb, bool present = true) {
    AES31Event event{};
    event.sourceFile = source;
    event.gain.present = present;
    event.gain.gainDb = gainDb;
    return RenderGainFile(event, target.c_str());
  }
};

TEST_F(GainRenderer, zeroDecibelsStillTakeTheFloatRoad) {
  AES31BWF source(Source({.channels = 2}, {32767, -32768, 1, 100}).c_str());
  ExpectUsable(Render(&source, 0.0));
  EXPECT_EQ(source.stream, nullptr);
  EXPECT_EQ(TargetBytes(), WrittenHeader(48000, 2, 16, 2) + PcmBytes(16, {32766, -32767, 0, 99}));
}

TEST_F(GainRenderer, minusSixDecibelsInDoubles) {
  AES31BWF source(Source({.bits = 24}, {6404384, 7413043, 4342220, -6404384}).c_str());
  ExpectUsable(Render(&source, -6.0));
  // The factor 0.5011872336272722; as a float it would give 3209794, 3715321 and 2176265.
  EXPECT_EQ(TargetSamples(24), (Ints{3209795, 3715322, 2176265, -3209795}));
}

TEST_F(GainRenderer, twentyDecibelsAreTenfoldAndWrap) {
  AES31BWF source(Source({}, {1000, 3276, 3277, -4000, 20000}).c_str());
  ExpectUsable(Render(&source, 20.0));
  EXPECT_EQ(TargetSamples(16), (Ints{9999, 32759, 32769 - 65536, 65536 - 39998, 199993 - 196608}));
}

TEST_F(GainRenderer, absurdLevelsAreSilenceOrTheMostNegative) {
  AES31BWF source(Source({.bits = 32}, {0x40000000, 0, -0x40000000}).c_str());
  ExpectUsable(Render(&source, -1e6));
  EXPECT_EQ(TargetSamples(32), (Ints{0, 0, 0}));
  ExpectUsable(Render(&source, 400.0));
  EXPECT_EQ(TargetSamples(32), (Ints{kMostNegative, 0, kMostNegative}));
  ExpectUsable(Render(&source, 1e6));
  EXPECT_EQ(TargetSamples(32), (Ints{kMostNegative, kMostNegative, kMostNegative}));
}

TEST_F(GainRenderer, takesTheWholeSourceWhereverItsStreamStands) {
  AES31BWF source(Source({.sampleRate = 44100}, {0x1000, 0x2000, 0x4000}).c_str());
  source.GetSampleAt(2, 0);
  ExpectUsable(Render(&source, 0.0));
  EXPECT_EQ(TargetBytes(), WrittenHeader(44100, 1, 16, 3) + PcmBytes(16, {0x0FFF, 0x1FFF, 0x3FFF}));
}

TEST_F(GainRenderer, longFileComesWhole) {
  Ints samples;
  Ints expected;
  for (std::int32_t i = 0; i < 50001; ++i) {
    samples.push_back(i - 25000);
    expected.push_back(Encoded(
        static_cast<float>(static_cast<double>(Decoded(i - 25000, 16)) * 0.5011872336272722), 16));
  }
  AES31BWF source(Source({.channels = 3}, samples).c_str());
  ExpectUsable(Render(&source, -6.0));
  EXPECT_TRUE(TargetBytes() == WrittenHeader(48000, 3, 16, 16667) + PcmBytes(16, expected));
}

TEST_F(GainRenderer, givesNullAndNoFileWithoutGainOrSource) {
  AES31BWF source(Source({}, {1, 2}).c_str());
  AES31BWF invalid(folder.Write("text.wav", "text").c_str());
  EXPECT_EQ(Render(&source, -6.0, false), nullptr);
  EXPECT_EQ(Render(nullptr, -6.0, false), nullptr);
  EXPECT_EQ(Render(nullptr, -6.0), nullptr);
  EXPECT_EQ(Render(&invalid, -6.0), nullptr);
  EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(GainRenderer, sourceThatVanishedGivesNull) {
  const std::string path = Source({}, {1, 2});
  AES31BWF source(path.c_str());
  std::filesystem::remove(path);
  EXPECT_EQ(Render(&source, -6.0), nullptr);
}

class FadeRenderer : public Renderer {};

TEST_F(FadeRenderer, rampsOfTwoFrames) {
  AES31BWF source(Source({.bits = 32}, {kOne, kOne}).c_str());
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 2, true, 0));
  EXPECT_EQ(TargetSamples(32), (Ints{0, 0x40000000})) << "factors 0.0 and 0.5";
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 2, false, 0));
  EXPECT_EQ(TargetSamples(32), (Ints{kMostNegative, 0x40000000})) << "factors 1.0 and 0.5";
  EXPECT_EQ(source.stream, nullptr);
}

TEST_F(FadeRenderer, rampsOfFourFramesNeverReachTheOtherEnd) {
  const std::int32_t half = 0x40000000;
  AES31BWF source(
      Source({.channels = 2, .bits = 32}, {half, -half, half, -half, half, -half, half, -half})
          .c_str());
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 4, true, 0));
  const std::int32_t q = half / 4;
  EXPECT_EQ(TargetBytes(), WrittenHeader(48000, 2, 32, 4) +
                               PcmBytes(32, {0, 0, q, -q, 2 * q, -2 * q, 3 * q, -3 * q}));
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 4, false, 0));
  EXPECT_EQ(TargetSamples(32), (Ints{half, -half, 3 * q, -3 * q, 2 * q, -2 * q, q, -q}));
}

TEST_F(FadeRenderer, factorsAreTheIndexTimesTheStepInDoubles) {
  // Frame 147 of 196: 147 * (1 / 196) lies one double below 3/4, and tips this sample's rounding.
  // From 147 / 196 it would come out as 1021715072, and from float factors elsewhere again.
  AES31BWF rising(Source({.bits = 32}, Ints(196, 0x5132D880)).c_str());
  ExpectUsable(RenderFadeFile(target.c_str(), &rising, 196, true, 0));
  EXPECT_EQ(TargetSamples(32).at(147), 1021715008);
  // Frame 49 falling: (196 - 49) * (1 / 196), where 1 - 49 * (1 / 196) would give 1347595264.
  AES31BWF falling(Source({.bits = 32}, Ints(196, 0x6B18E500)).c_str());
  ExpectUsable(RenderFadeFile(target.c_str(), &falling, 196, false, 0));
  EXPECT_EQ(TargetSamples(32).at(49), 1347595136);
}

TEST_F(FadeRenderer, factorsAreNoFloats) {
  // With float factors 2/7 and 5/7 these would be one higher: 1420666 and 3971424.
  AES31BWF source(Source({.bits = 24}, {0, 0, 4972331, 0, 0, 5559994, 0}).c_str());
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 7, true, 0));
  EXPECT_EQ(TargetSamples(24), (Ints{0, 0, 1420665, 0, 0, 3971423, 0}));
}

TEST_F(FadeRenderer, everyFactorOfManyLengths) {
  std::mt19937 random(3);
  Ints samples(1500);
  for (std::int32_t& sample : samples) sample = static_cast<std::int32_t>(random());
  AES31BWF source(Source({.bits = 32}, samples).c_str());
  for (const std::int64_t length : {1, 3, 7, 10, 49, 196, 480, 1000, 1499}) {
    for (const bool rising : {true, false}) {
      SCOPED_TRACE(testing::Message() << length << (rising ? " rising" : " falling"));
      Ints expected;
      const double step = 1.0 / static_cast<double>(length);
      for (std::int64_t i = 0; i < length; ++i) {
        const double factor = static_cast<double>(rising ? i : length - i) * step;
        const double value = static_cast<double>(Decoded(samples[static_cast<std::size_t>(i)], 32));
        expected.push_back(Encoded(static_cast<float>(value * factor), 32));
      }
      ExpectUsable(RenderFadeFile(target.c_str(), &source, length, rising, 0));
      EXPECT_EQ(TargetSamples(32), expected);
    }
  }
}

TEST_F(FadeRenderer, lengthOfZeroMakesAnEmptyFileAndReadsNothing) {
  const std::string path = Source({.sampleRate = 44100, .channels = 2, .bits = 24}, {1, 2});
  AES31BWF source(path.c_str());
  std::filesystem::remove(path);  // a read would have to open it
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 0, true, 0));
  EXPECT_EQ(TargetBytes(), WrittenHeader(44100, 2, 24, 0));
  EXPECT_EQ(source.stream, nullptr);
}

TEST_F(FadeRenderer, keepsRateChannelsAndDepthOfTheSource) {
  for (const WaveFormat& format : {WaveFormat{.sampleRate = 8000, .channels = 3, .bits = 8},
                                   WaveFormat{.sampleRate = 96000, .channels = 2, .bits = 24},
                                   WaveFormat{.sampleRate = 48000, .channels = 1, .bits = 16}}) {
    AES31BWF source(Source(format, Ints(12, 64)).c_str());
    ExpectUsable(RenderFadeFile(target.c_str(), &source, 2, true, 1));
    EXPECT_EQ(TargetBytes().substr(0, kHeaderBytes),
              WrittenHeader(format.sampleRate, format.channels, format.bits, 2));
    EXPECT_EQ(TargetBytes().size(), kHeaderBytes + 2U * format.channels * (format.bits / 8U));
  }
}

TEST_F(FadeRenderer, startsAtTheFirstFrameAndIsSilentBehindTheSource) {
  AES31BWF source(Source({.bits = 32}, {kOne, 0x10000000, 0x20000000, 0x40000000}).c_str());
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 8, false, 2));
  EXPECT_EQ(TargetSamples(32), (Ints{0x20000000, 0x38000000, 0, 0, 0, 0, 0, 0}));
}

TEST_F(FadeRenderer, framesBeforeTheSourceAreSilent) {
  AES31BWF source(Source({.bits = 32}, {0x40000000, 0x20000000}).c_str());
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 4, false, -2));
  EXPECT_EQ(TargetSamples(32), (Ints{0, 0, 0x20000000, 0x08000000}));
}

TEST_F(FadeRenderer, frameIsTakenAsItsLow32Bits) {
  AES31BWF source(Source({.bits = 32}, {0x40000000, 0x20000000, 0x10000000}).c_str());
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 2, false, (std::int64_t{1} << 32) + 1));
  EXPECT_EQ(TargetSamples(32), (Ints{0x20000000, 0x08000000}));
  // From the last number of 64 bits on: frame -1, then the sum wraps to frames 0 and 1.
  ExpectUsable(
      RenderFadeFile(target.c_str(), &source, 4, false, std::numeric_limits<std::int64_t>::max()));
  EXPECT_EQ(TargetSamples(32), (Ints{0, 0x30000000, 0x10000000, 0x04000000}));
}

TEST_F(FadeRenderer, sourceThatStandsOpenIsReadWithItsStalePosition) {
  // Sixteenths of full scale as values. After frames 0 and 5, position says 2 and the stream 6.
  Ints samples;
  for (std::int32_t i = 0; i < 10; ++i) samples.push_back(i << 27);
  AES31BWF source(Source({.bits = 32}, samples).c_str());
  source.GetSampleAt(0, 0);
  source.GetSampleAt(5, 0);
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 2, false, 2));
  EXPECT_EQ(TargetSamples(32), (Ints{6 << 27, (7 << 27) / 2}));
  EXPECT_EQ(source.stream, nullptr);
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 2, false, 2));
  EXPECT_EQ(TargetSamples(32), (Ints{2 << 27, (3 << 27) / 2})) << "it was closed in between";
}

TEST_F(FadeRenderer, otherFormatTagFadesToSilence) {
  AES31BWF source(folder
                      .Write("source.wav", WaveBytes()
                                               .Format({.bits = 16})
                                               .Format({.bits = 16, .formatTag = 3})
                                               .Data(std::string(8, '\x40'))
                                               .Bytes())
                      .c_str());
  ExpectUsable(RenderFadeFile(target.c_str(), &source, 4, false, 0));
  EXPECT_EQ(TargetBytes(), WrittenHeader(48000, 1, 16, 4) + std::string(8, '\0'));
}

TEST_F(FadeRenderer, noSourceGivesNullAndNoFile) {
  AES31BWF invalid(folder.Write("text.wav", "text").c_str());
  EXPECT_EQ(RenderFadeFile(target.c_str(), nullptr, 2, true, 0), nullptr);
  EXPECT_EQ(RenderFadeFile(target.c_str(), &invalid, 2, true, 0), nullptr);
  EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(FadeRenderer, lengthThatNoFileHoldsGivesNullAtOnce) {
  AES31BWF source(Source({}, {1, 2}).c_str());
  Watchdog watchdog;
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  for (const std::int64_t length :
       {std::int64_t{1} << 31, std::int64_t{1} << 32, (std::int64_t{1} << 32) + 1, kMost}) {
    EXPECT_EQ(RenderFadeFile(target.c_str(), &source, length, true, 0), nullptr) << length;
    EXPECT_EQ(RenderCrossfadeFile(target.c_str(), &source, &source, 0, 0, length), nullptr)
        << length;
  }
  if (std::filesystem::exists(target)) {
    EXPECT_LE(std::filesystem::file_size(target), kHeaderBytes);
  }
}

TEST_F(FadeRenderer, negativeLengthWritesNoSamples) {
  AES31BWF source(Source({}, {1, 2}).c_str());
  Watchdog watchdog;
  for (const std::int64_t length : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
    RenderFadeFile(target.c_str(), &source, length, true, 0);
    RenderCrossfadeFile(target.c_str(), &source, &source, 0, 0, length);
    if (std::filesystem::exists(target)) {
      EXPECT_LE(std::filesystem::file_size(target), kHeaderBytes);
    }
  }
}

TEST_F(FadeRenderer, depthsBetweenBytesComeToAnEnd) {
  for (const int bits : {0, 1, 7, 9, 12, 20, 31, 33, 40, 64, 255}) {
    AES31BWF source(folder
                        .Write("source.wav", WaveBytes()
                                                 .Format({.bits = static_cast<std::uint16_t>(bits),
                                                          .blockAlign = 4})
                                                 .Data(std::string(40, '\x5A'))
                                                 .Bytes())
                        .c_str());
    RenderFadeFile(target.c_str(), &source, 12, true, -1);
    RenderCrossfadeFile(target.c_str(), &source, &source, 0, 3, 12);
  }
}

}  // namespace
}  // namespace velmora::test
