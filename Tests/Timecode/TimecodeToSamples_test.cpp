#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

struct Typed {
  std::string_view rule;
  const char* text;
  std::int64_t samples;       ///< at frame-rate code 2 (25 frames) and 48 kHz
  const char* sameTimestamp;  ///< the timestamp that the text stands for, without its sign
};

constexpr auto kTyped = std::to_array<Typed>({
    {"emptyTextIsZero", "", 0, "00.00:00:00/0000"},
    {"blanksAreZero", "    ", 0, "00.00:00:00/0000"},
    {"minusSignNegates", "-00:00:01:00", -48000, "00.00:01:00/0000"},
    {"fieldsAreTakenModulo", "123:75:75:99", 4018366080, "23.15:15:24/0000"},
    {"modulesWrapToZero", "100:60:60:25", 0, "00.00:00:00/0000"},
    {"highestFields", "99:59:59:24", 17279998080, "99.59:59:24/0000"},
    {"aloneHours", "1", 172800000, "01.00:00:00/0000"},
    {"blanksDoNotSeparate", "1 2 3 4", 172800000, "01.00:00:00/0000"},
    {"singleDigits", "1:2:3:4", 178711680, "01.02:03:04/0000"},
    {"fieldsOfAnyLength", "00001:0002:0003:0004", 178711680, "01.02:03:04/0000"},
    {"blankInThePlaceOfTheSign", " 01:02:03:04", 178711680, "01.02:03:04/0000"},
    {"plusSign", "+01:02:03:04", 178711680, "01.02:03:04/0000"},
    {"blanksAroundTheSign", "  -  01:02:03:04", -178711680, "01.02:03:04/0000"},
    {"secondSignIsASeparator", "+-1", 2880000, "00.01:00:00/0000"},
    {"secondMinusIsASeparator", "--1", -2880000, "00.01:00:00/0000"},
    {"endsAfterHoursSeparator", "1:", 172800000, "01.00:00:00/0000"},
    {"endsAfterMinutes", "1:2", 178560000, "01.02:00:00/0000"},
    {"endsAfterMinutesSeparator", "1:2:", 178560000, "01.02:00:00/0000"},
    {"endsAfterSeconds", "1:2:3", 178704000, "01.02:03:00/0000"},
    {"endsAfterSecondsSeparator", "1:2:3:", 178704000, "01.02:03:00/0000"},
    {"missingHours", ":2:3:4", 5911680, "00.02:03:04/0000"},
    {"missingMinutes", "1::3:4", 172951680, "01.00:03:04/0000"},
    {"framesAlone", ":::4", 7680, "00.00:00:04/0000"},
    {"blankAfterASeparatorIsNoDigit", "1: 2:3:4", 172805760, "01.00:00:03/0000"},
    {"blanksAheadOfASeparatorAreSkipped", "1 :2 :3 :4", 178711680, "01.02:03:04/0000"},
    {"anyCharacterSeparates", "1x2y3z4", 178711680, "01.02:03:04/0000"},
    {"letterAheadOfHoursIsASeparator", "x1:2:3:4", 2981760, "00.01:02:03/0000"},
    {"onlyTheSpaceIsABlank", "\t1:2:3:4", 2981760, "00.01:02:03/0000"},
    {"timestampLosesItsRemainder", "01:02:03:04/0999", 178711680, "01.02:03:04/0000"},
    {"timestampMarksAreSeparators", "01|02:03:04|0999", 178711680, "01.02:03:04/0000"},
});

TEST(TimecodeToSamples, readsTypedTexts) {
  for (const Typed& row : kTyped) {
    EXPECT_EQ(TimecodeToSamples(row.text, 2, 48000), row.samples) << row.rule << ": " << row.text;
  }
}

TEST(TimecodeToSamples, countsAsTheComposedTimestampDoes) {
  for (const Typed& row : kTyped) {
    const std::int64_t sign = row.samples < 0 ? -1 : 1;
    EXPECT_EQ(TimecodeToSamples(row.text, 2, 48000), sign * AdlToSamples(row.sameTimestamp))
        << row.rule << ": " << row.text;
  }
}

struct Code {
  std::int32_t code;
  std::int64_t hourAt44100;
  std::int64_t hourAt48000;
  std::int64_t frame29At44100;  ///< 29 modulo the frames of the code
  std::int64_t frame29At48000;
  std::int64_t stampAt44100;  ///< 10:11:12:23
  std::int64_t stampAt48000;
};

constexpr auto kCodes = std::to_array<Code>({
    {0, 158760000, 172800000, 42630, 46400, 1617269010, 1760292800},  // 30, not declared
    {1, 158760000, 172800000, 9188, 10000, 1617277463, 1760302000},   // 24
    {2, 158760000, 172800000, 7056, 7680, 1617275772, 1760300160},    // 25
    {3, 158918760, 172972800, 42673, 46447, 1618886280, 1762053093},  // 29.97 non-drop
    {4, 158759842, 172799828, 42673, 46447, 1617267663, 1760291333},  // 29.97 drop
    {5, 158760000, 172800000, 42630, 46400, 1617269010, 1760292800},  // 30 non-drop
    {6, 158601240, 172627200, 42630, 46400, 1615652010, 1758532800},  // 30 drop
    {7, 158918760, 172972800, 9197, 10010, 1618894740, 1762062302},   // 23.976
});
static_assert(kCodes.size() == 8);

TEST(TimecodeToSamples, everyFrameRateCode) {
  for (const Code& row : kCodes) {
    EXPECT_EQ(TimecodeToSamples("01:00:00:00", row.code, 44100), row.hourAt44100) << row.code;
    EXPECT_EQ(TimecodeToSamples("01:00:00:00", row.code, 48000), row.hourAt48000) << row.code;
    EXPECT_EQ(TimecodeToSamples("00:00:00:29", row.code, 44100), row.frame29At44100) << row.code;
    EXPECT_EQ(TimecodeToSamples("00:00:00:29", row.code, 48000), row.frame29At48000) << row.code;
    EXPECT_EQ(TimecodeToSamples("10:11:12:23", row.code, 44100), row.stampAt44100) << row.code;
    EXPECT_EQ(TimecodeToSamples("10:11:12:23", row.code, 48000), row.stampAt48000) << row.code;
  }
}

TEST(TimecodeToSamples, separatorsOfTheTextDoNotChooseDropFrame) {
  EXPECT_EQ(TimecodeToSamples("01:00:00;00", 3, 48000), 172972800);
  EXPECT_EQ(TimecodeToSamples("01:00:00:00", 4, 48000), 172799828);
}

TEST(TimecodeToSamples, everyRateBut44100CountsAs48000) {
  for (const std::int32_t rate : {0, -1, 1, 32000, 44099, 44101, 48000, 88200, 96000, 192000}) {
    EXPECT_EQ(TimecodeToSamples("01:00:00:00", 5, rate), 172800000) << rate;
  }
  EXPECT_EQ(TimecodeToSamples("01:00:00:00", 5, 44100), 158760000);
}

TEST(TimecodeToSamples, sessionRateReadsTheSameDigitsDifferently) {
  const char* const stamp = "01.00:00:00/0000";
  EXPECT_EQ(TimecodeToSamples(stamp, 2, 48000), AdlToSamples(stamp));
  EXPECT_EQ(TimecodeToSamples(stamp, 3, 48000) - AdlToSamples(stamp), 172800);
}

TEST(TimecodeToSamples, codeOutOfRangeCountsAs0) {
  for (const std::int32_t code : {-1, 8, 255, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(TimecodeToSamples("10:11:12:29", code, 48000),
              TimecodeToSamples("10:11:12:29", 0, 48000))
        << code;
  }
}

TEST(TimecodeToSamples, nullIsTheEmptyText) {
  EXPECT_EQ(TimecodeToSamples(nullptr, 2, 48000), 0);
}

// What such a number counts as is open; the fields of the timestamp stay in their ranges.
TEST(TimecodeToSamples, endlessDigitsStayInRange) {
  const std::string nines(10'000, '9');
  const std::string text = nines + ":" + nines + ":" + nines + ":" + nines;
  const std::int64_t samples = TimecodeToSamples(text.c_str(), 2, 48000);
  EXPECT_LE(samples, 17279998080);
  EXPECT_EQ(samples, TimecodeToSamples(text.c_str(), 2, 48000));
}

}  // namespace
}  // namespace velmora
