#include "Desktop/Logic/ProjectReport.h"

#include <gtest/gtest.h>

#include "Support/ProjectBuilder.h"
#include "Timecode/AdlTime.h"

namespace velmora::desktop {
namespace {

using test::CutSpec;
using test::ProjectBuilder;
using test::Stamp;
using test::TemporaryFolder;

constexpr host::SessionRates kSession25{48000, 2};  // of the builder's timestamps

ProjectFacts FactsOfFile(const std::string& path) {
  bool ok = false;
  AES31Project project(path.c_str(), nullptr, &ok);
  return ok ? GatherFacts(path, &project, nullptr)
            : GatherFacts(path, nullptr, &project.failure.value());
}

std::vector<std::string> Texts(const std::vector<StatusItem>& items) {
  std::vector<std::string> texts;
  for (const StatusItem& item : items) texts.push_back(item.text);
  return texts;
}

CutSpec CutOf(std::int32_t source, std::int64_t destIn = 0) {
  CutSpec cut;
  cut.source = source;
  cut.destIn = Stamp(destIn);
  cut.destOut = Stamp(destIn + 1000);
  return cut;
}

class ProjectReportTest : public testing::Test {
 protected:
  ProjectFacts Load(const ProjectBuilder& builder) {
    return FactsOfFile(folder_.Write("Demo.adl", builder.Text()));
  }
  TemporaryFolder folder_;
};

TEST_F(ProjectReportTest, nothingLoadedInvitesToChoose) {
  EXPECT_EQ(Texts(DescribeProject({}, {})),
            std::vector<std::string>{"Choose an ADL file to begin"});
}

TEST_F(ProjectReportTest, allFoundIsSaidQuietly) {
  folder_.Write("a.wav", "x");
  const ProjectFacts facts = Load(ProjectBuilder().Source(1, "a.wav").Cut(CutOf(1)).Cut(CutOf(1)));
  EXPECT_TRUE(facts.Loaded());
  const auto items = DescribeProject(facts, kSession25);
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(items[0].severity, Severity::Quiet);
  EXPECT_EQ(items[0].text, "2 cuts from 1 audio file, all found");
}

TEST_F(ProjectReportTest, eventsThatAreNoCutsAreExplained) {
  folder_.Write("a.wav", "x");
  const ProjectFacts facts = Load(ProjectBuilder().Source(1, "a.wav").Cut(CutOf(1)).Silence());
  EXPECT_EQ(Texts(DescribeProject(facts, kSession25)),
            (std::vector<std::string>{"1 cut from 1 audio file, all found",
                                      "1 event without audio, listed in red but not missed"}));
}

TEST_F(ProjectReportTest, missingFilesAreCountedAndNamed) {
  folder_.Write("a.wav", "x");
  const ProjectFacts facts = Load(ProjectBuilder()
                                      .Source(1, "a.wav")
                                      .Source(2, "b.wav")
                                      .Source(3, "c.wav")
                                      .Cut(CutOf(1))
                                      .Cut(CutOf(2))
                                      .Cut(CutOf(2))
                                      .Cut(CutOf(3)));
  const auto items = DescribeProject(facts, kSession25);
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(items[0].severity, Severity::Problem);
  EXPECT_EQ(items[0].text, "2 of 3 audio files missing: b.wav, c.wav");
  EXPECT_EQ(MissingList(facts), "b.wav\nc.wav\n");
}

TEST_F(ProjectReportTest, manyMissingFilesAreCutShortInTheLineAlone) {
  ProjectBuilder builder;
  for (int i = 1; i <= 5; ++i) {
    builder.Source(i, std::to_string(i) + ".wav").Cut(CutOf(i));
  }
  const ProjectFacts facts = Load(builder);
  EXPECT_EQ(DescribeProject(facts, kSession25)[0].text,
            "5 of 5 audio files missing: 1.wav, 2.wav, 3.wav and 2 more");
  EXPECT_EQ(MissingList(facts), "1.wav\n2.wav\n3.wav\n4.wav\n5.wav\n");
}

TEST_F(ProjectReportTest, aSourceThatNoCutNamesIsNotMissed) {
  folder_.Write("a.wav", "x");
  const ProjectFacts facts =
      Load(ProjectBuilder().Source(1, "a.wav").Source(2, "b.wav").Cut(CutOf(1)));
  EXPECT_TRUE(facts.summary.missing.empty());
}

TEST_F(ProjectReportTest, aCutOfASourceOutsideTheIndexIsTold) {
  const ProjectFacts facts = Load(ProjectBuilder().Cut(CutOf(7)));
  EXPECT_EQ(MissingList(facts), "source 7 (not in the source index)\n");
}

TEST_F(ProjectReportTest, aProjectWithoutCutsSaysSo) {
  const auto items = DescribeProject(Load(ProjectBuilder().Silence()), kSession25);
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(items[0].severity, Severity::Problem);
  EXPECT_EQ(items[0].text, "Demo.adl has no cut: there is nothing to place");
}

TEST_F(ProjectReportTest, theEarliestCutIsFoundWhereverItStands) {
  const ProjectFacts facts =
      Load(ProjectBuilder().Source(1, "a").Silence().Cut(CutOf(1, 9600)).Cut(CutOf(1, 1920)));
  EXPECT_EQ(facts.summary.earliest, Stamp(1920));
  EXPECT_EQ(facts.summary.cuts, 2U);
}

TEST_F(ProjectReportTest, differentSampleRatesAreBothShown) {
  folder_.Write("a.wav", "x");
  const ProjectFacts facts = Load(ProjectBuilder().Source(1, "a.wav").Cut(CutOf(1, 1920)));
  const auto texts = Texts(DescribeProject(facts, {44100, 2}));
  ASSERT_EQ(texts.size(), 3U);
  EXPECT_EQ(texts[0], "Project at 48000 Hz, session at 44100 Hz");
  // One frame of 1920 samples reads as one of 1764.
  EXPECT_EQ(texts[1], "The session's timebase moves everything by -156 samples");
}

// 48000/1.001 Hz has no 32-bit float: the session's rate is the nearest, a hair beside the
// project's.
TEST_F(ProjectReportTest, aPulledProjectInItsOwnSessionHasNoRateToTell) {
  folder_.Write("a.wav", "x");
  CutSpec cut = CutOf(1);
  for (std::string* stamp : {&cut.destIn, &cut.destOut})
    stamp->at(11) = '-';  // 48000 Hz pulled down
  const ProjectFacts facts = Load(ProjectBuilder().Source(1, "a.wav").Cut(cut));
  const host::SessionRates session = host::PresetFor(facts.summary.earliest.c_str());
  ASSERT_NE(static_cast<double>(session.sampleRate), AdlSampleRate(facts.summary.earliest.c_str()));
  EXPECT_EQ(Texts(DescribeProject(facts, session)),
            std::vector<std::string>{"1 cut from 1 audio file, all found"});
  EXPECT_EQ(Texts(DescribeProject(facts, {48000, session.frameRate}))[0],
            "Project at 47952.048 Hz, session at 48000 Hz");
}

TEST_F(ProjectReportTest, aRemainderThatTheTimebaseDropsIsTold) {
  folder_.Write("a.wav", "x");
  const ProjectFacts facts = Load(ProjectBuilder().Source(1, "a.wav").Cut(CutOf(1, 1930)));
  EXPECT_EQ(Texts(DescribeProject(facts, kSession25))[0],
            "The session's timebase moves everything by -10 samples");
}

TEST_F(ProjectReportTest, aFailedLoadTellsLineAndReason) {
  ProjectFacts facts;
  facts.path = "/projects/Demo.adl";
  facts.failure = LoadFailure{LoadFailureCode::FadeForm, 12, "EVENT_LIST", "Infade",
                              "the length is no timestamp"};
  const auto items = DescribeProject(facts, {});
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(items[0].severity, Severity::Problem);
  EXPECT_EQ(items[0].text,
            "Demo.adl does not load: line 12: <EVENT_LIST> (Infade): the length is no timestamp");
}

TEST_F(ProjectReportTest, aFileThatCannotBeReadHasNoLine) {
  const ProjectFacts facts = FactsOfFile(folder_.Path("absent.adl"));
  EXPECT_FALSE(facts.Loaded());
  const std::string text = DescribeProject(facts, {})[0].text;
  EXPECT_TRUE(text.starts_with("absent.adl does not load: ")) << text;
  EXPECT_EQ(text.find("line"), std::string::npos) << text;
  EXPECT_GT(text.size(), std::string("absent.adl does not load: ").size());
}

TEST(DescribeSession, countsInWords) {
  host::SessionSummary summary;
  EXPECT_EQ(DescribeSession(summary), "");
  summary.regions = 1;
  summary.tracks = 1;
  summary.files = 1;
  EXPECT_EQ(DescribeSession(summary), "1 region on 1 track from 1 file");
  summary.regions = 12;
  summary.tracks = 4;
  summary.files = 3;
  EXPECT_EQ(DescribeSession(summary), "12 regions on 4 tracks from 3 files");
}

}  // namespace
}  // namespace velmora::desktop
