#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

/// The only event of a list.
const AES31Event& Only(const LoadedProject& project) {
  EXPECT_TRUE(project.ok());
  EXPECT_EQ(project.loading.project->events.size(), 1U);
  static const AES31Event kNone{};
  return project.loading.project->events.empty() ? kNone : project.loading.project->events[0];
}

void ExpectEqual(const AES31Cut& cut, const AES31Cut& expected) {
  EXPECT_EQ(Shown(cut.sourceType), Shown(expected.sourceType));
  EXPECT_EQ(Shown(cut.sourceIn), Shown(expected.sourceIn));
  EXPECT_EQ(Shown(cut.destIn), Shown(expected.destIn));
  EXPECT_EQ(Shown(cut.destOut), Shown(expected.destOut));
  EXPECT_EQ(Shown(cut.cutTail), Shown(expected.cutTail));
  EXPECT_EQ(cut.sourceIndex, expected.sourceIndex);
  EXPECT_EQ(cut.sourceChannel, expected.sourceChannel);
  EXPECT_EQ(cut.destChannel, expected.destChannel);
  EXPECT_EQ(cut.cutMark1, expected.cutMark1);
  EXPECT_EQ(cut.cutMark2, expected.cutMark2);
}

void ExpectEqual(const AES31Fade& fade, const AES31Fade& expected) {
  EXPECT_EQ(fade.present, expected.present);
  EXPECT_EQ(Shown(fade.length), Shown(expected.length));
  EXPECT_EQ(Shown(fade.fadeText1), Shown(expected.fadeText1));
  EXPECT_EQ(Shown(fade.fadeText5), Shown(expected.fadeText5));
  EXPECT_EQ(Shown(fade.fadeText7), Shown(expected.fadeText7));
  EXPECT_EQ(fade.fadeNumber6, expected.fadeNumber6);
  EXPECT_EQ(fade.fadeParam2, expected.fadeParam2);
  EXPECT_EQ(fade.fadeParam3, expected.fadeParam3);
  EXPECT_EQ(fade.fadeParam4, expected.fadeParam4);
}

constexpr AES31Fade kNoFade{};

TEST(EventFields, cutFillsItsFields) {
  const LoadedProject project(WithEvents("(Entry) 7 (Cut) I 12 3 4 in from to tail more words"));
  const AES31Event& event = Only(project);
  EXPECT_STREQ(event.label, "Cut");
  EXPECT_EQ(event.entryNumber, 7);
  ExpectEqual(event.cut, {"I", "in", "from", "to", "tail", 12, 3, 4, 1, 1});
}

TEST(EventFields, cutNumbersFollowAtoi) {
  const LoadedProject project(WithEvents("(Entry) 1 (Cut) I x 1~2 99999999999 a b c d"));
  ExpectEqual(Only(project).cut, {"I", "a", "b", "c", "d", 0, 1, 2147483647, 1, 1});
}

TEST(EventFields, everythingElseStartsAsZero) {
  const LoadedProject project(WithEvents("(Entry) 1 (Cut) I 1 1 1 a b c d"));
  const AES31Event& event = Only(project);
  ExpectEqual(event.infade, kNoFade);
  ExpectEqual(event.outfade, kNoFade);
  EXPECT_FALSE(event.xfade.present);
  EXPECT_EQ(event.xfade.xfadeText1, nullptr);
  EXPECT_EQ(event.xfade.xfadeText2, nullptr);
  EXPECT_EQ(event.xfade.xfadeText3, nullptr);
  EXPECT_EQ(event.xfade.xfadeText5, nullptr);
  EXPECT_EQ(event.xfade.xfadeNumber0, 0);
  EXPECT_EQ(event.xfade.xfadeNumber4, 0);
  EXPECT_FALSE(event.gain.present);
  EXPECT_EQ(event.gain.gainNumber, 0);
  EXPECT_EQ(event.gain.gainDb, 0.0);
  EXPECT_EQ(event.sourceFile, nullptr);
  EXPECT_EQ(event.sourceStart, nullptr);
  EXPECT_EQ(event.sourceLength, nullptr);
  EXPECT_EQ(event.eventOn, 0);
  EXPECT_EQ(event.trackOn, 0);
  EXPECT_EQ(event.renderedFile, nullptr);
}

TEST(EventFields, silenceAndAuxFillTheSameFields) {
  for (const char* const label : {"Silence", "Aux", "SILENCE", "aux"}) {
    const LoadedProject project(
        WithEvents("(Entry) 1 (" + std::string(label) + ") 5 one two three four"));
    const AES31Event& event = Only(project);
    EXPECT_STREQ(event.label, label);
    EXPECT_EQ(event.silence.silenceNumber, 5);
    EXPECT_EQ(Shown(event.silence.silenceText1), "one");
    EXPECT_EQ(Shown(event.silence.silenceText2), "two");
    EXPECT_EQ(Shown(event.silence.silenceText3), "three");
    EXPECT_EQ(event.silence.silenceMark, 1);
  }
}

TEST(EventFields, vidFillsItsFields) {
  const LoadedProject project(WithEvents("(Entry) 1 (Vid) a b c d e"));
  const AES31Event& event = Only(project);
  EXPECT_STREQ(event.label, "Vid");
  EXPECT_EQ(Shown(event.vid.vidText0), "a");
  EXPECT_EQ(Shown(event.vid.vidText1), "b");
  EXPECT_EQ(Shown(event.vid.vidText2), "c");
  EXPECT_EQ(Shown(event.vid.vidText3), "d");
}

TEST(EventFields, altFillsItsFieldsAndIsNoLabel) {
  const LoadedProject project(WithEvents("(Entry) 1 (Alt) I 12 3 time more"));
  const AES31Event& event = Only(project);
  EXPECT_EQ(event.label, nullptr);
  EXPECT_EQ(Shown(event.alt.altType), "I");
  EXPECT_EQ(event.alt.altIndex, 12);
  EXPECT_EQ(event.alt.altChannel, 3);
  EXPECT_EQ(Shown(event.alt.altTime), "time");
  EXPECT_EQ(event.alt.altMark, 1);
  EXPECT_EQ(project.standardError(), "");
}

TEST(EventFields, cutFieldsAfterTheSharedStartAreZeroInOtherKinds) {
  for (const char* const edit :
       {"(Silence) 9 8 7 6", "(Aux) 9 8 7 6", "(Vid) 9 8 7 6", "(Alt) 9 8 7 6", "(Rem) 9"}) {
    const LoadedProject project(WithEvents("(Entry) 1 " + std::string(edit)));
    const AES31Event& event = Only(project);
    EXPECT_EQ(event.cut.sourceIndex, 0) << edit;
    EXPECT_EQ(event.cut.sourceChannel, 0) << edit;
    EXPECT_EQ(event.cut.destChannel, 0) << edit;
    EXPECT_EQ(event.cut.cutMark1, 0) << edit;
    EXPECT_EQ(event.cut.cutMark2, 0) << edit;
  }
}

TEST(EventFields, fadesFillTheirFields) {
  for (const char* const label : {"Infade", "Outfade", "infade", "OUTFADE"}) {
    const LoadedProject project(
        WithEvents("(Entry) 1 (" + std::string(label) +
                   ") 00=00:01;00/0000 LIN 0.5 -1.25 1e3 FIVE 66 SEVEN EIGHT"));
    const AES31Event& event = Only(project);
    const bool in = label[0] == 'I' || label[0] == 'i';
    const AES31Fade filled{true, "00=00:01;00/0000", "LIN", "FIVE", "SEVEN", 66, 0.5, -1.25, 1e3};
    ExpectEqual(event.infade, in ? filled : kNoFade);
    ExpectEqual(event.outfade, in ? kNoFade : filled);
    EXPECT_EQ(event.label, nullptr);
  }
}

TEST(EventFields, fadeOf5To7ValuesLeavesItsLaterFieldsZero) {
  for (const char* const more : {"", " FIVE", " FIVE 66"}) {
    const LoadedProject project(
        WithEvents("(Entry) 1 (Infade) 00=00:01,00/0000 LIN 1 2 3" + std::string(more)));
    ExpectEqual(Only(project).infade,
                {true, "00=00:01,00/0000", "LIN", nullptr, nullptr, 0, 1.0, 2.0, 3.0});
  }
}

TEST(EventFields, laterFadeWinsFieldByField) {
  const LoadedProject project(
      WithEvents("(Entry) 1 (Outfade) 00=00:01;00/0000 ONE 1 2 3 FIVE 66 SEVEN\n"
                 "(Outfade) 00=00:02;00/0000 TWO 4 5 6 FIVE2 77"));
  ExpectEqual(Only(project).outfade,
              {true, "00=00:02;00/0000", "TWO", "FIVE", "SEVEN", 66, 4.0, 5.0, 6.0});
}

TEST(EventFields, crossfadeFillsItsFields) {
  const LoadedProject project(WithEvents("(Entry) 1 (XFADE) 10 one two three 40 five six"));
  const AES31Crossfade& xfade = Only(project).xfade;
  EXPECT_TRUE(xfade.present);
  EXPECT_EQ(xfade.xfadeNumber0, 10);
  EXPECT_EQ(Shown(xfade.xfadeText1), "one");
  EXPECT_EQ(Shown(xfade.xfadeText2), "two");
  EXPECT_EQ(Shown(xfade.xfadeText3), "three");
  EXPECT_EQ(xfade.xfadeNumber4, 40);
  EXPECT_EQ(Shown(xfade.xfadeText5), "five");
}

TEST(EventFields, gainFillsItsFields) {
  const LoadedProject project(WithEvents("(Entry) 1 (gain) 3 -6.5 more"));
  const AES31Gain& gain = Only(project).gain;
  EXPECT_TRUE(gain.present);
  EXPECT_EQ(gain.gainNumber, 3);
  EXPECT_EQ(gain.gainDb, -6.5);
}

TEST(EventFields, laterGainWins) {
  const LoadedProject project(WithEvents("(Entry) 1 (Gain) 3 -6.5 (Gain) 4 1.5"));
  EXPECT_EQ(Only(project).gain.gainNumber, 4);
  EXPECT_EQ(Only(project).gain.gainDb, 1.5);
}

TEST(EventFields, whatGoesWithAnEditStandsBeforeOrAfterIt) {
  for (const char* const lines :
       {"(Gain) 1 2.5 (Cut) I 1 1 1 a b c d (Infade) 00=00:01;00/0000 L 1 2 3",
        "(Infade) 00=00:01;00/0000 L 1 2 3 (Cut) I 1 1 1 a b c d (Rem) x (Gain) 1 2.5",
        "(Cut) I 1 1 1 a b c d (Gain) 1 2.5 (Infade) 00=00:01;00/0000 L 1 2 3"}) {
    const LoadedProject project(WithEvents("(Entry) 1 " + std::string(lines)));
    const AES31Event& event = Only(project);
    EXPECT_STREQ(event.label, "Cut");
    EXPECT_TRUE(event.infade.present);
    EXPECT_EQ(event.gain.gainDb, 2.5);
    EXPECT_EQ(project.standardError(), "");
  }
}

TEST(EventFields, cutWithCommentWordsAfterItReads) {
  const LoadedProject project(WithEvents("(Entry) 1 (Cut) I 1 2 3 a b c d /* a remark */"));
  ExpectEqual(Only(project).cut, {"I", "a", "b", "c", "d", 1, 2, 3, 1, 1});
  EXPECT_EQ(project.standardError(), "");
}

TEST(EventFields, remarksAreIgnoredWithAnyNumberOfValues) {
  for (const char* const remark : {"(Rem)", "(Rem) one", "(REM) anything at all \"and more\""}) {
    const LoadedProject project(
        WithEvents("(Entry) 1 (Cut) I 1 2 3 a b c d " + std::string(remark)));
    EXPECT_STREQ(Only(project).label, "Cut") << remark;
    EXPECT_EQ(project.standardError(), "") << remark;
  }
}

struct Editing {
  std::string_view rule;
  const char* lines;
  const char* label;  ///< `~` for null
  EditKind kind;
  const char* standardError;
};

TEST(EventFields, editKeywords) {
  constexpr auto kRows = std::to_array<Editing>({
      {"noEditKeyword", "(Infade) 00=00:01;00/0000 L 1 2 3", "~", EditKind::None, ""},
      {"nothingAtAll", "", "~", EditKind::None, ""},
      {"labelKeepsItsLetters", "(CUT) I 1 1 1 a b c d", "CUT", EditKind::Cut, ""},
      {"secondCutIsReported", "(Cut) I 1 1 1 a b c d (cut) X 2 2 2 e f g h", "Cut", EditKind::Cut,
       "Encountered unexpected label: cut\n"},
      {"secondCutWithFewValuesIsReportedToo", "(Cut) I 1 1 1 a b c d (Cut)", "Cut", EditKind::Cut,
       "Encountered unexpected label: Cut\n"},
      {"cutThenSilence", "(Cut) I 1 1 1 a b c d (Silence) 1 2 3 4", "Cut", EditKind::Cut,
       "Encountered unexpected label: Silence\n"},
      {"cutThenAux", "(Cut) I 1 1 1 a b c d (Aux) 1 2 3 4", "Cut", EditKind::Cut,
       "Encountered unexpected label: Aux\n"},
      {"cutThenVid", "(Cut) I 1 1 1 a b c d (Vid) 1 2 3 4", "Cut", EditKind::Cut,
       "Encountered unexpected label: Vid\n"},
      {"cutThenAlt", "(Cut) I 1 1 1 a b c d (Alt) X 2 2 e", "Cut", EditKind::Cut,
       "Encountered unexpected label: Alt\n"},
      {"cutThenAltWithFewValues", "(Cut) I 1 1 1 a b c d (Alt)", "Cut", EditKind::Cut,
       "Encountered unexpected label: Alt\n"},
      {"silenceThenCut", "(Silence) 1 2 3 4 (Cut) I 1 1 1 a b c d", "Silence", EditKind::Silence,
       "Encountered unexpected label: Cut\n"},
      {"vidThenCut", "(Vid) 1 2 3 4 (Cut) I 1 1 1 a b c d", "Vid", EditKind::Vid,
       "Encountered unexpected label: Cut\n"},
      {"altAlone", "(Alt) I 1 1 a", "~", EditKind::Alt, ""},
      {"altThenAlt", "(Alt) I 1 1 a (Alt) I 1 1 a", "~", EditKind::Alt, ""},
      {"altThenCut", "(Alt) X 9 9 x (Cut) I 1 1 1 a b c d", "Cut", EditKind::Cut, ""},
      {"altThenSilence", "(Alt) X 9 9 x (Silence) 1 2 3 4", "Silence", EditKind::Silence, ""},
      {"altThenVid", "(Alt) X 9 9 x (Vid) 1 2 3 4", "Vid", EditKind::Vid, ""},
      {"altThenCutThenAlt", "(Alt) X 9 9 x (Cut) I 1 1 1 a b c d (Alt) X 9 9 x", "Cut",
       EditKind::Cut, "Encountered unexpected label: Alt\n"},
      {"unknownLabels", "(own) 1 (Cut) I 1 1 1 a b c d (Cuts) 1 (Index) 2 (F)", "Cut",
       EditKind::Cut,
       "Encountered unexpected label: own\nEncountered unexpected label: Cuts\n"
       "Encountered unexpected label: Index\nEncountered unexpected label: F\n"},
      {"emptyLabel", "() 1", "~", EditKind::None, "Encountered unexpected label: \n"},
      {"labelBytesAreReportedRaw", "(%s%n) 1", "~", EditKind::None,
       "Encountered unexpected label: %s%n\n"},
  });
  for (const Editing& row : kRows) {
    const LoadedProject project(WithEvents("(Entry) 1 " + std::string(row.lines)));
    const AES31Event& event = Only(project);
    EXPECT_EQ(Shown(event.label), row.label) << row.rule;
    EXPECT_EQ(KindOf(event), row.kind) << row.rule;
    EXPECT_EQ(IsCut(event), row.kind == EditKind::Cut) << row.rule;
    EXPECT_EQ(project.standardError(), row.standardError) << row.rule;
  }
}

TEST(EventFields, keptCutIsTheFirstInFull) {
  for (const char* const lines :
       {"(Cut) I 1 2 3 a b c d (Cut) X 7 8 9 e f g h", "(Cut) I 1 2 3 a b c d (Silence) 9 e f g",
        "(Cut) I 1 2 3 a b c d (Alt) X 7 8 e", "(Alt) X 7 8 e (Cut) I 1 2 3 a b c d"}) {
    const LoadedProject project(WithEvents("(Entry) 1 " + std::string(lines)));
    ExpectEqual(Only(project).cut, {"I", "a", "b", "c", "d", 1, 2, 3, 1, 1});
  }
}

TEST(EventFields, editOfANewEntryIsNoSecondEdit) {
  const LoadedProject project(
      WithEvents("(Entry) 1 (Cut) I 1 1 1 a b c d\n(Entry) 2 (Cut) I 2 2 2 e f g h"));
  EXPECT_EQ(project->GetEventCount(), 2);
  EXPECT_EQ(project.standardError(), "");
  EXPECT_EQ(project->GetEvent(1)->cut.sourceIndex, 2);
}

TEST(EventFields, timesOfACutAreNotChecked) {
  const LoadedProject project(WithEvents("(Entry) 1 (Cut) _ _ _ _ _ _ _ _"));
  ExpectEqual(Only(project).cut, {"_", "_", "_", "_", "_", 0, 0, 0, 1, 1});
}

}  // namespace
}  // namespace velmora::test
