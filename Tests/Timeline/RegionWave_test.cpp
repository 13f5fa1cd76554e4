#include "Timeline/RegionWave.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace velmora::timeline {
namespace {

using peaks::Peak;

// A hundred samples from sample 40 of the file on, at 1000 on the timeline.
host::SessionRegion Region(const host::RegionShape& shape = {}) {
  host::SessionRegion region{0, 1000, 40, 140, 1, "w.wav", "w"};
  region.shape = shape;
  return region;
}

// One sample a pixel, the view beginning at 990 on the timeline: the region lies at 10 to 110.
TimeScale OneToOne(std::int64_t origin = 990) {
  TimeScale scale;
  scale.ZoomAround(0, 480);
  scale.MoveTo(origin);
  return scale;
}

TEST(WaveColumns, showTheFramesThatStandUnderThem) {
  const WaveColumns columns = WaveColumnsOf(Region(), OneToOne(), 10, 110, 500);
  EXPECT_EQ(columns.first, 10);
  EXPECT_EQ(columns.count, 100);
  EXPECT_EQ(columns.grid.Edge(10), 40) << "the region's first frame";
  EXPECT_EQ(columns.grid.Edge(110), 140) << "its end";
}

TEST(WaveColumns, areCutToTheViewAndToWhatIsHeard) {
  struct Row {
    const char* what;
    std::int64_t origin;
    double left;
    double right;
    std::int64_t first;
    std::int64_t count;
  };
  for (const Row& row : {Row{"left of the view", 1040, -40, 60, 0, 60},
                         {"right of it", 850, 150, 250, 150, 50},
                         {"covered at its end", 990, 10, 50, 10, 40},
                         {"out of sight", 5000, -4000, -3900, 0, 0},
                         {"further on than the region goes", 990, 0, 400, 10, 100}}) {
    const WaveColumns columns =
        WaveColumnsOf(Region(), OneToOne(row.origin), row.left, row.right, 200);
    EXPECT_EQ(columns.first, row.first) << row.what;
    EXPECT_EQ(columns.count, row.count) << row.what;
  }
}

TEST(WaveColumns, regionsOfNoLengthHaveNone) {
  for (const std::int64_t stop : {40, 39, -1000000}) {
    host::SessionRegion region = Region();
    region.stop = stop;
    EXPECT_EQ(WaveColumnsOf(region, OneToOne(), 0, 200, 200).count, 0) << stop;
  }
}

TEST(WaveColumns, positionsAtTheLimitsOfSixtyFourBits) {
  for (const std::int64_t position : {INT64_MIN, INT64_MAX - 50, INT64_MAX}) {
    host::SessionRegion region = Region();
    region.position = position;
    TimeScale scale = OneToOne(position);
    const WaveColumns columns = WaveColumnsOf(region, scale, 0, 100, 200);
    EXPECT_GE(columns.count, 0);
    EXPECT_LE(columns.count, 100);
    scale.MoveTo(0);
    EXPECT_EQ(WaveColumnsOf(region, scale, scale.ToX(position), scale.ToX(region.End()), 200).count,
              0);
  }
}

std::vector<WaveBar> Bars(const host::SessionRegion& region, const std::vector<Peak>& peaks,
                          std::int64_t first = 10) {
  WaveColumns columns = WaveColumnsOf(region, OneToOne(), 10, 110, 500);
  columns.first = first;
  columns.count = static_cast<std::int64_t>(peaks.size());
  return WaveBarsOf(region, columns, peaks);
}

TEST(WaveBars, areFractionsOfFullScale) {
  const std::vector<WaveBar> bars = Bars(Region(), {{-32768, 16384}, {0, 0}, {}, {-16384, -8192}});
  ASSERT_EQ(bars.size(), 3U) << "a column without audio has none";
  EXPECT_EQ(bars[0].low, -1);
  EXPECT_EQ(bars[0].high, 0.5F);
  EXPECT_EQ(bars[1].low, 0);
  EXPECT_EQ(bars[1].high, 0);
  EXPECT_EQ(bars[2].column, 13);
  EXPECT_EQ(bars[2].high, -0.25F);
}

TEST(WaveBars, neighboursTouch) {
  const std::vector<WaveBar> up = Bars(Region(), {{0, 100}, {8192, 16384}});
  EXPECT_EQ(up[1].low, 100 / 32768.0F);
  EXPECT_EQ(up[1].high, 0.5F);
  const std::vector<WaveBar> down = Bars(Region(), {{8192, 16384}, {-200, 0}});
  EXPECT_EQ(down[1].high, 0.25F);
  const std::vector<WaveBar> apart = Bars(Region(), {{0, 0}, {}, {16384, 16384}});
  EXPECT_EQ(apart[1].low, 0.5F) << "not over a gap";
}

TEST(WaveBars, gainIsApplied) {
  EXPECT_NEAR(Bars(Region({0, 0, -20}), {{-32768, 16384}})[0].low, -0.1, 1e-6);
  const WaveBar loud = Bars(Region({0, 0, 40}), {{-32768, 16384}})[0];
  EXPECT_EQ(loud.low, -1) << "clipped";
  EXPECT_EQ(loud.high, 1);
  const WaveBar above = Bars(Region({0, 0, 40}), {{16384, 16384}})[0];
  EXPECT_EQ(above.low, 1);
}

// i/n up and (n-i)/n down, at the sample of each column.
TEST(WaveBars, fadesAreApplied) {
  const host::SessionRegion region = Region({10, 20, 0});
  const std::vector<Peak> full(100, Peak{-32768, 0});
  const std::vector<WaveBar> bars = Bars(region, full);
  ASSERT_EQ(bars.size(), 100U);
  EXPECT_FLOAT_EQ(bars[0].low, 0);
  EXPECT_FLOAT_EQ(bars[5].low, -0.5F);
  EXPECT_FLOAT_EQ(bars[10].low, -1);
  EXPECT_FLOAT_EQ(bars[80].low, -1);
  EXPECT_FLOAT_EQ(bars[90].low, -0.5F);
  EXPECT_FLOAT_EQ(bars[99].low, -0.05F);
}

TEST(FittingShape, fadesEndWithTheRegion) {
  EXPECT_EQ(FittingShape(Region({70, 60, 1})), (host::RegionShape{70, 30, 1}));
  EXPECT_EQ(FittingShape(Region({700, 60, 0})), (host::RegionShape{100, 0, 0}));
  EXPECT_EQ(FittingShape(Region({-1, 60, 0})), (host::RegionShape{0, 60, 0}));
  host::SessionRegion none = Region({5, 5, 0});
  none.stop = none.start - 1;
  EXPECT_EQ(FittingShape(none), host::RegionShape());
}

}  // namespace
}  // namespace velmora::timeline
