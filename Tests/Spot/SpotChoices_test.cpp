#include "Spot/SpotChoices.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>

namespace velmora {
namespace {

constexpr SessionRates kSession{48000, 2};

struct RateRow {
  const char* rule;
  float sampleRate;
  std::int32_t expected;
};

void PrintTo(const RateRow& row, std::ostream* out) {
  *out << row.rule;
}

class RateRows : public testing::TestWithParam<RateRow> {};

TEST_P(RateRows, cutTheSessionRateTowardZero) {
  EXPECT_EQ(BuildSpotOptions({}, {GetParam().sampleRate, 2}).sessionRate, GetParam().expected);
}

constexpr RateRow kRateRows[] = {
    {"wholeRateStays", 48000, 48000},
    {"pulledRateIsNotRoundedUp", 47952.95F, 47952},
    {"negativeRateIsNotRoundedDown", -0.9F, 0},
    {"negativeWholeRateStays", -44100.7F, -44100},
    {"rateBeyond32BitsIsTheLowestNumber", 3e9F, std::numeric_limits<std::int32_t>::min()},
    {"noNumberIsTheLowestNumber", std::numeric_limits<float>::quiet_NaN(),
     std::numeric_limits<std::int32_t>::min()},
};

INSTANTIATE_TEST_SUITE_P(SpotChoices, RateRows, testing::ValuesIn(kRateRows),
                         [](const auto& row) { return std::string(row.param.rule); });

struct DepthRow {
  std::int32_t tag;
  std::int32_t bitDepth;
  const char* suffix;
};

TEST(SpotChoices, depthTag0Is16BitsAndAnyOther24) {
  for (const DepthRow& row :
       {DepthRow{0, 16, "_16bit"}, DepthRow{1, 24, "_24bit"}, DepthRow{2, 24, "_24bit"},
        DepthRow{16, 24, "_24bit"}, DepthRow{-1, 24, "_24bit"}}) {
    SpotChoices choices;
    choices.depth = row.tag;
    const SpotOptions options = BuildSpotOptions(choices, kSession);
    EXPECT_EQ(options.bitDepth, row.bitDepth) << row.tag;
    EXPECT_EQ(options.depthSuffix, row.suffix) << row.tag;
  }
}

struct CopyRow {
  const char* rule;
  bool ticked;
  const char* folder;
  std::int32_t copySource;
};

TEST(SpotChoices, copyTakesATickAndAFolder) {
  for (const CopyRow& row :
       {CopyRow{"neither", false, "", 0}, CopyRow{"tickWithoutFolder", true, "", 0},
        CopyRow{"folderWithoutTick", false, "/copies", 0}, CopyRow{"both", true, "/copies", 1}}) {
    SpotChoices choices;
    choices.copy = row.ticked;
    choices.copyFolder = row.folder;
    const SpotOptions options = BuildSpotOptions(choices, kSession);
    EXPECT_EQ(options.copySource, row.copySource) << row.rule;
    EXPECT_EQ(options.copyFolder, row.folder) << row.rule;  // kept as it is, used or not
  }
}

struct TextRow {
  const char* rule;
  const char* offset;
  const char* start;
  SessionRates rates;
  std::int64_t offsetSamples, startSamples;
};

TEST(SpotChoices, timecodesAreReadInTheSessionsTimebase) {
  for (const TextRow& row : {
           TextRow{"25Frames", "+00:00:01:01", " 01:00:00:00", {48000, 2}, 49920, 172800000},
           TextRow{"signCounts", "-00:00:01:01", " 00:00:00:01", {48000, 2}, -49920, 1920},
           TextRow{"24Frames", "+00:00:01:01", " 00:00:00:12", {48000, 1}, 50000, 24000},
           TextRow{"at44100", "+00:00:01:00", " 00:00:02:00", {44100, 2}, 44100, 88200},
           TextRow{"emptyTexts", "", "", {48000, 2}, 0, 0},
       }) {
    SpotChoices choices;
    choices.offset = row.offset;
    choices.start = row.start;
    const SpotOptions options = BuildSpotOptions(choices, row.rates);
    EXPECT_EQ(options.offsetSamples, row.offsetSamples) << row.rule;
    EXPECT_EQ(options.startSamples, row.startSamples) << row.rule;
  }
}

TEST(SpotChoices, tagsAndCodesGoThroughAsTheyAre) {
  SpotChoices choices;
  choices.positionMode = 7;  // names no position, and is nobody's to mend
  choices.fades = 2;
  choices.gain = -1;
  const SpotOptions options = BuildSpotOptions(choices, {48000, 9});
  EXPECT_EQ(options.positionMode, 7);
  EXPECT_EQ(options.frameRate, 9);
  EXPECT_EQ(options.doFades, 2);
  EXPECT_EQ(options.doGain, -1);
}

TEST(SpotChoices, positionIsLeftToBeComputed) {
  SpotChoices choices;
  choices.positionMode = PositionFromFirst;
  const SpotOptions options = BuildSpotOptions(choices, kSession);
  EXPECT_EQ(options.timelineOffset, 0);
  EXPECT_FALSE(options.relativeTrack);
}

TEST(SessionRates, areEqualInBothNumbers) {
  EXPECT_EQ((SessionRates{48000, 2}), (SessionRates{48000, 2}));
  EXPECT_FALSE((SessionRates{48000, 2}) == (SessionRates{48000, 3}));
  EXPECT_FALSE((SessionRates{48000, 2}) == (SessionRates{47952, 2}));
}

}  // namespace
}  // namespace velmora
