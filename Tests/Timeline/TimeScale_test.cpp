#include "Timeline/TimeScale.h"

#include <gtest/gtest.h>

#include <limits>

namespace velmora::timeline {
namespace {

constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();

/// A scale that shows sample `origin` at the left edge and 10 samples in each pixel.
TimeScale TenPerPixel(std::int64_t origin) {
  TimeScale scale;
  scale.Fit(0, 10, 25);  // 10 samples in the one pixel between the margins
  scale.MoveTo(origin);
  EXPECT_EQ(scale.SamplesPerPixel(), 10);
  return scale;
}

TEST(TimeScale, mapsTheOriginToTheLeftEdge) {
  const TimeScale scale = TenPerPixel(500);
  EXPECT_EQ(scale.ToX(500), 0);
  EXPECT_EQ(scale.ToX(600), 10);
  EXPECT_EQ(scale.ToX(400), -10);
}

TEST(TimeScale, roundsTheSampleUnderAPixelDown) {
  const TimeScale scale = TenPerPixel(0);
  EXPECT_EQ(scale.ToSample(1), 10);
  EXPECT_EQ(scale.ToSample(1.09), 10);
  EXPECT_EQ(scale.ToSample(-0.05), -1);
}

TEST(TimeScale, fitShowsBothEndsInsideTheMargins) {
  TimeScale scale;
  scale.Fit(1000, 49000, 824);
  EXPECT_EQ(scale.SamplesPerPixel(), 60);
  EXPECT_EQ(scale.ToX(1000), 12);
  EXPECT_EQ(scale.ToX(49000), 812);
}

TEST(TimeScale, fitOfNothingShowsOneSampleAtTheFinestScale) {
  TimeScale scale;
  scale.Fit(7, 7, 824);
  EXPECT_EQ(scale.SamplesPerPixel(), TimeScale::kFinest);
  EXPECT_LE(scale.ToX(7), 12 + 16);
  EXPECT_GE(scale.ToX(7), 12);
}

TEST(TimeScale, zoomKeepsTheSampleUnderThePointer) {
  TimeScale scale = TenPerPixel(1000);
  scale.ZoomAround(40, 2);
  EXPECT_EQ(scale.SamplesPerPixel(), 5);
  EXPECT_EQ(scale.ToX(1400), 40);
  scale.ZoomAround(40, 0.5);
  EXPECT_EQ(scale.SamplesPerPixel(), 10);
  EXPECT_EQ(scale.Origin(), 1000);
}

TEST(TimeScale, zoomStopsAtTheFinestAndTheCoarsestScale) {
  TimeScale scale = TenPerPixel(0);
  scale.ZoomAround(0, 1e9);
  EXPECT_EQ(scale.SamplesPerPixel(), TimeScale::kFinest);
  scale.ZoomAround(0, 1e-30);
  EXPECT_EQ(scale.SamplesPerPixel(), TimeScale::kCoarsest);
}

TEST(TimeScale, zoomByNothingPositiveIsIgnored) {
  TimeScale scale = TenPerPixel(0);
  scale.ZoomAround(0, 0);
  scale.ZoomAround(0, -2);
  EXPECT_EQ(scale.SamplesPerPixel(), 10);
}

TEST(TimeScale, extremePositionsSaturateInsteadOfWrapping) {
  TimeScale scale;
  scale.Fit(kLeast, kMost, 824);
  EXPECT_EQ(scale.Origin(), kLeast);
  EXPECT_NEAR(scale.ToX(kMost) - scale.ToX(kLeast), 18446744073709551615.0 / 1e15 * 1.0, 18450);
  scale.MoveTo(kMost);
  scale.ScrollBy(1e12);
  EXPECT_EQ(scale.Origin(), kMost);
  EXPECT_EQ(scale.ToSample(1e12), kMost);
  EXPECT_LT(scale.ToX(kLeast), 0);
}

TEST(ScrollState, allInViewFillsTheScroller) {
  const ScrollState state = ScrollStateOf(TenPerPixel(0), 100, 0, 1000);
  EXPECT_EQ(state.proportion, 1);
  EXPECT_EQ(state.value, 0);
}

TEST(ScrollState, knobShowsWhereTheViewStands) {
  // 1000 of 5000 samples on view, 1000 of the 4000 others to its left.
  const ScrollState state = ScrollStateOf(TenPerPixel(1000), 100, 0, 5000);
  EXPECT_EQ(state.proportion, 0.2);
  EXPECT_EQ(state.value, 0.25);
}

TEST(ScrollState, viewOutsideTheContentCountsAsContent) {
  const ScrollState state = ScrollStateOf(TenPerPixel(-1000), 100, 0, 1000);
  EXPECT_EQ(state.proportion, 0.5);
  EXPECT_EQ(state.value, 0);
}

TEST(ScrollState, originForAValueIsTheInverse) {
  for (const double value : {0.0, 0.25, 0.5, 1.0}) {
    TimeScale scale = TenPerPixel(0);
    scale.MoveTo(OriginForScroll(scale, 100, 0, 5000, value));
    EXPECT_EQ(ScrollStateOf(scale, 100, 0, 5000).value, value);
  }
}

TEST(ScrollState, valuesOutOfRangeCountAsTheEnds) {
  const TimeScale scale = TenPerPixel(0);
  EXPECT_EQ(OriginForScroll(scale, 100, 0, 5000, -3), 0);
  EXPECT_EQ(OriginForScroll(scale, 100, 0, 5000, 3), 4000);
}

}  // namespace
}  // namespace velmora::timeline
