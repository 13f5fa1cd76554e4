#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

/// The sources in one line: `number[F values][T values]` each.
std::string ShownSources(const AES31Project& project) {
  std::string shown;
  for (const auto& [index, source] : project.sourceFiles) {
    shown += (shown.empty() ? "" : " ") + std::to_string(index) + "[" + ShownTexts(source.fValues) +
             "][" + ShownTexts(source.tValues) + "]";
  }
  return shown;
}

constexpr std::string_view kNoT = "[~|~|~|~|~]";

struct Index {
  std::string_view rule;
  std::string lines;
  std::string sources;
  std::string standardError = "";
};

TEST(SourceIndex, reading) {
  const std::string noF = "[~|~|~|~|~|~]";
  const std::string noT(kNoT);
  const auto rows = std::to_array<Index>({
      {"emptySection", "", ""},
      {"wholeGroup", "(Index) 1 (F) a b c d e f (T) g h i j k", "1[a|b|c|d|e|f][g|h|i|j|k]"},
      {"fourFValues", "(Index) 0001 (F) \"a/b.wav\" _ 00|00|00|00/0000 00|00|10|00/0000",
       "1[\"a/b.wav\"|_|00|00|00|00/0000|00|00|10|00/0000|~|~]" + noT},
      {"fiveFValuesKeepFour", "(Index) 1 (F) a b c d e", "1[a|b|c|d|~|~]" + noT},
      {"sixFValues", "(Index) 1 (F) a b c d e f", "1[a|b|c|d|e|f]" + noT},
      {"furtherFValuesAreIgnored", "(Index) 1 (F) a b c d e f g h", "1[a|b|c|d|e|f]" + noT},
      {"furtherTValuesAreIgnored", "(Index) 1 (T) a b c d e f", "1" + noF + "[a|b|c|d|e]"},
      {"noF", "(Index) 1", "1" + noF + noT},
      {"leadingZeros", "(Index) 0012", "12" + noF + noT},
      {"noNumberIs0", "(Index) x", "0" + noF + noT},
      {"furtherIndexValuesAreIgnored", "(Index) 3 4 5", "3" + noF + noT},
      {"numbersBeyond32BitsAreTheNearest", "(Index) 99999999999 (Index) -99999999999",
       "-2147483648" + noF + noT + " 2147483647" + noF + noT},
      {"risingNumbers", "(Index) 9 (Index) -1 (Index) 5",
       "-1" + noF + noT + " 5" + noF + noT + " 9" + noF + noT},
      {"labelsInAnyCase", "(index) 1 (f) a b c d (t) e f g h i (INDEX) 2",
       "1[a|b|c|d|~|~][e|f|g|h|i] 2" + noF + noT},
      {"secondFReplacesWhatItHas", "(Index) 1 (F) a b c d e f (F) g h i j", "1[g|h|i|j|e|f]" + noT},
      {"secondFOf5ValuesReplacesFour", "(Index) 1 (F) a b c d e f (F) g h i j k",
       "1[g|h|i|j|e|f]" + noT},
      {"secondFOf6ValuesReplacesAll", "(Index) 1 (F) a b c d e f (F) g h i j k l",
       "1[g|h|i|j|k|l]" + noT},
      {"secondTReplaces", "(Index) 1 (T) a b c d e (T) f g h i j", "1" + noF + "[f|g|h|i|j]"},
      {"tAheadOfF", "(Index) 1 (T) a b c d e (F) f g h i", "1[f|g|h|i|~|~][a|b|c|d|e]"},
      {"sameNumberTwiceLaterGroupWinsWhole",
       "(Index) 1 (F) a b c d e f (T) g h i j k (Index) 0001 (F) l m n o", "1[l|m|n|o|~|~]" + noT},
      {"sameNumberTwiceLaterEmptyGroupWins", "(Index) 1 (F) a b c d e f (Index) 1",
       "1" + noF + noT},
      {"otherLabelsInAGroupArePassedOverInSilence",
       "(Index) 1 (own) 1 2 (F) a b c d (Entry) 2 (T1)", "1[a|b|c|d|~|~]" + noT},
      {"labelsAheadOfTheFirstIndexAreReported", "(own) 1 (F) a (T) b (Index) 1 (own) 2",
       "1" + noF + noT,
       "Found unexpected entry: own\nFound unexpected entry: F\nFound unexpected entry: T\n"},
      {"labelsWithoutAnyIndexAreReported", "(F) a b c d (INDEXES) 1", "",
       "Found unexpected entry: F\nFound unexpected entry: INDEXES\n"},
      {"shortFAheadOfTheFirstIndexDoesNotFail", "(F) a (Index) 1", "1" + noF + noT,
       "Found unexpected entry: F\n"},
      {"valuesKeepTheirRawForm", "(Index) 1 (F) \"a \x83\x5C\" \"\" c d",
       "1[\"a \x83\x5C\"|\"\"|c|d|~|~]" + noT},
  });
  for (const Index& row : rows) {
    const LoadedProject project(WithSources(row.lines));
    EXPECT_TRUE(project.ok()) << row.rule;
    EXPECT_EQ(ShownSources(*project.loading.project), row.sources) << row.rule;
    EXPECT_EQ(project.standardError(), row.standardError) << row.rule;
  }
}

TEST(SourceIndex, twoSectionsAddToOneMap) {
  const LoadedProject project(
      "<ADL> <SOURCE_INDEX> (Index) 1 (F) a b c d (Index) 2 (F) e f g h </SOURCE_INDEX> "
      "<source_index> (Index) 2 (F) i j k l (Index) 3 </source_index> </ADL>");
  EXPECT_TRUE(project.ok());
  EXPECT_EQ(ShownSources(*project.loading.project),
            "1[a|b|c|d|~|~][~|~|~|~|~] 2[i|j|k|l|~|~][~|~|~|~|~] 3[~|~|~|~|~|~][~|~|~|~|~]");
}

struct Refused {
  std::string_view rule;
  const char* lines;
  const char* label;
  const char* sources;  ///< what was stored before
};

TEST(SourceIndex, refusals) {
  constexpr auto kRows = std::to_array<Refused>({
      {"threeFValues", "(Index) 1 (F) a b c", "F", ""},
      {"noFValues", "(Index) 1 (F)", "F", ""},
      {"fourTValues", "(Index) 1 (F) a b c d (T) e f g h", "T", ""},
      {"noTValues", "(Index) 1 (T)", "T", ""},
      {"secondFTooShort", "(Index) 1 (F) a b c d (f) e f g", "f", ""},
      {"indexWithoutAValue", "(Index) (F) a b c d", "Index", ""},
      {"lastIndexWithoutAValue", "(Index) 1 (INDEX)", "INDEX", "1[~|~|~|~|~|~][~|~|~|~|~]"},
      {"groupsBeforeItStay", "(Index) 1 (F) a b c d (Index) 2 (F) e", "F",
       "1[a|b|c|d|~|~][~|~|~|~|~]"},
  });
  for (const Refused& row : kRows) {
    const LoadedProject project(WithSources(row.lines));
    EXPECT_FALSE(project.ok()) << row.rule;
    EXPECT_EQ(project.standardError(), "") << row.rule;
    EXPECT_EQ(ShownSources(*project.loading.project), row.sources) << row.rule;
    ASSERT_TRUE(project->failure.has_value()) << row.rule;
    EXPECT_EQ(project->failure->label, row.label) << row.rule;
    EXPECT_EQ(project->failure->section, "SOURCE_INDEX") << row.rule;
  }
}

TEST(SourceIndex, extremeNumbersLoadAtOnce) {
  const LoadedProject project(WithSources("(Index) 2147483647 (Index) -2147483648 (Index) 0"));
  ASSERT_EQ(project->sourceFiles.size(), 3U);
  EXPECT_EQ(project->sourceFiles.begin()->first, -2147483647 - 1);
  EXPECT_EQ(project->sourceFiles.rbegin()->first, 2147483647);
}

TEST(SourceIndex, checkedReaderTakesASectionOfTheCallers) {
  const LoadedProject project("");
  const AES31Section good{"SOURCE_INDEX", {{"Index", {"4"}}, {"F", {"a", "b", "c", "d"}}}};
  EXPECT_TRUE(project->CheckSourceIndex(good));
  EXPECT_EQ(Shown(project->sourceFiles[4].fValues[3]), "d");
  const AES31Section bad{"SOURCE_INDEX", {{"Index", {"5"}}, {"F", {"a", "b", "c"}}}};
  EXPECT_FALSE(project->CheckSourceIndex(bad));
  EXPECT_EQ(project->sourceFiles.count(5), 0U);
  EXPECT_TRUE(project->CheckSourceIndex(AES31Section{"SOURCE_INDEX", {}}));
}

TEST(SourceIndex, laterGroupForgetsTheFileOfTheEarlier) {
  const LoadedProject project(WithSources("(Index) 1 (F) \"/a/project.adl\" b c d"));
  ASSERT_NE(project->sourceFiles[1].file, nullptr);
  EXPECT_TRUE(project->CheckSourceIndex(AES31Section{"SOURCE_INDEX", {{"Index", {"1"}}}}));
  EXPECT_EQ(project->sourceFiles[1].file, nullptr);
}

}  // namespace
}  // namespace velmora::test
