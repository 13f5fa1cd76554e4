#include "Session/HeardSession.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace velmora::host {
namespace {

struct Placed {
  std::int64_t position;
  std::int64_t length;
  RegionShape shape = {};
  std::int64_t track = 0;
};

Session SessionOf(const std::vector<Placed>& regions) {
  Session session;
  for (const Placed& placed : regions) {
    const std::size_t index =
        session.Place({placed.track, placed.position, 0, placed.length, 1, "/a.wav", "a"});
    session.Shape(index, placed.shape);
  }
  return session;
}

/// "0-10:0 10-20:0+1": each stretch with its regions, the lowest first.
std::string Heard(const HeardSession& heard, std::int64_t track = 0) {
  std::string text;
  heard.Walk(track, [&](const HeardStretch& stretch) {
    text += (text.empty() ? "" : " ") + std::to_string(stretch.position) + "-" +
            std::to_string(stretch.end) + ":";
    for (std::size_t i = 0; i < stretch.regions.size(); ++i) {
      text += (i > 0 ? "+" : "") + std::to_string(stretch.regions[i]);
    }
    return true;
  });
  return text;
}

struct StretchRow {
  const char* rule;
  std::vector<Placed> regions;
  const char* heard;
};

class Stretches : public testing::TestWithParam<StretchRow> {};

TEST_P(Stretches, areWhatSounds) {
  const Session session = SessionOf(GetParam().regions);
  EXPECT_EQ(Heard(HeardSession(session)), GetParam().heard);
}

INSTANTIATE_TEST_SUITE_P(
    HeardSession, Stretches,
    testing::ValuesIn(std::vector<StretchRow>{
        {"nothing", {}, ""},
        {"withoutFadesLaterRegionsHideEarlierOnes",
         {{0, 100}, {40, 20}},
         "0-40:0 40-60:1 60-100:0"},
        {"noLengthSoundsNotAtAll", {{5, 0}, {7, -3}}, ""},
        {"aFadeInLetsThroughWhatIsUnderIt",
         {{0, 100}, {50, 100, {20, 0, 0}}},
         "0-50:0 50-70:0+1 70-100:1 100-150:1"},
        {"aFadeOutLetsThroughWhatIsUnderIt",
         {{0, 100}, {20, 50, {0, 10, 0}}},
         "0-20:0 20-60:1 60-70:0+1 70-100:0"},
        {"ofAnEarlierRegionItIsHiddenByALaterOne",
         {{0, 100, {50, 50, 0}}, {10, 80}},
         "0-10:0 10-50:1 50-90:1 90-100:0"},
        {"threeDeep", {{0, 100}, {0, 100, {100, 0, 0}}, {0, 100, {0, 100, 0}}}, "0-100:0+1+2"},
        {"nothingUnderAnOpaqueOneIsAsked",
         {{0, 100}, {0, 100}, {0, 100, {100, 0, 0}}},
         "0-100:1+2"},
        {"silenceBetweenIsNotVisited", {{0, 10, {5, 0, 0}}, {20, 10}}, "0-5:0 5-10:0 20-30:1"},
        {"aFadeOfAnotherTrackChangesNothing", {{0, 10, {5, 0, 0}, 1}, {0, 30}}, "0-30:1"},
    }),
    [](const auto& row) { return row.param.rule; });

TEST(HeardSession, visitsUntilItIsToldToStop) {
  const Session session = SessionOf({{0, 10}, {10, 10}});
  int visits = 0;
  HeardSession(session).Walk(0, [&](const HeardStretch&) { return ++visits < 1; });
  EXPECT_EQ(visits, 1);
}

TEST(HeardTrack, severalAreFollowedSideBySide) {
  const Session session = SessionOf({{0, 10, {5, 0, 0}}, {20, 10}, {3, 4, {}, 1}});
  const HeardSession heard(session);
  HeardTrack first(heard, 0), second(heard, 1), none(heard, 2);
  HeardStretch a, b;
  ASSERT_TRUE(first.Next(a));
  ASSERT_TRUE(second.Next(b));
  EXPECT_EQ(a.end, 5);
  EXPECT_EQ(b.position, 3);
  EXPECT_EQ(b.regions[0], 2u);
  ASSERT_TRUE(first.Next(a));
  EXPECT_FALSE(second.Next(b));
  EXPECT_FALSE(second.Next(b));
  ASSERT_TRUE(first.Next(a));
  EXPECT_EQ(a.position, 20);
  EXPECT_FALSE(first.Next(a));
  EXPECT_FALSE(none.Next(a));
}

struct ShapeRow {
  const char* rule;
  std::vector<Placed> regions;
  std::size_t region;
  std::int64_t fadeIn;
  std::int64_t fadeOut;
  std::size_t remarks;
};

class Shapes : public testing::TestWithParam<ShapeRow> {};

TEST_P(Shapes, areAppliedByTheLaw) {
  const ShapeRow& row = GetParam();
  const Session session = SessionOf(row.regions);
  const HeardSession heard(session);
  EXPECT_EQ(heard.Shapes()[row.region].fadeIn, row.fadeIn);
  EXPECT_EQ(heard.Shapes()[row.region].fadeOut, row.fadeOut);
  EXPECT_EQ(heard.Remarks().size(), row.remarks);
}

// 0 ends in a fade-out over 80-100, and 1 begins with a fade-in that ends somewhere.
INSTANTIATE_TEST_SUITE_P(
    HeardSession, Shapes,
    testing::ValuesIn(std::vector<ShapeRow>{
        {"aFadeOutThatALaterFadeInCoversIsDropped",
         {{0, 100, {0, 20, 0}}, {80, 100, {20, 0, 0}}},
         0,
         0,
         0,
         0},
        {"ALongerFadeInCoversItToo", {{0, 100, {0, 20, 0}}, {70, 100, {30, 0, 0}}}, 0, 0, 0, 0},
        {"aFadeOutLongerThanTheFadeInStays",
         {{0, 100, {0, 21, 0}}, {80, 100, {20, 0, 0}}},
         0,
         0,
         21,
         0},
        {"oneThatEndsElsewhereStays", {{0, 100, {0, 20, 0}}, {81, 100, {20, 0, 0}}}, 0, 0, 20, 0},
        {"anEarlierFadeInCoversNothing",
         {{80, 100, {20, 0, 0}}, {0, 100, {0, 20, 0}}},
         1,
         0,
         20,
         0},
        {"anotherTracksFadeInCoversNothing",
         {{0, 100, {0, 20, 0}}, {80, 100, {20, 0, 0}, 1}},
         0,
         0,
         20,
         0},
        {"aFadeInIsCutToItsRegion", {{0, 100, {150, 20, 0}}}, 0, 100, 0, 2},
        {"aFadeOutIsCutToWhatIsLeft", {{0, 100, {60, 50, 0}}}, 0, 60, 40, 1},
        {"bothFitExactly", {{0, 100, {60, 40, 0}}}, 0, 60, 40, 0},
        {"noLengthHasNoFades", {{0, 0, {5, 0, 0}}}, 0, 0, 0, 1},
    }),
    [](const auto& row) { return row.param.rule; });

TEST(AppliedShape, factorsAreIOverN) {
  const AppliedShape shape = {4, 2, 1};
  const auto at = [&](std::int64_t sample) {
    const FadeFactor factor = shape.FactorAt(sample, 10);
    return std::to_string(factor.numerator) + "/" + std::to_string(factor.denominator);
  };
  const char* const expected[] = {"0/4", "1/4", "2/4", "3/4", "1/1",
                                  "1/1", "1/1", "1/1", "2/2", "1/2"};
  for (std::int64_t i = 0; i < 10; ++i) EXPECT_EQ(at(i), expected[i]) << i;
}

TEST(HeardSession, gainIsTenToTheTwentieth) {
  const Session session = SessionOf({{0, 10, {0, 0, -6}}, {0, 10, {0, 0, 0}}, {0, 10, {0, 0, 20}}});
  const HeardSession heard(session);
  EXPECT_DOUBLE_EQ(heard.Shapes()[0].gain, 0.50118723362727224);
  EXPECT_EQ(heard.Shapes()[1].gain, 1.0);
  EXPECT_EQ(heard.Shapes()[2].gain, 10.0);
}

TEST(HeardSession, aGainThatIsNoNumberIsNoneAndNamed) {
  using Limits = std::numeric_limits<double>;
  const double gains[] = {Limits::quiet_NaN(), Limits::infinity(), Limits::max(),
                          -Limits::infinity()};
  std::vector<Placed> regions;
  for (const double gain : gains) regions.push_back({0, 10, {0, 0, gain}});
  const Session session = SessionOf(regions);
  const HeardSession heard(session);
  ASSERT_EQ(heard.Remarks().size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(heard.Shapes()[i].gain, 1.0);
    EXPECT_EQ(heard.Remarks()[i].region, i);
  }
  EXPECT_EQ(heard.Shapes()[3].gain, 0.0);  // silence is a gain
}

}  // namespace
TEST(HeardSession, saysOneSampleAndTwoSamples) {
  const HeardSession heard(SessionOf({{0, 10, {10, 1, 0}}, {20, 10, {10, 2, 0}}}));
  ASSERT_EQ(heard.Remarks().size(), 2u);
  EXPECT_EQ(heard.Remarks()[0].text.find("its fade-out of 1 sample is longer"), 0u);
  EXPECT_EQ(heard.Remarks()[1].text.find("its fade-out of 2 samples is longer"), 0u);
}

}  // namespace velmora::host
