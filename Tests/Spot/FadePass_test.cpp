#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "Spot/FadeFixture.h"

namespace velmora {
namespace {

using test::Crossfading;
using test::FadeLength;
using test::FadePassTest;
using test::Journal;
using test::MadeWave;
using test::Placed;
using test::ProjectBuilder;
using test::Stamp;

using Lines = std::vector<std::string>;

constexpr const char* kGivenUp = "SPOT Error outfade!!!!!!!!!!!!!!!!!!!!!!!";

// ---- one event's own fades ----

TEST_F(FadePassTest, inFadeIsTheHeadOfTheCut) {
  LoadCuts({{.source = 2,
             .track = 3,
             .sourceIn = Stamp(1010),
             .destIn = Stamp(500),
             .destOut = Stamp(550),
             .infade = FadeLength(4)}});
  EXPECT_TRUE(Run());
  EXPECT_EQ(Pieces(), (std::vector<Placed>{{"b_FadeIn.wav", 3, 0, 500, 0, 4, "b_FadeIn"}}));
  // Samples 10 to 13 are 176, 192, 208, 224, under 0, 1/4, 1/2, 3/4.
  EXPECT_EQ(Wave("b_FadeIn.wav"), (MadeWave{16, {0, 47, 103, 167}}));
  EXPECT_EQ(observer.files, (Lines{"fade 0 b_FadeIn.wav 0"}));
  EXPECT_EQ(observer.tries, (Lines{"0 main 1 0", "0 infade 1 0"}));
}

TEST_F(FadePassTest, outFadeIsTheTailOfTheCut) {
  LoadCuts({{.source = 2,
             .track = 3,
             .sourceIn = Stamp(1010),
             .destIn = Stamp(500),
             .destOut = Stamp(550),
             .outfade = FadeLength(4)}});
  EXPECT_TRUE(Run());
  EXPECT_EQ(Pieces(), (std::vector<Placed>{{"b_FadeOut.wav", 3, 0, 546, 0, 4, "b_FadeOut"}}));
  // Samples 10 - 4 + 50 = 56 to 59 are 912, 928, 944, 960, under 1, 3/4, 1/2, 1/4.
  EXPECT_EQ(Wave("b_FadeOut.wav"), (MadeWave{16, {911, 695, 471, 239}}));
  EXPECT_EQ(observer.tries, (Lines{"0 main 1 0", "0 outfade 1 0"}));
}

TEST_F(FadePassTest, fadeInGoesBeforeTheFadeOutOfAnEvent) {
  LoadCuts({{.destOut = Stamp(50), .infade = FadeLength(4), .outfade = FadeLength(8)}});
  EXPECT_TRUE(Run());
  EXPECT_EQ(Pieces(), (std::vector<Placed>{{"a_FadeIn.wav", 1, 0, 0, 0, 4, "a_FadeIn"},
                                           {"a_FadeOut.wav", 1, 0, 42, 0, 8, "a_FadeOut"}}));
}

TEST_F(FadePassTest, fadesGoAfterAllMainRegions) {
  LoadCuts(
      {{.destOut = Stamp(50), .outfade = FadeLength(4)}, {.source = 2, .infade = FadeLength(4)}});
  EXPECT_TRUE(Run());
  EXPECT_EQ(Only({"alias"}),
            (Journal{"alias a.wav", "alias b.wav", "alias a_FadeOut.wav", "alias b_FadeIn.wav"}));
}

TEST_F(FadePassTest, eventWithoutFadesHasNoPiece) {
  LoadCuts({{}});
  EXPECT_TRUE(Run());
  EXPECT_EQ(Pieces(), std::vector<Placed>{});
  EXPECT_EQ(FilesMade({"a.wav", "b.wav"}), Lines{});
}

TEST_F(FadePassTest, xfadeLineIsNotRead) {
  WriteWave("a.wav", 16, test::Ramp(50));
  Load(ProjectBuilder()
           .Source(1, "a.wav")
           .Entry("(Cut) I 1 1 1 " + Stamp(0) + " " + Stamp(0) + " " + Stamp(20) +
                  " _ (Xfade) 1 00.00:00;00/0004 b c 4 LIN"));
  EXPECT_TRUE(Run());
  EXPECT_EQ(FilesMade({"a.wav"}), Lines{});
}

TEST_F(FadePassTest, fadeOfLengthZeroIsAFileOfNoFrames) {
  LoadCuts({{.destOut = Stamp(50), .outfade = FadeLength(0)}});
  EXPECT_TRUE(Run());
  EXPECT_EQ(Pieces(), (std::vector<Placed>{{"a_FadeOut.wav", 1, 0, 50, 0, 0, "a_FadeOut"}}));
  EXPECT_EQ(Wave("a_FadeOut.wav"), (MadeWave{16, {}}));
}

TEST_F(FadePassTest, fadePastTheEndOfTheSourceIsSilentThere) {
  LoadCuts({{.sourceIn = Stamp(150), .destOut = Stamp(52), .outfade = FadeLength(4)}});
  EXPECT_TRUE(Run());
  // Samples 198 and 199 are 3184 and 3200; the file ends at 200.
  EXPECT_EQ(Wave("a_FadeOut.wav"), (MadeWave{16, {3183, 2399, 0, 0}}));
}

TEST_F(FadePassTest, fadeBeforeTheStartOfTheSourceIsSilentThere) {
  LoadCuts({{.source = 2, .sourceIn = Stamp(998), .destOut = Stamp(50), .infade = FadeLength(4)}});
  EXPECT_TRUE(Run());
  EXPECT_EQ(Wave("b_FadeIn.wav"), (MadeWave{16, {0, 0, 7, 23}}));
}

TEST_F(FadePassTest, fadeLengthIsReadAsDropFrame) {
  // From a minute on the drop-frame mark counts: 1798 frames at 30 per second, 2876800 samples.
  LoadCuts({{.destIn = Stamp(5000000), .destOut = Stamp(9000000), .infade = "00|01:00;00/0000"}});
  EXPECT_TRUE(Run());
  EXPECT_EQ(Pieces(),
            (std::vector<Placed>{{"a_FadeIn.wav", 1, 0, 5000000, 0, 2876800, "a_FadeIn"}}));
}

TEST_F(FadePassTest, fadeTooLongForAWaveFileHasNoRegion) {
  LoadCuts({{.infade = "29.59:59;24/0000", .outfade = FadeLength(4)}});
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"a_FadeOut.wav"}));
  EXPECT_EQ(observer.files, (Lines{"fade 0 a_FadeIn.wav 2", "fade 0 a_FadeOut.wav 0"}));
}

// ---- which source, which folder, which depth ----

TEST_F(FadePassTest, piecesCarryNoGainAndKeepTheSourcesDepth) {
  LoadCuts(
      {{.sourceIn = Stamp(10), .destOut = Stamp(50), .infade = FadeLength(4), .gainDb = "-20"}});
  options.doGain = 1;
  options.bitDepth = 24;
  options.depthSuffix = "_24bit";
  EXPECT_TRUE(Run());
  EXPECT_EQ(Wave("a_FadeIn.wav"), (MadeWave{16, {0, 47, 103, 167}}));
}

TEST_F(FadePassTest, piecesGoIntoTheCopyFolderNamedAfterTheSource) {
  LoadCuts({{.destOut = Stamp(50), .infade = FadeLength(4), .outfade = FadeLength(4)},
            {.destIn = Stamp(46), .destOut = Stamp(90), .infade = FadeLength(4)}});
  std::filesystem::create_directory(folder.Path("copies"));
  options.copyFolder = folder.Path("copies");
  options.copySource = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(FilesMade({"a.wav", "b.wav"}),
            (Lines{"copies/a.1.wav", "copies/a.wav", "copies/a_FadeIn.wav", "copies/a_FadeOut.wav",
                   "copies/a_XFade.wav"}));
}

TEST_F(FadePassTest, piecesOfOneSourceAreToldApartByTheFreeNumber) {
  LoadCuts({{.infade = FadeLength(4)}, {.infade = FadeLength(4)}});
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"a_FadeIn.wav", "a_FadeIn.1.wav"}));
  EXPECT_EQ(Pieces().at(1).name, "a_FadeIn");
}

TEST_F(FadePassTest, missingSourceMakesNoPiece) {
  LoadCuts({{.source = 3, .infade = FadeLength(4), .outfade = FadeLength(4)}});
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.files, Lines{});
  EXPECT_EQ(host.messages.size(), 0U);
}

TEST_F(FadePassTest, sourceThatGoesAmongItsPiecesMakesNoFurtherOne) {
  const std::string fade = FadeLength(4);
  LoadCuts({{.destIn = Stamp(100), .destOut = Stamp(150), .infade = fade, .outfade = fade},
            {.destIn = Stamp(300), .destOut = Stamp(350), .infade = fade},
            {.source = 2,
             .sourceIn = Stamp(1030),
             .destIn = Stamp(500),
             .destOut = Stamp(550),
             .infade = fade}});
  std::this_thread::sleep_for(std::chrono::milliseconds(40));  // its stream may be kept by then
  host.onSend = [this] {
    if (host.messages.size() == 4) std::filesystem::remove(folder.Path("a.wav"));
  };
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.files,
            (std::vector<std::string>{"fade 0 a_FadeIn.wav 0", "fade 0 a_FadeOut.wav 2",
                                      "fade 1 a_FadeIn.1.wav 2", "fade 2 b_FadeIn.wav 0"}));
  EXPECT_EQ(PieceFiles(), (std::vector<std::string>{"a_FadeIn.wav", "b_FadeIn.wav"}));
}

TEST_F(FadePassTest, failedRendererHasNoRegion) {
  LoadCuts({{.destOut = Stamp(50), .infade = FadeLength(4), .outfade = FadeLength(4)},
            {.destIn = Stamp(46), .destOut = Stamp(90), .infade = FadeLength(4)}});
  options.copyFolder = folder.Path("nowhere");
  options.copySource = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(Pieces(), std::vector<Placed>{});
  EXPECT_EQ(
      observer.files,
      (Lines{"depth 0 nowhere/a.wav 1", "depth 1 nowhere/a.wav 1", "fade 0 nowhere/a_FadeIn.wav 2",
             "fade 0 nowhere/a_FadeOut.wav 2", "fade 1 nowhere/a_XFade.wav 2"}));
  EXPECT_EQ(observer.log, Lines{});
}

TEST_F(FadePassTest, refusedMainRegionStillGetsItsFades) {
  LoadCuts({{.destOut = Stamp(50), .infade = FadeLength(4)}});
  RefuseSends(1, 80);
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"a_FadeIn.wav"}));
}

// ---- position and track ----

TEST_F(FadePassTest, timelineOffsetAndTrackReachEveryPiece) {
  LoadCuts({{.track = 6,
             .destIn = Stamp(100),
             .destOut = Stamp(150),
             .infade = FadeLength(4),
             .outfade = FadeLength(6)},
            {.track = 6, .destIn = Stamp(144), .destOut = Stamp(200), .infade = FadeLength(6)}});
  minTrack = 2;
  firstEvent = Stamp(100);
  options.positionMode = PositionFromFirst;
  EXPECT_TRUE(Run());
  EXPECT_EQ(Pieces(), (std::vector<Placed>{{"a_FadeIn.wav", -99, 4, 0, 0, 4, "a_FadeIn"},
                                           {"a_FadeOut.wav", -99, 4, 44, 0, 6, "a_FadeOut"},
                                           {"a_XFade.wav", -99, 4, 44, 0, 6, "a_XFade"}}));
}

// ---- attempts ----

TEST_F(FadePassTest, inFadeGivesUpAfterEightyAttemptsWithoutAWord) {
  LoadCuts({{.destOut = Stamp(50), .infade = FadeLength(4), .outfade = FadeLength(4)}});
  RefuseSends(2, 81, -600);
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles().size(), 81U) << "80 of the in-fade, one of the out-fade";
  EXPECT_EQ(PieceFiles().back(), "a_FadeOut.wav");
  EXPECT_EQ(observer.log, Lines{});
  EXPECT_EQ(observer.givenUp, (Lines{"0 infade -600"}));
}

TEST_F(FadePassTest, crossfadeGivesUpAfterEightyAttemptsWithoutAWord) {
  auto cuts = Crossfading();
  cuts[1].outfade = FadeLength(6);
  LoadCuts(cuts);
  RefuseSends(4, 83);
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), 84U);
  EXPECT_EQ(PieceFiles().back(), "b_FadeOut.wav");
  EXPECT_EQ(observer.log, Lines{});
  EXPECT_EQ(observer.givenUp, (Lines{"1 crossfade -1712"}));
}

TEST_F(FadePassTest, outFadeGivesUpAfterEightyAttemptsWithOneLine) {
  LoadCuts({{.destOut = Stamp(50), .outfade = FadeLength(4)},
            {.source = 2, .track = 2, .infade = FadeLength(4)}});
  RefuseSends(3, 82);
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), 83U);
  EXPECT_EQ(PieceFiles().back(), "b_FadeIn.wav");
  EXPECT_EQ(observer.log, (Lines{kGivenUp}));
  EXPECT_EQ(observer.givenUp, (Lines{"0 outfade -1712"}));
}

TEST_F(FadePassTest, lastAttemptOfAPieceCanStillSucceed) {
  LoadCuts({{.destOut = Stamp(50), .outfade = FadeLength(4)}});
  RefuseSends(2, 80);
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), 81U);
  EXPECT_EQ(observer.tries.back(), "0 outfade 80 0");
  EXPECT_EQ(observer.log, Lines{});
  EXPECT_EQ(observer.givenUp, Lines{});
}

TEST_F(FadePassTest, attemptsOfAPieceCountNoStepAndLookAtNoAbort) {
  LoadCuts({{.destOut = Stamp(50), .infade = FadeLength(4), .outfade = FadeLength(4)}});
  RefuseSends(2, 161);
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.reports, (std::vector<std::int32_t>{1, 2, 3, 4, -1}));
  EXPECT_EQ(observer.polls, 3);
  EXPECT_EQ(host.messages.size(), 161U);
}

TEST_F(FadePassTest, everyAttemptOfAPieceSendsTheSameFile) {
  LoadCuts({{.destOut = Stamp(50), .infade = FadeLength(4)}});
  RefuseSends(2, 3);
  EXPECT_TRUE(Run());
  EXPECT_EQ(Pieces(), std::vector<Placed>(3, {"a_FadeIn.wav", 1, 0, 0, 0, 4, "a_FadeIn"}));
  EXPECT_EQ(FilesMade({"a.wav", "b.wav"}), (Lines{"a_FadeIn.wav"}));
}

}  // namespace
}  // namespace velmora
