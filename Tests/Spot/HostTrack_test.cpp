#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "Spot/SpotFixture.h"

namespace velmora {
namespace {

using test::Placed;
using test::ProjectBuilder;

struct TrackRow {
  const char* rule;
  std::int32_t destChannel, minTrack;
  std::int16_t track;
};

void PrintTo(const TrackRow& row, std::ostream* out) {
  *out << row.rule;
}

class HostTrackRows : public test::SpotWorkerTest, public testing::WithParamInterface<TrackRow> {};

TEST_P(HostTrackRows, isCutToSigned16Bits) {
  const TrackRow& row = GetParam();
  AES31Event event{};
  event.cut.destChannel = row.destChannel;
  EXPECT_EQ(HostTrack(event, row.minTrack), row.track);
}

TEST_P(HostTrackRows, reachesTheMessagesOfRegionAndFades) {
  const TrackRow& row = GetParam();
  WriteWave("take.wav", 16, test::Ramp(10));
  Load(ProjectBuilder()
           .Source(1, "take.wav")
           .Cut({.track = row.destChannel,
                 .infade = test::FadeLength(2),
                 .outfade = test::FadeLength(2)}));
  minTrack = row.minTrack;
  options.doFades = 1;
  options.positionMode = PositionFromFirst;
  EXPECT_TRUE(Run());
  ASSERT_EQ(host.messages.size(), 3U);
  for (const Placed& placed : host.PlacedRegions()) {
    EXPECT_EQ(placed.trak, -99);
    EXPECT_EQ(placed.tkOf, row.track);
  }
}

constexpr TrackRow kHostTrackRows[] = {
    {"lowestTrackIs0", 7, 7, 0},
    {"countsFromTheLowest", 12, 7, 5},
    {"highestThatFits", 32768, 1, 32767},
    {"oneMoreWraps", 32769, 1, -32768},
    {"trackIs0Again", 65537, 1, 0},
    {"bothBelowZero", -3, -5, 2},
    {"differenceWrapsAt32Bits", 2147483647, -2147483647 - 1, -1},
    {"extremeTracks", 2147483647, 1, -2},
};

INSTANTIATE_TEST_SUITE_P(HostTrack, HostTrackRows, testing::ValuesIn(kHostTrackRows),
                         [](const auto& row) { return std::string(row.param.rule); });

}  // namespace
}  // namespace velmora
