#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "Timecode/TimecodeEntry.h"

namespace velmora {
namespace {

TimecodeValue Digested(bool sign, const char* text) {
  TimecodeValue value;
  value.sign = sign;
  value.DigestString(text);
  return value;
}

TEST(TimecodeValue, startsAtZeroUnsignedWith30Frames) {
  const TimecodeValue value;
  EXPECT_EQ(value.hours, 0);
  EXPECT_EQ(value.mins, 0);
  EXPECT_EQ(value.secs, 0);
  EXPECT_EQ(value.frames, 0);
  EXPECT_EQ(value.sgn, 1);
  EXPECT_FALSE(value.sign);
  EXPECT_EQ(value.max_frames, 30);
}

struct Composed {
  std::string_view rule;
  TimecodeValue value;
  const char* text;
};

TEST(TimecodeValue, composes) {
  const auto rows = std::to_array<Composed>({
      {"blankInThePlaceOfTheSign", {1, 2, 3, 4, 1, false, 30}, " 01:02:03:04"},
      {"unsignedShowsNoMinus", {1, 2, 3, 4, -1, false, 30}, " 01:02:03:04"},
      {"plus", {1, 2, 3, 4, 1, true, 30}, "+01:02:03:04"},
      {"minus", {1, 2, 3, 4, -1, true, 30}, "-01:02:03:04"},
      {"anyNegativeSgnIsMinus", {1, 2, 3, 4, -7, true, 30}, "-01:02:03:04"},
      {"zeroSgnIsPlus", {1, 2, 3, 4, 0, true, 30}, "+01:02:03:04"},
      {"minusZero", {0, 0, 0, 0, -1, true, 30}, "-00:00:00:00"},
      {"signedShowsHoursWithoutTheirSign", {-5, 6, 7, 8, 1, true, 30}, "+05:06:07:08"},
      {"otherFieldsAsTheyStand", {-5, -6, -7, -8, 1, true, 30}, "+05:-6:-7:-8"},
      {"unsignedHoursAsTheyStand", {-5, 6, 7, 8, 1, false, 30}, " -5:06:07:08"},
      {"widerNumbersAreNotCut", {100, 200, 300, 400, 1, false, 30}, " 100:200:300:400"},
  });
  for (const Composed& row : rows) EXPECT_EQ(row.value.ComposeString(), row.text) << row.rule;
}

struct Commit {
  std::string_view rule;
  bool sign;
  const char* typed;
  const char* committed;
};

// From the typed text to what the field shows after it lost the focus.
constexpr auto kCommits = std::to_array<Commit>({
    {"signedStopsAt12Hours", true, "+25:00:00:00", "+12:00:00:00"},
    {"signed12HoursDropTheRest", true, "-12:30:15:10", "-12:00:00:00"},
    {"oneFrameAbove12HoursCollapses", true, "+12:00:00:01", "+12:00:00:00"},
    {"justBelow12HoursStays", true, "+11:59:59:29", "+11:59:59:29"},
    {"minutesSaturate", true, "+11:61:00:00", "+11:59:00:00"},
    {"secondsDoNotCarry", true, "+00:00:90:00", "+00:00:59:00"},
    {"everyFieldSaturates", false, " 25:61:61:40", " 23:59:59:29"},
    {"unsignedKnowsNo12HourRule", false, " 12:30:00:00", " 12:30:00:00"},
    {"unsigned24Hours", false, " 24:00:00:00", " 23:00:00:00"},
    {"ninetyNineEverywhere", false, " 99:99:99:99", " 23:59:59:29"},
    {"ninetyNineEverywhereSigned", true, "-99:99:99:99", "-12:00:00:00"},
    {"thirtyFramesBecome29", false, " 00:00:00:30", " 00:00:00:29"},
    {"twentyNineFramesStay", false, " 00:00:00:29", " 00:00:00:29"},
    {"minusZeroKeepsItsSign", true, "-00:00:00:00", "-00:00:00:00"},
    {"blankSignBecomesPlus", true, " 05:06:07:08", "+05:06:07:08"},
    {"letterAsSignBecomesPlus", true, "x05:06:07:08", "+05:06:07:08"},
    {"digitInThePlaceOfTheSignIsTaken", true, "01:02:03:04", "+01:02:03:04"},
    {"colonInThePlaceOfTheSignIsTaken", true, ":1:2:3:4", "+01:02:03:04"},
    {"negativeHoursBecomeZero", true, "+-5:06:07:08", "+00:06:07:08"},
    {"negativeHoursBecomeZeroUnsigned", false, "-5:06:07:08", " 00:06:07:08"},
    {"negativeMinutesSecondsFramesBecomeZero", false, "1:-2:-3:-4", " 01:00:00:00"},
    {"plusInsideANumberIsRead", false, "+1:+2:+3:+4", " 01:02:03:04"},
    {"blanksAheadOfNumbersAreSkipped", false, "  1: 2: 3: 4", " 01:02:03:04"},
    {"shortNumbers", true, "-1:2:3:4", "-01:02:03:04"},
    {"textAfterTheFramesIsIgnored", false, " 01:02:03:04/0999", " 01:02:03:04"},
    {"numbersNotReachedAreZero", true, "+11", "+11:00:00:00"},
    {"scanStopsAtAnotherSeparator", true, "+01:02;03:04", "+01:02:00:00"},
    {"blankAheadOfAColonStopsTheScan", true, "+01 :02:03:04", "+01:00:00:00"},
    {"emptySignedText", true, "", "+00:00:00:00"},
    {"emptyUnsignedText", false, "", " 00:00:00:00"},
    {"lettersAreZero", false, "hello", " 00:00:00:00"},
    {"minusAlone", true, "-", "-00:00:00:00"},
    {"numberBeyond32BitsSaturates", false, " 99999999999:00:00:00", " 23:00:00:00"},
    {"numberBeyond64BitsSaturates", false, " 1:99999999999999999999:0:0", " 01:59:00:00"},
});

TEST(TimecodeValue, digestsAndLimits) {
  for (const Commit& row : kCommits) {
    EXPECT_EQ(Digested(row.sign, row.typed).ComposeString(), row.committed)
        << row.rule << ": '" << row.typed << "'";
  }
}

TEST(TimecodeValue, committedTextCommitsToItself) {
  for (const Commit& row : kCommits) {
    EXPECT_EQ(Digested(row.sign, row.committed).ComposeString(), row.committed) << row.rule;
  }
}

TEST(TimecodeValue, digestStoresEveryField) {
  const TimecodeValue value = Digested(true, "-01:02:03:04");
  EXPECT_EQ(value.hours, 1);
  EXPECT_EQ(value.mins, 2);
  EXPECT_EQ(value.secs, 3);
  EXPECT_EQ(value.frames, 4);
  EXPECT_EQ(value.sgn, -1);
  EXPECT_TRUE(value.sign);
  EXPECT_EQ(value.max_frames, 30);
}

TEST(TimecodeValue, minusZeroHasNegativeSgn) {
  EXPECT_EQ(Digested(true, "-00:00:00:00").sgn, -1);
  EXPECT_EQ(Digested(true, "+00:00:00:00").sgn, 1);
}

TEST(TimecodeValue, plusBringsSgnBack) {
  TimecodeValue value = Digested(true, "-01:00:00:00");
  value.DigestString("+01:00:00:00");
  EXPECT_EQ(value.sgn, 1);
}

TEST(TimecodeValue, unsignedDigestLeavesSgnAlone) {
  TimecodeValue value;
  value.sgn = -1;
  value.DigestString(" 01:00:00:00");
  EXPECT_EQ(value.sgn, -1);
}

TEST(TimecodeValue, digestReplacesWhatTheTextLacksByZero) {
  TimecodeValue value = Digested(false, " 01:02:03:04");
  value.DigestString(" 05");
  EXPECT_EQ(value.ComposeString(), " 05:00:00:00");
}

TEST(TimecodeValue, framesStayBelowMaxFrames) {
  TimecodeValue value;
  value.max_frames = 25;
  value.DigestString(" 00:00:00:25");
  EXPECT_EQ(value.frames, 24);
  value.DigestString(" 00:00:00:24");
  EXPECT_EQ(value.frames, 24);
}

TEST(TimecodeValue, frameLimitHoldsAfterTheTwelveHourRule) {
  TimecodeValue value;
  value.sign = true;
  value.max_frames = 25;
  value.DigestString("+12:00:00:99");
  EXPECT_EQ(value.ComposeString(), "+12:00:00:00");
}

}  // namespace
}  // namespace velmora
