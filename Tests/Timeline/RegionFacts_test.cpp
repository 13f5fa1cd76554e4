#include "Timeline/RegionFacts.h"

#include <gtest/gtest.h>

#include "Base/FileNames.h"

namespace velmora::timeline {
namespace {

TEST(RegionFacts, tellTrackPlaceLengthAndFile) {
  host::SessionRegion region;
  region.track = 1;
  region.position = 172800000;
  region.start = 48000;
  region.stop = 48000 + 120000;
  region.name = "Interview";
  region.path = "/audio/day 1/Interview.wav";
  const RegionFacts facts = FactsOf(region, host::SessionClock({48000, 2}));
  EXPECT_EQ(facts.title, "Interview   \u00b7   region on track 2");
  EXPECT_EQ(facts.details,
            "01:00:00:00 \u2013 01:00:02:12 (2.500 s, 120000 samples from 172800000)   \u00b7   "
            "Interview.wav [48000 \u2013 168000]");
}

TEST(RegionFacts, nameTheKindOfAPiece) {
  host::SessionRegion region;
  const auto titleOf = [&region](const char* name) {
    region.name = name;
    return FactsOf(region, host::SessionClock()).title;
  };
  EXPECT_EQ(titleOf("a_FadeIn"), "a_FadeIn   \u00b7   fade in on track 1");
  EXPECT_EQ(titleOf("a_XFade"), "a_XFade   \u00b7   crossfade on track 1");
  EXPECT_EQ(titleOf("a_FadeOut"), "a_FadeOut   \u00b7   fade out on track 1");
}

TEST(DurationText, goesFromSecondsToHours) {
  EXPECT_EQ(DurationText(0, 48000), "0.000 s");
  EXPECT_EQ(DurationText(24000, 48000), "0.500 s");
  EXPECT_EQ(DurationText(48000 * 60, 48000), "1 min 00.000 s");
  EXPECT_EQ(DurationText(48000 * 62 + 24000, 48000), "1 min 02.500 s");
  EXPECT_EQ(DurationText(48000LL * 3600 + 48000, 48000), "1 h 00 min 01.000 s");
  EXPECT_EQ(DurationText(-24000, 48000), "-0.500 s");
  EXPECT_EQ(DurationText(48000LL * -90, 48000), "-1 min 30.000 s");
}

TEST(DurationText, roundingUpToAMinuteReadsAsOne) {
  EXPECT_EQ(DurationText(48000 * 60 - 1, 48000), "1 min 00.000 s");
  EXPECT_EQ(DurationText(48000 * 60 - 48, 48000), "59.999 s");
}

TEST(FileNameOf, isWhatFollowsTheLastSlash) {
  EXPECT_EQ(FileNameOf("/a/b.wav"), "b.wav");
  EXPECT_EQ(FileNameOf("b.wav"), "b.wav");
  EXPECT_EQ(FileNameOf("/a/"), "");
  EXPECT_EQ(FileNameOf(""), "");
}

}  // namespace
}  // namespace velmora::timeline
