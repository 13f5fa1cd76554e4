#include "Model/ViewModel.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "Model/ModelFixture.h"

namespace velmora {
namespace {

using test::ProjectBuilder;
using test::Stamp;

using Texts = std::vector<std::string>;
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

class ViewModelTest : public test::ModelTest {};

// ---- before any load ----

TEST_F(ViewModelTest, beginsEmpty) {
  EXPECT_EQ(model.project, nullptr);
  EXPECT_FALSE(model.HasCuts());
  for (const std::string& text : model.ProjectInfomation) EXPECT_EQ(text, "");
  EXPECT_EQ(model.numEvents, 0);
  EXPECT_EQ(model.trackCount, 0);
  EXPECT_EQ(model.enableEvents, 0);
  EXPECT_EQ(model.minTrack, 0);
  EXPECT_EQ(model.maxTrack, 0);
  EXPECT_EQ(model.TrackNo, 0);
  EXPECT_EQ(model.firstEvent, nullptr);
  EXPECT_EQ(model.lastEvent, nullptr);
  EXPECT_EQ(model.trackEnable.Rows(), 0);
  EXPECT_TRUE(model.eventEnable.empty());
  EXPECT_FALSE(model.spotRunning);
  EXPECT_FALSE(model.loadFailure.has_value());
}

// ---- project data ----

ProjectBuilder WithConstants() {
  ProjectBuilder builder;
  builder.Source(1, "a.wav")
      .Constant("PROJECT", "PROJ_TITLE", "\"A title\"")
      .Constant("PROJECT", "PROJ_ORIGINATOR", "originator")
      .Constant("PROJECT", "PROJ_CREATE_DATE", "2004-02-29")
      .Constant("PROJECT", "PROJ_NOTES", "\"notes\"")
      .Constant("PROJECT", "PROJ_CLIENT_DATA", "client")
      .Constant("SEQUENCE", "SEQ_TITLE", "\"seq title\"")
      .Constant("SEQUENCE", "SEQ_DESCRIPT", "\"not shown\"")
      .Constant("SEQUENCE", "SEQ_SAMPLE_RATE", "S48000")
      .Constant("SEQUENCE", "SEQ_FRAME_RATE", "25")
      .Constant("SEQUENCE", "SEQ_ADL_LEVEL", "1")
      .Constant("SEQUENCE", "SEQ_CLEAN", "TRUE")
      .Constant("SEQUENCE", "SEQ_SORT", "0")
      .Constant("SEQUENCE", "SEQ_MULTICHAN", "TRUE")
      .Constant("SEQUENCE", "SEQ_DEST_START", Stamp(0))
      .Constant("VERSION", "ADL_ID", "\"not shown\"")
      .Constant("SYSTEM", "SYS_GAIN", "\"not shown\"")
      .Cut({});
  return builder;
}

TEST_F(ViewModelTest, eachRowShowsItsConstantAsTheFileHasIt) {
  ASSERT_TRUE(Load(WithConstants()));
  const std::array<std::string, 13> expected = {
      "\"A title\"",     "originator", "2004-02-29", "\"notes\"", "client", "",
      "\"seq title\"",   "S48000",     "25",         "1",         "TRUE",   "TRUE",
      "00.00:00:00/0000"};
  EXPECT_EQ(model.ProjectInfomation, expected);
}

TEST_F(ViewModelTest, textsAreConvertedFromShiftJis) {
  ASSERT_TRUE(Load(
      ProjectBuilder().Constant("PROJECT", "PROJ_TITLE", "\"\x83\x65\x83\x58\x83\x67\"").Cut({})));
  EXPECT_EQ(model.ProjectInfomation[0], "\"\xE3\x83\x86\xE3\x82\xB9\xE3\x83\x88\"");
}

TEST_F(ViewModelTest, bytesThatCannotBeConvertedDoNotEndTheLoad) {
  ASSERT_TRUE(Load(ProjectBuilder()
                       .Constant("PROJECT", "PROJ_TITLE",
                                 "\"a\xFF"
                                 "b\"")
                       .Constant("SEQUENCE", "SEQ_TITLE", "behind")
                       .Cut({})));
  EXPECT_EQ(model.ProjectInfomation[0],
            "\"a\xEF\xBF\xBD"
            "b\"");
  EXPECT_EQ(model.ProjectInfomation[6], "behind");
}

TEST_F(ViewModelTest, absentConstantKeepsTheTextOfTheProjectBefore) {
  ASSERT_TRUE(Load(WithConstants()));
  ASSERT_TRUE(Load(ProjectBuilder().Constant("PROJECT", "PROJ_TITLE", "second").Cut({})));
  EXPECT_EQ(model.ProjectInfomation[0], "second");
  EXPECT_EQ(model.ProjectInfomation[3], "\"notes\"");
  EXPECT_EQ(model.ProjectInfomation[5], "");
}

// ---- one load after another ----

TEST_F(ViewModelTest, everyLoadTicksAllBoxes) {
  ASSERT_TRUE(LoadCuts({{.track = 1}, {.track = 2}}));
  Tick("TrackTable", 0, 0);
  Tick("EventListTable", 0, 0);
  ASSERT_TRUE(LoadCuts({{.track = 1}, {.track = 2}}));
  EXPECT_EQ(Column("TrackTable", "Space"), (Texts{"1", "1"}));
  EXPECT_EQ(Column("EventListTable", "Space"), (Texts{"1", "1"}));
  EXPECT_EQ(TrackFlags(), (std::vector<std::int32_t>{1, 1}));
  EXPECT_EQ(EventFlags(), (std::vector<std::int32_t>{1, 1}));
}

TEST_F(ViewModelTest, loadTicksEventsOfEveryKind) {
  ASSERT_TRUE(Load(Sources().Silence().Cut({}).Entry("(Rem) no edit")));
  EXPECT_EQ(TrackFlags(), (std::vector<std::int32_t>{1, 1, 1}));
  EXPECT_EQ(EventFlags(), (std::vector<std::int32_t>{1, 1, 1}));
}

TEST_F(ViewModelTest, smallerProjectLeavesNothingOfALargerOne) {
  ASSERT_TRUE(LoadCuts({{.track = 1}, {.track = 9}, {.source = 3, .track = 4}}));
  ASSERT_TRUE(LoadCuts({{.source = 2, .track = 5}}));
  EXPECT_EQ(model.errorMessage, "");
  EXPECT_EQ(model.numEvents, 1);
  EXPECT_EQ(model.trackCount, 1);
  EXPECT_EQ(model.trackEnable.Rows(), 1);
  EXPECT_EQ(model.trackStart.Rows(), 1);
  EXPECT_EQ(model.trackEnd.Rows(), 1);
  EXPECT_EQ(model.enableEvents, 1);
  EXPECT_EQ(model.eventName, (Texts{"b.wav"}));
  EXPECT_EQ(model.eventEnable.size(), 1U);
}

TEST_F(ViewModelTest, projectInUseOutlivesTheLoadOfAnother) {
  ASSERT_TRUE(LoadCuts({{.track = 1}, {.track = 2}}));
  const std::shared_ptr<AES31Project> worked = model.project;
  const char* const firstEvent = model.firstEvent;
  ASSERT_TRUE(LoadCuts({{.track = 5, .destIn = Stamp(48000)}}));
  EXPECT_NE(model.project, worked);
  EXPECT_EQ(worked.use_count(), 1);
  EXPECT_EQ(worked->GetEventCount(), 2);
  EXPECT_STREQ(firstEvent, "00.00:00:00/0000");
}

TEST_F(ViewModelTest, setTrackNoHasNoEffectButItsNumber) {
  ASSERT_TRUE(LoadCuts({{.track = 1}, {.track = 2}}));
  model.SetTrackNo(2);
  EXPECT_EQ(model.TrackNo, 2);
  EXPECT_EQ(model.enableEvents, 2);
  EXPECT_EQ(model.trackCount, 2);
  model.SetTrackNo(kLowest);
  EXPECT_EQ(model.TrackNo, kLowest);
}

}  // namespace
}  // namespace velmora
