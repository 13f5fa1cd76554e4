#include "Base/Text.h"

#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace velmora {
namespace {

TEST(EqualsIgnoringCase, comparesWholeTexts) {
  EXPECT_TRUE(EqualsIgnoringCase("Cut", "cUT"));
  EXPECT_TRUE(EqualsIgnoringCase("", ""));
  EXPECT_FALSE(EqualsIgnoringCase("Cut", "Cuts"));
  EXPECT_FALSE(EqualsIgnoringCase("Cuts", "Cut"));
  EXPECT_FALSE(EqualsIgnoringCase("", "x"));
  EXPECT_FALSE(EqualsIgnoringCase("Cut", "Cat"));
}

TEST(EqualsIgnoringCase, onlyLettersHaveTwoCases) {
  EXPECT_FALSE(EqualsIgnoringCase("@", "`"));
  EXPECT_FALSE(EqualsIgnoringCase("[", "{"));
  EXPECT_FALSE(EqualsIgnoringCase("_", "\x7F"));
  EXPECT_FALSE(EqualsIgnoringCase("\xC4", "\xE4"));
  for (char letter = 'a'; letter <= 'z'; ++letter) {
    const std::string lower(1, letter);
    const std::string upper(1, static_cast<char>(letter - 32));
    EXPECT_TRUE(EqualsIgnoringCase(lower.c_str(), upper.c_str())) << letter;
  }
}

TEST(EqualsIgnoringCase, nullEqualsNothing) {
  EXPECT_FALSE(EqualsIgnoringCase(nullptr, "Cut"));
  EXPECT_FALSE(EqualsIgnoringCase("Cut", nullptr));
  EXPECT_FALSE(EqualsIgnoringCase(nullptr, ""));
  EXPECT_FALSE(EqualsIgnoringCase(nullptr, nullptr));
}

struct Integer {
  const char* text;
  std::int32_t value;
};

TEST(ToInt32, readsAsAtoiDoesAndStopsAtTheEdges) {
  constexpr auto kLowest = std::numeric_limits<std::int32_t>::min();
  constexpr auto kHighest = std::numeric_limits<std::int32_t>::max();
  constexpr auto kRows = std::to_array<Integer>({
      {"0", 0},
      {"0012", 12},
      {"-7", -7},
      {"+7", 7},
      {"  \t\n\v\f\r42", 42},
      {"42 43", 42},
      {"42.9", 42},
      {"1~2", 1},
      {"1e3", 1},
      {"0x10", 0},
      {"x", 0},
      {"", 0},
      {"-", 0},
      {"+-5", 0},
      {"- 5", 0},
      {"\"5\"", 0},
      {"2147483647", kHighest},
      {"2147483648", kHighest},
      {"4294967296", kHighest},
      {"4294967297", kHighest},
      {"-2147483648", kLowest},
      {"-2147483649", kLowest},
      {"-4294967296", kLowest},
      {"99999999999999999999", kHighest},
      {"-99999999999999999999", kLowest},
      {"0000000000000000000000000000012", 12},
  });
  for (const Integer& row : kRows) EXPECT_EQ(ToInt32(row.text), row.value) << row.text;
  EXPECT_EQ(ToInt32(nullptr), 0);
  EXPECT_EQ(ToInt32(std::string(100'000, '9').c_str()), kHighest);
}

struct Decimal {
  const char* text;
  double value;
};

constexpr auto kDecimals = std::to_array<Decimal>({
    {"0", 0.0},
    {"-3.5", -3.5},
    {"+3.5", 3.5},
    {"  6.25 dB", 6.25},
    {".5", 0.5},
    {"5.", 5.0},
    {"1e3", 1000.0},
    {"1E-2", 0.01},
    {"1e", 1.0},
    {"0.1", 0.1},
    {"1,5", 1.0},
    {"0x10", 16.0},
    {"1e400", std::numeric_limits<double>::infinity()},
    {"-1e400", -std::numeric_limits<double>::infinity()},
    {"1e-400", 0.0},
    {"inf", std::numeric_limits<double>::infinity()},
    {"-Infinity", -std::numeric_limits<double>::infinity()},
    {"x", 0.0},
    {"", 0.0},
    {"-", 0.0},
    {"_", 0.0},
    {"\"5\"", 0.0},
});

TEST(ToDouble, readsAsAtofDoes) {
  for (const Decimal& row : kDecimals) EXPECT_EQ(ToDouble(row.text), row.value) << row.text;
  EXPECT_TRUE(std::isnan(ToDouble("nan")));
  EXPECT_EQ(ToDouble(nullptr), 0.0);
}

TEST(ToDouble, hasADecimalPointInEveryLocale) {
  for (const char* const locale : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE", "C"}) {
    if (std::setlocale(LC_ALL, locale) == nullptr) continue;
    for (const Decimal& row : kDecimals) EXPECT_EQ(ToDouble(row.text), row.value) << locale;
  }
  std::setlocale(LC_ALL, "C");
}

TEST(Counted, isPluralForAllButOne) {
  EXPECT_EQ(Counted(0, "region"), "0 regions");
  EXPECT_EQ(Counted(1, "region"), "1 region");
  EXPECT_EQ(Counted(2, "region"), "2 regions");
}

}  // namespace
}  // namespace velmora
