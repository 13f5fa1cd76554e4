#include <gtest/gtest.h>

#include <array>
#include <map>
#include <string>

#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

struct Rate {
  char mark;
  double hertz;
};

// The table of sample-rate marks; a pulled rate is base * 1000 / 1001 or base * 1001 / 1000 as a
// double, written with all of its digits.
constexpr auto kRates = std::to_array<Rate>({
    {'(', 30720.0},
    {'\'', 31968.031968031966},
    {'=', 32000.0},
    {'"', 32032.0},
    {')', 33333.333333333336},
    {'[', 42336.0},
    {'~', 44055.944055944055},
    {'|', 44100.0},
    {'^', 44144.1},
    {']', 45937.5},
    {'<', 46080.0},
    {'-', 47952.04795204795},
    {'/', 48000.0},
    {'+', 48048.0},
    {'>', 50000.0},
    {'`', 84672.0},
    {'?', 88111.88811188811},
    {'@', 88200.0},
    {'$', 88288.2},
    {'!', 91875.0},
    {'{', 92160.0},
    {'&', 95904.0959040959},
    {'*', 96000.0},
    {'#', 96096.0},
    {'}', 100000.0},
});
static_assert(kRates.size() == 25);

std::string WithRateMark(int code) {
  return std::string("00:00:00:00") + static_cast<char>(code) + "0000";
}

TEST(AdlSampleRate, everyMarkNamesItsExactRate) {
  for (const Rate& rate : kRates) {
    EXPECT_EQ(AdlSampleRate(WithRateMark(rate.mark).c_str()), rate.hertz) << rate.mark;
  }
}

TEST(AdlSampleRate, everyOtherCharacterNamesNone) {
  std::map<int, double> known;
  for (const Rate& rate : kRates) known[rate.mark] = rate.hertz;
  int unknown = 0;
  for (int code = 0; code < 256; ++code) {
    if (known.count(code) != 0) continue;
    EXPECT_EQ(AdlSampleRate(WithRateMark(code).c_str()), 0.0) << "code " << code;
    ++unknown;
  }
  EXPECT_EQ(unknown, 256 - 25);
}

TEST(AdlSampleRate, looksAtPositionElevenAlone) {
  EXPECT_EQ(AdlSampleRate("///////////|////"), 44100.0);
  EXPECT_EQ(AdlSampleRate("not a stamp<"), 46080.0);
}

TEST(AdlSampleRate, textThatEndsBeforeTheMarkHasNone) {
  EXPECT_EQ(AdlSampleRate(""), 0.0);
  EXPECT_EQ(AdlSampleRate("01:00:00:00"), 0.0);
  EXPECT_EQ(AdlSampleRate("01:00:00:00/"), 48000.0);
  EXPECT_EQ(AdlSampleRate(nullptr), 0.0);
}

}  // namespace
}  // namespace velmora
