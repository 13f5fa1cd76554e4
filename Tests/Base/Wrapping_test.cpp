#include "Base/Wrapping.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace velmora {
namespace {

constexpr auto kMax32 = std::numeric_limits<std::int32_t>::max();
constexpr auto kMin32 = std::numeric_limits<std::int32_t>::min();
constexpr auto kMax64 = std::numeric_limits<std::int64_t>::max();
constexpr auto kMin64 = std::numeric_limits<std::int64_t>::min();

TEST(Wrapping, staysPlainArithmeticInRange) {
  EXPECT_EQ(WrapAdd(2, -5), -3);
  EXPECT_EQ(WrapSubtract(2, -5), 7);
  EXPECT_EQ(WrapMultiply(-3, 5), -15);
  EXPECT_EQ(WrapMultiply<std::int64_t>(-3'000'000'000, 2), -6'000'000'000);
}

TEST(Wrapping, wrapsAt32Bits) {
  EXPECT_EQ(WrapAdd(kMax32, 1), kMin32);
  EXPECT_EQ(WrapSubtract(kMin32, 1), kMax32);
  EXPECT_EQ(WrapMultiply(kMin32, -1), kMin32);
  EXPECT_EQ(WrapMultiply(65536, 65537), 65536);
}

TEST(Wrapping, wrapsAt64Bits) {
  EXPECT_EQ(WrapAdd(kMax64, std::int64_t{1}), kMin64);
  EXPECT_EQ(WrapSubtract(kMin64, std::int64_t{1}), kMax64);
  EXPECT_EQ(WrapMultiply(kMin64, std::int64_t{-1}), kMin64);
}

static_assert(WrapAdd(kMax32, kMax32) == -2, "usable at compile time");

}  // namespace
}  // namespace velmora
