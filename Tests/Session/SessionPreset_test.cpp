#include "Session/SessionPreset.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace velmora::host {
namespace {

struct PresetRow {
  const char* rule;
  const char* timestamp;
  float sampleRate;
  std::int32_t frameRate;
};

class PresetRows : public testing::TestWithParam<PresetRow> {};

TEST_P(PresetRows, readsTheMarksBackwards) {
  const SessionRates rates = PresetFor(GetParam().timestamp);
  EXPECT_EQ(rates.sampleRate, GetParam().sampleRate) << GetParam().rule;
  EXPECT_EQ(rates.frameRate, GetParam().frameRate) << GetParam().rule;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PresetRows,
    testing::Values(PresetRow{"undeclared", "01?00:00:00/0000", 48000, 0},
                    PresetRow{"24", "01=00:00:00/0000", 48000, 1},
                    PresetRow{"25", "01.00:00:00|0000", 44100, 2},
                    PresetRow{"2997", "01:00:00:00/0000", 48000, 3},
                    PresetRow{"2997Drop", "01:00:00;00/0000", 48000, 4},
                    PresetRow{"30", "01|00:00:00*0000", 96000, 5},
                    PresetRow{"30Drop", "01|00:00;00@0000", 88200, 6},
                    PresetRow{"23976", "01-00:00:00/0000", 48000, 7},
                    PresetRow{"pulledRateAsAFloat", "01.00:00:00~0000", 44055.944F, 2},
                    PresetRow{"markWithoutCode", "01!00:00:00/0000", 48000, 0},
                    PresetRow{"pairWithoutCode", "01.00:00;00/0000", 48000, 0},
                    PresetRow{"commaHasNoCode", "01:00:00,00/0000", 48000, 0},
                    PresetRow{"unknownRateMark", "01.00:00:00x0000", 48000, 2},
                    PresetRow{"shortText", "01.00", 48000, 0}, PresetRow{"emptyText", "", 48000, 0},
                    PresetRow{"noText", nullptr, 48000, 0}));

TEST(OfferedSampleRates, beginWithTheCommonOnesAndHoldEachOnce) {
  const std::vector<float> rates = OfferedSampleRates();
  ASSERT_GT(rates.size(), kCommonSampleRates);
  EXPECT_EQ(rates[0], 44100);
  EXPECT_EQ(rates[1], 48000);
  EXPECT_EQ(rates[2], 88200);
  EXPECT_EQ(rates[3], 96000);
  std::vector<float> sorted = rates;
  std::sort(sorted.begin(), sorted.end());
  EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end());
  EXPECT_TRUE(std::is_sorted(rates.begin() + kCommonSampleRates, rates.end()));
}

TEST(OfferedSampleRates, holdWhateverATimestampPresets) {
  const std::vector<float> rates = OfferedSampleRates();
  for (const char* timestamp : {"01.00:00:00~0000", "01.00:00:00&0000", "01.00:00:00]0000"}) {
    const float preset = PresetFor(timestamp).sampleRate;
    EXPECT_NE(std::find(rates.begin(), rates.end(), preset), rates.end()) << timestamp;
  }
}

TEST(SampleRateName, showsFractionsOnlyWhereThereAreAny) {
  EXPECT_EQ(SampleRateName(48000), "48000 Hz");
  EXPECT_EQ(SampleRateName(44055.944055944055), "44055.944 Hz");
  EXPECT_EQ(SampleRateName(44144.1), "44144.100 Hz");
}

// A host tells its rate as a 32-bit float, which lies a thousandth of a hertz beside this one.
TEST(SampleRateName, ofAPulledRateIsThatOfTheProject) {
  constexpr float kAsAHostTells = 47952.048F;
  EXPECT_EQ(SampleRateName(48000.0 * 1000.0 / 1001.0), "47952.048 Hz");
  EXPECT_EQ(SampleRateName(kAsAHostTells), "47952.048 Hz");
}

}  // namespace
}  // namespace velmora::host
