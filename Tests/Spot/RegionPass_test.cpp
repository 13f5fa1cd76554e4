#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "Spot/SpotFixture.h"

namespace velmora {
namespace {

using test::CutSpec;
using test::Journal;
using test::Placed;
using test::ProjectBuilder;
using test::Stamp;

using Lines = std::vector<std::string>;

class RegionPassTest : public test::SpotTest {
 protected:
  void LoadOne(const CutSpec& cut, const std::string& sourceStart = Stamp(0)) {
    WriteWave("take.wav", 16, test::Ramp(10));
    Load(ProjectBuilder().Source(1, "take.wav", sourceStart).Cut(cut));
  }
};

// ---- what a region says ----

TEST_F(RegionPassTest, regionStartsWhereTheCutBeginsInTheFile) {
  LoadOne({.sourceIn = Stamp(5300), .destIn = Stamp(9000), .destOut = Stamp(9700)}, Stamp(5000));
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.PlacedRegions(),
            (std::vector<Placed>{{"take.wav", 1, 0, 9000, 300, 1000, "take"}}));
}

TEST_F(RegionPassTest, cutThatBeginsBeforeTheFileHasANegativeStart) {
  LoadOne({.sourceIn = Stamp(10), .destIn = Stamp(0), .destOut = Stamp(4)}, Stamp(25));
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.PlacedRegions(), (std::vector<Placed>{{"take.wav", 1, 0, 0, -15, -11, "take"}}));
}

TEST_F(RegionPassTest, cutThatEndsBeforeItBeginsIsSentAsItIs) {
  LoadOne({.sourceIn = Stamp(8), .destIn = Stamp(100), .destOut = Stamp(95)});
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.PlacedRegions(), (std::vector<Placed>{{"take.wav", 1, 0, 100, 8, 3, "take"}}));
}

TEST_F(RegionPassTest, eachTimestampIsReadByItsOwnMarks) {
  // One second of source at 44100 Hz, and a second at 29.97 frames on the timeline.
  LoadOne({.sourceIn = "00.00:00:01|0000",   // 1764 samples
           .destIn = "00:00:01:00/0000",     // 48048
           .destOut = "00:00:02:00/0000"});  // 96096
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.PlacedRegions(),
            (std::vector<Placed>{{"take.wav", 1, 0, 48048, 1764, 49812, "take"}}));
}

TEST_F(RegionPassTest, startAndStopAreCutTo32Bits) {
  LoadOne({.sourceIn = "90.00:00:00/0000",  // 15552000000: 2667098112 in 32 bits
           .destIn = "00.00:00:00/0000",
           .destOut = "10.00:00:00/0000"});  // the end is 17280000000
  EXPECT_TRUE(Run());
  const Placed placed = host.PlacedRegions().at(0);
  EXPECT_EQ(placed.start, std::int64_t{2667098112} - 4294967296);
  EXPECT_EQ(placed.stop, std::int64_t{17280000000} - 4 * std::int64_t{4294967296});
}

TEST_F(RegionPassTest, countsWrapAt64Bits) {
  // A frame-rate mark that is none reads as the lowest 64-bit number.
  LoadOne({.sourceIn = Stamp(5), .destIn = "00x00:00:00/0000", .destOut = Stamp(7)});
  options.positionMode = PositionWithOffset;
  options.offsetSamples = -1;
  EXPECT_TRUE(Run());
  const Placed placed = host.PlacedRegions().at(0);
  EXPECT_EQ(placed.position, static_cast<long>(0x7FFFFFFFFFFFFFFF));
  EXPECT_EQ(placed.start, 5);
  EXPECT_EQ(placed.stop, 12) << "the low 32 bits of 5 + (7 - (-2^63))";
}

TEST_F(RegionPassTest, timelineOffsetMovesEveryRegion) {
  WriteWave("take.wav", 16, test::Ramp(10));
  Load(ProjectBuilder()
           .Source(1, "take.wav")
           .Cut({.destIn = Stamp(100), .destOut = Stamp(104)})
           .Cut({.destIn = Stamp(300), .destOut = Stamp(304)}));
  options.positionMode = PositionWithOffset;
  options.offsetSamples = -250;
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.PlacedRegions(), (std::vector<Placed>{{"take.wav", 1, 0, -150, 0, 4, "take"},
                                                       {"take.wav", 1, 0, 50, 0, 4, "take"}}));
}

TEST_F(RegionPassTest, fromFirstGivesTheDistanceFromTheEarliestCut) {
  WriteWave("take.wav", 16, test::Ramp(10));
  Load(ProjectBuilder()
           .Source(1, "take.wav")
           .Cut({.track = 4, .destIn = Stamp(5000), .destOut = Stamp(5004)})
           .Cut({.track = 2, .destIn = Stamp(3000), .destOut = Stamp(3004)}));
  minTrack = 2;
  firstEvent = Stamp(3000);
  options.positionMode = PositionFromFirst;
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.PlacedRegions(), (std::vector<Placed>{{"take.wav", -99, 2, 2000, 0, 4, "take"},
                                                       {"take.wav", -99, 0, 0, 0, 4, "take"}}));
}

TEST_F(RegionPassTest, streamIs1InEveryMessage) {
  LoadOne({});
  EXPECT_TRUE(Run());
  EXPECT_EQ(test::ValueOf<std::int16_t>(host.messages.at(0).parameters.at(5)), 1);
}

TEST_F(RegionPassTest, regionIsNamedByTheStemOfItsFile) {
  WriteWave("take.one.wav", 16, test::Ramp(10));
  Load(ProjectBuilder().Source(1, "take.one.wav").Cut({}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.PlacedRegions().at(0).file, "take.one.wav");
  EXPECT_EQ(host.PlacedRegions().at(0).name, "take");
}

TEST_F(RegionPassTest, longFileNameIsTheRegionNameAsAWhole) {
  const std::string name(250, 'n');
  WriteWave(name + ".wav", 16, test::Ramp(10));
  Load(ProjectBuilder().Source(1, name + ".wav").Cut({}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.PlacedRegions().at(0).name, name);
}

TEST_F(RegionPassTest, regionsGoInTheOrderOfTheEvents) {
  WriteWave("a.wav", 16, test::Ramp(10));
  WriteWave("b.wav", 16, test::Ramp(10));
  Load(ProjectBuilder()
           .Source(1, "a.wav")
           .Source(2, "b.wav")
           .Cut({.source = 2, .track = 3, .destIn = Stamp(900)})
           .Cut({.source = 1, .track = 1, .destIn = Stamp(100)}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(Only({"alias"}), (Journal{"alias b.wav", "alias a.wav"}));
}

// ---- events without a region ----

TEST_F(RegionPassTest, missingFileMakesNoRegionAndCostsItsStep) {
  WriteWave("take.wav", 16, test::Ramp(10));
  Load(ProjectBuilder().Source(1, "missing.wav").Source(2, "take.wav").Cut({}).Cut({.source = 2}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(Only({"alias"}), (Journal{"alias take.wav"}));
  EXPECT_EQ(observer.reports, (std::vector<std::int32_t>{1, 2, 3, 4, 5, 6, -1}));
  EXPECT_EQ(observer.leftOut, (Lines{"0 "}));
}

TEST_F(RegionPassTest, sourceNumberThatTheIndexLacksMakesNoRegion) {
  WriteWave("take.wav", 16, test::Ramp(10));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({.source = 9}));
  options.doFades = options.doGain = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), 0U);
  EXPECT_EQ(observer.reports.size(), 6U);
}

TEST_F(RegionPassTest, invalidSourceFileIsSkipped) {
  folder.Write("take.wav", "RIFF, but no wave file");
  WriteWave("good.wav", 16, test::Ramp(10));
  Load(ProjectBuilder()
           .Source(1, "take.wav")
           .Source(2, "good.wav")
           .Cut({.outfade = test::FadeLength(4), .gainDb = "-6"})
           .Cut({.source = 2}));
  options.doFades = options.doGain = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(Only({"alias"}), (Journal{"alias good.wav"}));
  EXPECT_EQ(observer.reports.size(), 11U);
  EXPECT_EQ(observer.leftOut, (Lines{"0 take.wav"}));
}

TEST_F(RegionPassTest, invalidRenderedFileGetsNoSecondChanceWithTheSource) {
  LoadOne({});
  folder.Write("left.wav", "not a wave file");
  project->events[0].renderedFile = new AES31BWF(folder.Path("left.wav").c_str());
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), 0U);
  EXPECT_EQ(observer.leftOut, (Lines{"0 left.wav"}));
  EXPECT_EQ(project->events[0].renderedFile, nullptr) << "released all the same";
}

TEST_F(RegionPassTest, conversionOfNoFramesIsAnInvalidRenderedFile) {
  // A data chunk of no bytes is found only with another chunk after it; the conversion ends with
  // its data chunk.
  folder.Write("take.wav",
               test::WaveBytes().Format({.bits = 24}).Data("").Chunk("LIST", "abcd").Bytes());
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(FilesMade({"take.wav"}), (Lines{"take_16bit.wav"}));
  EXPECT_EQ(host.messages.size(), 0U);
  EXPECT_EQ(observer.reports, (std::vector<std::int32_t>{1, 2, 3, -1}));
}

// ---- attempts ----

TEST_F(RegionPassTest, refusedRegionGetsEightyAttemptsAndALogLineEach) {
  LoadOne({.outfade = test::FadeLength(2)});
  options.doFades = 1;
  RefuseSends(1, 80, -600);
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), 81U) << "80 attempts, and the fade is still made";
  EXPECT_EQ(observer.log, Lines(80, "spot 5555555555555555  ttt=-600"));
  EXPECT_EQ(observer.givenUp, (Lines{"0 main -600"}));
}

TEST_F(RegionPassTest, refusedRegionIsCountedOnce) {
  WriteWave("take.wav", 16, test::Ramp(10));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}).Cut({}));
  RefuseSends(1, 80);
  EXPECT_TRUE(Run());
  std::vector<std::int32_t> expected{1, 2};
  expected.insert(expected.end(), 80, 3);
  expected.insert(expected.end(), {4, 5, 6, -1});
  EXPECT_EQ(observer.reports, expected);
  EXPECT_EQ(observer.polls, 2 + 80 + 1);
}

TEST_F(RegionPassTest, everyAttemptSendsTheSameMessage) {
  LoadOne({.sourceIn = Stamp(1), .destIn = Stamp(77), .destOut = Stamp(80)});
  RefuseSends(1, 80);
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.PlacedRegions(), (std::vector<Placed>(80, {"take.wav", 1, 0, 77, 1, 4, "take"})));
}

TEST_F(RegionPassTest, attemptsAreToldFromOneWithTheirStatus) {
  LoadOne({});
  RefuseSends(1, 2, -1712);
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.tries, (Lines{"0 main 1 -1712", "0 main 2 -1712", "0 main 3 0"}));
  EXPECT_EQ(observer.givenUp, Lines{});
}

TEST_F(RegionPassTest, lastAttemptCanStillSucceed) {
  LoadOne({});
  RefuseSends(1, 79);
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), 80U);
  EXPECT_EQ(observer.log.size(), 79U);
  EXPECT_EQ(observer.tries.back(), "0 main 80 0");
  EXPECT_EQ(observer.givenUp, Lines{});
}

TEST_F(RegionPassTest, counterOfAttemptsIsClearedByASuccess) {
  WriteWave("take.wav", 16, test::Ramp(10));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}).Cut({}));
  host.answer = [](std::size_t send) { return send == 80 ? 0 : -1; };
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), 160U) << "79 failures and a success, then 80 failures";
  EXPECT_EQ(observer.givenUp, (Lines{"1 main -1"}));
}

TEST_F(RegionPassTest, counterOfAttemptsIsClearedByGivingUp) {
  WriteWave("take.wav", 16, test::Ramp(10));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}).Cut({}).Cut({}));
  RefuseSends(1, 240);
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), 240U);
  EXPECT_EQ(observer.log.size(), 240U);
  EXPECT_EQ(observer.reports.back(), -1);
  EXPECT_EQ(observer.reports.at(observer.reports.size() - 2), 9);
}

TEST_F(RegionPassTest, logShowsTheStatusOfItsLow16Bits) {
  LoadOne({});
  RefuseSends(1, 1, 40000);
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.log, (Lines{"spot 5555555555555555  ttt=-25536"}));
}

TEST_F(RegionPassTest, statusOfHighBitsAloneIsASuccess) {
  LoadOne({});
  RefuseSends(1, 1, 0x10000);
  EXPECT_TRUE(Run());
  EXPECT_EQ(host.messages.size(), 1U);
  EXPECT_EQ(observer.log, Lines{});
}

TEST_F(RegionPassTest, fileGoneSinceTheLoadIsTriedToTheEnd) {
  LoadOne({});
  std::filesystem::remove(folder.Path("take.wav"));
  EXPECT_TRUE(Run());
  EXPECT_EQ(Only({"alias"}), Journal(80, "alias take.wav"));
  EXPECT_EQ(host.messages.size(), 0U);
  EXPECT_EQ(observer.log, Lines(80, "spot 5555555555555555  ttt=-43"));
}

// ---- closing ----

TEST_F(RegionPassTest, spottedFileIsClosedBeforeTheNextIteration) {
  WriteWave("a.wav", 16, test::Ramp(10));
  WriteWave("b.wav", 16, test::Ramp(10));
  Load(ProjectBuilder().Source(1, "a.wav").Source(2, "b.wav").Cut({}).Cut({.source = 2}));
  AES31BWF* const first = project->events[0].sourceFile;
  first->OpenAtData();
  std::vector<bool> openAtSend;
  host.onSend = [&] { openAtSend.push_back(first->stream != nullptr); };
  EXPECT_TRUE(Run());
  EXPECT_EQ(openAtSend, (std::vector<bool>{true, false}));
}

TEST_F(RegionPassTest, refusedFileIsClosedToo) {
  LoadOne({});
  AES31BWF* const file = project->events[0].sourceFile;
  file->OpenAtData();
  std::vector<bool> openAtSend;
  host.onSend = [&] { openAtSend.push_back(file->stream != nullptr); };
  RefuseSends(1, 1);
  EXPECT_TRUE(Run());
  EXPECT_EQ(openAtSend, (std::vector<bool>{true, false}));
}

// ---- release ----

TEST_F(RegionPassTest, releasePassDestroysTheRenderedFilesOfAllEvents) {
  WriteWave("take.wav", 16, test::Ramp(10));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}).Silence().Cut({}));
  int destroyed = 0;
  for (AES31Event& event : project->events) {
    event.renderedFile = new test::CountedFile(folder.Path("take.wav"), destroyed);
  }
  project->events[2].eventOn = 0;
  std::vector<int> destroyedAtReport;
  observer.onReport = [&](std::int32_t) { destroyedAtReport.push_back(destroyed); };
  EXPECT_TRUE(Run());
  EXPECT_EQ(destroyedAtReport, (std::vector<int>{0, 0, 0, 0, 0, 0, 1, 2, 3, 3}));
  for (const AES31Event& event : project->events) EXPECT_EQ(event.renderedFile, nullptr);
  EXPECT_TRUE(Exists("take.wav"));
}

}  // namespace
}  // namespace velmora
