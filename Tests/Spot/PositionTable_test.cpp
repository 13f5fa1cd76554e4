#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "Spot/SpotOptions.h"

namespace velmora::test {
namespace {

// One hour at 29.97 frames, pulled: the session counts 30 frames to the second, so that the same
// digits lie 172,800 samples earlier there.
constexpr const char* kPulledHour = "01:00:00:00/0000";
constexpr std::int64_t kOwn = 172972800;
constexpr std::int64_t kInSession = 172800000;
constexpr std::int64_t kMoved = kInSession - kOwn;
constexpr std::int64_t kOffset = -4800;
constexpr std::int64_t kStart = 96000;
constexpr std::int64_t kUntouched = 777;

struct Row {
  const char* name;
  std::int32_t mode;
  const char* firstEvent;
  std::int64_t timelineOffset;
  bool relativeTrack;
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

class PositionTable : public testing::TestWithParam<Row> {};

TEST_P(PositionTable, GivesTheOffsetAndTheTrackForm) {
  for (const bool before : {false, true}) {
    SpotOptions options;
    options.sessionRate = 48000;
    options.frameRate = 5;
    options.positionMode = GetParam().mode;
    options.offsetSamples = kOffset;
    options.startSamples = kStart;
    options.timelineOffset = kUntouched;
    options.relativeTrack = before;
    ComputePosition(options, GetParam().firstEvent);
    EXPECT_EQ(options.timelineOffset, GetParam().timelineOffset);
    EXPECT_EQ(options.relativeTrack, GetParam().relativeTrack);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Modes, PositionTable,
    testing::Values(Row{"AsProject", PositionAsProject, kPulledHour, kMoved, false},
                    Row{"WithOffset", PositionWithOffset, kPulledHour, kMoved + kOffset, false},
                    Row{"AtStart", PositionAtStart, kPulledHour, kMoved + kStart - kOwn, false},
                    // No compensation: only the distance from the first event counts.
                    Row{"FromFirst", PositionFromFirst, kPulledHour, -kOwn, true},
                    Row{"Four", 4, kPulledHour, 0, false},
                    Row{"MinusOne", -1, kPulledHour, 0, false},
                    Row{"Lowest", std::numeric_limits<std::int32_t>::min(), kPulledHour, 0, false},
                    // Without a first event nothing is displaced, but the tracks count as told.
                    Row{"AsProjectWithoutEvent", PositionAsProject, nullptr, 0, false},
                    Row{"WithOffsetWithoutEvent", PositionWithOffset, nullptr, 0, false},
                    Row{"AtStartWithoutEvent", PositionAtStart, nullptr, 0, false},
                    Row{"FromFirstWithoutEvent", PositionFromFirst, nullptr, 0, true},
                    Row{"OtherWithoutEvent", 17, nullptr, 0, false}),
    [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace velmora::test
