#include "Desktop/Logic/FindingsReport.h"

#include <gtest/gtest.h>

#include <memory>

namespace velmora::desktop {
namespace {

using check::Code;
using check::Finding;

Finding Of(Code code, check::Severity severity, std::int32_t line = 0,
           std::optional<std::int32_t> entry = {}, const std::string& text = "Text.") {
  Finding finding;
  finding.code = code;
  finding.severity = severity;
  finding.line = line;
  finding.column = line > 0 ? 1 : 0;
  finding.entry = entry;
  finding.text = text;
  finding.effect = "Effect.";
  finding.remedy = "Remedy.";
  return finding;
}

std::shared_ptr<check::CheckedProject> Checked(std::vector<Finding> findings,
                                               check::Verdict verdict = check::Verdict::Loses) {
  auto checked = std::make_shared<check::CheckedProject>();
  checked->path = "/projects/Demo.adl";
  checked->verdict = verdict;
  checked->findings = std::move(findings);
  return checked;
}

/// A finding of each gravity, in the order of the file.
CheckedPtr Mixed() {
  return Checked(
      {Of(Code::NamesUnused, check::Severity::Note),
       Of(Code::MediaMissing, check::Severity::Lost, 5, {}, "x.wav is nowhere."),
       Of(Code::EventOff, check::Severity::Misplaced, 10, 2, "Event 2 is off."),
       Of(Code::FadeSeparator, check::Severity::Fails, 12, 1, "\".\" before the frames."),
       Of(Code::FadeSeparator, check::Severity::Fails, 14, 10, "\".\" again.")});
}

std::vector<std::string> Column(const FindingsList& list, FindingColumn column) {
  std::vector<std::string> texts;
  for (std::size_t row = 0; row < list.RowCount(); ++row)
    texts.push_back(list.CellText(row, column));
  return texts;
}

using Texts = std::vector<std::string>;

TEST(DescribeFindings, saysHowManyAndWhatTheGravestKindFirst) {
  const auto item = DescribeFindings(*Mixed());
  ASSERT_TRUE(item.has_value());
  EXPECT_EQ(item->severity, Severity::Problem);
  EXPECT_EQ(item->text, check::SummaryLine(*Mixed()) +
                            " \u2013 Fade lengths with another mark than ; or , before the frames "
                            "(2), Events that are switched off and 1 other kind");
}

TEST(DescribeFindings, ofTwoKindsOfOneGravityTheMoreFrequentComesFirst) {
  const auto checked = Checked(
      {Of(Code::MediaKind, check::Severity::Lost), Of(Code::MediaMissing, check::Severity::Lost),
       Of(Code::Channels, check::Severity::Lost), Of(Code::Channels, check::Severity::Lost)});
  const std::string text = DescribeFindings(*checked).value_or(StatusItem()).text;
  EXPECT_NE(text.find("\u2013 Cuts of several channels (2), Audio files that are nowhere"),
            std::string::npos)
      << text;
}

TEST(DescribeFindings, notesAloneAreNotSpokenOf) {
  EXPECT_FALSE(DescribeFindings(*Checked({}, check::Verdict::Clean)).has_value());
  const auto notes = Checked({Of(Code::NamesUnused, check::Severity::Note)}, check::Verdict::Clean);
  EXPECT_FALSE(DescribeFindings(*notes).has_value());
  EXPECT_FALSE(CanPrepare(*notes));
}

TEST(DescribeFindings, whatIsNoAdlIsToldButCannotBePrepared) {
  const auto noise =
      Checked({Of(Code::NotAnAdl, check::Severity::Fails)}, check::Verdict::Unreadable);
  EXPECT_TRUE(DescribeFindings(*noise).has_value());
  EXPECT_FALSE(CanPrepare(*noise));
  EXPECT_TRUE(CanPrepare(*Mixed()));
}

Texts TextsWith(const std::optional<StatusItem>& findings, bool failed) {
  ProjectFacts facts;
  facts.path = "/projects/Demo.adl";
  if (failed) facts.failure.emplace();
  Texts texts;
  for (const StatusItem& item :
       WithFindings({{Severity::Problem, "first"}, {Severity::Quiet, "second"}}, facts, findings)) {
    texts.push_back(item.text);
  }
  return texts;
}

TEST(WithFindings, graveOnesComeFirstButForTheLoadThatFailed) {
  const StatusItem findings{Severity::Problem, "findings"};
  EXPECT_EQ(TextsWith(findings, true),
            (Texts{"Demo.adl does not load", "findings", FailureText(LoadFailure()), "second"}));
  EXPECT_EQ(TextsWith(findings, false), (Texts{"findings", "first", "second"}));
  EXPECT_EQ(TextsWith(StatusItem{Severity::Quiet, "checking"}, true),
            (Texts{"first", "second", "checking"}));
  EXPECT_EQ(TextsWith(std::nullopt, true), (Texts{"first", "second"}));
}

TEST(FindingsList, theWorstStandFirstThenTheOrderOfTheFile) {
  const FindingsList list(Mixed());
  EXPECT_EQ(Column(list, FindingColumn::Gravity),
            (Texts{"Fails", "Fails", "Misplaced", "Lost", "Note"}));
  EXPECT_EQ(Column(list, FindingColumn::Line), (Texts{"12", "14", "10", "5", ""}));
  EXPECT_EQ(Column(list, FindingColumn::Event), (Texts{"1", "10", "2", "", ""}));
}

TEST(FindingsList, sortsByEachColumnBothWays) {
  const struct {
    FindingColumn column;
    bool falling;
    Texts lines;
  } rows[] = {
      {FindingColumn::Line, false, {"", "5", "10", "12", "14"}},
      {FindingColumn::Line, true, {"14", "12", "10", "5", ""}},
      {FindingColumn::Event, false, {"", "5", "12", "10", "14"}},  // 1, 2, 10: as numbers
      {FindingColumn::Event, true, {"14", "10", "12", "", "5"}},
      {FindingColumn::Gravity, true, {"", "5", "10", "12", "14"}},
      {FindingColumn::Text, false, {"14", "12", "10", "", "5"}},
      {FindingColumn::Effect, true, {"", "5", "10", "12", "14"}},
      {FindingColumn::Remedy, false, {"", "5", "10", "12", "14"}},
  };
  FindingsList list(Mixed());
  for (const auto& row : rows) {
    list.SortBy(row.column, row.falling);
    EXPECT_EQ(Column(list, FindingColumn::Line), row.lines)
        << static_cast<int>(row.column) << (row.falling ? " falling" : " rising");
  }
}

TEST(FindingsList, aFindingIsFoundAgainAfterSorting) {
  FindingsList list(Mixed());
  const std::size_t number = list.NumberOf(0);
  list.SortBy(FindingColumn::Line, false);
  EXPECT_EQ(list.CellText(list.RowOf(number), FindingColumn::Line), "12");
}

TEST(FindingsList, cellsAreOneLine) {
  const FindingsList list(
      Checked({Of(Code::MediaMissing, check::Severity::Lost, 5, {}, "a\nb\tc\x1b[31m\x7f")}));
  EXPECT_EQ(list.CellText(0, FindingColumn::Text), "a b c [31m ");
}

TEST(FindingsList, fullTextSaysEverything) {
  FindingsList list(Mixed());
  EXPECT_EQ(list.FullText(0),
            "Fade lengths with another mark than ; or , before the frames\n"
            "Fails \u00b7 Line 12, event 1\n\n"
            "\".\" before the frames.\n\n"
            "What happens: Effect.\n\n"
            "What helps: Remedy.");
  EXPECT_EQ(list.FullText(4).substr(0, 60).find("Note \u00b7 The whole file"),
            std::string("Names that go unused\n").size());
}

TEST(FindingsList, copiedTextHasTheRowsThatWereAskedFor) {
  FindingsList list(Mixed());
  EXPECT_EQ(list.CopyText({0, 3}), list.Headline() +
                                       "\n\n"
                                       "Fails. Line 12, event 1: \".\" before the frames.\n"
                                       "  What happens: Effect.\n"
                                       "  What helps: Remedy.\n\n"
                                       "Lost. Line 5: x.wav is nowhere.\n"
                                       "  What happens: Effect.\n"
                                       "  What helps: Remedy.\n");
}

TEST(FindingsList, headlineNamesTheProject) {
  EXPECT_EQ(FindingsList(Mixed()).Headline(),
            "Demo.adl: " + check::SummaryLine(*Mixed()) + "; and 1 note");
  EXPECT_EQ(FindingsList(Checked({}, check::Verdict::Clean)).Headline(),
            "Demo.adl: nothing to find fault with");
  EXPECT_EQ(
      FindingsList(Checked({Of(Code::NamesUnused, check::Severity::Note)}, check::Verdict::Clean))
          .Headline(),
      "Demo.adl: 1 note, nothing is lost");
  const auto lost = Checked({Of(Code::MediaMissing, check::Severity::Lost)});
  EXPECT_EQ(FindingsList(lost).Headline(), "Demo.adl: " + check::SummaryLine(*lost));
  EXPECT_EQ(FindingsList().Headline(), "");
  EXPECT_EQ(FindingsList(nullptr).RowCount(), 0U);
}

TEST(PlaceText, saysWhatIsKnown) {
  EXPECT_EQ(PlaceText(0, {}, {}), "The whole file");
  EXPECT_EQ(PlaceText(7, {}, 3), "Line 7, source 3");
  EXPECT_EQ(PlaceText(7, 4, 3), "Line 7, event 4, source 3");
}

}  // namespace
}  // namespace velmora::desktop
