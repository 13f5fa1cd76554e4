#include <gtest/gtest.h>

#include "Check/Finding.h"

namespace velmora::check {
namespace {

TEST(Codes, rowsStandByCode) {
  for (std::size_t i = 0; i < kCodes.size(); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(kCodes[i].code), i) << kCodes[i].name;
  }
  EXPECT_EQ(kCodes.back().code, Code::OffsetUnused);
}

}  // namespace
}  // namespace velmora::check
