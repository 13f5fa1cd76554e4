// Which neighbours make a crossfade, and what its piece holds.

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "Spot/FadeFixture.h"

namespace velmora {
namespace {

using test::Crossfading;
using test::CutSpec;
using test::FadeLength;
using test::FadePassTest;
using test::MadeWave;
using test::Placed;
using test::ProjectBuilder;
using test::Stamp;

using Lines = std::vector<std::string>;

TEST_F(FadePassTest, overlapOfEqualFadesIsACrossfade) {
  LoadCuts(Crossfading());
  EXPECT_TRUE(Run());
  EXPECT_EQ(Pieces(), (std::vector<Placed>{{"a_FadeOut.wav", 2, 0, 146, 0, 4, "a_FadeOut"},
                                           {"b_XFade.wav", 2, 0, 146, 0, 4, "b_XFade"}}));
  // Outgoing from 20 - 4 + 50 = 66: 1072, 1088, 1104, 1120 under 1, 3/4, 1/2, 1/4; incoming from
  // 30: 496, 512, 528, 544 under 0, 1/4, 1/2, 3/4.
  EXPECT_EQ(Wave("b_XFade.wav"), (MadeWave{16, {1071, 943, 815, 687}}));
  EXPECT_EQ(Wave("a_FadeOut.wav"), (MadeWave{16, {1071, 815, 551, 279}}));
  EXPECT_EQ(observer.files, (Lines{"fade 0 a_FadeOut.wav 0", "fade 1 b_XFade.wav 0"}));
  EXPECT_EQ(observer.tries,
            (Lines{"0 main 1 0", "1 main 1 0", "0 outfade 1 0", "1 crossfade 1 0"}));
}

TEST_F(FadePassTest, incomingEventOfACrossfadeKeepsItsFadeOut) {
  auto cuts = Crossfading();
  cuts[1].outfade = FadeLength(6);
  LoadCuts(cuts);
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"a_FadeOut.wav", "b_XFade.wav", "b_FadeOut.wav"}));
  EXPECT_EQ(Pieces().at(2).position, 194);
}

TEST_F(FadePassTest, crossfadesChainFromEventToEvent) {
  auto cuts = Crossfading();
  cuts[1].outfade = FadeLength(6);
  cuts.push_back(
      {.track = 2, .destIn = Stamp(194), .destOut = Stamp(260), .infade = FadeLength(6)});
  LoadCuts(cuts);
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"a_FadeOut.wav", "b_XFade.wav", "b_FadeOut.wav", "a_XFade.wav"}));
}

TEST_F(FadePassTest, crossfadeOfOneSourceReadsItTwice) {
  auto cuts = Crossfading();
  cuts[1].source = 1;
  cuts[1].sourceIn = Stamp(30);
  LoadCuts(cuts);
  EXPECT_TRUE(Run());
  EXPECT_EQ(Wave("a_XFade.wav"), (MadeWave{16, {1071, 943, 815, 687}}));
}

struct ConditionRow {
  const char* rule;
  std::function<void(CutSpec& first, CutSpec& second)> change;
  Lines pieces;
};

void PrintTo(const ConditionRow& row, std::ostream* out) {
  *out << row.rule;
}

class ConditionRows : public FadePassTest, public testing::WithParamInterface<ConditionRow> {};

TEST_P(ConditionRows, decidesThePieces) {
  auto cuts = Crossfading();
  GetParam().change(cuts[0], cuts[1]);
  LoadCuts(cuts);
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), GetParam().pieces);
}

const Lines kNoCrossfade = {"a_FadeOut.wav", "b_FadeIn.wav"};

const std::vector<ConditionRow> kConditionRows = {
    {"otherTrackIsNoCrossfade", [](CutSpec&, CutSpec& second) { second.track = 3; }, kNoCrossfade},
    {"withoutFadeInThereIsNoPiece",
     [](CutSpec&, CutSpec& second) { second.infade.clear(); },
     {"a_FadeOut.wav"}},
    {"withoutFadeOutBeforeItIsAFadeIn",
     [](CutSpec& first, CutSpec&) { first.outfade.clear(); },
     {"b_FadeIn.wav"}},
    {"overlapOneLongerIsNoCrossfade", [](CutSpec& first, CutSpec&) { first.destOut = Stamp(151); },
     kNoCrossfade},
    {"overlapOneShorterIsNoCrossfade", [](CutSpec& first, CutSpec&) { first.destOut = Stamp(149); },
     kNoCrossfade},
    {"laterStartIsNoCrossfade", [](CutSpec&, CutSpec& second) { second.destIn = Stamp(147); },
     kNoCrossfade},
    {"noOverlapIsNoCrossfade", [](CutSpec&, CutSpec& second) { second.destIn = Stamp(150); },
     kNoCrossfade},
    {"otherLengthIsNoCrossfade", [](CutSpec& first, CutSpec&) { first.outfade = FadeLength(5); },
     kNoCrossfade},
    {"otherLengthThatFitsTheOverlapIsNoCrossfade",
     [](CutSpec& first, CutSpec&) { first.outfade = FadeLength(8); }, kNoCrossfade},
    {"equalCountInAnotherFrameRateMarkIsNoCrossfade",
     [](CutSpec& first, CutSpec&) { first.outfade = "00|00:00;00/0004"; }, kNoCrossfade},
    {"equalCountInAnotherSeparatorIsNoCrossfade",
     [](CutSpec& first, CutSpec&) { first.outfade = "00.00-00;00/0004"; }, kNoCrossfade},
    {"equalCountWithATailIsNoCrossfade",
     [](CutSpec& first, CutSpec&) { first.outfade = "00.00:00;00/0004x"; }, kNoCrossfade},
    {"sampleRateOfTheLengthCountsAsText",
     [](CutSpec& first, CutSpec& second) { first.outfade = second.infade = "00.00:00;00|0004"; },
     {"a_FadeOut.wav", "b_XFade.wav"}},
    {"overlapIsComparedInSamplesNotInText",
     [](CutSpec&, CutSpec& second) { second.destIn = "00|00:00:00/0146"; },
     {"a_FadeOut.wav", "b_XFade.wav"}},
    {"missingOutgoingSourceLeavesNoPieceOfEitherKind",
     [](CutSpec& first, CutSpec&) { first.source = 3; },
     {}},
    {"missingIncomingSourceLeavesNoPiece",
     [](CutSpec&, CutSpec& second) { second.source = 3; },
     {"a_FadeOut.wav"}},
    {"outFadeIsMadeThoughTheCrossfadeLacksASource",
     [](CutSpec& first, CutSpec& second) {
       first.source = 3;
       second.outfade = FadeLength(6);
     },
     {"b_FadeOut.wav"}},
    {"fadesOfLengthZeroThatTouchAreACrossfade",
     [](CutSpec& first, CutSpec& second) {
       first.outfade = second.infade = FadeLength(0);
       second.destIn = Stamp(150);
     },
     {"a_FadeOut.wav", "b_XFade.wav"}},
};

INSTANTIATE_TEST_SUITE_P(Crossfade, ConditionRows, testing::ValuesIn(kConditionRows),
                         [](const auto& row) { return std::string(row.param.rule); });

TEST_F(FadePassTest, flagsOfTheFadesDecideNotTheirLengths) {
  LoadCuts(Crossfading());
  project->events[0].outfade.present = false;
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"b_FadeIn.wav"}));
  project->events[0].outfade.present = true;
  project->events[1].infade.present = false;
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"a_FadeOut.wav"}));
}

TEST_F(FadePassTest, crossfadeWithoutAnOutgoingSourceTriesNoFile) {
  auto cuts = Crossfading();
  cuts[0].source = 3;
  LoadCuts(cuts);
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.files, Lines{});
}

TEST_F(FadePassTest, crossfadeWithoutAnIncomingSourceTriesNoFile) {
  auto cuts = Crossfading();
  cuts[1].source = 3;
  LoadCuts(cuts);
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.files, (Lines{"fade 0 a_FadeOut.wav 0"}));
}

// ---- who counts as the event before ----

TEST_F(FadePassTest, firstEventHasNoneBeforeIt) {
  LoadCuts({Crossfading()[1]});
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"b_FadeIn.wav"}));
}

TEST_F(FadePassTest, eventSwitchedOffDoesNotCountAsTheOneBefore) {
  LoadCuts(Crossfading());
  project->events[0].eventOn = 0;
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"b_FadeIn.wav"}));
}

TEST_F(FadePassTest, trackSwitchedOffDoesNotCountAsTheOneBefore) {
  LoadCuts(Crossfading());
  project->events[0].trackOn = 0;
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"b_FadeIn.wav"}));
}

TEST_F(FadePassTest, eventSwitchedOffBetweenLeavesTheOuterTwoACrossfade) {
  auto cuts = Crossfading();
  cuts.insert(cuts.begin() + 1, CutSpec{.track = 9});
  LoadCuts(cuts);
  project->events[1].eventOn = 0;
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"a_FadeOut.wav", "b_XFade.wav"}));
}

TEST_F(FadePassTest, otherEventBetweenLeavesTheOuterTwoACrossfade) {
  WriteWave("a.wav", 16, test::Ramp(200));
  WriteWave("b.wav", 16, test::Ramp(200));
  Load(ProjectBuilder()
           .Source(1, "a.wav")
           .Source(2, "b.wav", Stamp(1000))
           .Cut(Crossfading()[0])
           .Silence()
           .Entry("(Rem) no edit at all")
           .Cut(Crossfading()[1]));
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"a_FadeOut.wav", "b_XFade.wav"}));
}

TEST_F(FadePassTest, liveEventBetweenHidesTheOneBeforeIt) {
  auto cuts = Crossfading();
  cuts.insert(cuts.begin() + 1, CutSpec{.track = 9});
  LoadCuts(cuts);
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"a_FadeOut.wav", "b_FadeIn.wav"}));
}

TEST_F(FadePassTest, liveEventWithoutASourceHidesTheOneBeforeItToo) {
  auto cuts = Crossfading();
  cuts.insert(cuts.begin() + 1, CutSpec{.source = 3, .track = 2});
  LoadCuts(cuts);
  EXPECT_TRUE(Run());
  EXPECT_EQ(PieceFiles(), (Lines{"a_FadeOut.wav", "b_FadeIn.wav"}));
}

TEST_F(FadePassTest, crossfadeTakesTheFormatOfTheOutgoingFile) {
  WriteWave("a.wav", 24, {256 * 1000, 256 * 1000, 256 * 1000, 256 * 1000});
  WriteWave("b.wav", 16, {2000, 2000, 2000, 2000});
  Load(ProjectBuilder()
           .Source(1, "a.wav")
           .Source(2, "b.wav")
           .Cut({.destIn = Stamp(0), .destOut = Stamp(4), .outfade = FadeLength(4)})
           .Cut({.source = 2, .destIn = Stamp(0), .destOut = Stamp(4), .infade = FadeLength(4)}));
  EXPECT_TRUE(Run());
  // In units of 16 bits 1000, 1250, 1500, 1750, each a fraction below for the scale of 8388607.
  EXPECT_EQ(Wave("b_XFade.wav"), (MadeWave{24, {255999, 319999, 383999, 447999}}));
}

}  // namespace
}  // namespace velmora
