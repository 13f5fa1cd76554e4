#include "Model/ProjectSummary.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "Support/ProjectBuilder.h"
#include "Support/TemporaryFolder.h"

namespace velmora::test {
namespace {

using Relation = RateComparison::Relation;

CutSpec CutOf(std::int32_t source, std::int64_t destIn = 0, std::int32_t track = 1) {
  CutSpec cut;
  cut.source = source;
  cut.track = track;
  cut.destIn = Stamp(destIn);
  cut.destOut = Stamp(destIn + 1000);
  return cut;
}

class ProjectSummaryTest : public testing::Test {
 protected:
  ProjectSummaryTest() { folder_.Write("a.wav", "x"); }
  const AES31Project& Load(const ProjectBuilder& builder) { return LoadText(builder.Text()); }
  const AES31Project& LoadText(const std::string& adl) {
    bool ok = false;
    const std::string path = folder_.Write("Demo.adl", adl);
    project_ = std::make_unique<AES31Project>(path.c_str(), nullptr, &ok);
    EXPECT_TRUE(ok);
    return *project_;
  }
  TemporaryFolder folder_;
  std::unique_ptr<AES31Project> project_;
};

TEST_F(ProjectSummaryTest, emptyProjectHasNothing) {
  const ProjectSummary summary = Summarize(Load({}));
  EXPECT_EQ(summary.earliest, "");
  EXPECT_EQ(summary.cuts + summary.otherEvents + summary.sources + summary.missing.size(), 0U);
}

TEST_F(ProjectSummaryTest, countsCutsOtherEventsAndTheSourcesThatCutsName) {
  const ProjectSummary summary = Summarize(Load(ProjectBuilder()
                                                    .Source(1, "a.wav")
                                                    .Source(2, "b.wav")
                                                    .Cut(CutOf(1))
                                                    .Silence()
                                                    .Cut(CutOf(1))
                                                    .Entry("(Gain) 1 0")
                                                    .Cut(CutOf(7))));
  EXPECT_EQ(summary.cuts, 3U);
  EXPECT_EQ(summary.otherEvents, 2U);
  EXPECT_EQ(summary.sources, 2U);
}

TEST_F(ProjectSummaryTest, earliestCutIsFoundWhereverItStands) {
  const ProjectSummary summary = Summarize(
      Load(ProjectBuilder().Silence().Cut(CutOf(1, 9600)).Cut(CutOf(1, 1920)).Cut(CutOf(1, 3840))));
  EXPECT_EQ(summary.earliest, Stamp(1920));
}

// The same time in two writings: 24 frames at 24 frames a second, 25 at 25.
TEST_F(ProjectSummaryTest, ofEqualTimesTheFirstInTheListStays) {
  CutSpec first = CutOf(1);
  first.destIn = "00=00:01:00/0000";
  first.destOut = "00=00:02:00/0000";
  CutSpec second = CutOf(1);
  second.destIn = "00.00:01:00/0000";
  second.destOut = "00.00:02:00/0000";
  const CutSpan span = SpanOfCuts(Load(ProjectBuilder().Cut(first).Cut(second)));
  ASSERT_NE(span.earliest, nullptr);
  EXPECT_EQ(span.earliest->destIn, first.destIn);
  EXPECT_EQ(span.latest->destOut, first.destOut);
}

TEST_F(ProjectSummaryTest, missingSourcesAreNamedByRisingIndex) {
  const ProjectSummary summary = Summarize(Load(ProjectBuilder()
                                                    .Source(1, "a.wav")
                                                    .Source(2, "\x83\x5C.wav")
                                                    .Source(9, "not named.wav")
                                                    .Cut(CutOf(7))
                                                    .Cut(CutOf(2))
                                                    .Cut(CutOf(1))
                                                    .Cut(CutOf(2))));
  ASSERT_EQ(summary.missing.size(), 2U);
  EXPECT_EQ(summary.missing[0].index, 2);
  EXPECT_TRUE(summary.missing[0].isInIndex);
  EXPECT_EQ(summary.missing[0].location, "\"URL:file://localhost/Audio/\xE3\x82\xBD.wav\"");
  EXPECT_EQ(summary.missing[0].fileName, "\xE3\x82\xBD.wav");
  EXPECT_EQ(summary.missing[1].index, 7);
  EXPECT_FALSE(summary.missing[1].isInIndex);
  EXPECT_EQ(summary.missing[1].location, "");
  EXPECT_EQ(summary.missing[1].fileName, "");
}

TEST_F(ProjectSummaryTest, fileNameOfALocation) {
  struct Row {
    std::string_view rule;
    std::string group;
    std::string location;
    std::string fileName;
  };
  const auto rows = std::to_array<Row>({
      {"quoted", "(F) \"a/b c.wav\" _ x y", "\"a/b c.wav\"", "b c.wav"},
      {"bare", "(F) a/b.wav _ x y", "a/b.wav", "b.wav"},
      {"withoutASlash", "(F) \"b.wav\" _ x y", "\"b.wav\"", "b.wav"},
      {"openQuote", "(F) a/b.wav\" _ x y", "a/b.wav\"", "b.wav"},
      {"empty", "(F) \"\" _ x y", "\"\"", ""},
      {"folder", "(F) \"a/\" _ x y", "\"a/\"", ""},
      {"noLocationAtAll", "", "", ""},
  });
  for (const Row& row : rows) {
    const MissingSource missing = MissingSourceAt(
        LoadText("<ADL>\n<SOURCE_INDEX>\n(Index) 4 " + row.group + "\n</SOURCE_INDEX>\n</ADL>"), 4);
    EXPECT_TRUE(missing.isInIndex) << row.rule;
    EXPECT_EQ(missing.location, row.location) << row.rule;
    EXPECT_EQ(missing.fileName, row.fileName) << row.rule;
  }
}

TEST_F(ProjectSummaryTest, spanTellsTracksAndTakesOnlyWhatCounts) {
  const AES31Project& project = Load(ProjectBuilder()
                                         .Cut(CutOf(1, 0, 5))
                                         .Silence()
                                         .Cut(CutOf(2, 5000, -3))
                                         .Cut(CutOf(2, 3000, 2)));
  const CutSpan all = SpanOfCuts(project);
  EXPECT_EQ(all.minTrack, -3);
  EXPECT_EQ(all.maxTrack, 5);
  EXPECT_EQ(all.earliest->destIn, Stamp(0));
  EXPECT_EQ(all.latest->destOut, Stamp(6000));
  const CutSpan second =
      SpanOfCuts(project, [](const AES31Event& cut) { return cut.cut.sourceIndex == 2; });
  EXPECT_EQ(second.earliest->destIn, Stamp(3000));
  EXPECT_EQ(second.maxTrack, 2);
  const CutSpan none = SpanOfCuts(project, [](const AES31Event&) { return false; });
  EXPECT_EQ(none.earliest, nullptr);
  EXPECT_EQ(none.latest, nullptr);
}

struct RateRow {
  std::string_view rule;
  const char* firstEvent;
  float sessionRate;
  Relation relation;
  double projectRate;
};

TEST(CompareRates, tellsARealDifferenceFromTheRoundingOfAHostsAnswer) {
  constexpr auto kRows = std::to_array<RateRow>({
      {"same", "01.00:00:00/0000", 48000.0F, Relation::Same, 48000.0},
      {"different", "01.00:00:00/0000", 44100.0F, Relation::Different, 48000.0},
      {"pulledDown", "01.00:00:00-0000", static_cast<float>(47952.048),
       Relation::AsCloseAsAHostTells, 48000.0 * 1000.0 / 1001.0},
      {"pulledUp", "01.00:00:00^0000", static_cast<float>(44144.1), Relation::AsCloseAsAHostTells,
       44100.0 * 1001.0 / 1000.0},
      {"pulledRateThatAFloatHolds", "01.00:00:00+0000", 48048.0F, Relation::Same, 48048.0},
      {"nextFloatAbove", "01.00:00:00-0000", 47952.0508F, Relation::Different,
       48000.0 * 1000.0 / 1001.0},
      {"pulledAgainstPlain", "01.00:00:00-0000", 48000.0F, Relation::Different,
       48000.0 * 1000.0 / 1001.0},
      {"markThatNamesNoRate", "01.00:00:00x0000", 48000.0F, Relation::Unknown, 0.0},
      {"noCut", nullptr, 48000.0F, Relation::Unknown, 0.0},
      {"noText", "", 48000.0F, Relation::Unknown, 0.0},
  });
  for (const RateRow& row : kRows) {
    const RateComparison rates = CompareRates(row.firstEvent, row.sessionRate, 2);
    EXPECT_EQ(rates.relation, row.relation) << row.rule;
    EXPECT_EQ(rates.projectRate, row.projectRate) << row.rule;
    EXPECT_EQ(rates.sessionRate, row.sessionRate) << row.rule;
  }
}

TEST(CompareRates, tellsByHowMuchTheTimebaseMovesEverything) {
  EXPECT_EQ(CompareRates("00.00:00:01/0000", 48000.0F, 2).movedSamples, 0);
  // One frame of 1920 samples reads as one of 1764.
  EXPECT_EQ(CompareRates("00.00:00:01/0000", 44100.0F, 2).movedSamples, -156);
  // 1/30 of a second in place of 1/25.
  EXPECT_EQ(CompareRates("00.00:00:01/0000", 48000.0F, 5).movedSamples, -320);
  // The timebase has no remainder.
  EXPECT_EQ(CompareRates("00.00:00:01/0010", 48000.0F, 2).movedSamples, -10);
  EXPECT_EQ(CompareRates(nullptr, 44100.0F, 2).movedSamples, 0);
}

TEST(FailureText, namesThePlaceIfThereIsOne) {
  EXPECT_EQ(FailureText({LoadFailureCode::ValuesMissing, 12, "EVENT_LIST", "Cut",
                         "Cut needs at least 8 values"}),
            "line 12: <EVENT_LIST> (Cut): Cut needs at least 8 values");
  EXPECT_EQ(FailureText({LoadFailureCode::FileNotOpened, 0, "", "", "the file cannot be opened"}),
            "the file cannot be opened");
  EXPECT_EQ(FailureText({LoadFailureCode::ValuesMissing, 3, "\x83\x5C", "\x83\x5C", "x"}),
            "line 3: <\xE3\x82\xBD> (\xE3\x82\xBD): x");
}

}  // namespace
}  // namespace velmora::test
