#include <gtest/gtest.h>

#include <string>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

/// Runs `read` on an empty project and returns what it said.
template <class Read>
std::string Said(AES31Project& project, Read read) {
  CapturedStandardError captured;
  read(project);
  return captured.Text();
}

class UncheckedReaders : public testing::Test {
 protected:
  std::string ReadSources(std::vector<AES31Entry> entries) {
    const AES31Section section{"SOURCE_INDEX", std::move(entries)};
    return Said(*project_.loading.project, [&](AES31Project& p) { p.ReadSourceIndex(section); });
  }
  std::string ReadEvents(std::vector<AES31Entry> entries) {
    const AES31Section section{"EVENT_LIST", std::move(entries)};
    return Said(*project_.loading.project, [&](AES31Project& p) { p.ReadEventList(section); });
  }
  AES31Project& Project() { return *project_.loading.project; }

 private:
  LoadedProject project_{""};
};

TEST_F(UncheckedReaders, sourceIndexReadsAsTheCheckedOne) {
  EXPECT_EQ(ReadSources({{"own", {"1"}},
                         {"INDEX", {"0012"}},
                         {"f", {"a", "b", "c", "d", "e", "f", "g"}},
                         {"own", {}},
                         {"T", {"h", "i", "j", "k", "l", "m"}},
                         {"Index", {"-1"}}}),
            "Found unexpected entry: own\n");
  ASSERT_EQ(Project().sourceFiles.size(), 2U);
  EXPECT_EQ(ShownTexts(Project().sourceFiles[12].fValues), "a|b|c|d|e|f");
  EXPECT_EQ(ShownTexts(Project().sourceFiles[12].tValues), "h|i|j|k|l");
  EXPECT_EQ(ShownTexts(Project().sourceFiles[-1].fValues), "~|~|~|~|~|~");
}

TEST_F(UncheckedReaders, sourceIndexTakesLinesWithFewValues) {
  EXPECT_EQ(ReadSources({{"Index", {"1"}},
                         {"F", {"a"}},
                         {"T", {"b", "c"}},
                         {"Index", {"2"}},
                         {"F", {}},
                         {"T", {}},
                         {"Index", {"3"}},
                         {"F", {"a", "b", "c", "d", "e"}}}),
            "");
  ASSERT_EQ(Project().sourceFiles.size(), 3U);
  EXPECT_EQ(ShownTexts(Project().sourceFiles[1].fValues), "a|~|~|~|~|~");
  EXPECT_EQ(ShownTexts(Project().sourceFiles[1].tValues), "b|c|~|~|~");
  EXPECT_EQ(ShownTexts(Project().sourceFiles[2].fValues), "~|~|~|~|~|~");
  EXPECT_EQ(ShownTexts(Project().sourceFiles[3].fValues), "a|b|c|d|e|~");
}

TEST_F(UncheckedReaders, indexWithoutAValueIsNumber0) {
  EXPECT_EQ(ReadSources({{"Index", {}}, {"F", {"a", "b", "c", "d"}}}), "");
  ASSERT_EQ(Project().sourceFiles.size(), 1U);
  EXPECT_EQ(ShownTexts(Project().sourceFiles[0].fValues), "a|b|c|d|~|~");
}

TEST_F(UncheckedReaders, shortFIsResolvedToNoFile) {
  ReadSources({{"Index", {"1"}}, {"F", {}}, {"Index", {"2"}}, {"F", {""}}, {"Index", {"3"}}});
  Project().ResolveSources();
  for (const auto& [index, source] : Project().sourceFiles) EXPECT_EQ(source.file, nullptr);
}

TEST_F(UncheckedReaders, eventListReadsAsTheCheckedOne) {
  EXPECT_EQ(ReadEvents({{"own", {}},
                        {"Entry", {"3"}},
                        {"CUT", {"I", "1", "2", "3", "a", "b", "c", "d"}},
                        {"cut", {"X"}},
                        {"Alt", {"X"}},
                        {"Rem", {}},
                        {"entry", {"1"}},
                        {"Gain", {"1", "2.5"}},
                        {"other", {}}}),
            "Found unexpected entry: own\nEncountered unexpected label: cut\n"
            "Encountered unexpected label: Alt\nEncountered unexpected label: other\n");
  ASSERT_EQ(Project().GetEventCount(), 2);
  EXPECT_EQ(Project().GetEvent(0)->entryNumber, 1);
  EXPECT_EQ(Project().GetEvent(0)->gain.gainDb, 2.5);
  EXPECT_STREQ(Project().GetEvent(1)->label, "CUT");
  EXPECT_EQ(Project().GetEvent(1)->cut.destChannel, 3);
  EXPECT_EQ(Project().GetEvent(1)->cut.cutMark1, 1);
}

TEST_F(UncheckedReaders, eventListTakesLinesWithFewValues) {
  EXPECT_EQ(ReadEvents({{"Entry", {"1"}},
                        {"Cut", {"I", "7"}},
                        {"Infade", {}},
                        {"Outfade", {"no timestamp", "L"}},
                        {"Xfade", {"9"}},
                        {"Gain", {"4"}},
                        {"Entry", {"2"}},
                        {"Silence", {}},
                        {"Entry", {"3"}},
                        {"Vid", {"a"}},
                        {"Entry", {"4"}},
                        {"Alt", {"a", "5"}},
                        {"Entry", {"5"}},
                        {"Cut", {}}}),
            "");
  ASSERT_EQ(Project().GetEventCount(), 5);
  const AES31Event& cut = *Project().GetEvent(0);
  EXPECT_STREQ(cut.label, "Cut");
  EXPECT_EQ(Shown(cut.cut.sourceType), "I");
  EXPECT_EQ(cut.cut.sourceIndex, 7);
  EXPECT_EQ(cut.cut.destChannel, 0);
  EXPECT_EQ(cut.cut.sourceIn, nullptr);
  EXPECT_EQ(cut.cut.destOut, nullptr);
  EXPECT_TRUE(cut.infade.present);
  EXPECT_EQ(cut.infade.length, nullptr);
  EXPECT_EQ(cut.infade.fadeParam4, 0.0);
  EXPECT_TRUE(cut.outfade.present);
  EXPECT_EQ(Shown(cut.outfade.length), "no timestamp");
  EXPECT_EQ(cut.outfade.fadeText7, nullptr);
  EXPECT_TRUE(cut.xfade.present);
  EXPECT_EQ(cut.xfade.xfadeNumber0, 9);
  EXPECT_EQ(cut.xfade.xfadeText5, nullptr);
  EXPECT_TRUE(cut.gain.present);
  EXPECT_EQ(cut.gain.gainNumber, 4);
  EXPECT_EQ(cut.gain.gainDb, 0.0);
  EXPECT_STREQ(Project().GetEvent(1)->label, "Silence");
  EXPECT_EQ(Project().GetEvent(1)->silence.silenceText3, nullptr);
  EXPECT_EQ(Project().GetEvent(1)->silence.silenceMark, 1);
  EXPECT_EQ(Shown(Project().GetEvent(2)->vid.vidText0), "a");
  EXPECT_EQ(Project().GetEvent(2)->vid.vidText1, nullptr);
  EXPECT_EQ(Project().GetEvent(3)->label, nullptr);
  EXPECT_EQ(Project().GetEvent(3)->alt.altIndex, 5);
  EXPECT_EQ(Project().GetEvent(3)->alt.altTime, nullptr);
  EXPECT_EQ(Project().GetEvent(4)->cut.sourceType, nullptr);
}

TEST_F(UncheckedReaders, fadeAlwaysReadsItsLaterValues) {
  ReadEvents({{"Entry", {"1"}},
              {"Infade", {"_", "L", "1", "2", "3", "FIVE"}},
              {"Entry", {"2"}},
              {"Infade", {"_", "L", "1", "2", "3", "FIVE", "66"}},
              {"Entry", {"3"}},
              {"Outfade", {"_", "L", "1", "2", "3", "FIVE", "66", "SEVEN"}}});
  ASSERT_EQ(Project().GetEventCount(), 3);
  EXPECT_EQ(Shown(Project().GetEvent(0)->infade.fadeText5), "FIVE");
  EXPECT_EQ(Project().GetEvent(0)->infade.fadeNumber6, 0);
  EXPECT_EQ(Project().GetEvent(1)->infade.fadeNumber6, 66);
  EXPECT_EQ(Project().GetEvent(1)->infade.fadeText7, nullptr);
  EXPECT_EQ(Shown(Project().GetEvent(2)->outfade.fadeText7), "SEVEN");
}

TEST_F(UncheckedReaders, entryWithoutAValueIsNumber0) {
  EXPECT_EQ(ReadEvents({{"Entry", {}}, {"Gain", {"4", "1"}}, {"Entry", {"-1"}}}), "");
  ASSERT_EQ(Project().GetEventCount(), 2);
  EXPECT_EQ(Project().GetEvent(0)->entryNumber, -1);
  EXPECT_EQ(Project().GetEvent(1)->entryNumber, 0);
  EXPECT_EQ(Project().GetEvent(1)->gain.gainNumber, 4);
}

TEST_F(UncheckedReaders, extremeEntryNumbersReadAtOnce) {
  ReadEvents({{"Entry", {"2147483647"}}, {"Entry", {"-2147483648"}}});
  ASSERT_EQ(Project().GetEventCount(), 2);
  EXPECT_EQ(Project().GetEvent(0)->entryNumber, -2147483647 - 1);
}

TEST_F(UncheckedReaders, emptySectionsAreNothing) {
  EXPECT_EQ(ReadEvents({}), "");
  EXPECT_EQ(ReadSources({}), "");
  EXPECT_EQ(Project().GetEventCount(), 0);
  EXPECT_TRUE(Project().sourceFiles.empty());
}

TEST(ReadSections, neverStopsEarly) {
  const LoadedProject project(
      "<ADL> <PROJECT> (PROJ_TITLE) t (own) </PROJECT> <SOURCE_INDEX> (Index) (F) a "
      "</SOURCE_INDEX> <TRACK_LIST> (x) </TRACK_LIST> <event_list> (Entry) 4 (Gain) 1 (Entry) "
      "</event_list> <SEQUENCE> (SEQ_TITLE) s </SEQUENCE> </ADL>");
  ASSERT_FALSE(project.ok());
  EXPECT_EQ(Said(*project.loading.project, [](AES31Project& p) { p.ReadSections(); }),
            "Found unknown identifier: own in section PROJECT\n");
  EXPECT_EQ(Shown(project->GetConstant(5)), "t");
  EXPECT_EQ(Shown(project->GetConstant(15)), "s");
  ASSERT_EQ(project->sourceFiles.size(), 1U);
  EXPECT_EQ(ShownTexts(project->sourceFiles[0].fValues), "a|~|~|~|~|~");
  ASSERT_EQ(project->GetEventCount(), 2);
  EXPECT_EQ(project->GetEvent(0)->entryNumber, 0);
  EXPECT_EQ(project->GetEvent(1)->gain.gainNumber, 1);
}

TEST(ReadSections, clearsTheConstantsAndAddsToTheEvents) {
  const LoadedProject project(
      "<ADL> <PROJECT> (PROJ_TITLE) t </PROJECT> <EVENT_LIST> (Entry) 1 </EVENT_LIST> </ADL>");
  ASSERT_TRUE(project.ok());
  project->constants.fill("left over");
  project->ReadSections();
  EXPECT_EQ(ShownTexts(project->constants), "~|~|~|~|~|t|~|~|~|~|~|~|~|~|~|~|~|~|~|~|~|~|~|~");
  EXPECT_EQ(project->GetEventCount(), 2);
}

}  // namespace
}  // namespace velmora::test
