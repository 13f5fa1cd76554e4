#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ADL/LoadDiagnostic.h"
#include "LoadedProject.h"

namespace velmora::test {
namespace {

using Code = LoadDiagnosticCode;

struct Oddity {
  std::string_view rule;
  std::string adl;
  Code code;
  std::int64_t line;
  std::string text;
};

const std::vector<Oddity>& Oddities() {
  static const std::vector<Oddity> kRows = {
      {"emptyFile", "", Code::NoAdl, 0, "The file does not begin with <ADL>"},
      {"otherText", "hello <ADL> </ADL>", Code::NoAdl, 0, "The file does not begin with <ADL>"},
      {"byteOrderMark", "\xEF\xBB\xBF<ADL>\n</ADL>", Code::NoAdl, 0,
       "The file does not begin with <ADL>"},
      {"blankBeforeTheTag", " <ADL>\n</ADL>", Code::NoAdl, 0, "The file does not begin with <ADL>"},
      {"constantThatItsSectionDoesNotKnow",
       "<ADL>\n<SYSTEM>\n(SYS_GAIN) 1\n(PROJ_TITLE) x\n</SYSTEM>\n</ADL>", Code::UnknownIdentifier,
       4, "Found unknown identifier: PROJ_TITLE in section SYSTEM"},
      {"constantWithoutAValue", "<ADL>\n<project>\n(PROJ_TITLE)\n</project>\n</ADL>",
       Code::UnknownIdentifier, 3, "Found unknown identifier: PROJ_TITLE in section project"},
      {"labelBeforeTheFirstIndex", WithSources("(F) a b c d\n(Index) 1"), Code::UnexpectedEntry, 3,
       "Found unexpected entry: F"},
      {"labelBeforeTheFirstEntry", WithEvents("(Cut)\n(Entry) 1"), Code::UnexpectedEntry, 3,
       "Found unexpected entry: Cut"},
      {"labelThatNoEventKnows", WithEvents("(Entry) 1\n\n(Fader) 1"), Code::UnexpectedLabel, 5,
       "Encountered unexpected label: Fader"},
      {"secondEditOfAnEvent", WithEvents("(Entry) 1 (Vid) a b c d\r\n(Vid) a b c d"),
       Code::UnexpectedLabel, 4, "Encountered unexpected label: Vid"},
  };
  return kRows;
}

TEST(LoadDiagnostics, tellCodePlaceAndText) {
  for (const Oddity& row : Oddities()) {
    const LoadedProject project(row.adl);
    EXPECT_TRUE(project.ok()) << row.rule;
    ASSERT_EQ(project->diagnostics.size(), 1U) << row.rule;
    EXPECT_EQ(project->diagnostics[0].code, row.code) << row.rule;
    EXPECT_EQ(project->diagnostics[0].line, row.line) << row.rule;
    EXPECT_EQ(project->diagnostics[0].text, row.text) << row.rule;
  }
}

// Standard error has no line for a file without <ADL>: programs around it have never expected one.
TEST(LoadDiagnostics, areTheLinesOfStandardErrorButForTheMissingTag) {
  for (const Oddity& row : Oddities()) {
    const LoadedProject project(row.adl);
    EXPECT_EQ(project.standardError(), row.code == Code::NoAdl ? "" : row.text + "\n") << row.rule;
  }
}

TEST(LoadDiagnostics, everyCodeHasANameOfItsOwnAndIsProvokedHere) {
  std::set<std::string> names;
  std::set<Code> provoked;
  for (const Oddity& row : Oddities()) provoked.insert(row.code);
  for (std::size_t i = 0; i < kLoadDiagnostics.size(); ++i) {
    const LoadDiagnosticKind& kind = kLoadDiagnostics[i];
    EXPECT_EQ(static_cast<std::size_t>(kind.code), i) << kind.name;
    EXPECT_TRUE(names.insert(kind.name).second) << kind.name;
    EXPECT_STRNE(kind.meaning, "") << kind.name;
    EXPECT_TRUE(provoked.contains(kind.code)) << kind.name;
  }
}

TEST(LoadDiagnostics, comeInTheOrderOfTheFile) {
  const LoadedProject project(
      "<ADL>\n<PROJECT>\n(a) 1\n(b) 1\n</PROJECT>\n<EVENT_LIST>\n(c)\n(Entry) 1 (d)\n(e)\n"
      "</EVENT_LIST>\n<SYSTEM>\n(f) 1\n</SYSTEM>\n</ADL>");
  std::vector<std::int64_t> lines;
  for (const LoadDiagnostic& diagnostic : project->diagnostics) lines.push_back(diagnostic.line);
  EXPECT_EQ(lines, (std::vector<std::int64_t>{3, 4, 7, 8, 9, 12}));
}

TEST(LoadDiagnostics, goodFileHasNone) {
  const LoadedProject project(WithEvents("(Entry) 1 (Cut) I 1 1 1 a b c d"));
  EXPECT_TRUE(project->diagnostics.empty());
}

TEST(LoadDiagnostics, ofALoadThatFailsAreThoseBeforeTheFailure) {
  const LoadedProject project(WithEvents("(x)\n(Entry)\n(y)"));
  EXPECT_FALSE(project.ok());
  ASSERT_EQ(project->diagnostics.size(), 1U);
  EXPECT_EQ(project->diagnostics[0].line, 3);
}

TEST(LoadDiagnostics, sectionThatIsNotOfTheFileHasNoLine) {
  const LoadedProject project("<ADL>\n</ADL>\n");
  CapturedStandardError captured;
  EXPECT_TRUE(project->CheckEventList(AES31Section{"EVENT_LIST", {{"x", {}}, {nullptr, {}}}}));
  EXPECT_EQ(captured.Text(), "Found unexpected entry: x\nFound unexpected entry: (null)\n");
  ASSERT_EQ(project->diagnostics.size(), 2U);
  EXPECT_EQ(project->diagnostics[0].line, 0);
  EXPECT_EQ(project->diagnostics[0].text, "Found unexpected entry: x");
  EXPECT_EQ(project->diagnostics[1].text, "Found unexpected entry: (null)");
}

}  // namespace
}  // namespace velmora::test
