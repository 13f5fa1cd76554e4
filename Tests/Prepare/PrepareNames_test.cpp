#include <gtest/gtest.h>

#include "Prepare/PrepareProject.h"

namespace velmora::prepare {
namespace {

TEST(HowMade, names) {
  EXPECT_STREQ(NameOf(HowMade::Linked), "linked");
  EXPECT_STREQ(NameOf(HowMade::Resampled), "resampled");
}

}  // namespace
}  // namespace velmora::prepare
