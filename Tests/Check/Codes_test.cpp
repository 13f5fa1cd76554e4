// For every code a project that has it. Each row changes one thing in a project that has none, so
// that the clean project is the twin of all of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "Check/Finding.h"
#include "CheckFixture.h"

namespace velmora::check {
namespace {

TEST(CodeTable, rowsStandByCode) {
  for (std::size_t i = 0; i < kCodes.size(); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(kCodes[i].code), i) << kCodes[i].name;
  }
  EXPECT_EQ(kCodes.back().code, Code::OffsetUnused);
}

class Codes : public CheckTest {};

TEST_F(Codes, cleanProjectHasNone) {
  const CheckedProject checked = Check(kClean);
  EXPECT_EQ(Told(checked.findings), "");
  EXPECT_EQ(checked.verdict, Verdict::Clean);
  EXPECT_EQ(checked.path, folder_.Path("p.adl"));
}

struct Row {
  const char* name;
  const char* from;
  const char* to;
  const char* told;  ///< all findings, in order
};

constexpr const char* kFirstCut =
    "(Cut) I 1 1 1 00.00.10:10/0000 01.00.00:00/0000 01.00.01:00/0000 R";
constexpr const char* kSecondCut =
    "(Cut) I 2 1 2 00.00.00:00/0000 01.00.01:00/0000 01.00.02:00/0000 R";
constexpr const char* kInfade = "(Infade) 00.00.00;05/0000 LIN _ _ _";
constexpr const char* kSourceTwo = "(Index) 2\n(F)";

constexpr Row kRows[] = {
    {"fadeMarkedByAPoint", "00.00.00;05/0000", "00.00.00.05/0000",
     "fade-separator fails 21:10 entry 1\n"},
    {"fadeMarkedByAColon", "00.00.00;10/0000", "00.00.00:10/0000",
     "fade-separator fails 22:11 entry 1\n"},
    {"fadeNotGiven", "00.00.00;05/0000", "_", "fade-form fails 21:10 entry 1\n"},
    {"fadeWithoutRemainder", "00.00.00;05/0000", "00.00.00;05", "fade-form fails 21:10 entry 1\n"},
    {"fadeInQuotes", "00.00.00;05/0000", "\"00.00.00;05/0000\"", "fade-form fails 21:10 entry 1\n"},
    {"cutWithoutStatus", "01.00.01:00/0000 R", "01.00.01:00/0000",
     "values-missing fails 20:1 entry 1\n"},
    {"fadeOfFourValues", "LIN _ _ _", "LIN _ _", "values-missing fails 21:1 entry 1\n"},
    {"gainWithoutChannel", "(Gain) _ -3.00", "(Gain) -3.00", "values-missing fails 23:1 entry 1\n"},
    {"tOfFourValues", kSourceTwo, "(Index) 2 (T) a b c d\n(F)",
     "values-missing fails 15:11 source 2\n"},
    {"indexWithoutNumber", kSourceTwo, "(Index)\n(F)", "index-missing fails 15:1 source 2\n"},
    {"entryWithoutNumber", "(Entry) 2", "(Entry)", "index-missing fails 24:1 entry 2\n"},
    {"indexThatIsNoNumber", kSourceTwo, "(Index) _\n(F)", "index-missing lost 15:9 source 2\n"},
    {"nameInPlaceOfAnIndex", "I 2 1 2", "I two.wav 1 2", "index-name lost 25:9 entry 2 source 2\n"},
    {"nameOfNoSource", "I 2 1 2", "I gone.wav 1 2",
     "index-name lost 25:9 entry 2\nsource-missing lost 25:9 entry 2\n"},
    {"indexTwice", kSourceTwo,
     "(Index) 2\n(F) \"URL:file://localhost/a/one.wav\" _ _ _ \"x\" N\n(Index) 2\n(F)",
     "index-twice lost 17:1 source 2\n"},
    {"wordOnALineOfItsOwn", "<EVENT_LIST>\n", "<EVENT_LIST>\nexported by hand\n",
     "stray-text lost 19:1\n"},
    {"listWithoutLabels", "<EVENT_LIST>\n",
     "<VENDOR_LIST>\nno label here\n</VENDOR_LIST>\n<EVENT_LIST>\n", "stray-text lost 19:1\n"},
    {"blanksBeforeTheTag", "<ADL>\n", "\n <ADL>\n", "stray-text lost 1:1\n"},
    {"byteOrderMark", "<ADL>\n", "\xEF\xBB\xBF<ADL>\n", "stray-text lost 1:1\n"},
    {"commentAmongTheValuesOfACut", "(Cut) I 2 1 2", "(Cut) I 2 /* left */ 1 2",
     "stray-text lost 25:11 entry 2\n"},
    {"commentWithATag", kInfade, "(Infade) 00.00.00;05/0000 LIN _ _ _ /* see <this> */",
     "stray-text lost 21:37 entry 1\n"},
    {"wrongTag", "</SYSTEM>", "</SYSTEMS_OF_OLD>\n</SYSTEM>", "stray-text lost 8:1\n"},
    {"entryTwice", "(Entry) 2", "(Entry) 1",
     "entry-twice lost 19:1 entry 1\nentry-twice lost 24:1 entry 1\n"},
    {"endOfTheFileMissing", "</EVENT_LIST>\n</ADL>\n", "", "text-cut-off note 26:1\n"},
    {"endInsideACut", " 01.00.02:00/0000 R\n</EVENT_LIST>\n</ADL>\n", "",
     "text-cut-off fails 25:1 entry 2\n"},
    {"startNotGiven", "one.wav\" _ 00.00.10:00/0000", "one.wav\" _ _",
     "file-start-missing misplaced 14:40 source 1\ncut-outside-file lost 20:1 entry 1 source 1\n"},
    {"startNoCutLiesInside", "two.wav\" _ 00.00.00:00/0000", "two.wav\" _ 23.00.00:00/0000",
     "file-start-missing misplaced 16:40 source 2\n"},
    {"noSuchSource", "I 2 1 2", "I 3 1 2", "source-missing lost 25:9 entry 2\n"},
    {"noSuchFile", "a/two.wav", "a/gone.wav", "media-missing lost 16:5 source 2\n"},
    {"escapes", "a/two.wav", "a/t%77o.wav", "location-form lost 16:5 source 2\n"},
    {"backslashes", "URL:file://localhost/a/two.wav", "URL:file://localhost/D:\\a\\two.wav",
     "location-form lost 16:5 source 2\n"},
    {"nameAlone", "URL:file://localhost/a/two.wav", "two.wav",
     "location-form lost 16:5 source 2\n"},
    {"otherCase", "a/two.wav", "a/TWO.WAV", "media-elsewhere lost 16:5 source 2\n"},
    {"beginsBeforeItsFile", "00.00.10:10/0000", "00.00.09:24/0000",
     "cut-outside-file lost 20:1 entry 1 source 1\n"},
    {"endsAfterItsFile", "01.00.02:00/0000 R", "01.00.03:01/0000 R",
     "cut-outside-file lost 25:1 entry 2 source 2\n"},
    {"stereo", "I 2 1 2", "I 2 1~2 1~2", "channels lost 25:1 entry 2 source 2\n"},
    {"stereoWithADash", "I 2 1 2", "I 2 1-2 3-4", "channels lost 25:1 entry 2 source 2\n"},
    {"channelThatTheFileLacks", "I 2 1 2", "I 2 2 2", "channels lost 25:1 entry 2 source 2\n"},
    {"trackBeyond16Bits", "I 2 1 2", "I 2 1 40000", "channels lost 25:1 entry 2 source 2\n"},
    {"disabled", "01.00.02:00/0000 R", "01.00.02:00/0000 D", "event-off misplaced 25:66 entry 2\n"},
    {"muted", "01.00.02:00/0000 R", "01.00.02:00/0000 m", "event-off misplaced 25:66 entry 2\n"},
    {"error", "01.00.02:00/0000 R", "01.00.02:00/0000 E", "event-error lost 25:66 entry 2\n"},
    {"marked", "01.00.02:00/0000 R", "01.00.02:00/0000 X", ""},
    {"ofNoLength", "01.00.02:00/0000 R", "01.00.01:00/0000 R",
     "event-empty misplaced 25:1 entry 2\n"},
    {"runsBackwards", "01.00.02:00/0000 R", "01.00.00:00/0000 R",
     "event-empty misplaced 25:1 entry 2\n"},
    {"endNotGiven", "01.00.02:00/0000 R", "_ R", "event-empty misplaced 25:1 entry 2\n"},
    {"curve", "05/0000 LIN _ _ _", "05/0000 CURVE -12 -6 -2", "fade-curve note 21:1 entry 1\n"},
    {"rendered", "05/0000 LIN _ _ _", "05/0000 LIN _ _ _ I 2 00.00.00:00/0000",
     "fade-rendered note 21:1 entry 1\n"},
    {"xfade", "(Gain) _ -3.00", "(Gain) _ -3.00\n(Xfade) 1 a b c 1 d",
     "xfade-label note 24:1 entry 1\n"},
    {"fadeOverlong", "00.00.00;05/0000", "00.00.01;01/0000", "fade-overlong lost 21:1 entry 1\n"},
    {"severalGains", "(Gain) _ -3.00", "(Gain) 1 -3.00\n(Gain) 2 -6.00",
     "gain-channels lost 24:1 entry 1\n"},
    {"gainOfAnotherChannel", "(Gain) _ -3.00", "(Gain) 2 -3.00",
     "gain-channels lost 23:1 entry 1\n"},
    {"gainOfItsChannel", "(Gain) _ -3.00", "(Gain) 1 -3.00", ""},
    {"anotherRate", "00.00.00:00/0000 01.00.01:00/0000", "00.00.00:00|0000 01.00.01:00/0000",
     "rate-mixed misplaced 25:15 entry 2\n"},
    {"headerOfAnotherRate", "S48000", "S44100", "marks-differ misplaced 20:32 entry 1\n"},
    {"headerOfOtherFrames", "(SEQ_FRAME_RATE) 25", "(SEQ_FRAME_RATE) 24",
     "marks-differ misplaced 20:32 entry 1\n"},
    {"timeWithoutRemainder", "00.00.00:00/0000 01.00.01:00/0000", "00.00.00:00 01.00.01:00/0000",
     "marks-differ misplaced 25:15 entry 2\n"},
    {"trackNames", "<EVENT_LIST>\n",
     "<TRACKLIST>\n(Track) 1 \"Voice\"\n</TRACKLIST>\n<EVENT_LIST>\n", "tracks-unused note 18:1\n"},
    {"faders", "</EVENT_LIST>\n", "</EVENT_LIST>\n<FADER_LIST>\n(FP) 1 a b\n</FADER_LIST>\n",
     "automation-unused note 27:1\n"},
    {"markers", "</EVENT_LIST>\n", "</EVENT_LIST>\n<MARK_LIST>\n(Mark) 1 a b\n</MARK_LIST>\n",
     "markers-unused note 27:1\n"},
    {"sourceOffset", "(SYS_SRC_OFFSET) 00.00.00:00/0000", "(SYS_SRC_OFFSET) 00.00.00:00/0001",
     "offset-unused note 6:18\n"},
    {"names", "(Gain) _ -3.00", "(Gain) _ -3.00\n(Rem) NAME \"Storm\"",
     "names-unused note 19:1 entry 1\n"},
    {"titleInUtf8", "\"1234\"", "\"Str\xC3\xB6mung\"", "text-encoding note 3:10\n"},
};

TEST_F(Codes, aChangeHasItsFindingAndNoOther) {
  for (const Row& row : kRows) {
    const CheckedProject checked = Check(With(row.from, row.to));
    EXPECT_EQ(Told(checked.findings), row.told) << row.name;
    const bool loses =
        std::any_of(checked.findings.begin(), checked.findings.end(),
                    [](const Finding& finding) { return finding.severity != Severity::Note; });
    EXPECT_EQ(checked.verdict, loses ? Verdict::Loses : Verdict::Clean) << row.name;
    for (const Finding& finding : checked.findings) {
      EXPECT_FALSE(finding.text.empty() || finding.effect.empty() || finding.remedy.empty())
          << row.name;
    }
  }
}

TEST_F(Codes, whatTheSystemOrderDoesNotMindHasNoFinding) {
  const Row rows[] = {
      {"commentAfterAllValues", kFirstCut,
       "(Cut) I 1 1 1 00.00.10:10/0000 01.00.00:00/0000 01.00.01:00/0000 R /* ok */", ""},
      {"commentAtTheStartOfASection", "<EVENT_LIST>\n", "<EVENT_LIST>\n/* ok */\n", ""},
      {"wordsAfterTheEvents", "</EVENT_LIST>\n", "</EVENT_LIST>\nno cut follows\n", ""},
      {"otherCase", kSecondCut,
       "(CUT) I 2 1 2 00.00.00:00/0000 01.00.01:00/0000 01.00.02:00/0000 r", ""},
      {"valuesOnTheNextLine", "(Entry) 2\n", "(Entry)\n2\n", ""},
      {"zerosBeforeANumber", "I 2 1 2", "I 0002 1 2", ""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Told(Check(With(row.from, row.to)).findings), row.told) << row.name;
  }
}

TEST_F(Codes, headerAndMarksAreHeldAgainstEachOtherWhicheverIsTrusted) {
  for (const field::Trust trust : {field::Trust::Marks, field::Trust::Header}) {
    options_.reading.trust = trust;
    const CheckedProject checked = Check(With("S48000", "S44100"));
    const auto differ = [](const Finding& finding) { return finding.code == Code::MarksDiffer; };
    EXPECT_EQ(std::count_if(checked.findings.begin(), checked.findings.end(), differ), 1);
    EXPECT_EQ(checked.verdict, Verdict::Loses);
  }
}

TEST_F(Codes, everyCodeHasARowOrATest) {
  std::set<std::string> told = {"not-an-adl",      "media-ambiguous", "media-kind",
                                "media-chunks",    "media-broken",    "media-rate",
                                "rate-compensated"};  // those have tests of their own
  for (const Row& row : kRows) {
    const std::string text = row.told;
    for (const CodeRow& code : kCodes) {
      if (text.find(std::string(code.name) + " ") != std::string::npos) told.insert(code.name);
    }
  }
  for (const CodeRow& code : kCodes) EXPECT_TRUE(told.contains(code.name)) << code.name;
}

}  // namespace
}  // namespace velmora::check
