#include "Report/TimeTicks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace velmora::report {
namespace {

TEST(TimeTicks, standAtRoundTimesAndHaveALevel) {
  const host::SessionClock clock({48000, 5});  // 30 frames
  const std::vector<TimeTick> ticks = TicksBetween(clock, 48000 * 3600, 48000 * 3610);
  const auto top = std::find_if(ticks.begin(), ticks.end(),
                                [](const TimeTick& tick) { return tick.level == 0; });
  ASSERT_NE(top, ticks.end());
  EXPECT_EQ(top->sample, 48000 * 3600);
  EXPECT_EQ(top->label, "01:00:00:00");
}

TEST(TimeTicks, areAsManyAtEachLevelAsFitOnAScreen) {
  const host::SessionClock clock({48000, 2});
  for (const std::int64_t seconds : {1, 7, 100, 3600, 86400, 10'000'000}) {
    const std::vector<TimeTick> ticks = TicksBetween(clock, 12345, 12345 + 48000 * seconds);
    for (int level = 0; level < kTickLevels; ++level) {
      const auto shown = std::count_if(ticks.begin(), ticks.end(),
                                       [&](const TimeTick& tick) { return tick.level <= level; });
      EXPECT_LE(shown, (3 << level) + 1) << seconds << " s at level " << level;
    }
    EXPECT_TRUE(std::is_sorted(ticks.begin(), ticks.end(), [](const auto& one, const auto& other) {
      return one.sample < other.sample;
    }));
  }
}

TEST(TimeTicks, areNoneWherePositionsAreNoTimes) {
  using Limits = std::numeric_limits<std::int64_t>;
  const host::SessionClock clock;
  EXPECT_TRUE(TicksBetween(clock, Limits::min(), Limits::max()).empty());
  EXPECT_TRUE(TicksBetween(clock, 5, 5).empty());
}

}  // namespace
}  // namespace velmora::report
