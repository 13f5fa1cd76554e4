// Loads that fail, and projects that have nothing to show.

#include <gtest/gtest.h>
#include <sys/stat.h>

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

class IncompleteLoadTest : public test::ModelTest {};

// ---- no cuts ----

TEST_F(IncompleteLoadTest, projectWithoutCutsLoadsAsFarAsItsData) {
  ASSERT_TRUE(Load(ProjectBuilder().Constant("PROJECT", "PROJ_TITLE", "title").Silence()));
  EXPECT_NE(model.project, nullptr);
  EXPECT_FALSE(model.HasCuts());
  EXPECT_EQ(model.ProjectInfomation[0], "title");
  EXPECT_EQ(model.numEvents, 1);
  EXPECT_EQ(model.minTrack, kHighest);
  EXPECT_EQ(model.maxTrack, kLowest);
  EXPECT_EQ(model.trackCount, 2);
  EXPECT_EQ(model.firstEvent, nullptr);
  EXPECT_EQ(model.lastEvent, nullptr);
  EXPECT_EQ(model.errorMessage, "");
  EXPECT_EQ(model.totalStartTime, "");
  EXPECT_EQ(model.trackEnable.Rows(), 0);
  EXPECT_EQ(model.trackStart.Rows(), 0);
  EXPECT_EQ(model.enableEvents, 0);
  EXPECT_TRUE(model.eventTypes.empty());
  EXPECT_EQ(TrackFlags(), (std::vector<std::int32_t>{0}));
}

TEST_F(IncompleteLoadTest, projectWithoutEventsLoadsToo) {
  ASSERT_TRUE(model.LoadFile(folder.Write("empty.adl", "")));
  EXPECT_NE(model.project, nullptr);
  EXPECT_EQ(model.numEvents, 0);
  EXPECT_EQ(model.trackCount, 2);
  EXPECT_EQ(model.errorMessage, "");
  EXPECT_FALSE(model.HasCuts());
}

TEST_F(IncompleteLoadTest, projectWithoutCutsKeepsTracksAndEventsOfTheOneBefore) {
  ASSERT_TRUE(LoadCuts(
      {{.track = 7, .destIn = Stamp(48000), .destOut = Stamp(96000)}, {.source = 3, .track = 7}}));
  ASSERT_TRUE(Load(ProjectBuilder().Silence()));
  EXPECT_EQ(model.trackEnable.Rows(), 0);
  EXPECT_EQ(Track(0), (Texts{"00.00:00:00", "00.00:02:00"}));
  EXPECT_EQ(model.eventTypes, (Texts{"Cut", "Cut"}));
  EXPECT_EQ(model.enableEvents, 2);
  EXPECT_EQ(model.totalStartTime, "00.00:00:00");
  EXPECT_EQ(model.totalEndTime, "00.00:02:00");
  EXPECT_EQ(model.errorMessage, "") << "emptied before the outcome is looked at";
  EXPECT_EQ(model.numEvents, 1);
  EXPECT_EQ(model.trackCount, 2);
}

TEST_F(IncompleteLoadTest, projectWithoutCutsStillDrawsAndTakesEditsNowhere) {
  ASSERT_TRUE(LoadCuts({{.track = 7}, {.track = 8}}));
  ASSERT_TRUE(Load(ProjectBuilder().Silence()));
  EXPECT_EQ(Column("TrackTable", "Track"), (Texts{"\"2147483647\"", "\"-2147483648\""}));
  EXPECT_EQ(Column("TrackTable", "Space"), (Texts{"no value", "no value"}));
  EXPECT_EQ(Column("EventListTable", "Space"), (Texts{"1", "1"}));
  Tick("TrackTable", 0, 0);
  EXPECT_EQ(Column("TrackTable", "Space"), (Texts{"no value", "no value"}));
  // The rows are those of the project before: row 1 is an event that this one does not have.
  Tick("EventListTable", 1, 0);
  EXPECT_EQ(EventFlags(), (std::vector<std::int32_t>{0}));
}

TEST_F(IncompleteLoadTest, boxesOfNoTracksRebuildNothing) {
  ASSERT_TRUE(LoadCuts({{.track = 7}, {.track = 8}}));
  ASSERT_TRUE(Load(ProjectBuilder().Silence()));
  model.SetTrackBoxes([](std::int32_t) { return false; });
  EXPECT_EQ(model.eventTypes, (Texts{"Cut", "Cut"})) << "as after so many edits, none";
  EXPECT_EQ(model.enableEvents, 2);
}

// ---- failed loads ----

TEST_F(IncompleteLoadTest, failedLoadIsToldInTheMessage) {
  EXPECT_FALSE(LoadBad());
  EXPECT_EQ(model.errorMessage, "File NG.");
  EXPECT_EQ(model.project, nullptr);
  EXPECT_FALSE(model.HasCuts());
  ASSERT_TRUE(model.loadFailure.has_value());
  EXPECT_NE(model.loadFailure->reason, "");
}

TEST_F(IncompleteLoadTest, failedLoadLeavesTheTablesAsTheyWere) {
  ASSERT_TRUE(Load(ProjectBuilder().Constant("PROJECT", "PROJ_TITLE", "\"A title\"").Cut({})));
  ASSERT_TRUE(LoadCuts(
      {{.source = 3, .track = 7, .destIn = Stamp(48000), .destOut = Stamp(96000)}, {.track = 8}}));
  EXPECT_EQ(model.errorMessage, test::kFilesMissing);
  EXPECT_FALSE(LoadBad());
  EXPECT_EQ(model.errorMessage, "File NG.");
  EXPECT_EQ(model.project, nullptr);
  EXPECT_EQ(model.ProjectInfomation[0], "\"A title\"");
  EXPECT_EQ(model.numEvents, 2);
  EXPECT_EQ(model.trackCount, 2);
  EXPECT_EQ(model.enableEvents, 2);
  EXPECT_EQ(model.minTrack, 7);
  EXPECT_EQ(model.maxTrack, 8);
  EXPECT_EQ(model.trackEnable.Rows(), 0);
  EXPECT_EQ(Track(0), (Texts{"00.00:01:00", "00.00:02:00"}));
  EXPECT_EQ(model.eventTypes, (Texts{"Cut", "Cut"}));
  EXPECT_EQ(model.eventEnable, (std::vector<EventBox>{EventBox::On, EventBox::On}));
  EXPECT_EQ(model.totalStartTime, "00.00:00:00");
  EXPECT_EQ(model.totalEndTime, "00.00:02:00");
}

TEST_F(IncompleteLoadTest, tablesDrawAfterAFailedLoad) {
  ASSERT_TRUE(LoadCuts({{.track = 7}, {.track = 8}}));
  EXPECT_FALSE(LoadBad());
  EXPECT_EQ(Column("TrackTable", "Space"), (Texts{"no value", "no value"}));
  EXPECT_EQ(Column("TrackTable", "Track"), (Texts{"\"7\"", "\"8\""}));
  EXPECT_EQ(Column("TrackTable", "Start"), (Texts{"\"00.00:00:00\"", "\"00.00:00:00\""}));
  EXPECT_EQ(Column("EventListTable", "Space"), (Texts{"1", "1"}));
  EXPECT_EQ(Column("EventListTable", "Name"), (Texts{"\"a.wav\"", "\"a.wav\""}));
}

TEST_F(IncompleteLoadTest, editsAfterAFailedLoadAreDropped) {
  ASSERT_TRUE(LoadCuts({{.track = 7}, {.track = 8}}));
  EXPECT_FALSE(LoadBad());
  Tick("TrackTable", 0, 0);
  Tick("EventListTable", 1, 0);
  model.SetTrackBoxes([](std::int32_t) { return false; });
  EXPECT_EQ(model.trackEnable.Rows(), 0);
  EXPECT_EQ(model.eventEnable, (std::vector<EventBox>{EventBox::On, EventBox::On}));
  EXPECT_EQ(model.enableEvents, 2);
  EXPECT_EQ(model.errorMessage, "File NG.");
}

TEST_F(IncompleteLoadTest, goodLoadAfterAFailedOneBeginsAnew) {
  EXPECT_FALSE(LoadBad());
  ASSERT_TRUE(LoadCuts({{.track = 3}}));
  EXPECT_EQ(model.errorMessage, "");
  EXPECT_FALSE(model.loadFailure.has_value());
  EXPECT_EQ(model.trackEnable.Rows(), 1);
}

TEST_F(IncompleteLoadTest, whatIsNoRegularFileIsNotLoaded) {
  const std::string fifo = folder.Path("fifo.adl");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  for (const std::string& path :
       {folder.Path("nowhere.adl"), folder.Path(), std::string("/dev/zero"), fifo, std::string(),
        std::string("no-slash-and-no-dot"), "/" + std::string(5000, 'x') + ".adl"}) {
    EXPECT_FALSE(model.LoadFile(path)) << path;
    EXPECT_EQ(model.errorMessage, "File NG.") << path;
    EXPECT_EQ(model.project, nullptr) << path;
    EXPECT_TRUE(model.loadFailure.has_value()) << path;
  }
}

TEST_F(IncompleteLoadTest, fileNameWithoutADotLoads) {
  EXPECT_TRUE(model.LoadFile(Sources().Cut({}).WriteTo(folder, "project")));
  EXPECT_TRUE(model.HasCuts());
}

TEST_F(IncompleteLoadTest, longFileNameLoads) {
  EXPECT_TRUE(model.LoadFile(Sources().Cut({}).WriteTo(folder, std::string(255, 'n'))));
  EXPECT_TRUE(model.HasCuts());
}

}  // namespace
}  // namespace velmora
