#include "Timeline/Ruler.h"

#include <gtest/gtest.h>

#include <limits>

namespace velmora::timeline {
namespace {

std::vector<std::string> Labels(const std::vector<RulerTick>& ticks) {
  std::vector<std::string> labels;
  for (const RulerTick& tick : ticks) {
    if (!tick.label.empty()) labels.push_back(tick.label);
  }
  return labels;
}

/// A scale of `samplesPerPixel` with a given sample at the left edge.
TimeScale ScaleOf(std::int64_t samplesPerPixel, std::int64_t origin) {
  TimeScale scale;
  scale.Fit(0, samplesPerPixel * 100, 124);
  scale.MoveTo(origin);
  return scale;
}

TEST(Ruler, labelsStandAtRoundSeconds) {
  // 480 samples a pixel: 100 pixels a second.
  const auto ticks = RulerTicks(ScaleOf(480, 172800000), host::SessionClock({48000, 2}), 350, 90);
  EXPECT_EQ(Labels(ticks),
            (std::vector<std::string>{"01:00:00:00", "01:00:01:00", "01:00:02:00", "01:00:03:00"}));
  EXPECT_EQ(ticks.front().x, 0);
}

TEST(Ruler, beginsWithTheLabelLeftOfTheView) {
  const auto ticks = RulerTicks(ScaleOf(480, 24000), host::SessionClock({48000, 2}), 200, 90);
  ASSERT_FALSE(ticks.empty());
  EXPECT_EQ(ticks.front().label, "00:00:00:00");
  EXPECT_EQ(ticks.front().x, -50);
}

TEST(Ruler, labelsKeepTheirDistanceAtEveryScale) {
  for (std::int32_t code = 0; code < 8; ++code) {
    const host::SessionClock clock({48000, code});
    TimeScale scale = ScaleOf(10000, 123456789);
    for (int zoom = 0; zoom < 60; ++zoom) {
      double previous = -std::numeric_limits<double>::infinity();
      const auto ticks = RulerTicks(scale, clock, 1000, 90);
      ASSERT_FALSE(ticks.empty()) << "code " << code << ", zoom " << zoom;
      for (const RulerTick& tick : ticks) {
        if (tick.label.empty()) continue;
        EXPECT_GE(tick.x - previous, 85) << "code " << code << ", zoom " << zoom;
        previous = tick.x;
      }
      EXPECT_LE(ticks.size(), 800U) << "code " << code << ", zoom " << zoom;
      scale.ZoomAround(300, 1.5);
    }
  }
}

TEST(Ruler, ticksRiseFromLeftToRight) {
  for (std::int32_t code = 0; code < 8; ++code) {
    const auto ticks =
        RulerTicks(ScaleOf(100, 2880000 - 20000), host::SessionClock({48000, code}), 900, 90);
    for (std::size_t i = 1; i < ticks.size(); ++i) {
      EXPECT_LT(ticks[i - 1].x, ticks[i].x) << "code " << code;
    }
  }
}

TEST(Ruler, dropFrameLabelsTheMinuteAtItsFirstFrame) {
  // 1600 samples a pixel, about a frame each: the minute's numbers 0 and 1 do not exist.
  const auto ticks =
      RulerTicks(ScaleOf(1600, 2882880 - 16000), host::SessionClock({48000, 4}), 40, 90);
  const auto labels = Labels(ticks);
  ASSERT_FALSE(labels.empty());
  EXPECT_EQ(labels.back(), "00:01:00;02");
}

TEST(Ruler, dropFrameLongSessionStillStartsAtTheView) {
  const std::int64_t tenHours = 1728000000;
  const auto ticks = RulerTicks(ScaleOf(480, tenHours), host::SessionClock({48000, 4}), 1000, 90);
  ASSERT_FALSE(ticks.empty());
  EXPECT_LE(ticks.front().x, 0);
  EXPECT_GT(ticks.front().x, -200);
}

TEST(Ruler, countsSamplesWithinAFrame) {
  TimeScale scale;
  scale.MoveTo(1920);
  scale.ZoomAround(0, 480 * 4);  // four pixels a sample; a frame of 1920 samples is 7680 wide
  const auto labels = Labels(RulerTicks(scale, host::SessionClock({48000, 2}), 1000, 90));
  ASSERT_GE(labels.size(), 2U);
  EXPECT_EQ(labels[0], "00:00:00:01");
  EXPECT_EQ(labels[1], "00:00:00:01+50");
}

TEST(Ruler, nothingToDrawOnGivesNoTicks) {
  EXPECT_TRUE(RulerTicks(TimeScale(), host::SessionClock(), 0, 90).empty());
  EXPECT_TRUE(RulerTicks(TimeScale(), host::SessionClock(), -5, 90).empty());
  EXPECT_TRUE(RulerTicks(TimeScale(), host::SessionClock(), 100, 0).empty());
}

TEST(Ruler, extremeScalesAndPositionsEnd) {
  for (const std::int64_t origin : {std::numeric_limits<std::int64_t>::min(), std::int64_t{0},
                                    std::numeric_limits<std::int64_t>::max()}) {
    for (const double factor : {1e-14, 1e-6, 1.0, 1e6}) {
      for (std::int32_t code = 0; code < 8; ++code) {
        TimeScale scale;
        scale.ZoomAround(0, factor);
        scale.MoveTo(origin);
        EXPECT_LE(RulerTicks(scale, host::SessionClock({48000, code}), 2000, 90).size(), 4000U);
      }
    }
  }
}

}  // namespace
}  // namespace velmora::timeline
