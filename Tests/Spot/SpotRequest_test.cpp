#include "Spot/SpotRequest.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace velmora {
namespace {

const std::string kFrameRateAlert =
    "The framerate of this session does not match the AES31 project we are importing. The import "
    "will be offset to compensate.";

std::string RateAlert(const std::string& truncated, const std::string& shown) {
  return "This session is at " + truncated + "Hz, whereas the AES project is at " + shown +
         "Hz. Misalignment is likely.";
}

struct WarningRow {
  const char* rule;
  const char* firstEvent;
  float sessionRate;
  std::int32_t frameRate;
  std::vector<std::string> alerts;
};

void PrintTo(const WarningRow& row, std::ostream* out) {
  *out << row.rule;
}

class SpotWarningsRows : public testing::TestWithParam<WarningRow> {};

TEST_P(SpotWarningsRows, givesTheAlertsInOrder) {
  const WarningRow& row = GetParam();
  EXPECT_EQ(SpotWarnings(row.firstEvent, row.sessionRate, row.frameRate), row.alerts);
}

const std::vector<WarningRow> kWarningRows = {
    {"equalRatesGiveNoAlert", "01.00:00:00/0000", 48000.0F, 2, {}},
    {"equalDropFrameRatesGiveNoAlert", "01:00:00;00/0000", 48000.0F, 4, {}},
    {"equal44100GivesNoAlert", "01|00:00:00|0000", 44100.0F, 5, {}},
    {"bothAlertsRateFirst",
     "01.00:00:00|0000",
     48000.0F,
     2,
     {RateAlert("48000", "48000"), kFrameRateAlert}},
    {"sampleRateAloneRaisesBoth",
     "01.00:00:00/0000",
     44100.0F,
     2,
     {RateAlert("44100", "44100"), kFrameRateAlert}},
    {"projectAtZeroShowsNoFrameRateDifference",
     "00.00:00:00/0000",
     44100.0F,
     2,
     {RateAlert("44100", "44100")}},
    {"frameRateAlone", "01:00:00:00/0000", 48000.0F, 5, {kFrameRateAlert}},
    {"dropFrameAlone", "01:00:00;00/0000", 48000.0F, 3, {kFrameRateAlert}},
    {"remainderOfTheFirstTimestampCountsAsDifference",
     "01.00:00:00/0012",
     48000.0F,
     2,
     {kFrameRateAlert}},
    {"sessionAt96000IsReadAs48000", "01.00:00:00*0000", 96000.0F, 2, {kFrameRateAlert}},
    {"unknownSampleRateMarkAlwaysRaisesTheFirst",
     "00.00:00:00Z0000",
     48000.0F,
     2,
     {RateAlert("48000", "48000")}},
    {"unknownSampleRateMarkReadsAsNoSamples",
     "01.00:00:00Z0000",
     48000.0F,
     2,
     {RateAlert("48000", "48000"), kFrameRateAlert}},
    {"onlyExactEqualityPasses", "00.00:00:00/0000", 48000.004F, 2, {RateAlert("48000", "48000")}},
    {"sessionRateIsTruncatedInTheFirstNumber",
     "00.00:00:00/0000",
     47999.75F,
     2,
     {RateAlert("47999", "47999.8")}},
    {"pulledRateNeverEqualsAFloat",
     "00.00:00:00~0000",
     44055.944F,
     2,
     {RateAlert("44055", "44055.9")}},
    {"largeSessionRateInShortForm",
     "00.00:00:00/0000",
     2500000.0F,
     2,
     {RateAlert("2500000", "2.5e+06")}},
    {"rateThatIsNoNumberDiffersFromAll",
     "00.00:00:00/0000",
     std::numeric_limits<float>::quiet_NaN(),
     2,
     {RateAlert("-2147483648", "nan")}},
    {"rateWithoutEnd",
     "00.00:00:00/0000",
     std::numeric_limits<float>::infinity(),
     2,
     {RateAlert("-2147483648", "inf")}},
    {"lowestRateThatDoesNotFit",
     "00.00:00:00/0000",
     2147483648.0F,
     2,
     {RateAlert("-2147483648", "2.14748e+09")}},
    {"highestRateThatFits",
     "00.00:00:00/0000",
     2147483520.0F,
     2,
     {RateAlert("2147483520", "2.14748e+09")}},
    {"unknownFrameRateCodeCountsAsCode0", "01?00:00:00/0000", 48000.0F, 8, {}},
    {"negativeFrameRateCodeCountsAsCode0", "01?00:00:00/0000", 48000.0F, -1, {}},
    {"nullFirstEventGivesNoAlert", nullptr, 48000.0F, 2, {}},
    {"firstEventThatEndsEarly",
     "01.00",
     48000.0F,
     2,
     {RateAlert("48000", "48000"), kFrameRateAlert}},
};

INSTANTIATE_TEST_SUITE_P(SpotRequest, SpotWarningsRows, testing::ValuesIn(kWarningRows),
                         [](const auto& row) { return std::string(row.param.rule); });

struct StepRow {
  const char* rule;
  std::int32_t numEvents, doFades, doGain, steps;
};

void PrintTo(const StepRow& row, std::ostream* out) {
  *out << row.rule;
}

class SpotStepsRows : public testing::TestWithParam<StepRow> {};

TEST_P(SpotStepsRows, countsThreeForEachEventAndOneForEachOption) {
  const StepRow& row = GetParam();
  EXPECT_EQ(SpotSteps(row.numEvents, row.doFades, row.doGain), row.steps);
}

constexpr StepRow kStepRows[] = {
    {"neitherOption", 10, 0, 0, 30},       {"bothOptions", 10, 1, 1, 50},
    {"fadesAlone", 10, 1, 0, 40},          {"gainAlone", 10, 0, 1, 40},
    {"anyNonZeroTagIsOn", 10, 2, -7, 50},  {"noEvents", 0, 1, 1, 0},
    {"twoEventsBothOptions", 2, 1, 1, 10},
};

INSTANTIATE_TEST_SUITE_P(SpotRequest, SpotStepsRows, testing::ValuesIn(kStepRows),
                         [](const auto& row) { return std::string(row.param.rule); });

}  // namespace
}  // namespace velmora
