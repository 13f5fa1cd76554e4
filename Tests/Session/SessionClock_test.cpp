#include "Session/SessionClock.h"

#include <gtest/gtest.h>

#include <limits>

#include "Timecode/AdlTime.h"

namespace velmora::host {
namespace {

struct ClockRow {
  const char* rule;
  float sampleRate;
  std::int32_t code;
  std::int64_t sample;
  const char* timecode;
};

class SessionClockRows : public testing::TestWithParam<ClockRow> {};

TEST_P(SessionClockRows, showsTheFrameThatHoldsTheSample) {
  const ClockRow& row = GetParam();
  EXPECT_EQ(SessionClock({row.sampleRate, row.code}).Timecode(row.sample), row.timecode)
      << row.rule;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SessionClockRows,
    testing::Values(
        ClockRow{"startOfTheSession", 48000, 0, 0, "00:00:00:00"},
        ClockRow{"lastSampleOfAFrameBelongsToIt", 48000, 2, 1919, "00:00:00:00"},
        ClockRow{"firstSampleOfTheNextFrame", 48000, 2, 1920, "00:00:00:01"},
        ClockRow{"oneHourAt25", 48000, 2, 172800000, "01:00:00:00"},
        ClockRow{"oneHourAt30And44100", 44100, 5, 158760000, "01:00:00:00"},
        ClockRow{"nonDrop2997CountsThirtyToASecond", 48000, 3, 172972800, "01:00:00:00"},
        ClockRow{"dropFrameHour", 48000, 4, 172799828, "01:00:00;00"},
        ClockRow{"dropFrameSkipsTwoNumbersAtTheFirstMinute", 48000, 4, 2882880, "00:01:00;02"},
        ClockRow{"dropFrameKeepsTheLastNumberBefore", 48000, 4, 2882879, "00:00:59;29"},
        ClockRow{"dropFrameKeepsAllNumbersAtTheTenthMinute", 48000, 4, 28799972, "00:10:00;00"},
        ClockRow{"thirtyDropCountsAtThirty", 48000, 6, 28771200, "00:10:00;00"},
        ClockRow{"filmPulledDown", 48000, 7, 48048, "00:00:01:00"},
        ClockRow{"filmPulledDownOneSampleEarlier", 48000, 7, 48047, "00:00:00:23"},
        ClockRow{"beforeTheStart", 48000, 2, -1920, "-00:00:00:01"},
        ClockRow{"partOfAFrameBeforeTheStart", 48000, 2, -1, "-00:00:00:01"},
        ClockRow{"hoursGoOnBeyondADay", 48000, 2, 172800000LL * 25, "25:00:00:00"}));

TEST(SessionClock, agreesWithTheTimestampsOfAllCodes) {
  // The first sample of a frame is what the system's own arithmetic gives for its timecode.
  for (std::int32_t code = 0; code < 8; ++code) {
    for (const float rate : {48000.0F, 44100.0F}) {
      const SessionClock clock({rate, code});
      for (std::int64_t frame = 0; frame < 400000; frame += 997) {
        const std::int64_t start = clock.FrameStart(frame);
        const std::string label = clock.FrameLabel(frame);
        EXPECT_EQ(TimecodeToSamples(label.c_str(), code, static_cast<std::int32_t>(rate)), start)
            << label << " at code " << code;
        EXPECT_EQ(clock.FrameAt(start), frame);
        EXPECT_EQ(clock.FrameAt(start - 1), frame - 1);
      }
    }
  }
}

TEST(SessionClock, outOfRangeRatesFallBack) {
  EXPECT_EQ(SessionClock({0, 0}).SampleRate(), 48000);
  EXPECT_EQ(SessionClock({-1, 0}).SampleRate(), 48000);
  EXPECT_EQ(SessionClock({std::numeric_limits<float>::quiet_NaN(), 0}).SampleRate(), 48000);
  EXPECT_EQ(SessionClock({std::numeric_limits<float>::infinity(), 0}).SampleRate(), 48000);
  EXPECT_EQ(SessionClock({48000, -1}).FrameRateCode(), 0);
  EXPECT_EQ(SessionClock({48000, 8}).FrameRateCode(), 0);
}

TEST(SessionClock, extremePositionsStayDefined) {
  const SessionClock clock({44100, 4});
  for (const std::int64_t sample :
       {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    EXPECT_FALSE(clock.Timecode(sample).empty());
    EXPECT_LE(clock.FrameStart(clock.FrameAt(sample)), sample);
  }
  EXPECT_EQ(clock.FrameStart(std::numeric_limits<std::int64_t>::max()),
            std::numeric_limits<std::int64_t>::max());
}

}  // namespace
}  // namespace velmora::host
