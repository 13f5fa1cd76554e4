#include "ADL/LoadFailure.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

struct Place {
  std::string_view rule;
  std::string_view adl;
  std::int64_t line;
  const char* section;
  const char* label;
};

// The line is that of the failing label, whatever the scan wrote over line feeds above it.
TEST(LoadFailure, tellsThePlace) {
  constexpr auto kRows = std::to_array<Place>({
      {"firstLine", "<ADL> <EVENT_LIST> (Entry) (Cut) 1 </EVENT_LIST> </ADL>", 1, "EVENT_LIST",
       "Entry"},
      {"labelOnALineOfItsOwn", "<ADL>\n<EVENT_LIST>\n(Entry) 1\n(Cut) I 1\n</EVENT_LIST>\n</ADL>",
       4, "EVENT_LIST", "Cut"},
      {"labelAfterItsEntryOnOneLine",
       "<ADL>\n<EVENT_LIST>\n(Entry) 1 (Cut) I 1\n</EVENT_LIST>\n</ADL>", 3, "EVENT_LIST", "Cut"},
      {"valuesOnTheNextLines",
       "<ADL>\n<EVENT_LIST>\n(Entry) 1\n(Gain)\n1\n\n\n</EVENT_LIST>\n</ADL>", 4, "EVENT_LIST",
       "Gain"},
      {"carriageReturnsAndLineFeeds",
       "<ADL>\r\n<EVENT_LIST>\r\n(Entry) 1\r\n(Gain) 1\r\n</EVENT_LIST>\r\n</ADL>\r\n", 4,
       "EVENT_LIST", "Gain"},
      {"linesOfCommentsCount",
       "<ADL>\n/* one\ntwo\nthree */\n<EVENT_LIST>\n/* a\n*/\n(Entry) 1\n(Gain) 1\n"
       "</EVENT_LIST>\n</ADL>",
       9, "EVENT_LIST", "Gain"},
      {"linesOfQuotedValuesCount",
       "<ADL>\n<PROJECT>\n(PROJ_TITLE) \"a\nb\nc\"\n</PROJECT>\n<EVENT_LIST>\n(Entry)\n"
       "</EVENT_LIST>\n</ADL>",
       8, "EVENT_LIST", "Entry"},
      {"linesOfCountedValuesCount",
       "<ADL>\n<PROJECT>\n(PROJ_NOTES)6 a\nb\nc\n</PROJECT>\n<EVENT_LIST>\n(Entry)\n"
       "</EVENT_LIST>\n</ADL>",
       8, "EVENT_LIST", "Entry"},
      {"emptyLinesCount", "<ADL>\n\n\n\n<EVENT_LIST>\n\n(Entry)\n</EVENT_LIST>\n</ADL>", 7,
       "EVENT_LIST", "Entry"},
      {"linesOfReferenceListsCount",
       "<ADL>\n<REF_LIST>\n<REF>\n<A>\n(x) 1\n</A>\n</REF>\n</REF_LIST>\n<EVENT_LIST>\n(Entry)\n"
       "</EVENT_LIST>\n</ADL>",
       10, "EVENT_LIST", "Entry"},
      {"nonAsciiAbove",
       "<ADL>\n<PROJECT>\n(PROJ_TITLE) \"\x83\x5C\"\n</PROJECT>\n<EVENT_LIST>\n(Entry)\n"
       "</EVENT_LIST>\n</ADL>",
       6, "EVENT_LIST", "Entry"},
      {"namesAsTheFileHasThem", "<ADL>\n<Event_List>\n(ENTRY) 1\n(gain) 1\n</event_list>\n</ADL>",
       4, "Event_List", "gain"},
      {"source", "<ADL>\n<source_index>\n(Index) 1\n(f) a b\n</source_index>\n</ADL>", 4,
       "source_index", "f"},
      {"sourceT", "<ADL>\n<SOURCE_INDEX>\n(Index) 1\n(F) a b c d\n(T) a\n</SOURCE_INDEX>\n</ADL>",
       5, "SOURCE_INDEX", "T"},
      {"indexWithoutAValue",
       "<ADL>\n<SOURCE_INDEX>\n(Index) 1\n(Index)\n(F) a b c d\n</SOURCE_INDEX>\n</ADL>", 4,
       "SOURCE_INDEX", "Index"},
      {"secondOfTwoSections",
       "<ADL>\n<EVENT_LIST>\n(Entry) 1\n</EVENT_LIST>\n<EVENT_LIST>\n(Entry) 1\n(Vid) 1\n"
       "</EVENT_LIST>\n</ADL>",
       7, "EVENT_LIST", "Vid"},
      {"fadeWithoutATimestamp",
       "<ADL>\n<EVENT_LIST>\n(Entry) 1\n(Infade) _ a 0 0 0\n</EVENT_LIST>\n</ADL>", 4, "EVENT_LIST",
       "Infade"},
      {"cutShort", "<ADL>\n<EVENT_LIST>\n(Entry) 1\n(Cut) I 1 1", 4, "EVENT_LIST", "Cut"},
      {"labelOfTheCountedForm",
       "<ADL>\n<EVENT_LIST>\n(Entry) 1\n(Gain)2 1\n(Rem)\n</EVENT_LIST>\n</ADL>", 4, "EVENT_LIST",
       "Gain"},
  });
  for (const Place& row : kRows) {
    const LoadedProject project(row.adl);
    EXPECT_FALSE(project.ok()) << row.rule;
    EXPECT_EQ(project.standardError(), "") << row.rule;
    ASSERT_TRUE(project->failure.has_value()) << row.rule;
    EXPECT_EQ(project->failure->line, row.line) << row.rule;
    EXPECT_EQ(project->failure->section, row.section) << row.rule;
    EXPECT_EQ(project->failure->label, row.label) << row.rule;
    EXPECT_NE(project->failure->reason, "") << row.rule;
  }
}

TEST(LoadFailure, tellsTheFirstOfSeveral) {
  const LoadedProject project(
      "<ADL>\n<SOURCE_INDEX>\n(Index) 1 (T) a\n</SOURCE_INDEX>\n<EVENT_LIST>\n(Entry)\n"
      "</EVENT_LIST>\n</ADL>");
  ASSERT_TRUE(project->failure.has_value());
  EXPECT_EQ(project->failure->line, 3);
  EXPECT_EQ(project->failure->label, "T");
}

TEST(LoadFailure, reasonTellsACountFromATime) {
  const LoadedProject count(WithEvents("(Entry) 1 (Infade) 00=00:01;00/0000 a"));
  const LoadedProject time(WithEvents("(Entry) 1 (Infade) _ a 0 0 0"));
  ASSERT_TRUE(count->failure.has_value());
  ASSERT_TRUE(time->failure.has_value());
  EXPECT_NE(count->failure->reason, time->failure->reason);
}

TEST(LoadFailure, lineOfALongFile) {
  std::string lines;
  for (int i = 1; i <= 100'000; ++i) lines += "(Entry) " + std::to_string(i) + "\n";
  const LoadedProject project("<ADL>\n<EVENT_LIST>\n" + lines + "(Gain) 1\n</EVENT_LIST>\n</ADL>");
  ASSERT_TRUE(project->failure.has_value());
  EXPECT_EQ(project->failure->line, 100'003);
}

// A section of the caller's has no line in the file; it still fails in the same way.
TEST(LoadFailure, sectionThatIsNotOfTheFile) {
  const LoadedProject project("<ADL>\n</ADL>\n");
  EXPECT_FALSE(project->CheckEventList(AES31Section{"EVENT_LIST", {{"Entry", {}}}}));
  ASSERT_TRUE(project->failure.has_value());
  EXPECT_EQ(project->failure->section, "EVENT_LIST");
  EXPECT_EQ(project->failure->label, "Entry");
  EXPECT_NE(project->failure->reason, "");
}

TEST(LoadFailure, sectionWithoutAName) {
  const LoadedProject project("");
  AES31Section section;
  section.entries = {{"Entry", {}}};
  EXPECT_FALSE(project->CheckEventList(section));
  section.entries = {{"Index", {}}};
  EXPECT_FALSE(project->CheckSourceIndex(section));
  ASSERT_TRUE(project->failure.has_value());
  EXPECT_EQ(project->failure->section, "");
  EXPECT_EQ(project->failure->label, "Index");
}

}  // namespace
}  // namespace velmora::test
