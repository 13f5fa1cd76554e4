#include "DawProject/Seconds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

namespace velmora::dawproject {
namespace {

constexpr std::int64_t kDaySeconds = 24 * 60 * 60;

/// Common rates, with those that are pulled up or down by a thousandth.
constexpr double kRates[] = {8000,         11025,  16000,  22050,  32000,  44100,
                             47952.046875, 48000,  48048,  64000,  88200,  96000,
                             176400,       192000, 352800, 384000, 705600, 768000};

void ExpectExact(std::int64_t samples, double rate) {
  const std::string text = SecondsText(samples, rate);
  ASSERT_EQ(text.find_first_not_of("-0123456789."), std::string::npos) << text;
  ASSERT_EQ(std::llround(std::strtod(text.c_str(), nullptr) * rate), samples) << text;
  ASSERT_EQ(std::llroundl(std::strtold(text.c_str(), nullptr) * static_cast<long double>(rate)),
            samples)
      << text;
  // As a program keeps it that writes six decimals.
  char six[64];
  std::snprintf(six, sizeof six, "%.6f", std::strtod(text.c_str(), nullptr));
  ASSERT_EQ(std::llround(std::strtod(six, nullptr) * rate), samples) << text << ", " << six;
}

TEST(SecondsText, givesTheExactSampleBackAtEveryRateWithinADay) {
  std::mt19937_64 random(24);
  for (const double rate : kRates) {
    const auto day = static_cast<std::int64_t>(rate * kDaySeconds);
    for (std::int64_t i = 0; i < 5000; ++i) {
      ExpectExact(i, rate);
      ExpectExact(-i, rate);
      ExpectExact(day - i, rate);
      ExpectExact(static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(day)), rate);
      if (HasFatalFailure()) FAIL() << rate;
    }
  }
}

TEST(SecondsText, isShortAndPlain) {
  const struct {
    std::int64_t samples;
    double rate;
    const char* text;
  } rows[] = {
      {0, 48000, "0"},
      {48000, 48000, "1"},
      {-24000, 48000, "-0.5"},
      {1, 48000, "0.000020833333333333333"},
      {44101, 44100, "1.0000226757369615"},
      {48000 * 86400LL - 1, 48000, "86399.99997916666"},
  };
  for (const auto& row : rows) EXPECT_EQ(SecondsText(row.samples, row.rate), row.text);
}

TEST(NumberText, readsBackAsTheSame) {
  for (const double number : {0.50118723362727224, 1e300, 1e-300, -7.25, 0.1}) {
    const std::string text = NumberText(number);
    EXPECT_EQ(std::strtod(text.c_str(), nullptr), number) << text;
    EXPECT_EQ(text.find('e'), std::string::npos) << text;
  }
}

}  // namespace
}  // namespace velmora::dawproject
