#include "Field/FieldTime.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "Timecode/AdlTime.h"
#include "Timecode/RateTables.h"

namespace velmora::field {
namespace {

std::optional<std::int64_t> SamplesOf(const std::string& text, const TimeContext& context = {}) {
  const std::optional<Time> time = ReadTime(text, context);
  if (!time) return std::nullopt;
  return time->samples;
}

TEST(TimeRates, frameRateOfAPulledRate) {
  EXPECT_EQ((TimeRates{48000, 30, true, true}).FrameRate(), 30000.0 / 1001.0);
  EXPECT_EQ((TimeRates{48000, 25, false, false}).FrameRate(), 25.0);
}

TEST(ReadTime, stampsByTheSystemsRule) {
  EXPECT_EQ(SamplesOf("01:00:00:00/0000"), 172972800);
  EXPECT_EQ(SamplesOf("01:00:00;00/0000"), 172799828);
  EXPECT_EQ(SamplesOf("01|00:00:00|0000"), 158760000);
  EXPECT_EQ(SamplesOf("00:01:00;02/0000"), 2882880);
  EXPECT_EQ(SamplesOf("00.00:01:00/0000"), 48000);
  EXPECT_EQ(SamplesOf("00-00:01:00/0012"), 48060);
  EXPECT_EQ(SamplesOf("00:00:00:01|0000"), 1472);
  EXPECT_EQ(SamplesOf("01|00|00|00|0000"), 158760000) << "recorders write | everywhere";
}

TEST(ReadTime, agreesWithTheSystemUnderEveryPairOfMarks) {
  std::minstd_rand random(7);
  const auto digit = [&random](unsigned below) {
    return static_cast<char>('0' + random() % below);
  };
  for (const FrameRateMark& frames : kFrameRateMarks) {
    for (const SampleRateMark& rate : kSampleRateMarks) {
      for (const char separator : std::string(":;,.|=")) {
        for (int i = 0; i < 20; ++i) {
          std::string text = "00:00:00:00/0000";
          for (const std::size_t at : {0U, 1U, 3U, 4U, 6U, 7U, 9U, 10U, 12U, 13U, 14U, 15U}) {
            text[at] = digit(10);
          }
          text[2] = frames.mark;
          text[8] = separator;
          text[11] = rate.mark;
          const std::optional<Time> time = ReadTime(text, {});
          ASSERT_TRUE(time) << text;
          ASSERT_EQ(time->samples, AdlToSamples(text.c_str())) << text;
          ASSERT_EQ(time->rates.sampleRate, rate.hz) << text;
          ASSERT_EQ(time->rates.framesPerSecond, frames.framesPerSecond) << text;
          ASSERT_EQ(time->rates.pulledDown, frames.pulledDown) << text;
          ASSERT_EQ(time->rates.dropFrame, separator == ';' || separator == ',') << text;
        }
      }
    }
  }
}

TEST(ReadTime, withoutItsRemainder) {
  TimeContext context;
  context.rateWithoutMark = 44100;
  EXPECT_EQ(SamplesOf("00.00.01.00", context), 44100);
  EXPECT_EQ(SamplesOf("00.00.01.00/", context), 48000);
  EXPECT_EQ(SamplesOf("00.00.01.00"), 48000);
}

TEST(ReadTime, whatIsNoTimestampIsNotGiven) {
  for (const char* text :
       {"", "_", "0", "x", "00:00:00:0", "00:00:00:00/000", "00:00:00:00/00000", "00:00:00:0x/0000",
        "00:00:00:00/000x", "00x00:00:00/0000", "00:00:00:00x0000", "00 00:00:00/0000",
        "-0:00:00:00/0000", "00:00:00:00/00 0"}) {
    EXPECT_EQ(SamplesOf(text), std::nullopt) << text;
  }
}

TEST(ReadTime, trustInTheHeaderKeepsDigitsAndDrop) {
  TimeContext context;
  context.trust = Trust::Header;
  context.headerSampleRate = 44100;
  context.headerFrames = TimeRates{.framesPerSecond = 25};
  // Marked 48 kHz and 29.97; a minute has 1500 frames of 25, less the two that are dropped.
  EXPECT_EQ(SamplesOf("00:00:01:05/0007", context), 44100 + 5 * 1764 + 7);
  EXPECT_EQ(SamplesOf("00:01:00;02/0000", context), 1500 * 1764);
  context.headerSampleRate.reset();
  EXPECT_EQ(SamplesOf("00:00:01:05/0007", context), 48000 + 5 * 1920 + 7);
  context.headerSampleRate = 44100;
  context.headerFrames.reset();
  EXPECT_EQ(SamplesOf("00:00:01:00/0000", context), 44145) << "44144.1, rounded up";
}

TEST(ReadTime, trustInAHeaderOfARateThatNoMarkNames) {
  TimeContext context;
  context.trust = Trust::Header;
  context.headerSampleRate = 192000;
  context.headerFrames = TimeRates{.framesPerSecond = 50};
  EXPECT_EQ(SamplesOf("00.00:01:49/0001", context), 192000 + 49 * 3840 + 1);
}

TEST(AtRate, toTheNearestHalvesUp) {
  EXPECT_EQ(AtRate(3, 48000, 48000), 3);
  EXPECT_EQ(AtRate(1, 96000, 48000), 1);
  EXPECT_EQ(AtRate(-1, 96000, 48000), 0);
  EXPECT_EQ(AtRate(-3, 96000, 48000), -1);
  EXPECT_EQ(AtRate(3, 96000, 48000), 2);
  EXPECT_EQ(AtRate(1, 44100, 48000), 1);
  EXPECT_EQ(AtRate(441, 44100, 48000), 480);
  EXPECT_EQ(AtRate(1, 48000, 44100), 1);
  EXPECT_EQ(AtRate(-441, 44100, 48000), -480);
}

TEST(AtRate, isExactAtPulledRatesHoweverLongTheTime) {
  const double pulledDown = 48000.0 * 1000.0 / 1001.0;
  const double pulledUp = 48000.0 * 1001.0 / 1000.0;
  EXPECT_EQ(AtRate(1001, 48000, pulledDown), 1000);
  EXPECT_EQ(AtRate(1000, pulledDown, 48000), 1001);
  EXPECT_EQ(AtRate(1000, 48000, pulledUp), 1001);
  EXPECT_EQ(AtRate(1001, pulledUp, 48000), 1000);
  EXPECT_EQ(AtRate(33333, 100000.0 / 3.0, 100000), 99999);
  EXPECT_EQ(AtRate(10, 44100.0 * 1.001, 44100), 10);
  const std::int64_t large = 9'000'000'000'000'000;  // 9e15, near where doubles lose the ones
  EXPECT_EQ(AtRate(large * 1000 + 0, pulledDown, 48000), large * 1001);
  EXPECT_EQ(AtRate(large + 1, 48000, 96000), 2 * large + 2);
}

TEST(AtRate, holdsAtTheEndsOfItsRange) {
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(AtRate(kMost, 48000, 96000), kMost);
  EXPECT_EQ(AtRate(kLeast, 48000, 96000), kLeast);
  EXPECT_EQ(AtRate(kMost, 96000, 48000), kMost / 2 + 1);
  EXPECT_EQ(AtRate(kLeast, 96000, 48000), kLeast / 2);
  for (const double none : {0.0, -1.0, std::numeric_limits<double>::infinity(),
                            std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(AtRate(5, none, 48000), 5);
    EXPECT_EQ(AtRate(5, 48000, none), 5);
  }
}

}  // namespace
}  // namespace velmora::field
