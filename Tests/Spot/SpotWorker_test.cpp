#include "Spot/SpotWorker.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "Model/ViewModel.h"
#include "Spot/SpotFixture.h"

namespace velmora {
namespace {

using test::Journal;
using test::Placed;
using test::ProjectBuilder;
using test::SpotWorkerTest;
using test::Stamp;

// ---- the order of calls ----

TEST_F(SpotWorkerTest, threePassesCountCheckReportAndFetchInTheirOrder) {
  LoadThreeEvents();
  EXPECT_TRUE(Run());
  EXPECT_EQ(journal, (Journal{                                // depth: count, check, report, fetch
                              "poll", "report 1", "fetch 0",  //
                              "poll", "report 2", "fetch 1",  //
                              "poll", "report 3", "fetch 2",  //
                                                              // region: count, report, check, fetch
                              "report 4", "poll", "fetch 0", "alias take.wav", "send",  //
                              "report 5", "poll", "fetch 1",                            //
                              "report 6", "poll", "fetch 2", "alias take.wav",
                              "send",                 //
                                                      // release: fetch, count, report
                              "fetch 0", "report 7",  //
                              "fetch 1", "report 8",  //
                              "fetch 2", "report 9",  //
                              "report -1"}));
}

TEST_F(SpotWorkerTest, fivePassesCountCheckReportAndFetchInTheirOrder) {
  LoadThreeEvents();
  options.doGain = 1;
  options.doFades = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(
      journal,
      (Journal{"poll",     "report 1",  "fetch 0",                                    // depth
               "poll",     "report 2",  "fetch 1",                                    //
               "poll",     "report 3",  "fetch 2",                                    //
               "poll",     "report 4",  "fetch 0",                                    // gain
               "poll",     "report 5",  "fetch 1",                                    //
               "poll",     "report 6",  "fetch 2",                                    //
               "report 7", "poll",      "fetch 0", "alias take_Gain.wav",    "send",  // region
               "report 8", "poll",      "fetch 1",                                    //
               "report 9", "poll",      "fetch 2", "alias take.wav",         "send",  //
               "fetch 0",  "report 10",                                               // release
               "fetch 1",  "report 11",                                               //
               "fetch 2",  "report 12",                                               //
               "poll",     "report 13", "fetch 0", "alias take_FadeOut.wav", "send",  // fade
               "poll",     "report 14", "fetch 1",                                    //
               "poll",     "report 15", "fetch 2", "alias take_FadeIn.wav",  "send",  //
               "report -1"}));
}

TEST_F(SpotWorkerTest, repeatedAttemptReportsTheSameStepAndChecksTheAbortAgain) {
  LoadThreeEvents();
  RefuseSends(1, 2);
  EXPECT_TRUE(Run());
  const Journal regionPass(journal.begin() + 9, journal.begin() + 9 + 25);
  EXPECT_EQ(regionPass, (Journal{"report 4",
                                 "poll",
                                 "fetch 0",
                                 "alias take.wav",
                                 "send",
                                 "log spot 5555555555555555  ttt=-1712",  //
                                 "report 4",
                                 "poll",
                                 "fetch 0",
                                 "alias take.wav",
                                 "send",
                                 "log spot 5555555555555555  ttt=-1712",  //
                                 "report 4",
                                 "poll",
                                 "fetch 0",
                                 "alias take.wav",
                                 "send",  //
                                 "report 5",
                                 "poll",
                                 "fetch 1",  //
                                 "report 6",
                                 "poll",
                                 "fetch 2",
                                 "alias take.wav",
                                 "send"}));
}

TEST_F(SpotWorkerTest, nonZeroTagsOfAnyValueSwitchThePassesOn) {
  LoadThreeEvents();
  options.doGain = -1;
  options.doFades = 2;
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.reports.size(), 16U);
  EXPECT_EQ(observer.reports.at(14), 15);
}

TEST_F(SpotWorkerTest, gainPassAloneMakesFourPasses) {
  LoadThreeEvents();
  options.doGain = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.reports,
            (std::vector<std::int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, -1}));
  EXPECT_EQ(FilesMade({"take.wav"}), (std::vector<std::string>{"take_Gain.wav"}));
}

TEST_F(SpotWorkerTest, fadePassAloneMakesFourPasses) {
  LoadThreeEvents();
  options.doFades = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.reports.size(), 13U);
  EXPECT_EQ(FilesMade({"take.wav"}),
            (std::vector<std::string>{"take_FadeIn.wav", "take_FadeOut.wav"}));
}

// ---- nothing to do ----

TEST_F(SpotWorkerTest, nullProjectMakesNoCallAtAll) {
  options.copySource = 1;
  options.copyFolder = folder.Path();
  options.doFades = options.doGain = 1;
  EXPECT_TRUE(RunSpot({nullptr, 5, 1, test::kZeroStamp.c_str()}, options, host, observer));
  EXPECT_EQ(journal, Journal{});
}

TEST_F(SpotWorkerTest, nullProjectWithNullFirstEventMakesNoCallAtAll) {
  EXPECT_TRUE(RunSpot({nullptr, 5, 1, nullptr}, options, host, observer));
  EXPECT_EQ(journal, Journal{});
}

TEST_F(SpotWorkerTest, noEventsGoStraightToTheEnd) {
  LoadThreeEvents();
  options.doFades = options.doGain = 1;
  for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    events = count;
    EXPECT_TRUE(Run());
    EXPECT_EQ(journal, (Journal{"report -1"})) << count;
  }
}

TEST_F(SpotWorkerTest, onlyTheFirstEventsAreWalkedIfTheCountIsLower) {
  LoadThreeEvents();
  events = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(Only({"report", "fetch"}), (Journal{"report 1", "fetch 0", "report 2", "fetch 0",
                                                "fetch 0", "report 3", "report -1"}));
  EXPECT_EQ(host.messages.size(), 1U);
}

TEST_F(SpotWorkerTest, eventsThatTheProjectLacksCostTheirSteps) {
  LoadThreeEvents();
  events = 5;
  options.doFades = options.doGain = 1;
  EXPECT_TRUE(Run());
  ASSERT_EQ(observer.reports.size(), 26U);
  EXPECT_EQ(observer.reports.at(24), 25);
  EXPECT_EQ(host.messages.size(), 4U);
}

TEST_F(SpotWorkerTest, otherEventsCostAStepInEveryPassAndDoNothing) {
  WriteWave("take.wav", 16, test::Ramp(10));
  Load(ProjectBuilder()
           .Source(1, "take.wav")
           .Silence()
           .Entry("(Aux) 1 a b c")
           .Entry("(Vid) a b c d")
           .Entry("(Alt) I 1 1 00.00:00:00/0000")
           .Entry("(Gain) 1 -6.0 (Infade) 00.00:00;00/0004 LIN 0 0 0"));
  options.doFades = options.doGain = 1;
  options.bitDepth = 24;
  options.depthSuffix = "_24bit";
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.reports.size(), 26U);
  EXPECT_EQ(FilesMade({"take.wav"}), std::vector<std::string>{});
  EXPECT_EQ(host.messages.size(), 0U);
  EXPECT_EQ(observer.leftOut, std::vector<std::string>{});
}

// ---- live events ----

TEST_F(SpotWorkerTest, labelOfACutMatchesInAnyCase) {
  WriteWave("take.wav", 16, test::Ramp(10));
  Load(ProjectBuilder()
           .Source(1, "take.wav")
           .Cut({.label = "CUT", .destIn = Stamp(1)})
           .Cut({.label = "cut", .destIn = Stamp(2)})
           .Cut({.label = "cUt", .destIn = Stamp(3)}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), 3U);
}

struct BoxRow {
  const char* rule;
  std::int32_t trackOn, eventOn;
  bool live;
};

void PrintTo(const BoxRow& row, std::ostream* out) {
  *out << row.rule;
}

class BoxRows : public SpotWorkerTest, public testing::WithParamInterface<BoxRow> {};

TEST_P(BoxRows, decideWhetherACutIsWorkedOn) {
  WriteWave("take.wav", 24, test::Ramp(10));
  Load(
      ProjectBuilder().Source(1, "take.wav").Cut({.outfade = test::FadeLength(4), .gainDb = "-6"}));
  project->events[0].trackOn = GetParam().trackOn;
  project->events[0].eventOn = GetParam().eventOn;
  options.doFades = options.doGain = 1;
  EXPECT_EQ(IsLive(project->events[0]), GetParam().live);
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), GetParam().live ? 2U : 0U);
  EXPECT_EQ(FilesMade({"take.wav"}).size(), GetParam().live ? 3U : 0U);
  EXPECT_EQ(observer.reports.size(), 6U);
  EXPECT_EQ(observer.leftOut, std::vector<std::string>{});
}

constexpr BoxRow kBoxRows[] = {
    {"bothOn", 1, 1, true},   {"trackOff", 0, 1, false},       {"eventOff", 1, 0, false},
    {"bothOff", 0, 0, false}, {"anyNonZeroIsOn", -1, 2, true},
};

INSTANTIATE_TEST_SUITE_P(SpotWorker, BoxRows, testing::ValuesIn(kBoxRows),
                         [](const auto& row) { return std::string(row.param.rule); });

TEST(IsLive, asksForACut) {
  AES31Event event{};
  event.trackOn = event.eventOn = 1;
  EXPECT_FALSE(IsLive(event)) << "no label";
  event.label = "Silence";
  EXPECT_FALSE(IsLive(event));
  event.label = "Cuts";
  EXPECT_FALSE(IsLive(event));
  event.label = "cUT";
  EXPECT_TRUE(IsLive(event));
}

// ---- what a run leaves ----

TEST_F(SpotWorkerTest, leavesNoRenderedFileOnAnyEvent) {
  LoadThreeEvents();
  options.bitDepth = 24;
  options.depthSuffix = "_24bit";
  options.doGain = 1;
  EXPECT_TRUE(Run());
  for (const AES31Event& event : project->events) EXPECT_EQ(event.renderedFile, nullptr);
  EXPECT_EQ(FilesMade({"take.wav"}),
            (std::vector<std::string>{"take_24bit.1.wav", "take_24bit.wav", "take_Gain.wav"}));
}

TEST_F(SpotWorkerTest, laterSpotMakesNewFilesBesideTheOldOnes) {
  LoadThreeEvents();
  options.doGain = options.doFades = 1;
  EXPECT_TRUE(Run());
  const std::string first = test::TemporaryFolder::Read(folder.Path("take_Gain.wav"));
  EXPECT_TRUE(Run());
  EXPECT_EQ(FilesMade({"take.wav"}),
            (std::vector<std::string>{"take_FadeIn.1.wav", "take_FadeIn.wav", "take_FadeOut.1.wav",
                                      "take_FadeOut.wav", "take_Gain.1.wav", "take_Gain.wav"}));
  EXPECT_EQ(test::TemporaryFolder::Read(folder.Path("take_Gain.wav")), first);
}

TEST_F(SpotWorkerTest, fillsInTheComputedOptions) {
  LoadThreeEvents();
  firstEvent = Stamp(1000);
  options.positionMode = PositionFromFirst;
  EXPECT_TRUE(Run());
  EXPECT_EQ(options.timelineOffset, -1000);
  EXPECT_TRUE(options.relativeTrack);
}

TEST_F(SpotWorkerTest, releaseRenderedFilesDestroysTheObjectsAndKeepsTheFiles) {
  LoadThreeEvents();
  int destroyed = 0;
  project->events[0].renderedFile = new test::CountedFile(folder.Path("take.wav"), destroyed);
  project->events[1].renderedFile = new test::CountedFile(folder.Path("take.wav"), destroyed);
  ReleaseRenderedFiles(*project);
  EXPECT_EQ(destroyed, 2);
  EXPECT_EQ(project->events[0].renderedFile, nullptr);
  EXPECT_EQ(project->events[1].renderedFile, nullptr);
  EXPECT_TRUE(Exists("take.wav"));
  ReleaseRenderedFiles(*project);
  EXPECT_EQ(destroyed, 2);
}

// ---- the worked example of two cuts, one with a gain ----

TEST_F(SpotWorkerTest, twoCutsOfWhichOneHasAGainTakeTenSteps) {
  WriteWave("take.wav", 24, {8388607, -8388608, 256, 65536, 0, 0, 0, 0});
  Load(ProjectBuilder()
           .Source(1, "take.wav")
           .Cut({.destIn = Stamp(100), .destOut = Stamp(106), .gainDb = "0"})
           .Cut({.sourceIn = Stamp(1), .destIn = Stamp(200), .destOut = Stamp(205)}));
  options.doGain = options.doFades = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.reports, (std::vector<std::int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, -1}));
  EXPECT_EQ(FilesMade({"take.wav"}),
            (std::vector<std::string>{"take_16bit.1.wav", "take_16bit.wav", "take_Gain.wav"}));
  EXPECT_EQ(host.PlacedRegions(),
            (std::vector<Placed>{{"take_Gain.wav", 1, 0, 100, 0, 6, "take_Gain"},
                                 {"take_16bit.1.wav", 1, 0, 200, 1, 6, "take_16bit"}}));
  EXPECT_EQ(Wave("take_16bit.1.wav"), (test::MadeWave{16, {32766, -32767, 0, 255, 0, 0, 0, 0}}));
  EXPECT_EQ(Wave("take_Gain.wav"),
            (test::MadeWave{24, {8388606, -8388607, 255, 65535, 0, 0, 0, 0}}));
}

// ---- from the model ----

TEST_F(SpotWorkerTest, spotsWhatTheModelLoadedAndTicked) {
  WriteWave("take.wav", 16, test::Ramp(100));
  ViewModel model;
  ASSERT_TRUE(model.LoadFile(ProjectBuilder()
                                 .Source(1, "take.wav")
                                 .Cut({.track = 9, .destIn = Stamp(5000), .destOut = Stamp(5010)})
                                 .Silence()
                                 .Cut({.track = 7, .destIn = Stamp(3000), .destOut = Stamp(3010)})
                                 .Cut({.track = 8, .destIn = Stamp(4000), .destOut = Stamp(4010)})
                                 .WriteTo(folder)));
  model.SetTrackBox(1, false);
  options.positionMode = PositionFromFirst;
  EXPECT_TRUE(RunSpot({model.project.get(), model.numEvents, model.minTrack, model.firstEvent},
                      options, host, observer));
  EXPECT_EQ(host.PlacedRegions(), (std::vector<Placed>{{"take.wav", -99, 2, 2000, 0, 10, "take"},
                                                       {"take.wav", -99, 0, 0, 0, 10, "take"}}));
  EXPECT_EQ(observer.reports.size(), 13U);
}

TEST_F(SpotWorkerTest, manyTakenNamesArePassedOver) {
  constexpr std::size_t kTaken = 500;
  constexpr std::size_t kCuts = 20;
  folder.Write("taken_24bit.wav", "");
  for (std::size_t i = 1; i < kTaken; ++i) {
    folder.Write("taken_24bit." + std::to_string(i) + ".wav", "");
  }
  WriteWave("taken.wav", 16, {1, 2, 3});
  ProjectBuilder builder;
  builder.Source(1, "taken.wav");
  for (std::size_t i = 0; i < kCuts; ++i) builder.Cut({});
  Load(builder);
  options.bitDepth = 24;
  options.depthSuffix = "_24bit";
  EXPECT_TRUE(Run());
  for (std::size_t i = 0; i < kCuts; ++i) {
    EXPECT_EQ(host.PlacedRegions().at(i).file,
              "taken_24bit." + std::to_string(kTaken + i) + ".wav");
  }
}

}  // namespace
}  // namespace velmora
