#include "Spot/SpotOptions.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>

namespace velmora {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();

// One hour at 29.97 frames is 172972800 samples in the project's own timebase and 172800000 in a
// session at 30 frames: a compensation of -172800.
constexpr const char* kOneHourAt2997 = "01:00:00:00/0000";
constexpr std::int32_t kSessionAt30 = 5;

struct PositionRow {
  const char* rule;
  const char* firstEvent;
  std::int32_t frameRate;
  std::int32_t mode;
  std::int64_t offsetSamples, startSamples;
  std::int64_t timelineOffset;
  bool relativeTrack;
  std::int32_t sessionRate = 48000;
};

void PrintTo(const PositionRow& row, std::ostream* out) {
  *out << row.rule;
}

class PositionRows : public testing::TestWithParam<PositionRow> {};

TEST_P(PositionRows, computesOffsetAndTrackForm) {
  const PositionRow& row = GetParam();
  SpotOptions options;
  options.sessionRate = row.sessionRate;
  options.frameRate = row.frameRate;
  options.positionMode = row.mode;
  options.offsetSamples = row.offsetSamples;
  options.startSamples = row.startSamples;
  options.timelineOffset = 99;                 // left over from an earlier spot
  options.relativeTrack = !row.relativeTrack;  // likewise
  ComputePosition(options, row.firstEvent);
  EXPECT_EQ(options.timelineOffset, row.timelineOffset);
  EXPECT_EQ(options.relativeTrack, row.relativeTrack);
}

constexpr PositionRow kPositionRows[] = {
    {"asProjectCompensates", kOneHourAt2997, kSessionAt30, 0, 7000, 9000, -172800, false},
    {"asProjectWithEqualRatesIsNoOffset", "01.00:00:00/0000", 2, 0, 7000, 9000, 0, false},
    {"asProjectDropsTheRemainder", "01.00:00:00/0012", 2, 0, 0, 0, -12, false},
    {"asProjectAtAnotherSampleRate", "00.00:01:00/0000", 2, 0, 0, 0, -3900, false, 44100},
    {"asProjectReadsOtherRatesAs48000", "00.00:01:00/0000", 2, 0, 0, 0, 0, false, 96000},
    {"withOffsetAddsTheOffset", kOneHourAt2997, kSessionAt30, 1, 5000, 9000, -167800, false},
    {"withOffsetTakesASignedOffset", kOneHourAt2997, kSessionAt30, 1, -5000, 9000, -177800, false},
    {"atStartLandsAtStartPlusCompensation", kOneHourAt2997, kSessionAt30, 2, 7000, 172800000,
     -345600, false},
    {"atStartOfOneHourForAProjectAtOneHourIsNoOffset", "01.00:00:00/0000", 2, 2, 7000, 172800000, 0,
     false},
    {"fromFirstTakesNoCompensation", kOneHourAt2997, kSessionAt30, 3, 7000, 9000, -172972800, true},
    {"anyOtherTagIsNoDisplacement", kOneHourAt2997, kSessionAt30, 4, 7000, 9000, 0, false},
    {"negativeTagIsAnyOtherTag", kOneHourAt2997, kSessionAt30, -1, 7000, 9000, 0, false},
    {"largestTagIsAnyOtherTag", kOneHourAt2997, kSessionAt30, 0x7FFFFFFF, 7000, 9000, 0, false},
    // A frame-rate mark that is none reads as the lowest 64-bit number, and 0 in the session.
    {"compensationWrapsAt64Bits", "00x00:00:00/0000", 2, 0, 0, 0, kLowest, false},
    {"offsetWrapsAt64Bits", "00x00:00:00/0000", 2, 1, -1, 0, 0x7FFFFFFFFFFFFFFF, false},
    {"startWrapsAt64Bits", "00x00:00:00/0000", 2, 2, 0, 480, 480, false},
    {"fromFirstWrapsAt64Bits", "00x00:00:00/0000", 2, 3, 0, 0, kLowest, true},
};

INSTANTIATE_TEST_SUITE_P(SpotOptions, PositionRows, testing::ValuesIn(kPositionRows),
                         [](const auto& row) { return std::string(row.param.rule); });

TEST(ComputePosition, nullFirstEventGivesNoDisplacement) {
  for (const std::int32_t mode : {0, 1, 2, 3, 4}) {
    SpotOptions options;
    options.positionMode = mode;
    options.offsetSamples = 5;
    options.startSamples = 7;
    options.timelineOffset = 99;
    ComputePosition(options, nullptr);
    EXPECT_EQ(options.timelineOffset, 0) << mode;
    EXPECT_EQ(options.relativeTrack, mode == PositionFromFirst) << mode;
  }
}

TEST(ComputePosition, leavesTheOtherOptionsAlone) {
  SpotOptions options;
  options.sessionRate = 48000;
  options.positionMode = PositionWithOffset;
  options.frameRate = 2;
  options.doFades = 3;
  options.doGain = 4;
  options.offsetSamples = 5;
  options.startSamples = 6;
  options.bitDepth = 16;
  options.depthSuffix = "_16bit";
  options.copyFolder = "/copies";
  options.copySource = 7;
  ComputePosition(options, "01.00:00:00/0000");
  EXPECT_EQ(options.sessionRate, 48000);
  EXPECT_EQ(options.positionMode, 1);
  EXPECT_EQ(options.frameRate, 2);
  EXPECT_EQ(options.doFades, 3);
  EXPECT_EQ(options.doGain, 4);
  EXPECT_EQ(options.offsetSamples, 5);
  EXPECT_EQ(options.startSamples, 6);
  EXPECT_EQ(options.bitDepth, 16);
  EXPECT_EQ(options.depthSuffix, "_16bit");
  EXPECT_EQ(options.copyFolder, "/copies");
  EXPECT_EQ(options.copySource, 7);
}

TEST(Compensation, isTheSessionsReadingLessTheProjects) {
  SpotOptions options;
  options.sessionRate = 48000;
  options.frameRate = kSessionAt30;
  EXPECT_EQ(Compensation(options, kOneHourAt2997), -172800);
  options.frameRate = 3;
  EXPECT_EQ(Compensation(options, kOneHourAt2997), 0);
}

TEST(PositionMode, hasTheTagsOfItsCells) {
  EXPECT_EQ(PositionAsProject, 0);
  EXPECT_EQ(PositionWithOffset, 1);
  EXPECT_EQ(PositionAtStart, 2);
  EXPECT_EQ(PositionFromFirst, 3);
}

}  // namespace
}  // namespace velmora
