// Times that are read many at a time are those that are read one by one.

#include "Check/PlainTimes.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <string_view>

#include "Timecode/RateTables.h"

namespace velmora::check {
namespace {

std::string Words(const std::optional<PlainTime>& time) {
  if (!time) return "none";
  return std::to_string(time->samples) + " at " + std::to_string(time->rates.sampleRate) + ", " +
         std::to_string(time->rates.framesPerSecond) + (time->rates.pulledDown ? " pulled" : "") +
         (time->rates.dropFrame ? " drop" : "");
}

void ExpectAlike(PlainTimes& times, const std::string& text, const char* rule) {
  const field::Value value{text, false};
  EXPECT_EQ(Words(times.Read(value)), Words(ReadPlainTime(value))) << rule << ": " << text;
}

struct Row {
  const char* rule;
  const char* text;
};

constexpr auto kRows = std::to_array<Row>({
    {"lowest", "00.00:00:00/0000"},
    {"highest", "99.99:99:99/9999"},
    {"remainderAlone", "00.00:00:00/1234"},
    {"dropBySemicolon", "01.11:09;02/0007"},
    {"dropByComma", "01.10:00,00/0007"},
    {"anySeparatorElse", "01.10x00y00/0007"},
    {"otherFrameRate", "01|11:09:02/0007"},
    {"pulledDown", "01:11:09;02/0007"},
    {"otherSampleRate", "01.11:09:02|0007"},
    {"fractionOfASample", "01=11:09:02~0007"},
    {"unknownFrameRate", "01x11:09:02/0007"},
    {"unknownSampleRate", "01.11:09:02x0007"},
    {"noDigitInHours", "0:.11:09:02/0007"},
    {"noDigitInMinutes", "01./1:09:02/0007"},
    {"noDigitInSeconds", "01.11:0 :02/0007"},
    {"noDigitInFrames", "01.11:09:0\x7F/0007"},
    {"noDigitInTheRemainder", "01.11:09:02/00a7"},
    {"byteBeyondAscii", "01.11:09:02/000\xB7"},
    {"byteBeyondAsciiAtTheStart",
     "\xB0"
     "1.11:09:02/0007"},
    {"oneTooShort", "01.11:09:02/000"},
    {"oneTooLong", "01.11:09:02/00070"},
    {"empty", ""},
    {"notGiven", "_"},
});

// Each after a time with the marks that most of them have, and each twice in a row.
TEST(PlainTimes, areReadAsOneByOne) {
  for (const Row& row : kRows) {
    PlainTimes times;
    ExpectAlike(times, row.text, row.rule);
    ExpectAlike(times, "01.02:03:04/0567", row.rule);
    ExpectAlike(times, row.text, row.rule);
    ExpectAlike(times, row.text, row.rule);
  }
}

TEST(PlainTimes, takeNoneInQuotationMarks) {
  PlainTimes times;
  const std::string text = "01.02:03:04/0567";
  EXPECT_TRUE(times.Read({text, false}));
  EXPECT_FALSE(times.Read({text, true}));
}

TEST(PlainTimes, marksOfNulsAreNone) {
  PlainTimes times;
  std::string text = "01.02:03:04/0567";
  text[2] = text[11] = '\0';
  ExpectAlike(times, text, "firstOfAll");
  ExpectAlike(times, "01.02:03:04/0567", "known");
  ExpectAlike(times, text, "afterOthers");
}

TEST(PlainTimes, areExactAtEveryPairOfMarks) {
  for (const FrameRateMark& frames : kFrameRateMarks) {
    for (const SampleRateMark& rate : kSampleRateMarks) {
      PlainTimes times;
      for (const char* const text : {"00.00:00:01/0000", "23.59:59:23/9999", "99.09;59;29/0001",
                                     "07.53,17,98/0001", "00.01:00;00/0000"}) {
        std::string stamp = text;
        stamp[2] = frames.mark;
        stamp[11] = rate.mark;
        ExpectAlike(times, stamp, "pair");
      }
    }
  }
}

TEST(PlainTimes, agreeOnAnyText) {
  std::mt19937 random(1);
  PlainTimes times;
  constexpr std::string_view kOdd = "0123456789:;,./|_ \"(<~a\x80\xFF\x7F";
  for (int i = 0; i < 20000; ++i) {
    std::string text = "0" + std::to_string(random() % 10) + ".00:00:00/0000";
    for (const std::size_t at : {3U, 4U, 6U, 7U, 9U, 10U, 12U, 13U, 14U, 15U}) {
      text[at] = static_cast<char>('0' + random() % 10);
    }
    if (random() % 2 == 0) text[random() % text.size()] = kOdd[random() % kOdd.size()];
    ExpectAlike(times, text, "random");
  }
}

}  // namespace
}  // namespace velmora::check
