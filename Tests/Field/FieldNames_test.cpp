#include <gtest/gtest.h>

#include "Field/FieldTime.h"

namespace velmora::field {
namespace {

TEST(TimeRates, frameRateOfAPulledRate) {
  EXPECT_EQ((TimeRates{48000, 30, true, true}).FrameRate(), 30000.0 / 1001.0);
  EXPECT_EQ((TimeRates{48000, 25, false, false}).FrameRate(), 25.0);
}

}  // namespace
}  // namespace velmora::field
