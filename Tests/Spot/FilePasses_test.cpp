// The depth pass and the gain pass: which files they make, from what, and what becomes of them.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Spot/SpotFixture.h"

namespace velmora {
namespace {

using test::Journal;
using test::MadeWave;
using test::Placed;
using test::ProjectBuilder;
using test::Stamp;
using test::TemporaryFolder;

using Lines = std::vector<std::string>;

class FilePassTest : public test::SpotTest {
 protected:
  void CopyInto(const std::string& name) {
    std::filesystem::create_directories(folder.Path(name));
    options.copyFolder = folder.Path(name);
    options.copySource = 1;
  }
  void DepthOf24() {
    options.bitDepth = 24;
    options.depthSuffix = "_24bit";
  }
  /// Files that the host was given, in order.
  Lines Spotted() const {
    Lines files;
    for (const Placed& placed : host.PlacedRegions()) files.push_back(placed.file);
    return files;
  }
};

// ---- what the depth pass asks of a file ----

/// Answers a copy with a status of its own, after making what it is told to make.
class AnsweringFile : public AES31BWF {
 public:
  AnsweringFile(const std::string& source, std::int32_t status, std::string content)
      : AES31BWF(source.c_str()), status_(status), content_(std::move(content)) {}

  std::int32_t CopyTo(const char* target, std::int32_t bitDepth) override {
    asked.push_back(std::filesystem::path(target).filename().string() + " " +
                    std::to_string(bitDepth));
    if (!content_.empty()) std::ofstream(target) << content_;
    return status_;
  }

  std::vector<std::string> asked;

 private:
  std::int32_t status_;
  std::string content_;
};

struct AnswerRow {
  const char* rule;
  std::int32_t status;
  const char* content;
  bool fileStays;
};

TEST_F(FilePassTest, copiesAreMadeByTheSourceAndItsAnswerIsObeyed) {
  for (const AnswerRow& row : {AnswerRow{"refused", 1, "", false},
                               {"failed before a byte", 2, "", false},
                               {"came out short", 2, "RIFF", true},
                               {"done", 0, "RIFF", true}}) {
    SCOPED_TRACE(row.rule);
    WriteWave("take.wav", 16, {1, 2});
    Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
    DepthOf24();
    AnsweringFile source(folder.Path("take.wav"), row.status, row.content);
    project->events[0].sourceFile = &source;
    EXPECT_TRUE(Run());
    EXPECT_EQ(source.asked, (Lines{"take_24bit.wav 24"}));
    EXPECT_EQ(std::filesystem::exists(folder.Path("take_24bit.wav")), row.fileStays);
    std::filesystem::remove(folder.Path("take_24bit.wav"));
  }
}

// ---- depth pass without copies ----

TEST_F(FilePassTest, otherDepthIsConvertedBesideTheSource) {
  WriteWave("take.wav", 16, {32767, -32768, 1, -1, 0});
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
  DepthOf24();
  EXPECT_TRUE(Run());
  EXPECT_EQ(Wave("take_24bit.wav"), (MadeWave{24, {8388351, -8388607, 255, -255, 0}}));
  EXPECT_EQ(Spotted(), (Lines{"take_24bit.wav"}));
  EXPECT_EQ(host.PlacedRegions().at(0).name, "take_24bit");
  EXPECT_EQ(observer.files, (Lines{"depth 0 take_24bit.wav 0"}));
}

TEST_F(FilePassTest, equalDepthMakesNoFile) {
  WriteWave("take.wav", 16, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(FilesMade({"take.wav"}), Lines{});
  EXPECT_EQ(Spotted(), (Lines{"take.wav"}));
  EXPECT_EQ(observer.files, Lines{});
}

TEST_F(FilePassTest, eachEventGetsAFileOfItsOwn) {
  WriteWave("take.wav", 24, test::Ramp(5));
  WriteWave("other.wav", 16, test::Ramp(5));
  Load(ProjectBuilder()
           .Source(1, "take.wav")
           .Source(2, "other.wav")
           .Cut({})
           .Cut({.source = 2})
           .Cut({})
           .Cut({}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(Spotted(),
            (Lines{"take_16bit.wav", "other.wav", "take_16bit.1.wav", "take_16bit.2.wav"}));
  EXPECT_EQ(FilesMade({"take.wav", "other.wav"}),
            (Lines{"take_16bit.1.wav", "take_16bit.2.wav", "take_16bit.wav"}));
}

TEST_F(FilePassTest, suffixIsTakenFromTheOptions) {
  WriteWave("take.wav", 24, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
  options.depthSuffix = "_other";
  EXPECT_TRUE(Run());
  EXPECT_EQ(Spotted(), (Lines{"take_other.wav"}));
}

TEST_F(FilePassTest, nameBesideTheSourceKeepsItsMiddleParts) {
  WriteWave("a.b.wav", 24, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "a.b.wav").Cut({}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(Spotted(), (Lines{"a.b_16bit.wav"}));
  EXPECT_EQ(host.PlacedRegions().at(0).name, "a");
}

TEST_F(FilePassTest, takenNameIsNotOverwritten) {
  WriteWave("take.wav", 24, test::Ramp(5));
  folder.Write("take_16bit.wav", "in use");
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(Spotted(), (Lines{"take_16bit.1.wav"}));
  EXPECT_EQ(TemporaryFolder::Read(folder.Path("take_16bit.wav")), "in use");
}

TEST_F(FilePassTest, invalidSourceIsToldAndMakesNoFile) {
  folder.Write("take.wav", "no wave file");
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.files, (Lines{"depth 0 take_16bit.wav 3"}));
  EXPECT_EQ(FilesMade({"take.wav"}), Lines{});
  EXPECT_EQ(project->events[0].renderedFile, nullptr);
}

TEST_F(FilePassTest, failedConversionLeavesTheSourceToBeSpotted) {
  WriteWave("take.wav", 24, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({.destIn = Stamp(9), .destOut = Stamp(12)}));
  CopyInto("copies");
  std::filesystem::remove(folder.Path("copies"));
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.files, (Lines{"depth 0 copies/take.wav 1"}));
  EXPECT_EQ(host.PlacedRegions(), (std::vector<Placed>{{"take.wav", 1, 0, 9, 0, 3, "take"}}));
  EXPECT_EQ(observer.log, Lines{});
}

// ---- depth pass with copies ----

TEST_F(FilePassTest, equalDepthIsCopiedByteForByte) {
  const std::string bytes = test::WaveBytes()
                                .Format({.bits = 16})
                                .Chunk("LIST", "some")
                                .Data(test::PcmBytes(16, {1, 2, 3}))
                                .Bytes();
  folder.Write("take.wav", bytes + "after the form");
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
  CopyInto("copies");
  EXPECT_TRUE(Run());
  EXPECT_EQ(TemporaryFolder::Read(folder.Path("copies/take.wav")), bytes);
  EXPECT_EQ(Spotted(), (Lines{"copies/take.wav"}));
  EXPECT_EQ(host.PlacedRegions().at(0).name, "take");
  EXPECT_EQ(observer.files, (Lines{"depth 0 copies/take.wav 0"}));
}

TEST_F(FilePassTest, otherDepthIsConvertedIntoTheCopyFolderWithoutASuffix) {
  WriteWave("take.wav", 24, {8388607, -8388608, 256});
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
  CopyInto("copies");
  EXPECT_TRUE(Run());
  EXPECT_EQ(Wave("copies/take.wav"), (MadeWave{16, {32766, -32767, 0}}));
  EXPECT_EQ(Spotted(), (Lines{"copies/take.wav"}));
  EXPECT_EQ(FilesMade({"take.wav"}), (Lines{"copies/take.wav"}));
}

TEST_F(FilePassTest, copiesOfOneSourceAreToldApartByTheFreeNumber) {
  WriteWave("take.x.wav", 16, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.x.wav").Cut({}).Cut({}));
  CopyInto("copies");
  options.copySource = -1;  // any state of the box but 0 is on
  EXPECT_TRUE(Run());
  EXPECT_EQ(Spotted(), (Lines{"copies/take.wav", "copies/take.1.wav"}));
  EXPECT_EQ(host.PlacedRegions().at(1).name, "take");
}

TEST_F(FilePassTest, boxWithoutAFolderIsOff) {
  WriteWave("take.wav", 16, test::Ramp(5));
  Load(
      ProjectBuilder().Source(1, "take.wav").Cut({.outfade = test::FadeLength(2), .gainDb = "-6"}));
  options.copySource = 1;
  options.doGain = options.doFades = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(FilesMade({"take.wav"}), (Lines{"take_FadeOut.wav", "take_Gain.wav"}));
  EXPECT_EQ(Spotted(), (Lines{"take_Gain.wav", "take_FadeOut.wav"}));
}

TEST_F(FilePassTest, folderWithoutTheBoxIsOff) {
  WriteWave("take.wav", 24, test::Ramp(5));
  Load(
      ProjectBuilder().Source(1, "take.wav").Cut({.outfade = test::FadeLength(2), .gainDb = "-6"}));
  CopyInto("copies");
  options.copySource = 0;
  options.doGain = options.doFades = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(FilesMade({"take.wav"}),
            (Lines{"take_16bit.wav", "take_FadeOut.wav", "take_Gain.wav"}));
}

TEST_F(FilePassTest, missingCopyFolderIsNotMade) {
  WriteWave("take.wav", 16, test::Ramp(5));
  Load(
      ProjectBuilder().Source(1, "take.wav").Cut({.outfade = test::FadeLength(2), .gainDb = "-6"}));
  options.copyFolder = folder.Path("nowhere");
  options.copySource = 1;
  options.doGain = options.doFades = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.files, (Lines{"depth 0 nowhere/take.wav 1", "gain 0 nowhere/take_Gain.wav 2",
                                   "fade 0 nowhere/take_FadeOut.wav 2"}));
  EXPECT_EQ(Spotted(), (Lines{"take.wav"}));
  EXPECT_FALSE(Exists("nowhere"));
}

// ---- gain pass ----

TEST_F(FilePassTest, gainIsRenderedFromTheWholeSourceAtItsOwnDepth) {
  WriteWave("take.wav", 16, {32767, 100, -100, 0, 1000});
  Load(
      ProjectBuilder()
          .Source(1, "take.wav")
          .Cut({.sourceIn = Stamp(1), .destIn = Stamp(7), .destOut = Stamp(9), .gainDb = "-20.0"}));
  DepthOf24();
  options.doGain = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(Wave("take_Gain.wav"), (MadeWave{16, {3276, 9, -9, 0, 99}}));
  EXPECT_EQ(host.PlacedRegions(),
            (std::vector<Placed>{{"take_Gain.wav", 1, 0, 7, 1, 3, "take_Gain"}}));
  EXPECT_EQ(observer.files, (Lines{"depth 0 take_24bit.wav 0", "gain 0 take_Gain.wav 0"}));
}

TEST_F(FilePassTest, fileOfTheDepthPassStaysOnDiskUnderTheGain) {
  WriteWave("take.wav", 24, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({.gainDb = "-6"}));
  options.doGain = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(FilesMade({"take.wav"}), (Lines{"take_16bit.wav", "take_Gain.wav"}));
  EXPECT_EQ(Spotted(), (Lines{"take_Gain.wav"}));
}

TEST_F(FilePassTest, gainGoesIntoTheCopyFolder) {
  WriteWave("take.x.wav", 16, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.x.wav").Cut({.gainDb = "-6"}));
  CopyInto("copies");
  options.doGain = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(FilesMade({"take.x.wav"}), (Lines{"copies/take.wav", "copies/take_Gain.wav"}));
  EXPECT_EQ(Spotted(), (Lines{"copies/take_Gain.wav"}));
}

TEST_F(FilePassTest, gainIsLeftAloneWhileItsPassIsOff) {
  WriteWave("take.wav", 16, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({.gainDb = "-6"}));
  EXPECT_TRUE(Run());
  EXPECT_EQ(FilesMade({"take.wav"}), Lines{});
  EXPECT_EQ(Spotted(), (Lines{"take.wav"}));
}

TEST_F(FilePassTest, eventWithoutAGainKeepsWhatTheDepthPassMade) {
  WriteWave("take.wav", 24, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}).Cut({.gainDb = "-6"}));
  options.doGain = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.files, (Lines{"depth 0 take_16bit.wav 0", "depth 1 take_16bit.1.wav 0",
                                   "gain 1 take_Gain.wav 0"}));
  EXPECT_EQ(Spotted(), (Lines{"take_16bit.wav", "take_Gain.wav"}));
}

TEST_F(FilePassTest, failedGainLeavesWhatTheDepthPassMade) {
  // A gain file cannot be made in a folder that has gone after the depth pass.
  WriteWave("take.wav", 16, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({.gainDb = "-6"}));
  CopyInto("copies");
  options.doGain = 1;
  observer.onReport = [&](std::int32_t step) {
    if (step == 2) std::filesystem::rename(folder.Path("copies"), folder.Path("moved"));
    if (step == 3) std::filesystem::rename(folder.Path("moved"), folder.Path("copies"));
  };
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.files, (Lines{"depth 0 copies/take.wav 0", "gain 0 copies/take_Gain.wav 2"}));
  EXPECT_EQ(Spotted(), (Lines{"copies/take.wav"}));
}

TEST_F(FilePassTest, gainOfAnInvalidSourceIsToldAsFailed) {
  folder.Write("take.wav", "no wave file");
  Load(ProjectBuilder().Source(1, "take.wav").Cut({.gainDb = "-6"}));
  options.doGain = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.files, (Lines{"depth 0 take_16bit.wav 3", "gain 0 take_Gain.wav 2"}));
  EXPECT_EQ(FilesMade({"take.wav"}), Lines{});
}

TEST_F(FilePassTest, gainOfAMissingFileIsPassedOver) {
  Load(ProjectBuilder().Source(1, "missing.wav").Cut({.gainDb = "-6"}));
  options.doGain = 1;
  EXPECT_TRUE(Run());
  EXPECT_EQ(observer.files, Lines{});
  EXPECT_EQ(observer.reports.size(), 5U);
}

// ---- what an aborted run left ----

TEST_F(FilePassTest, regionPassSpotsTheFileLeftOverFromAnAbortedRun) {
  WriteWave("take.wav", 24, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
  observer.abortAtPoll = 2;  // after the depth pass
  EXPECT_FALSE(Run());
  ASSERT_NE(project->events[0].renderedFile, nullptr);
  DepthOf24();  // now the source would need no file
  observer.abortAtPoll = 0;
  EXPECT_TRUE(Run());
  EXPECT_EQ(Spotted(), (Lines{"take_16bit.wav"}));
  EXPECT_EQ(project->events[0].renderedFile, nullptr);
}

TEST_F(FilePassTest, depthPassReplacesTheFileLeftOver) {
  WriteWave("take.wav", 24, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
  int destroyed = 0;
  project->events[0].renderedFile = new test::CountedFile(folder.Path("take.wav"), destroyed);
  EXPECT_TRUE(Run());
  EXPECT_EQ(Spotted(), (Lines{"take_16bit.wav"}));
  EXPECT_EQ(destroyed, 1) << "nothing uses it any more";
}

TEST_F(FilePassTest, failedConversionKeepsTheFileLeftOver) {
  WriteWave("take.wav", 24, test::Ramp(5));
  WriteWave("left.wav", 16, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({}));
  options.copyFolder = folder.Path("nowhere");
  options.copySource = 1;
  int destroyed = 0;
  project->events[0].renderedFile = new test::CountedFile(folder.Path("left.wav"), destroyed);
  EXPECT_TRUE(Run());
  EXPECT_EQ(Spotted(), (Lines{"left.wav"}));
  EXPECT_EQ(destroyed, 1);
}

TEST_F(FilePassTest, gainPassDestroysTheFileLeftOver) {
  WriteWave("take.wav", 16, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({.gainDb = "-6"}));
  options.doGain = 1;
  int destroyed = 0;
  project->events[0].renderedFile = new test::CountedFile(folder.Path("take.wav"), destroyed);
  std::vector<int> destroyedAtReport;
  observer.onReport = [&](std::int32_t) { destroyedAtReport.push_back(destroyed); };
  EXPECT_TRUE(Run());
  EXPECT_EQ(destroyedAtReport, (std::vector<int>{0, 0, 1, 1, 1}));
  EXPECT_EQ(Spotted(), (Lines{"take_Gain.wav"}));
}

TEST_F(FilePassTest, failedGainKeepsTheFileLeftOver) {
  folder.Write("take.wav", "no wave file");
  WriteWave("left.wav", 16, test::Ramp(5));
  Load(ProjectBuilder().Source(1, "take.wav").Cut({.gainDb = "-6"}));
  options.doGain = 1;
  int destroyed = 0;
  project->events[0].renderedFile = new test::CountedFile(folder.Path("left.wav"), destroyed);
  EXPECT_TRUE(Run());
  EXPECT_EQ(Spotted(), (Lines{"left.wav"}));
}

}  // namespace
}  // namespace velmora
