#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

struct Constant {
  const char* section;
  const char* keyword;
};

// By id, from 0.
constexpr auto kConstants = std::to_array<Constant>({
    {"VERSION", "ADL_ID"},          {"VERSION", "ADL_UID"},
    {"VERSION", "VER_ADL_VERSION"}, {"VERSION", "VER_CREATOR"},
    {"VERSION", "VER_CRTR"},        {"PROJECT", "PROJ_TITLE"},
    {"PROJECT", "PROJ_ORIGINATOR"}, {"PROJECT", "PROJ_CREATE_DATE"},
    {"PROJECT", "PROJ_NOTES"},      {"PROJECT", "PROJ_CLIENT_DATA"},
    {"SYSTEM", "SYS_SRC_OFFSET"},   {"SYSTEM", "SYS_BIT_DEPTH"},
    {"SYSTEM", "SYS_AUD_CODEC"},    {"SYSTEM", "SYS_XFADE_LEN"},
    {"SYSTEM", "SYS_GAIN"},         {"SEQUENCE", "SEQ_TITLE"},
    {"SEQUENCE", "SEQ_DESCRIPT"},   {"SEQUENCE", "SEQ_SAMPLE_RATE"},
    {"SEQUENCE", "SEQ_FRAME_RATE"}, {"SEQUENCE", "SEQ_ADL_LEVEL"},
    {"SEQUENCE", "SEQ_CLEAN"},      {"SEQUENCE", "SEQ_SORT"},
    {"SEQUENCE", "SEQ_MULTICHAN"},  {"SEQUENCE", "SEQ_DEST_START"},
});
static_assert(kConstants.size() == 24);

std::string Section(const std::string& name, const std::string& lines) {
  return "<" + name + ">\n" + lines + "\n</" + name + ">\n";
}

std::string Adl(const std::string& sections) {
  return "<ADL>\n" + sections + "</ADL>\n";
}

std::string Lower(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  return text;
}

/// All constants are null but that of `id`, which is "value".
void ExpectOnly(AES31Project& project, std::uint32_t id, const std::string& what) {
  for (std::uint32_t other = 0; other < kConstants.size(); ++other) {
    EXPECT_EQ(Shown(project.GetConstant(other)), other == id ? "value" : "~")
        << what << ": id " << other;
  }
}

TEST(Constants, everyKeywordFillsItsId) {
  for (std::uint32_t id = 0; id < kConstants.size(); ++id) {
    const auto [section, keyword] = kConstants[id];
    const LoadedProject project(Adl(Section(section, "(" + std::string(keyword) + ") value")));
    EXPECT_TRUE(project.ok());
    EXPECT_EQ(project.standardError(), "");
    ExpectOnly(*project.loading.project, id, keyword);
  }
}

TEST(Constants, matchInAnyCase) {
  for (std::uint32_t id = 0; id < kConstants.size(); ++id) {
    const auto [section, keyword] = kConstants[id];
    const LoadedProject project(Adl(Section(Lower(section), "(" + Lower(keyword) + ") value")));
    EXPECT_EQ(project.standardError(), "");
    ExpectOnly(*project.loading.project, id, keyword);
  }
}

TEST(Constants, belongToTheirOwnSectionOnly) {
  for (std::uint32_t id = 0; id < kConstants.size(); ++id) {
    const std::string keyword = kConstants[id].keyword;
    for (const char* const section : {"VERSION", "PROJECT", "SYSTEM", "SEQUENCE"}) {
      if (std::string_view(section) == kConstants[id].section) continue;
      const LoadedProject project(Adl(Section(section, "(" + keyword + ") value")));
      EXPECT_EQ(project.standardError(),
                "Found unknown identifier: " + keyword + " in section " + section + "\n");
      EXPECT_EQ(project->GetConstant(id), nullptr) << keyword;
    }
  }
}

struct Reading {
  std::string_view rule;
  std::string sections;
  std::uint32_t id;
  const char* value;  ///< `~` for null
  std::string standardError = "";
};

TEST(Constants, reading) {
  const auto rows = std::to_array<Reading>({
      {"keepsItsQuotes", Section("SEQUENCE", "(SEQ_SAMPLE_RATE) \"48000\""), 17, "\"48000\""},
      {"firstValueCounts", Section("SYSTEM", "(SYS_GAIN) 1 2 3"), 14, "1"},
      {"lastOfTwoCounts", Section("SYSTEM", "(SYS_GAIN) 1\n(sys_gain) 2"), 14, "2"},
      {"secondSectionAdds",
       Section("SYSTEM", "(SYS_GAIN) 1") + Section("system", "(SYS_BIT_DEPTH) 24"), 14, "1"},
      {"secondSectionReplaces",
       Section("SYSTEM", "(SYS_GAIN) 1") + Section("SYSTEM", "(SYS_GAIN) 2"), 14, "2"},
      {"knownKeywordWithoutAValueIsReported", Section("PROJECT", "(PROJ_TITLE)"), 5, "~",
       "Found unknown identifier: PROJ_TITLE in section PROJECT\n"},
      {"valuelessRepetitionKeepsTheFirst", Section("PROJECT", "(PROJ_TITLE) a\n(Proj_Title)"), 5,
       "a", "Found unknown identifier: Proj_Title in section PROJECT\n"},
      {"unknownKeywordIsReportedAndPassedOver",
       Section("Project", "(OWN) 1\n(PROJ_TITLE) a\n(other) \"2\""), 5, "a",
       "Found unknown identifier: OWN in section Project\n"
       "Found unknown identifier: other in section Project\n"},
      {"longerKeywordIsAnother", Section("SEQUENCE", "(SEQ_CLEANER) 1"), 20, "~",
       "Found unknown identifier: SEQ_CLEANER in section SEQUENCE\n"},
      {"shorterKeywordIsAnother", Section("SEQUENCE", "(SEQ_CLEA) 1"), 20, "~",
       "Found unknown identifier: SEQ_CLEA in section SEQUENCE\n"},
      {"emptyLabelIsReported", Section("SYSTEM", "() 1"), 14, "~",
       "Found unknown identifier:  in section SYSTEM\n"},
      {"longerSectionNameIsAnother", Section("SYSTEMS", "(SYS_GAIN) 1\n(OWN) 2"), 14, "~"},
      {"shorterSectionNameIsAnother", Section("SYSTE", "(SYS_GAIN) 1\n(OWN) 2"), 14, "~"},
      {"unknownSectionIsPassedOverInSilence", Section("OWN_DATA", "(SYS_GAIN) 1\n(OWN) 2"), 14,
       "~"},
      {"trackListIsPassedOverInSilence", Section("TRACK_LIST", "(Track) 1\n(SYS_GAIN) 2"), 14, "~"},
      {"countedValue", Section("PROJECT", "(PROJ_NOTES)12 counted (n)\n(PROJ_TITLE) t"), 8,
       "counted (n)"},
      {"emptyCountedValueIsAValue", Section("PROJECT", "(PROJ_NOTES)1  (PROJ_TITLE) t"), 8, ""},
      {"labelBytesAreReportedRaw", Section("PROJECT", "(a%d%s~) 1"), 5, "~",
       "Found unknown identifier: a%d%s~ in section PROJECT\n"},
      {"emptySection", Section("PROJECT", ""), 5, "~"},
  });
  for (const Reading& row : rows) {
    const LoadedProject project(Adl(row.sections));
    EXPECT_TRUE(project.ok()) << row.rule;
    EXPECT_EQ(Shown(project->GetConstant(row.id)), row.value) << row.rule;
    EXPECT_EQ(project.standardError(), row.standardError) << row.rule;
  }
}

TEST(Constants, linesOfSeveralSectionsStandInFileOrder) {
  const LoadedProject project(
      Adl(Section("EVENT_LIST", "(early) 1") + Section("SEQUENCE", "(one) 1") +
          Section("SOURCE_INDEX", "(late) 1") + Section("VERSION", "(two) 1")));
  EXPECT_TRUE(project.ok());
  EXPECT_EQ(project.standardError(),
            "Found unexpected entry: early\n"
            "Found unknown identifier: one in section SEQUENCE\n"
            "Found unexpected entry: late\n"
            "Found unknown identifier: two in section VERSION\n");
}

struct Number {
  const char* text;
  std::int32_t integer;
  double decimal;
};

TEST(Constants, asNumbers) {
  constexpr auto kRows = std::to_array<Number>({
      {"48000", 48000, 48000.0},
      {"-12.75", -12, -12.75},
      {"24bit", 24, 24.0},
      {"S48000", 0, 0.0},
      {"\"48000\"", 0, 0.0},
      {"1e3", 1, 1000.0},
      {"0x10", 0, 16.0},
      {"99999999999", 2147483647, 99999999999.0},
      {"-99999999999", -2147483647 - 1, -99999999999.0},
      {"01.00", 1, 1.0},
      {"_", 0, 0.0},
  });
  for (const Number& row : kRows) {
    const LoadedProject project(Adl(Section("SYSTEM", "(SYS_GAIN) " + std::string(row.text))));
    EXPECT_EQ(project->GetConstantInt(14), row.integer) << row.text;
    EXPECT_EQ(project->GetConstantFloat(14), row.decimal) << row.text;
  }
}

TEST(Constants, absentOnesAreNullAndZero) {
  const LoadedProject project(Adl(""));
  for (std::uint32_t id = 0; id < kConstants.size(); ++id) {
    EXPECT_EQ(project->GetConstant(id), nullptr);
    EXPECT_EQ(project->GetConstantInt(id), 0);
    EXPECT_EQ(project->GetConstantFloat(id), 0.0);
  }
}

TEST(Constants, idsOutOfRangeAreAbsent) {
  const LoadedProject project(Adl(Section("SEQUENCE", "(SEQ_DEST_START) 1")));
  for (const std::uint32_t id : {24U, 25U, 1000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
    EXPECT_EQ(project->GetConstant(id), nullptr);
    EXPECT_EQ(project->GetConstantInt(id), 0);
    EXPECT_EQ(project->GetConstantFloat(id), 0.0);
  }
}

TEST(ProjectEvents, positionsOutOfRangeGiveNull) {
  const LoadedProject project(WithEvents("(Entry) 1 (Rem)"));
  EXPECT_EQ(project->GetEventCount(), 1);
  EXPECT_NE(project->GetEvent(0), nullptr);
  for (const std::int32_t position : {1, 2, -1, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(project->GetEvent(position), nullptr) << position;
  }
  for (const std::size_t position : {std::size_t{1}, std::numeric_limits<std::size_t>::max()}) {
    EXPECT_EQ(project->GetEventFile(position), nullptr) << position;
  }
  EXPECT_EQ(project->GetEventFile(0), nullptr);
}

TEST(ProjectEvents, areWritableInPlace) {
  const LoadedProject project(WithEvents("(Entry) 1 (Rem)\n(Entry) 2 (Rem)"));
  project->GetEvent(1)->trackOn = 7;
  EXPECT_EQ(project->events[1].trackOn, 7);
  EXPECT_EQ(project->events[0].trackOn, 0);
}

TEST(ProjectEvents, isTimestampForwards) {
  const LoadedProject project(Adl(""));
  EXPECT_TRUE(project->IsTimestamp("01=02:03;04/0000"));
  EXPECT_FALSE(project->IsTimestamp("01=02:03:04/0000"));
  EXPECT_FALSE(project->IsTimestamp("_"));
}

TEST(CheckSections, stopsAtTheFirstFailure) {
  const LoadedProject project(
      Adl(Section("PROJECT", "(PROJ_TITLE) t") + Section("EVENT_LIST", "(Entry)") +
          Section("SEQUENCE", "(SEQ_TITLE) s\n(own) 1") + Section("SOURCE_INDEX", "(Index) 1")));
  EXPECT_FALSE(project.ok());
  EXPECT_EQ(Shown(project->GetConstant(5)), "t");
  EXPECT_EQ(project->GetConstant(15), nullptr);
  EXPECT_TRUE(project->sourceFiles.empty());
  EXPECT_EQ(project.standardError(), "");
}

TEST(CheckSections, clearsTheConstantsFirst) {
  const LoadedProject project(Adl(Section("PROJECT", "(PROJ_TITLE) t")));
  project->constants.fill("left over");
  EXPECT_TRUE(project->CheckSections());
  for (std::uint32_t id = 0; id < kConstants.size(); ++id) {
    EXPECT_EQ(Shown(project->GetConstant(id)), id == 5 ? "t" : "~") << id;
  }
}

TEST(CheckSections, withoutSectionsAnswersTrue) {
  const LoadedProject project("");
  EXPECT_TRUE(project->CheckSections());
}

TEST(CheckSections, orderOfTheListsDoesNotMatter) {
  const std::string sources = Section("SOURCE_INDEX", "(Index) 7 (F) \"/a/b.wav\" _ s l");
  const std::string events = Section("EVENT_LIST", "(Entry) 1 (Cut) I 7 1 1 a b c d");
  for (const std::string& sections : {sources + events, events + sources}) {
    const LoadedProject project(Adl(sections));
    EXPECT_TRUE(project.ok());
    ASSERT_EQ(project->GetEventCount(), 1);
    EXPECT_EQ(Shown(project->GetEvent(0)->sourceStart), "s");
    EXPECT_EQ(Shown(project->GetEvent(0)->sourceLength), "l");
  }
}

TEST(CheckSections, failedProjectCanBeDeletedWithAllThatItHolds) {
  LoadedProject project(Adl(Section("VERSION", "(ADL_ID) 1") +
                            "<REF_LIST> <REF> <A> (x) 1 </A> </REF> </REF_LIST>\n" +
                            Section("SOURCE_INDEX", "(Index) 1 (F) \"/a/project.adl\" _ s l") +
                            Section("EVENT_LIST", "(Entry) 1 (Gain) 1")));
  EXPECT_FALSE(project.ok());
  ASSERT_EQ(project->sourceFiles.size(), 1U);
  EXPECT_EQ(project->sourceFiles.begin()->second.file, nullptr) << "no file is looked for";
  project.loading.project.reset();
}

}  // namespace
}  // namespace velmora::test
