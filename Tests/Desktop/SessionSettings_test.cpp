#include "Desktop/Logic/SessionSettings.h"

#include <gtest/gtest.h>

namespace velmora::desktop {
namespace {

TEST(SessionSettings, answerTheHostQueries) {
  SessionSettings settings;
  float rate = 0;
  std::int32_t frameRate = -1;
  std::int32_t offset = -1;
  EXPECT_EQ(settings.GetSampleRate(&rate), 0);
  EXPECT_EQ(settings.GetTimeCodeInfo(&frameRate, &offset), 0);
  EXPECT_EQ(rate, 48000);
  EXPECT_EQ(frameRate, 0);
  EXPECT_EQ(offset, 0);
  settings.SetRates({44100, 7});
  settings.GetSampleRate(&rate);
  settings.GetTimeCodeInfo(&frameRate, &offset);
  EXPECT_EQ(rate, 44100);
  EXPECT_EQ(frameRate, 7);
}

}  // namespace
}  // namespace velmora::desktop
