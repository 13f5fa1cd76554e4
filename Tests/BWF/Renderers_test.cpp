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

#include "BWF/AES31BWF.h"
#include "Support/BwfReference.h"
#include "Support/RendererFixture.h"
#include "Support/SystemConditions.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

using Ints = std::vector<std::int32_t>;
constexpr std::int32_t kMostNegative = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kOne = 0x7FFFFFFF;  // decodes as exactly 1.0

class FadeRenderer : public RendererTest {};

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

TEST_F(FadeRenderer, startsAtTheFirstFrameAndIsSilentAfterTheSource) {
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

/// Each row makes a piece of two files at a path, in one of the ways there are.
struct ClosingRow {
  const char* renderer;
  std::unique_ptr<AES31BWF> (*render)(const char* path, AES31BWF& first, AES31BWF& second);
};

constexpr ClosingRow kClosingRows[] = {
    {"scaling", [](const char* path, AES31BWF& first,
                   AES31BWF&) { return RenderScaledFile(path, &first, 0.5); }},
    {"fade", [](const char* path, AES31BWF& first,
                AES31BWF&) { return RenderFadeFile(path, &first, 2, true, 0); }},
    {"crossfade",
     [](const char* path, AES31BWF& first, AES31BWF& second) {
       return RenderCrossfadeFile(path, &first, &second, 0, 0, 2);
     }},
};

class ClosedSources : public RendererTest {
 protected:
  AES31BWF first{folder.Write("first.wav", PlainWave({}, {1, 2})).c_str()};
  AES31BWF second{folder.Write("second.wav", PlainWave({}, {3, 4})).c_str()};
};

TEST_F(ClosedSources, whenTheTargetIsMade) {
  for (const ClosingRow& row : kClosingRows) {
    EXPECT_NE(row.render(target.c_str(), first, second), nullptr) << row.renderer;
    EXPECT_EQ(first.stream, nullptr) << row.renderer;
    EXPECT_EQ(second.stream, nullptr) << row.renderer;
  }
}

TEST_F(ClosedSources, whenTheTargetCannotBeMade) {
  for (const ClosingRow& row : kClosingRows) {
    EXPECT_EQ(row.render(folder.Path("missing/x.wav").c_str(), first, second), nullptr);
    EXPECT_EQ(first.stream, nullptr) << row.renderer;
    EXPECT_EQ(second.stream, nullptr) << row.renderer;
  }
}

TEST_F(ClosedSources, whenTheLengthIsRefused) {
  constexpr std::int64_t kTooLong = std::int64_t{1} << 40;
  EXPECT_EQ(RenderFadeFile(target.c_str(), &first, kTooLong, true, 0), nullptr);
  EXPECT_EQ(first.stream, nullptr);
  EXPECT_EQ(RenderCrossfadeFile(target.c_str(), &first, &second, 0, 0, kTooLong), nullptr);
  EXPECT_EQ(first.stream, nullptr);
  EXPECT_EQ(second.stream, nullptr);
}

TEST_F(ClosedSources, whenTheOtherOneHasGone) {
  std::filesystem::remove(folder.Path("second.wav"));
  EXPECT_EQ(RenderCrossfadeFile(target.c_str(), &first, &second, 0, 0, 2), nullptr);
  EXPECT_EQ(first.stream, nullptr);
  EXPECT_EQ(RenderCrossfadeFile(target.c_str(), &second, &first, 0, 0, 2), nullptr);
  EXPECT_EQ(first.stream, nullptr);
}

TEST_F(ClosedSources, whenACopyCannotBeMade) {
  for (const std::int32_t depth : {-1, 24}) {
    EXPECT_EQ(first.CopyTo(folder.Path("missing/x.wav").c_str(), depth), CopyTargetNotCreated);
    EXPECT_EQ(first.stream, nullptr) << depth;
  }
}

}  // namespace
}  // namespace velmora::test
