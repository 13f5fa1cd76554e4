// The span of a project and of its tracks.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "Model/ModelFixture.h"

namespace velmora {
namespace {

using test::ProjectBuilder;
using test::Stamp;

using Texts = std::vector<std::string>;
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

class TracksTest : public test::ModelTest {};

TEST_F(TracksTest, goodLoadFillsTheModel) {
  ASSERT_TRUE(LoadCuts({{.track = 2, .destIn = Stamp(48000), .destOut = Stamp(96000)},
                        {.source = 2, .track = 1, .destIn = Stamp(0), .destOut = Stamp(192000)}}));
  ASSERT_NE(model.project, nullptr);
  EXPECT_TRUE(model.HasCuts());
  EXPECT_EQ(model.numEvents, 2);
  EXPECT_EQ(model.minTrack, 1);
  EXPECT_EQ(model.maxTrack, 2);
  EXPECT_EQ(model.trackCount, 2);
  EXPECT_STREQ(model.firstEvent, "00.00:00:00/0000");
  EXPECT_STREQ(model.lastEvent, "00.00:04:00/0000");
  EXPECT_EQ(model.totalStartTime, "00.00:00:00");
  EXPECT_EQ(model.totalEndTime, "00.00:04:00");
  EXPECT_EQ(Track(0), (Texts{"00.00:00:00", "00.00:04:00"}));
  EXPECT_EQ(Track(1), (Texts{"00.00:01:00", "00.00:02:00"}));
  EXPECT_EQ(model.errorMessage, "");
  EXPECT_EQ(TrackFlags(), (std::vector<std::int32_t>{1, 1}));
  EXPECT_EQ(EventFlags(), (std::vector<std::int32_t>{1, 1}));
}

TEST_F(TracksTest, trackNumberThatNoCutUsesShowsTheWholeProject) {
  ASSERT_TRUE(LoadCuts({{.track = 2, .destIn = Stamp(48000), .destOut = Stamp(96000)},
                        {.track = 5, .destIn = Stamp(144000), .destOut = Stamp(192000)}}));
  EXPECT_EQ(model.minTrack, 2);
  EXPECT_EQ(model.maxTrack, 5);
  EXPECT_EQ(model.trackCount, 4);
  EXPECT_EQ(Track(0), (Texts{"00.00:01:00", "00.00:02:00"}));
  EXPECT_EQ(Track(1), (Texts{"00.00:01:00", "00.00:04:00"}));
  EXPECT_EQ(Track(2), (Texts{"00.00:01:00", "00.00:04:00"}));
  EXPECT_EQ(Track(3), (Texts{"00.00:03:00", "00.00:04:00"}));
  EXPECT_EQ(Track(4), (Texts{"none", "none"}));
  EXPECT_EQ(model.trackEnable.Rows(), 4);
  for (const std::int32_t row : {0, 1, 2, 3}) EXPECT_TRUE(*model.trackEnable.At(row));
}

TEST_F(TracksTest, trackSpansItsEarliestStartAndLatestEnd) {
  ASSERT_TRUE(LoadCuts({{.destIn = Stamp(96000), .destOut = Stamp(480000)},
                        {.destIn = Stamp(48000), .destOut = Stamp(144000)},
                        {.destIn = Stamp(192000), .destOut = Stamp(240000)}}));
  EXPECT_EQ(Track(0), (Texts{"00.00:01:00", "00.00:10:00"}));
  EXPECT_EQ(model.totalStartTime, "00.00:01:00");
  EXPECT_EQ(model.totalEndTime, "00.00:10:00");
}

TEST_F(TracksTest, otherEventsCountNowhere) {
  // Placed on the same storage, the values of a silence would read as times and tracks.
  ProjectBuilder builder = Sources();
  builder.Entry("(Silence) 99 00.00:00:00/0000 00.00:00:00/0000 09.00:00:00/0000")
      .Cut({.track = 4, .destIn = Stamp(48000), .destOut = Stamp(96000)})
      .Entry("(Vid) 0 00.00:00:00/0000 00.00:00:00/0000 09.00:00:00/0000");
  ASSERT_TRUE(Load(builder));
  EXPECT_EQ(model.numEvents, 3);
  EXPECT_EQ(model.minTrack, 4);
  EXPECT_EQ(model.maxTrack, 4);
  EXPECT_EQ(model.totalStartTime, "00.00:01:00");
  EXPECT_EQ(model.totalEndTime, "00.00:02:00");
  EXPECT_EQ(Track(0), (Texts{"00.00:01:00", "00.00:02:00"}));
}

TEST_F(TracksTest, labelOfACutMatchesInAnyCase) {
  ASSERT_TRUE(LoadCuts(
      {{.label = "cut", .track = 3}, {.label = "CUT", .track = 4}, {.label = "Cut", .track = 5}}));
  EXPECT_EQ(model.trackCount, 3);
}

TEST_F(TracksTest, firstCutSeedsTheSpanWhateverItsIndex) {
  ProjectBuilder builder = Sources();
  builder.Silence().Entry("(Rem) no edit").Cut({.destIn = Stamp(48000), .destOut = Stamp(96000)});
  ASSERT_TRUE(Load(builder));
  EXPECT_STREQ(model.firstEvent, "00.00:01:00/0000");
  EXPECT_STREQ(model.lastEvent, "00.00:02:00/0000");
}

TEST_F(TracksTest, equalTimesKeepTheStampOfTheLowerIndex) {
  ASSERT_TRUE(LoadCuts({{.destIn = "00.00:01:00/0000", .destOut = "00.00:02:00/0000"},
                        {.destIn = "00|00:01:00/0000", .destOut = "00|00:02:00/0000"}}));
  EXPECT_EQ(model.totalStartTime, "00.00:01:00");
  EXPECT_EQ(model.totalEndTime, "00.00:02:00");
  EXPECT_EQ(Track(0), (Texts{"00.00:01:00", "00.00:02:00"}));
}

TEST_F(TracksTest, spanIsComparedInSamplesNotInText) {
  // By digits the first event begins earlier and the second ends earlier.
  ASSERT_TRUE(LoadCuts({{.destIn = "00.00:00:23/0000", .destOut = "00.00:02:00/0000"},
                        {.destIn = "00|00:00:24/0000", .destOut = "00=00:01:30/0000"}}));
  EXPECT_EQ(model.totalStartTime, "00|00:00:24") << "38400 samples are before 44160";
  EXPECT_EQ(model.totalEndTime, "00=00:01:30") << "108000 samples are after 96000";
}

TEST_F(TracksTest, differencesThatWrapDecideAsTheyAre) {
  // An unknown frame-rate mark reads as the lowest 64-bit number: from 1 on, the difference to it
  // wraps to a positive one.
  ASSERT_TRUE(LoadCuts({{.destIn = Stamp(1), .destOut = Stamp(1)},
                        {.destIn = "00x00:00:00/0000", .destOut = "00x00:00:00/0000"}}));
  EXPECT_STREQ(model.firstEvent, Stamp(1).c_str());
  EXPECT_STREQ(model.lastEvent, "00x00:00:00/0000");
}

TEST_F(TracksTest, stampsAt44100ShowAllSixteenCharacters) {
  ASSERT_TRUE(LoadCuts({{.destIn = "01.00:00:00|0012", .destOut = "01.00:01:00|0000"}}));
  EXPECT_EQ(model.totalStartTime, "01.00:00:00|0012");
  EXPECT_EQ(model.totalEndTime, "01.00:01:00|0000");
  EXPECT_EQ(Track(0), (Texts{"01.00:00:00|0012", "01.00:01:00|0000"}));
  EXPECT_EQ(model.eventIn, (Texts{"01.00:00:00|0012"}));
}

// ---- extreme track numbers ----

// As many rows as that would take a hundred gigabytes.
TEST_F(TracksTest, extremeTrackNumbersMakeNoRows) {
  EXPECT_TRUE(LoadCuts({{.track = 1, .destIn = Stamp(48000), .destOut = Stamp(96000)},
                        {.track = kHighest, .destIn = Stamp(0), .destOut = Stamp(48000)}}));
  EXPECT_EQ(model.minTrack, 1);
  EXPECT_EQ(model.maxTrack, kHighest);
  EXPECT_EQ(model.trackCount, kHighest);
  EXPECT_EQ(Track(0), (Texts{"00.00:01:00", "00.00:02:00"}));
  EXPECT_EQ(Track(1), (Texts{"00.00:00:00", "00.00:02:00"}));
  EXPECT_EQ(Track(1000000000), (Texts{"00.00:00:00", "00.00:02:00"}));
  EXPECT_EQ(Track(kHighest - 1), (Texts{"00.00:00:00", "00.00:01:00"}));
  EXPECT_EQ(Track(kHighest), (Texts{"none", "none"}));
}

TEST_F(TracksTest, trackCountWrapsAt32Bits) {
  ASSERT_TRUE(LoadCuts({{.track = kLowest}, {.track = kHighest}}));
  EXPECT_EQ(model.minTrack, kLowest);
  EXPECT_EQ(model.maxTrack, kHighest);
  EXPECT_EQ(model.trackCount, 0);
  EXPECT_EQ(model.trackEnable.Rows(), 0);
  EXPECT_EQ(model.enableEvents, 2);
}

TEST_F(TracksTest, negativeTrackCountGivesNoRows) {
  ASSERT_TRUE(LoadCuts({{.track = -1}, {.track = kHighest}}));
  EXPECT_EQ(model.trackCount, kLowest + 1);
  EXPECT_EQ(model.trackEnable.Rows(), 0);
  EXPECT_EQ(NumberOfRows(model, "TrackTable"), 0);
  EXPECT_EQ(Cell("numberOfTracksTable", "Number", 0), test::TextCell("-2147483647"));
}

TEST_F(TracksTest, highestTrackAloneIsOneRow) {
  ASSERT_TRUE(LoadCuts({{.track = kHighest}}));
  EXPECT_EQ(model.trackCount, 1);
  EXPECT_EQ(Cell("TrackTable", "Track", 0), test::TextCell("2147483647"));
}

TEST_F(TracksTest, manyTracksMayLieFarApart) {
  ProjectBuilder builder = Sources();
  for (std::int32_t track = 1; track <= 16000; ++track) builder.Cut({.track = track * 1000});
  EXPECT_TRUE(model.LoadFile(builder.WriteTo(folder)));
  EXPECT_EQ(model.trackCount, 15999001);
}

TEST_F(TracksTest, negativeTracksCountAsAnyOther) {
  ASSERT_TRUE(LoadCuts({{.track = -2}, {.track = 1}}));
  EXPECT_EQ(model.trackCount, 4);
  EXPECT_EQ(Column("TrackTable", "Track"), (Texts{"\"-2\"", "\"-1\"", "\"0\"", "\"1\""}));
}

}  // namespace
}  // namespace velmora
