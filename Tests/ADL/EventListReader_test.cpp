#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

struct Numbers {
  std::string_view rule;
  const char* entries;
  const char* numbers;
};

std::string EntryNumbers(const AES31Project& project) {
  std::string shown;
  for (const AES31Event& event : project.events) {
    shown += (shown.empty() ? "" : " ") + std::to_string(event.entryNumber);
  }
  return shown;
}

TEST(EventList, standsInRisingEntryNumber) {
  constexpr auto kRows = std::to_array<Numbers>({
      {"outOfOrder", "(Entry) 0003 (Entry) 0001 (Entry) 0002", "1 2 3"},
      {"withGaps", "(Entry) 1 (Entry) 5 (Entry) 9", "1 5 9"},
      {"noNumberIs0", "(Entry) 1 (Entry) x (Entry) -1", "-1 0 1"},
      {"negativeFirst", "(Entry) 3 (Entry) -3 (Entry) -30", "-30 -3 3"},
      {"sameNumberTwiceIsOne", "(Entry) 2 (Entry) 1 (Entry) 0002", "1 2"},
      {"beyond32Bits", "(Entry) 99999999999 (Entry) 5 (Entry) -99999999999",
       "-2147483648 5 2147483647"},
      {"highestAlone", "(Entry) 2147483647", "2147483647"},
      {"lowestAlone", "(Entry) -2147483648", "-2147483648"},
      {"furtherValuesAreIgnored", "(Entry) 4 3 2", "4"},
  });
  for (const Numbers& row : kRows) {
    const LoadedProject project(WithEvents(row.entries));
    EXPECT_TRUE(project.ok()) << row.rule;
    EXPECT_EQ(EntryNumbers(*project.loading.project), row.numbers) << row.rule;
  }
}

// Room for all numbers between them would be 4 billion events.
TEST(EventList, extremeEntryNumbersLoad) {
  const LoadedProject project(
      WithEvents("(Entry) 2147483647 (Cut) I 1 1 1 a b c d\n"
                 "(Entry) -2147483648 (Cut) I 2 1 1 a b c d\n(Entry) 0 (Rem)"));
  EXPECT_EQ(EntryNumbers(*project.loading.project), "-2147483648 0 2147483647");
  EXPECT_EQ(project->GetEvent(0)->cut.sourceIndex, 2);
}

TEST(EventList, sameNumberTwiceIsTheLaterOneWhole) {
  const LoadedProject project(
      WithEvents("(Entry) 1 (Cut) I 1 1 1 a b c d (Infade) 00=00:01;00/0000 L 1 2 3 (Gain) 1 2\n"
                 "(Entry) 0001 (Silence) 5 e f g"));
  ASSERT_EQ(project->GetEventCount(), 1);
  const AES31Event& event = *project->GetEvent(0);
  EXPECT_STREQ(event.label, "Silence");
  EXPECT_FALSE(event.infade.present);
  EXPECT_FALSE(event.gain.present);
  EXPECT_EQ(event.cut.sourceIndex, 0);
}

TEST(EventList, twoSectionsGiveOneListAfterEachOther) {
  const LoadedProject project(
      "<ADL> <EVENT_LIST> (Entry) 5 (Entry) 3 </EVENT_LIST> "
      "<event_list> (Entry) 4 (Entry) 3 </event_list> </ADL>");
  EXPECT_TRUE(project.ok());
  EXPECT_EQ(EntryNumbers(*project.loading.project), "3 5 3 4");
}

TEST(EventList, failedSectionContributesNothing) {
  const LoadedProject project(
      "<ADL> <EVENT_LIST> (Entry) 5 (Entry) 3 </EVENT_LIST> "
      "<EVENT_LIST> (Entry) 4 (Cut) I 1 1 1 a b c d (Entry) 2 (Gain) 1 </EVENT_LIST> </ADL>");
  EXPECT_FALSE(project.ok());
  EXPECT_EQ(EntryNumbers(*project.loading.project), "3 5");
}

TEST(EventList, labelsAheadOfTheFirstEntryAreReported) {
  const LoadedProject project(WithEvents("(Cut) 1 (own) 2 (Rem) (Entry) 1 (Rem)"));
  EXPECT_EQ(project->GetEventCount(), 1);
  EXPECT_EQ(project.standardError(),
            "Found unexpected entry: Cut\nFound unexpected entry: own\n"
            "Found unexpected entry: Rem\n");
}

TEST(EventList, sectionWithoutAnEntryReportsEveryLabel) {
  const LoadedProject project(WithEvents("(Cut) 1 (Infade) _ (Entries) 1"));
  EXPECT_TRUE(project.ok());
  EXPECT_EQ(project->GetEventCount(), 0);
  EXPECT_EQ(project.standardError(),
            "Found unexpected entry: Cut\nFound unexpected entry: Infade\n"
            "Found unexpected entry: Entries\n");
}

TEST(EventList, emptySectionIsSound) {
  const LoadedProject project(WithEvents(""));
  EXPECT_TRUE(project.ok());
  EXPECT_EQ(project->GetEventCount(), 0);
  EXPECT_EQ(project.standardError(), "");
}

TEST(EventList, entryLabelInAnyCase) {
  EXPECT_EQ(EntryNumbers(*LoadedProject(WithEvents("(ENTRY) 2 (entry) 1")).loading.project), "1 2");
}

struct Refused {
  std::string_view rule;
  const char* lines;
  const char* label;
};

TEST(EventList, refusals) {
  constexpr auto kRows = std::to_array<Refused>({
      {"entryWithoutAValue", "(Entry) (Cut) I 1 1 1 a b c d", "Entry"},
      {"laterEntryWithoutAValue", "(Entry) 1 (Rem) (ENTRY)", "ENTRY"},
      {"cutOf7Values", "(Entry) 1 (Cut) I 1 1 1 a b c", "Cut"},
      {"cutOfNoValues", "(Entry) 1 (CUT)", "CUT"},
      {"silenceOf3Values", "(Entry) 1 (Silence) 1 2 3", "Silence"},
      {"auxOf3Values", "(Entry) 1 (Aux) 1 2 3", "Aux"},
      {"vidOf3Values", "(Entry) 1 (Vid) 1 2 3", "Vid"},
      {"altOf3Values", "(Entry) 1 (Alt) 1 2 3", "Alt"},
      {"cutOf7ValuesAfterAnAlt", "(Entry) 1 (Alt) 1 2 3 4 (Cut) 1 2 3 4 5 6 7", "Cut"},
      {"infadeOf4Values", "(Entry) 1 (Infade) 00=00:01;00/0000 L 1 2", "Infade"},
      {"infadeOfNoValues", "(Entry) 1 (Infade)", "Infade"},
      {"infadeWithoutATimestamp", "(Entry) 1 (Infade) _ x 0 0 0", "Infade"},
      {"infadeWithAColonBeforeItsFrames", "(Entry) 1 (Infade) 00=00:01:00/0000 x 0 0 0", "Infade"},
      {"infadeQuoted", "(Entry) 1 (Infade) \"00=00:01;00/0000\" x 0 0 0", "Infade"},
      {"outfadeOf4Values", "(Entry) 1 (outfade) 00=00:01;00/0000 L 1 2", "outfade"},
      {"outfadeWithoutATimestamp", "(Entry) 1 (Outfade) 00=00:01;00 x 0 0 0", "Outfade"},
      {"xfadeOf5Values", "(Entry) 1 (Xfade) 1 2 3 4 5", "Xfade"},
      {"gainOf1Value", "(Entry) 1 (Gain) 1", "Gain"},
      {"shortLineAfterSoundOnes", "(Entry) 1 (Cut) I 1 1 1 a b c d\n(Entry) 2 (Gain) 1", "Gain"},
  });
  for (const Refused& row : kRows) {
    const LoadedProject project(WithEvents(row.lines));
    EXPECT_FALSE(project.ok()) << row.rule;
    EXPECT_EQ(project.standardError(), "") << row.rule;
    EXPECT_EQ(project->GetEventCount(), 0) << row.rule;
    ASSERT_TRUE(project->failure.has_value()) << row.rule;
    EXPECT_EQ(project->failure->label, row.label) << row.rule;
    EXPECT_EQ(project->failure->section, "EVENT_LIST") << row.rule;
  }
}

struct Enough {
  const char* label;
  std::size_t needs;
};

TEST(EventList, everyLineReadsFromItsLeastNumberOfValuesOn) {
  constexpr auto kRows = std::to_array<Enough>({{"Cut", 8},
                                                {"Silence", 4},
                                                {"Aux", 4},
                                                {"Vid", 4},
                                                {"Alt", 4},
                                                {"Infade", 5},
                                                {"Outfade", 5},
                                                {"Xfade", 6},
                                                {"Gain", 2},
                                                {"Rem", 0}});
  for (const Enough& row : kRows) {
    for (std::size_t values = 0; values < 12; ++values) {
      std::string line = "(Entry) 1 (" + std::string(row.label) + ")";
      for (std::size_t i = 0; i < values; ++i) line += " 00=00:01;00/0000";
      EXPECT_EQ(LoadedProject(WithEvents(line)).ok(), values >= row.needs)
          << row.label << " with " << values;
    }
  }
}

TEST(EventList, checkedReaderTakesASectionOfTheCallers) {
  const LoadedProject project("");
  EXPECT_TRUE(project->CheckEventList(AES31Section{"EVENT_LIST", {}}));
  EXPECT_TRUE(project->CheckEventList(
      AES31Section{"EVENT_LIST", {{"Entry", {"2"}}, {"Gain", {"1", "2.5"}}}}));
  EXPECT_FALSE(
      project->CheckEventList(AES31Section{"EVENT_LIST", {{"Entry", {"1"}}, {"Gain", {"1"}}}}));
  ASSERT_EQ(project->GetEventCount(), 1);
  EXPECT_EQ(project->GetEvent(0)->gain.gainDb, 2.5);
}

TEST(EventList, manyEntriesLoad) {
  std::string lines;
  for (int i = 50'000; i > 0; --i) {
    lines += "(Entry) " + std::to_string(i * 40'000) + " (Cut) I 1 1 1 a b c d\n";
  }
  const LoadedProject project(WithEvents(lines));
  ASSERT_EQ(project->GetEventCount(), 50'000);
  EXPECT_EQ(project->GetEvent(0)->entryNumber, 40'000);
  EXPECT_EQ(project->GetEvent(49'999)->entryNumber, 2'000'000'000);
}

}  // namespace
}  // namespace velmora::test
