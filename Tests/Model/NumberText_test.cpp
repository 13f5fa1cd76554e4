#include "Model/NumberText.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <string>
#include <string_view>

namespace velmora {
namespace {

class NumberTexts : public testing::TestWithParam<std::int32_t> {};

TEST_P(NumberTexts, areThoseOfPrintf) {
  char text[32];
  std::snprintf(text, sizeof text, "%d", GetParam());
  EXPECT_EQ(std::string_view(NumberText(GetParam())), text);
  std::snprintf(text, sizeof text, "%04d\n", GetParam());
  EXPECT_EQ(std::string_view(NumberText::OfEvent(GetParam())), text);
}

INSTANTIATE_TEST_SUITE_P(, NumberTexts,
                         testing::Values(0, 7, 10, 42, 999, 1000, 9999, 10000, 12345, 999999, -1,
                                         -42, -999, -1000, std::numeric_limits<std::int32_t>::max(),
                                         std::numeric_limits<std::int32_t>::min()));

TEST(NumberText, copyHasATextOfItsOwn) {
  NumberText a(17);
  const NumberText b = a;
  a = NumberText(4);
  EXPECT_EQ(std::string(b), "17");
  EXPECT_EQ(std::string(a), "4");
}

}  // namespace
}  // namespace velmora
