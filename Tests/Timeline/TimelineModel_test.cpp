#include "Timeline/TimelineModel.h"

#include <gtest/gtest.h>

namespace velmora::timeline {
namespace {

host::SessionRegion Region(std::int64_t track, std::int64_t position, std::int64_t length,
                           const std::string& name = "Take") {
  host::SessionRegion region;
  region.track = track;
  region.position = position;
  region.stop = length;
  region.name = name;
  region.path = "/audio/" + name + ".wav";
  return region;
}

/// One sample a pixel, from sample 0 on.
TimeScale OneToOne() {
  TimeScale scale;
  scale.Fit(0, 1000, 1024);
  scale.MoveTo(0);
  EXPECT_EQ(scale.SamplesPerPixel(), 1);
  return scale;
}

struct KindRow {
  const char* name;
  const char* path;
  PieceKind kind;
};

TEST(PieceKind, isToldByTheSuffixOfNameOrFile) {
  const KindRow rows[] = {
      {"Take 1", "/a/Take 1.wav", PieceKind::Region},
      {"Take 1_FadeIn", "/a/Take 1_FadeIn.wav", PieceKind::FadeIn},
      {"Take 1_XFade", "/a/Take 1_XFade.wav", PieceKind::Crossfade},
      {"Take 1_FadeOut", "/a/Take 1_FadeOut.wav", PieceKind::FadeOut},
      {"Take 1_Gain", "/a/Take 1_Gain.wav", PieceKind::Region},
      {"Take 1_24bit", "/a/Take 1_24bit.wav", PieceKind::Region},
      {"Take_FadeIn", "/a/Take_FadeIn.12.wav", PieceKind::FadeIn},  // a taken name made free
      {"Take", "/a/Take.2_FadeOut.wav", PieceKind::FadeOut},  // the name ends at the first dot
      {"Take", "/a/Take.2_FadeOut.3.wav", PieceKind::FadeOut},
      {"Take", "/a_FadeIn/Take.wav", PieceKind::Region},  // the folder does not count
      {"_fadein", "/a/_fadein.wav", PieceKind::Region},
      {"", "", PieceKind::Region},
      {"", "_XFade", PieceKind::Crossfade},
  };
  for (const KindRow& row : rows) {
    host::SessionRegion region;
    region.name = row.name;
    region.path = row.path;
    EXPECT_EQ(KindOfRegion(region), row.kind) << row.name << " at " << row.path;
  }
}

TEST(TimelineModel, hasALaneForEachTrackThatHoldsARegion) {
  TimelineModel model;
  for (const std::int64_t track : {4, 0, 4, 2}) model.Add(Region(track, 0, 10));
  ASSERT_EQ(model.LaneCount(), 3U);
  EXPECT_EQ(model.LaneAt(0).track, 0);
  EXPECT_EQ(model.LaneAt(1).track, 2);
  EXPECT_EQ(model.LaneAt(2).track, 4);
}

TEST(TimelineModel, spansAllRegions) {
  TimelineModel model;
  EXPECT_EQ(model.First(), 0);
  EXPECT_EQ(model.End(), 0);
  model.Add(Region(0, 500, 100));
  model.Add(Region(1, -20, 10));
  EXPECT_EQ(model.First(), -20);
  EXPECT_EQ(model.End(), 600);
}

TEST(TimelineModel, clearLeavesNothing) {
  TimelineModel model;
  model.Add(Region(0, 500, 100));
  model.Clear();
  EXPECT_EQ(model.LaneCount(), 0U);
  EXPECT_TRUE(model.Regions().empty());
  EXPECT_EQ(model.End(), 0);
}

TEST(TimelineModel, aLaterRegionIsSeenOverAnEarlierOne) {
  TimelineModel model;
  model.Add(Region(0, 0, 100));
  EXPECT_EQ(model.LaneAt(0).pieces.size(), 1U);
  model.Add(Region(0, 40, 20));
  const auto spans = model.Spans(0, OneToOne(), 1000);
  ASSERT_EQ(spans.size(), 3U);
  EXPECT_EQ(spans[0].region, 0U);
  EXPECT_EQ(spans[0].right, 40);
  EXPECT_EQ(spans[1].region, 1U);
  EXPECT_EQ(spans[2].region, 0U);
  EXPECT_EQ(spans[2].left, 60);
}

TEST(TimelineModel, onlyWhatIsVisibleIsGiven) {
  TimelineModel model;
  for (int i = 0; i < 100; ++i) model.Add(Region(0, i * 100, 50));
  TimeScale scale = OneToOne();
  scale.MoveTo(1000);
  const auto spans = model.Spans(0, scale, 200);
  ASSERT_EQ(spans.size(), 3U);
  EXPECT_EQ(spans.front().region, 10U);
  EXPECT_EQ(spans.front().left, 0);
  EXPECT_EQ(spans.back().region, 12U);
}

TEST(TimelineModel, aRegionThatReachesIntoTheViewIsGivenWhole) {
  TimelineModel model;
  model.Add(Region(0, 0, 5000));
  TimeScale scale = OneToOne();
  scale.MoveTo(1000);
  const auto spans = model.Spans(0, scale, 200);
  ASSERT_EQ(spans.size(), 1U);
  EXPECT_EQ(spans[0].left, -1000);
  EXPECT_EQ(spans[0].right, 4000);
}

TEST(TimelineModel, runsOfNarrowPiecesBecomeOneSpan) {
  TimelineModel model;
  for (int i = 0; i < 1000; ++i) model.Add(Region(0, i * 10, 5));
  TimeScale scale;
  scale.Fit(0, 100000, 124);  // 1000 samples a pixel
  scale.MoveTo(0);
  const auto spans = model.Spans(0, scale, 100);
  ASSERT_EQ(spans.size(), 1U);
  EXPECT_EQ(spans[0].region, LaneSpan::kMerged);
  EXPECT_EQ(spans[0].pieces, 1000U);
  EXPECT_EQ(spans[0].left, 0);
  EXPECT_NEAR(spans[0].right, 10, 0.01);
}

TEST(TimelineModel, narrowPiecesFarApartStaySeparate) {
  TimelineModel model;
  model.Add(Region(0, 0, 1));
  model.Add(Region(0, 5000, 1));
  TimeScale scale;
  scale.Fit(0, 100000, 124);
  scale.MoveTo(0);
  const auto spans = model.Spans(0, scale, 100);
  ASSERT_EQ(spans.size(), 2U);
  EXPECT_EQ(spans[1].region, 1U);
}

TEST(TimelineModel, aWidePieceIsNeverMerged) {
  TimelineModel model;
  for (int i = 0; i < 10; ++i) model.Add(Region(0, i, 1));
  model.Add(Region(0, 10, 5000));
  for (int i = 0; i < 10; ++i) model.Add(Region(0, 5010 + i, 1));
  TimeScale scale;
  scale.Fit(0, 100000, 124);
  scale.MoveTo(0);
  const auto spans = model.Spans(0, scale, 100);
  ASSERT_EQ(spans.size(), 3U);
  EXPECT_EQ(spans[1].region, 10U);
}

TEST(TimelineModel, hitTestFindsTheRegionThatIsHeard) {
  TimelineModel model;
  model.Add(Region(0, 100, 100));
  model.Add(Region(0, 150, 20));
  const TimeScale scale = OneToOne();
  EXPECT_EQ(model.HitTest(0, scale, 100, 4), 0U);
  EXPECT_EQ(model.HitTest(0, scale, 150, 4), 1U);
  EXPECT_EQ(model.HitTest(0, scale, 169.5, 4), 1U);
  EXPECT_EQ(model.HitTest(0, scale, 170, 4), 0U);
  EXPECT_EQ(model.HitTest(0, scale, 200, 4), std::nullopt);  // the end is exclusive
  EXPECT_EQ(model.HitTest(0, scale, 99, 4), std::nullopt);
}

TEST(TimelineModel, hitTestReachesANarrowRegionFromBeside) {
  TimelineModel model;
  model.Add(Region(0, 100, 1));
  model.Add(Region(0, 105, 1));
  const TimeScale scale = OneToOne();
  EXPECT_EQ(model.HitTest(0, scale, 98, 4), 0U);
  EXPECT_EQ(model.HitTest(0, scale, 102, 4), 0U);
  EXPECT_EQ(model.HitTest(0, scale, 104, 4), 1U);
  EXPECT_EQ(model.HitTest(0, scale, 95, 4), std::nullopt);
  EXPECT_EQ(model.HitTest(0, scale, 111, 4), std::nullopt);
}

TEST(TimelineModel, aHundredThousandRegionsAreFewSpans) {
  TimelineModel model;
  for (int i = 0; i < 100000; ++i) model.Add(Region(i % 8, i * 3000LL, 2900));
  TimeScale scale;
  scale.Fit(model.First(), model.End(), 1200);
  std::size_t spans = 0;
  for (std::size_t lane = 0; lane < model.LaneCount(); ++lane) {
    spans += model.Spans(lane, scale, 1200).size();
  }
  // Regions of a third of their pitch merge to no more than a span for each pixel.
  EXPECT_LE(spans, 8U * 1200U);
}

}  // namespace
}  // namespace velmora::timeline
