// The rows of the event list and the check boxes of tracks and events.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Model/ModelFixture.h"
#include "Spot/SpotWorker.h"

namespace velmora {
namespace {

using test::kFilesMissing;
using test::ProjectBuilder;
using test::Stamp;

using Texts = std::vector<std::string>;
using Flags = std::vector<std::int32_t>;
using Boxes = std::vector<EventBox>;
constexpr auto kOn = EventBox::On;
constexpr auto kOff = EventBox::Off;
constexpr auto kPlaceholder = EventBox::Placeholder;

class EventListTest : public test::ModelTest {
 protected:
  /// Cuts on tracks 1, 2, 1: the file of the middle one is missing.
  void LoadThreeCuts() {
    ASSERT_TRUE(
        LoadCuts({{.track = 1, .destIn = Stamp(0), .destOut = Stamp(48000)},
                  {.source = 3, .track = 2, .destIn = Stamp(48000), .destOut = Stamp(96000)},
                  {.source = 2, .track = 1, .destIn = Stamp(96000), .destOut = Stamp(144000)}}));
  }
  std::vector<bool> Live() const {
    std::vector<bool> live;
    for (const AES31Event& event : model.project->events) live.push_back(IsLive(event));
    return live;
  }
};

// ---- rows ----

TEST_F(EventListTest, listsEveryCutWithItsValues) {
  LoadThreeCuts();
  EXPECT_EQ(model.enableEvents, 3);
  EXPECT_EQ(model.eventTypes, (Texts{"Cut", "Cut", "Cut"}));
  EXPECT_EQ(model.eventNumbers, (Texts{"0000\n", "0001\n", "0002\n"}));
  EXPECT_EQ(model.eventCh, (Texts{"Mono", "Mono", "Mono"}));
  EXPECT_EQ(model.eventName, (Texts{"a.wav", "", "b.wav"}));
  EXPECT_EQ(model.eventFound, (std::vector<bool>{true, false, true}));
  EXPECT_EQ(model.eventTrack, (Texts{"1", "2", "1"}));
  EXPECT_EQ(model.eventIn, (Texts{"00.00:00:00", "00.00:01:00", "00.00:02:00"}));
  EXPECT_EQ(model.eventOut, (Texts{"00.00:01:00", "00.00:02:00", "00.00:03:00"}));
  EXPECT_EQ(model.eventEnable, (Boxes{kOn, kOn, kOn}));
}

TEST_F(EventListTest, typeIsTheLabelAsTheFileSpellsIt) {
  ASSERT_TRUE(Load(Sources()
                       .Cut({.label = "cUT"})
                       .Entry("(SILENCE) 1 a b c")
                       .Entry("(aux) 1 a b c")
                       .Entry("(Vid) a b c d")));
  EXPECT_EQ(model.eventTypes, (Texts{"cUT", "SILENCE", "aux", "Vid"}));
}

TEST_F(EventListTest, numbersHaveAtLeastFourDigitsAndALineFeed) {
  ProjectBuilder builder = Sources();
  for (int i = 0; i <= 12345; ++i) builder.Cut({});
  ASSERT_TRUE(Load(builder));
  EXPECT_EQ(model.eventNumbers.at(7), "0007\n");
  EXPECT_EQ(model.eventNumbers.at(9999), "9999\n");
  EXPECT_EQ(model.eventNumbers.at(12345), "12345\n");
  Tick("EventListTable", 12345, 0);
  EXPECT_EQ(model.project->events.at(12345).eventOn, 0);
  EXPECT_EQ(Cell("EventListTable", "Space", 12345), test::IntegerCell(0));
  EXPECT_EQ(Cell("EventListTable", "Space", 12344), test::IntegerCell(1));
}

TEST_F(EventListTest, nameIsTheFilesNameWithoutItsFolders) {
  folder.Write("Audio/deep.x.wav", test::PlainWave({}, {1}));
  ASSERT_TRUE(Load(ProjectBuilder().Source(1, "deep.x.wav").Cut({})));
  EXPECT_EQ(model.eventName, (Texts{"deep.x.wav"}));
}

TEST_F(EventListTest, fileThatIsNoWaveFileCountsAsFound) {
  folder.Write("text.wav", "not a wave file");
  ASSERT_TRUE(Load(ProjectBuilder().Source(1, "text.wav").Cut({})));
  EXPECT_EQ(model.eventFound, (std::vector<bool>{true}));
  EXPECT_EQ(model.errorMessage, "");
}

TEST_F(EventListTest, timesAndTracksAreThoseOfTheCutsWithoutGaps) {
  ASSERT_TRUE(
      Load(Sources().Silence().Cut({.track = 4, .destIn = Stamp(48000), .destOut = Stamp(96000)})));
  EXPECT_EQ(model.enableEvents, 2);
  EXPECT_EQ(model.eventIn, (Texts{"00.00:01:00"}));
  EXPECT_EQ(model.eventOut, (Texts{"00.00:02:00"}));
  EXPECT_EQ(model.eventTrack, (Texts{"4"}));
  EXPECT_EQ(Column("EventListTable", "In"), (Texts{"\"00.00:01:00\"", "no value"}));
  EXPECT_EQ(Column("EventListTable", "Out"), (Texts{"\"00.00:02:00\"", "no value"}));
  EXPECT_EQ(Column("EventListTable", "Track"), (Texts{"\"4\"", "no value"}));
  EXPECT_EQ(Column("EventListTable", "Type"), (Texts{"\"Silence\"", "\"Cut\""}));
}

TEST_F(EventListTest, eventWithoutAnEditHasAnEmptyTypeAndNoTimes) {
  ASSERT_TRUE(Load(Sources()
                       .Entry("(Infade) 00.00:00;00/0004 LIN 0 0 0")
                       .Entry("(Alt) I 1 1 00.00:00:00/0000")
                       .Cut({})));
  EXPECT_EQ(model.enableEvents, 3);
  EXPECT_EQ(model.eventTypes, (Texts{"", "", "Cut"}));
  EXPECT_EQ(model.eventIn.size(), 1U);
  EXPECT_EQ(Column("EventListTable", "Type"), (Texts{"\"\"", "\"\"", "\"Cut\""}));
  EXPECT_EQ(model.errorMessage, kFilesMissing);
}

TEST_F(EventListTest, setupBeforeAnyLoadGivesAnEmptyList) {
  model.errorMessage = "an earlier message";
  model.setupEventList();
  EXPECT_EQ(model.errorMessage, "");
  EXPECT_EQ(model.enableEvents, 0);
}

TEST_F(EventListTest, setupBuildsTheSameRowsAgain) {
  LoadThreeCuts();
  Tick("EventListTable", 2, 0);
  model.setupEventList();
  EXPECT_EQ(model.enableEvents, 3);
  EXPECT_EQ(model.eventNumbers, (Texts{"0000\n", "0001\n", "0002\n"}));
  EXPECT_EQ(model.eventIn.size(), 3U);
  EXPECT_EQ(model.eventEnable, (Boxes{kOn, kOn, kOff}));
}

// ---- track boxes ----

TEST_F(EventListTest, trackSwitchedOffTakesItsEventsFromTheList) {
  LoadThreeCuts();
  Tick("TrackTable", 1, 0);
  EXPECT_EQ(model.enableEvents, 2);
  EXPECT_EQ(model.eventNumbers, (Texts{"0000\n", "0002\n"}));
  EXPECT_EQ(model.eventName, (Texts{"a.wav", "b.wav"}));
  EXPECT_EQ(model.eventTrack, (Texts{"1", "1"}));
  EXPECT_EQ(model.eventIn, (Texts{"00.00:00:00", "00.00:02:00"}));
  EXPECT_EQ(model.eventEnable, (Boxes{kOn, kPlaceholder, kOn}));
  EXPECT_EQ(TrackFlags(), (Flags{1, 0, 1}));
  EXPECT_EQ(EventFlags(), (Flags{1, 1, 1}));
  EXPECT_EQ(Column("TrackTable", "Space"), (Texts{"1", "0"}));
  EXPECT_EQ(model.errorMessage, "") << "the missing file is not listed any more";
}

TEST_F(EventListTest, rowsMapToEventsByTheirNumber) {
  LoadThreeCuts();
  Tick("TrackTable", 1, 0);
  Tick("EventListTable", 1, 0);
  EXPECT_EQ(EventFlags(), (Flags{1, 1, 0}));
  EXPECT_EQ(model.eventEnable, (Boxes{kOn, kPlaceholder, kOff}));
  EXPECT_EQ(Column("EventListTable", "Space"), (Texts{"1", "0"}));
}

TEST_F(EventListTest, trackSwitchedOnAgainComesBackWithItsTicks) {
  LoadThreeCuts();
  Tick("TrackTable", 1, 0);
  Tick("EventListTable", 1, 0);
  Tick("TrackTable", 1, 1);
  EXPECT_EQ(model.enableEvents, 3);
  EXPECT_EQ(model.eventEnable, (Boxes{kOn, kOn, kOff}));
  EXPECT_EQ(model.errorMessage, kFilesMissing);
  EXPECT_EQ(TrackFlags(), (Flags{1, 1, 1}));
  EXPECT_EQ(EventFlags(), (Flags{1, 1, 0}));
}

TEST_F(EventListTest, tickOfAnEventSurvivesItsTrackBeingOff) {
  LoadThreeCuts();
  Tick("EventListTable", 1, 0);
  Tick("TrackTable", 1, 0);
  Tick("TrackTable", 1, 1);
  EXPECT_EQ(model.eventEnable, (Boxes{kOn, kOff, kOn}));
}

TEST_F(EventListTest, allTracksOffLeaveAnEmptyListAndNoMessage) {
  LoadThreeCuts();
  Tick("TrackTable", 0, 0);
  Tick("TrackTable", 1, 0);
  EXPECT_EQ(model.enableEvents, 0);
  EXPECT_EQ(NumberOfRows(model, "EventListTable"), 0);
  EXPECT_EQ(model.eventEnable, (Boxes{kPlaceholder, kPlaceholder, kPlaceholder}));
  EXPECT_EQ(model.errorMessage, "");
}

TEST_F(EventListTest, trackBoxReachesNoOtherKindOfEvent) {
  ASSERT_TRUE(Load(Sources().Cut({.track = 0}).Silence().Entry("(Rem) no edit")));
  Tick("TrackTable", 0, 0);
  EXPECT_EQ(TrackFlags(), (Flags{0, 1, 1}));
  EXPECT_EQ(model.eventTypes, (Texts{"Silence", ""}));
  EXPECT_EQ(model.errorMessage, kFilesMissing) << "the silence has no file and stays listed";
}

TEST_F(EventListTest, trackBoxOfANumberThatNoCutUsesChangesItselfAlone) {
  ASSERT_TRUE(LoadCuts({{.track = 2}, {.track = 5}}));
  Tick("TrackTable", 1, 0);
  EXPECT_EQ(Column("TrackTable", "Space"), (Texts{"1", "0", "1", "1"}));
  EXPECT_EQ(TrackFlags(), (Flags{1, 1}));
  EXPECT_EQ(model.enableEvents, 2);
}

TEST_F(EventListTest, trackBoxMatchesLabelsOfCutsInAnyCase) {
  ASSERT_TRUE(LoadCuts({{.label = "cUT"}, {.label = "CUT"}}));
  Tick("TrackTable", 0, 0);
  EXPECT_EQ(TrackFlags(), (Flags{0, 0}));
}

TEST_F(EventListTest, boxesOfExtremeTracks) {
  constexpr std::int32_t kHighest = 2147483647;
  ASSERT_TRUE(LoadCuts({{.track = 1}, {.track = kHighest}}));
  Tick("TrackTable", kHighest - 1, 0);
  Tick("TrackTable", 1000000000, 0);
  EXPECT_EQ(TrackFlags(), (Flags{1, 0}));
  EXPECT_EQ(Cell("TrackTable", "Space", kHighest - 1), test::IntegerCell(0));
  EXPECT_EQ(Cell("TrackTable", "Space", 1000000000), test::IntegerCell(0));
  EXPECT_EQ(Cell("TrackTable", "Space", 0), test::IntegerCell(1));
  EXPECT_EQ(model.enableEvents, 1);
  Tick("TrackTable", kHighest - 1, 1);
  EXPECT_EQ(TrackFlags(), (Flags{1, 1}));
}

TEST_F(EventListTest, onlyValuesAboveZeroAreOn) {
  LoadThreeCuts();
  Tick("TrackTable", 0, -1);
  EXPECT_EQ(TrackFlags(), (Flags{0, 1, 0}));
  Tick("TrackTable", 0, 2);
  EXPECT_EQ(TrackFlags(), (Flags{1, 1, 1}));
  Tick("EventListTable", 0, -2147483647 - 1);
  EXPECT_EQ(EventFlags(), (Flags{0, 1, 1}));
  Tick("EventListTable", 0, 2147483647);
  EXPECT_EQ(EventFlags(), (Flags{1, 1, 1}));
}

TEST_F(EventListTest, boxesOfAllTracksAtOnceAreSoManyEdits) {
  ASSERT_TRUE(LoadCuts({{.track = 2}, {.source = 3, .track = 5}, {.track = 2}, {.track = 4}}));
  std::vector<std::int32_t> asked;
  model.SetTrackBoxes([&](std::int32_t track) {
    asked.push_back(track);
    return track == 2;
  });
  for (const std::int32_t track : asked) EXPECT_NE(track, 3) << "no cut uses it";
  EXPECT_EQ(TrackFlags(), (Flags{1, 0, 1, 0}));
  EXPECT_EQ(Column("TrackTable", "Space"), (Texts{"1", "1", "0", "0"}));
  EXPECT_EQ(model.eventNumbers, (Texts{"0000\n", "0002\n"}));
  EXPECT_EQ(model.errorMessage, "");
  model.SetTrackBoxes([](std::int32_t) { return true; });
  EXPECT_EQ(TrackFlags(), (Flags{1, 1, 1, 1}));
  EXPECT_EQ(model.enableEvents, 4);
  EXPECT_EQ(model.errorMessage, kFilesMissing);
}

// ---- event boxes ----

TEST_F(EventListTest, uncheckedEventStaysListed) {
  LoadThreeCuts();
  Tick("EventListTable", 1, 0);
  EXPECT_EQ(model.enableEvents, 3);
  EXPECT_EQ(model.eventEnable, (Boxes{kOn, kOff, kOn}));
  EXPECT_EQ(EventFlags(), (Flags{1, 0, 1}));
  EXPECT_EQ(Column("EventListTable", "Space"), (Texts{"1", "0", "1"}));
  EXPECT_EQ(model.errorMessage, kFilesMissing) << "it counts as missing as long as it is listed";
  Tick("EventListTable", 1, 1);
  EXPECT_EQ(EventFlags(), (Flags{1, 1, 1}));
  EXPECT_EQ(Column("EventListTable", "Space"), (Texts{"1", "1", "1"}));
}

TEST_F(EventListTest, bothBoxesDecideWhatIsSpotted) {
  LoadThreeCuts();
  EXPECT_EQ(Live(), (std::vector<bool>{true, true, true}));
  Tick("EventListTable", 0, 0);
  EXPECT_EQ(Live(), (std::vector<bool>{false, true, true}));
  Tick("TrackTable", 1, 0);
  EXPECT_EQ(Live(), (std::vector<bool>{false, false, true}));
  Tick("EventListTable", 0, 1);
  EXPECT_EQ(Live(), (std::vector<bool>{true, false, true}));
}

TEST_F(EventListTest, otherKindsOfEventAreNeverSpotted) {
  ASSERT_TRUE(Load(Sources().Cut({}).Silence()));
  EXPECT_EQ(Live(), (std::vector<bool>{true, false}));
}

// ---- rows that are not there ----

TEST_F(EventListTest, editsOfRowsThatAreNotThereAreDropped) {
  LoadThreeCuts();
  for (const std::int32_t row : {-1, 3, 2147483647, -2147483647 - 1}) {
    Tick("EventListTable", row, 0);
  }
  for (const std::int32_t row : {-1, 2, 2147483647, -2147483647 - 1}) Tick("TrackTable", row, 0);
  EXPECT_EQ(TrackFlags(), (Flags{1, 1, 1}));
  EXPECT_EQ(EventFlags(), (Flags{1, 1, 1}));
  EXPECT_EQ(model.eventEnable, (Boxes{kOn, kOn, kOn}));
  EXPECT_EQ(Column("TrackTable", "Space"), (Texts{"1", "1"}));
}

TEST_F(EventListTest, editBeyondTheTracksDoesNotReachACut) {
  // With 32-bit wrap-around, row -1 of a list from track 1 would be track 0.
  ASSERT_TRUE(LoadCuts({{.track = -2147483647 - 1}, {.track = 2147483647}}));
  ASSERT_EQ(model.trackCount, 0);
  Tick("TrackTable", 0, 0);
  Tick("TrackTable", -1, 0);
  EXPECT_EQ(TrackFlags(), (Flags{1, 1}));
}

TEST_F(EventListTest, editsBeforeAnyLoadAreDropped) {
  Tick("TrackTable", 0, 1);
  Tick("EventListTable", 0, 1);
  model.SetTrackBoxes([](std::int32_t) { return true; });
  EXPECT_EQ(model.trackEnable.Rows(), 0);
  EXPECT_TRUE(model.eventEnable.empty());
}

// ---- during a spot ----

TEST_F(EventListTest, noBoxChangesDuringASpot) {
  LoadThreeCuts();
  model.spotRunning = true;
  Tick("TrackTable", 0, 0);
  Tick("EventListTable", 1, 0);
  model.SetTrackBoxes([](std::int32_t) { return false; });
  EXPECT_EQ(TrackFlags(), (Flags{1, 1, 1}));
  EXPECT_EQ(EventFlags(), (Flags{1, 1, 1}));
  EXPECT_EQ(Column("TrackTable", "Space"), (Texts{"1", "1"}));
  EXPECT_EQ(Column("EventListTable", "Space"), (Texts{"1", "1", "1"}));
  EXPECT_EQ(model.enableEvents, 3);
  model.spotRunning = false;
  Tick("TrackTable", 0, 0);
  EXPECT_EQ(TrackFlags(), (Flags{0, 1, 0}));
}

// ---- the message ----

TEST_F(EventListTest, silenceCountsAsMissingForGood) {
  ASSERT_TRUE(Load(Sources().Cut({}).Silence()));
  EXPECT_EQ(model.errorMessage, kFilesMissing);
  EXPECT_EQ(model.eventFound, (std::vector<bool>{true, false}));
  Tick("EventListTable", 1, 0);
  EXPECT_EQ(model.errorMessage, kFilesMissing);
  Tick("TrackTable", 0, 0);
  EXPECT_EQ(model.errorMessage, kFilesMissing);
}

TEST_F(EventListTest, foundFilesWipeAnEarlierMessage) {
  ASSERT_TRUE(LoadCuts({{.source = 3}}));
  EXPECT_EQ(model.errorMessage, kFilesMissing);
  ASSERT_TRUE(LoadCuts({{.source = 1}}));
  EXPECT_EQ(model.errorMessage, "");
}

}  // namespace
}  // namespace velmora
