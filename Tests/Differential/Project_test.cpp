#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Description.h"
#include "ProjectComparison.h"
#include "RandomAdl.h"

// The project that people load, held against one that is read by the plainest means.

namespace velmora::test::differential {
namespace {

using namespace std::string_literals;

using Compare = std::string (ProjectComparison::*)(const std::string&);

class ProjectDifferential : public testing::Test {
 protected:
  void Expect(Compare compare, const std::string& name, const std::string& text) {
    const std::string difference = (comparison_.*compare)(text);
    if (difference.empty()) return;
    const std::string shortest = Shrunk(
        text, [&](const std::string& shorter) { return !(comparison_.*compare)(shorter).empty(); });
    ADD_FAILURE() << name << "\ntext " << Quoted(shortest) << "\n"
                  << (comparison_.*compare)(shortest);
  }

  /// Tries texts that a generator makes, one for each seed, until some have failed.
  template <class Make>
  void TryRandom(Compare compare, std::uint32_t rounds, const Make& make) {
    for (std::uint32_t seed = 1; seed <= Rounds(rounds); ++seed) {
      RandomAdl random(seed);
      Expect(compare, "seed " + std::to_string(seed), make(random));
      if (HasFailure()) return;
    }
  }

  ProjectComparison comparison_;
};

struct Odd {
  const char* name;
  std::string text;
};

// A section around some entries, in an outer tag.
std::string In(const std::string& name, const std::string& entries) {
  return "<ADL>\n<" + name + ">\n" + entries + "\n</" + name + ">\n</ADL>\n";
}
std::string Events(const std::string& entries) {
  return In("EVENT_LIST", entries);
}
std::string Sources(const std::string& entries) {
  return In("SOURCE_INDEX", entries);
}
const std::string kCut = "(Cut) I 1 1 1 01:00:00:00/0000 01:00:01:00/0000 01:00:02:00/0000 _\n";
const std::string kFade = "00:00:01;00/0000";

const std::vector<Odd> kTrees = {
    {"noBytes", ""},
    {"blankBeforeTheTag", " <ADL>\n<A>\n(x) y\n</A>\n</ADL>"},
    {"commentBeforeTheTag", "/* c */<ADL>\n</ADL>"},
    {"byteOrderMark", "\357\273\277<ADL>\n<A>\n(x) y\n</A>\n</ADL>"},
    {"tagInSmallLetters", "<adl> <A> (x) y </A> </adl>"},
    {"tagWithMore", "<ADL>xyz <A> (x) y </A> </ADL>"},
    {"tagCutOff", "<ADL"},
    {"tagAlone", "<ADL>"},
    {"textAfterTheEnd", "<ADL> <A> (x) y </A> </ADL> <B> (z) 1 </B> junk"},
    {"closingTagWithMore", "<ADL> <VERSION> (x) y </VERSIONS> <B> (z) 1 </B> </ADLER>"},
    {"closingTagInSmallLetters", "<ADL> <VERSION> (x) y </version> <B> (z) 1 </B> </adl>"},
    {"closingTagOfAnother", "<ADL> <VERSION> (x) y </SYSTEM> (z) 1 </VERSION> <B> (a) </B> </ADL>"},
    {"closingTagThatClosesNothing", "<ADL> </SYSTEM> (x) y <//SYSTEM> <B> (a) b </B> </ADL>"},
    {"openingTagWithoutBracket", "<ADL> <VERSION (x) y </VERSIO> <B> (a) b </B> </ADL>"},
    {"emptyNames", "<ADL> <> (x) y </anything> < (z) 1 </more> << (q) r </<> </ADL>"},
    {"strayWords", "<ADL> <A> word (x) y </A> <B> (z) 1 </B> </ADL>"},
    {"strayWordOutside", "<ADL> <A> (x) y </A> word <B> (z) 1 </B> </ADL>"},
    {"nestedSection", "<ADL> <A> (x) y <B> (z) 1 </B> </A> <C> (q) r </C> </ADL>"},
    {"severalEntriesOnALine", "<ADL> <A> (x) 1 2 (y) 3 (z) </A> </ADL>"},
    {"quoteInsideAToken", "<ADL> <A> (x) abc\"d e\" f </A> </ADL>"},
    {"textRightAfterAQuote", "<ADL> <A> (x) \"ab\"cd \"e\"(y) \"f\"</A> (z) </A> </ADL>"},
    {"escapedQuotes", "<ADL> <A> (x) \"a\033\"b\" \"\033\"\" \"\033\033\" c\" </A> </ADL>"},
    {"emptyQuotes", "<ADL> <A> (x) \"\" \"\"\"\" \"\"\" </A> </ADL>"},
    {"highBytes", "<ADL> <A> (x) caf\351 au\377\200lait \"caf\351 \203\\\" (l\351)5 a </A> </ADL>"},
    {"highBytesInNames", "<ADL> <A\351B> (x) y </A> </ADL>"},
    {"nulBytes", "<ADL>\0 <A>\0(x)\0y\0\"a\0b\" \0 (z)\0</A>\0</ADL>"s},
    {"labelsWithoutValues", "<ADL> <A> (x) (y) () (z) </A> </ADL>"},
    {"valuesThatEndInParentheses", "<ADL> <A> (x) y) z> a(b <c </A> </ADL>"},
    {"commentAfterValues", "<ADL> <A> (x) y /* not (a) comment */ (z) 1 /* <B> */ </A> </ADL>"},
    {"commentBeforeEntries", "<ADL> <A> /* one */ /* two */ (x) y </A> </ADL>"},
    {"commentAfterACountedEntry", "<ADL> <A> (x)3 ab /* one */ (y) z </A> </ADL>"},
    {"commentOutside", "<ADL> /* one */ <A> (x) y </A> /*two*/three <B> </B> </ADL>"},
    {"shortestComments", "<ADL> /*/ <A> /*/ (x) y </A> /**/ <B> /**/(z) 1 </B> /*a*/ </ADL>"},
    {"commentWithoutAnEnd", "<ADL> <A> (x) y </A> /* never </ADL> <B> (z) </B>"},
    {"commentWithoutAnEndInside", "<ADL> <A> /* never (x) y </A> </ADL>"},
    {"counted", "<ADL> <A> (x)9 a (b) <c> (y) z </A> </ADL>"},
    {"countedOfOne", "<ADL> <A> (x)1 (y) z </A> </ADL>"},
    {"countedOfNone", "<ADL> <A> (x)0 abc (y) z </A> </ADL>"},
    {"countedBelowNone", "<ADL> <A> (x)-5 abc (y) z </A> </ADL>"},
    {"countedWithoutANumber", "<ADL> <A> (x)q abc (y) z </A> </ADL>"},
    {"countedPastTheEnd", "<ADL> <A> (x)900 abc (y) z </A> </ADL>"},
    {"countedPast32Bits", "<ADL> <A> (x)99999999999999999999 abc </A> </ADL>"},
    {"countedBelow32Bits", "<ADL> <A> (x)-99999999999999999999 abc (y) z </A> </ADL>"},
    {"countedAtTheLastByte", "<ADL> <A> (x)7"},
    {"countedJustBeforeTheEnd", "<ADL> <A> (x)7 "},
    {"countedWithSign", "<ADL> <A> (x)+4 abc (y) z </A> </ADL>"},
    {"countedTwoParentheses", "<ADL> <A> (x)y)4 abc (y) z </A> </ADL>"},
    {"parenthesisFarBefore", "<ADL> <A> (x) y (zzz 1 </A> <B> (q) r </B> </ADL>"},
    {"parenthesisInAnotherSection", "<ADL> <A> (x) y </A> <B> (z w </B> </ADL>"},
    {"parenthesisInAName", "<ADL> <N)5> (z abcd (y) w </N> </ADL>"},
    {"parenthesisInAValue", "<ADL> <A> (x)6 a)2 b (zz c (y) d </A> </ADL>"},
    {"parenthesisInAQuote", "<ADL> <A> (x)9 \"a)3 b\" (zz cc </A> </ADL>"},
    {"parenthesisInAComment", "<ADL> <A> /* a)4 */ (z abc (y) w </A> </ADL>"},
    {"parenthesisNowhere", "<ADL> <A> (z abc (y) w </A> </ADL>"},
    {"parenthesisAlone", "<ADL> <A> (x) y ( 3 (z) w </A> </ADL>"},
    {"referenceLists",
     "<ADL> <REF_LIST> <REF> <A> (x) y </A> </REF> <REF> </REF> </REF_LIST>"
     " <B> (z) 1 </B> </ADL>"},
    {"nestedReferenceLists",
     "<ADL> <REF_LIST> <REF> <A> (x) y </A> <REF_LIST> <REF> <B> (z) </B>"
     " </REF> </REF_LIST> /* c */ </REF> </REF_LIST> </ADL>"},
    {"wordsInAReferenceList",
     "<ADL> <REF_LIST>more words (x) y <A> <ref>z </REF> </ref_list>x"
     " <B> (z) 1 </B> </ADL>"},
    {"referenceThatFails",
     "<ADL> <A> (x) y </A> <REF_LIST> <REF> <B> (z) 1 </B> </REF> <REF> <C>"
     " (z) 2 </C> word </REF> </REF_LIST> <D> </D> </ADL>"},
    {"innerReferenceThatFails",
     "<ADL> <REF_LIST> <REF> <REF_LIST> <REF> </REF> <REF> word </REF>"
     " </REF_LIST> </REF> </REF_LIST> <D> (x) y </D> </ADL>"},
    {"referenceOutsideOfAList", "<ADL> <REF> (x) y </REF> <B> (z) 1 </B> </ADL>"},
    {"referenceListInASection", "<ADL> <A> (x) y <REF_LIST> </REF_LIST> </A> <B> </B> </ADL>"},
    {"closedListInAReference",
     "<ADL> <REF_LIST> <REF> </REF_LIST> (x) y <//REF_LIST> </REF>"
     " </REF_LIST> <B> (z) 1 </B> </ADL>"},
};

const std::vector<Odd> kReadings = {
    {"constants",
     "<ADL>\n<PROJECT>\n(proj_title) \"a\" b\n(PROJ_NOTES)\n(SEQ_TITLE) x\n</PROJECT>\n"
     "<sequence>\n(SEQ_TITLE) 1 2 3\n(SEQ_TITLE) last\n(SEQ_SAMPLE_RATE) \"48000\"\n"
     "</sequence>\n<PROJECT>\n(PROJ_NOTES) later\n</PROJECT>\n<OTHER>\n(PROJ_TITLE) z\n"
     "</OTHER>\n</ADL>"},
    {"sourcesEmpty", Sources("")},
    {"sourcesWithStrays", Sources("(F) 1 2 3 4\n(x)\n(Index) 1 (q) w (F) a b c d (T) 1 2 3 4 5")},
    {"sourcesOfManyForms",
     Sources("(Index) 0012 (F) a b c d\n(INDEX) x (f) a b c d e\n(index) -3 (F) a"
             " b c d e f g (t) 1 2 3 4 5 6")},
    {"sourcesTwice", Sources("(Index) 1 (F) a b c d e f (T) 1 2 3 4 5\n(Index) 1 (F) g h i j")},
    {"sourceWithTwoLines", Sources("(Index) 1 (F) a b c d e f (F) g h i j k (F) l m n o")},
    {"sourceWithFewerValues", Sources("(Index) 1 (F) a b c d\n(Index) 2\n(F) a b c")},
    {"sourceWithFewerTimes", Sources("(Index) 1 (F) a b c d\r\n(Index) 2\r\n(T) a b c d")},
    {"sourceWithoutANumber", Sources("(Index) 1 (F) a b c d\r(Index)\r(F) a b c d")},
    {"eventsInAnyOrder",
     Events("(Entry) 0003 " + kCut + "(Entry) 0001 " + kCut + "(Entry) 0002 " + kCut)},
    {"eventsOfOneNumber",
     Events("(Entry) 5 (Infade) " + kFade + " L 1 2 3 4 5 6 " + kCut + "(Entry) 5 (Gain) 1 -2.5")},
    {"eventsOfOddNumbers",
     Events("(Entry) x " + kCut + "(Entry) -5 " + kCut + "(Entry) 99999999999 " + kCut +
            "(Entry) -99999999999 " + kCut + "(Entry) 2147483647 " + kCut)},
    {"eventsInTwoSections", "<ADL> <EVENT_LIST> (Entry) 2 " + kCut +
                                "</EVENT_LIST> <EVENT_LIST> (Entry) 1 " + kCut +
                                "</EVENT_LIST> </ADL>"},
    {"eventsOfWhichASectionFails", "<ADL> <EVENT_LIST> (Entry) 2 " + kCut +
                                       "</EVENT_LIST> <EVENT_LIST> (Entry) 1 " + kCut +
                                       "(Entry) 3 (Gain) 1 </EVENT_LIST> </ADL>"},
    {"cutTwice", Events("(Entry) 1 " + kCut + "(Cut) J 2 2 2 a b c d")},
    {"cutThenSilence", Events("(Entry) 1 " + kCut + "(Silence) 1 a b c (Aux) 1 2 (Vid) (Alt)")},
    {"altThenCut", Events("(Entry) 1 (Alt) A 7 8 t " + kCut)},
    {"altThenVid", Events("(Entry) 1 (Alt) A 7 8 t (Vid) 1 2 3 4")},
    {"altThenSilence", Events("(Entry) 1 (Alt) A 7 8 t (Silence) 5 a b c")},
    {"altTwice", Events("(Entry) 1 (Alt) A 7 8 t (ALT) B 9 10 u")},
    {"cutThenAlt", Events("(Entry) 1 " + kCut + "(Alt) A 7 8 t")},
    {"noKeyword", Events("(Entry) 1 (Infade) " + kFade + " L 0 0 0\n(Entry) 2\n(Entry) 3 (Rem)")},
    {"cutOfSevenValues", Events("(Entry) 1 (Cut) I 1 1 1 a b c")},
    {"cutWithACommentAfterIt", Events("(Entry) 1 " + kCut + " /* and words */ (Rem) x y (Odd) z")},
    {"secondFadeIsShorter", Events("(Entry) 1 (Infade) " + kFade +
                                   " L 1 2 3 4 5 6 (Infade) 00|00:02,00/0000"
                                   " M -1 -2 -3 (Outfade) " +
                                   kFade +
                                   " N 1e3 inf nan 1 2 (Xfade) 1 2 3 4 5"
                                   " 6 (Xfade) 7 8 9 10 11 12 13 (Gain) 3 -0.0 (Gain) 4 .5e-3")},
    {"fadeWithoutATime", Events("(Entry) 1\n(Infade) _ x 0 0 0")},
    {"fadeWithAnotherMark", Events("(Entry) 1\n\n(Outfade) 00:00:01:00/0000 x 0 0 0")},
    {"fadeOfOddHours", Events("(Entry) 1 (Infade) 30:00:01;00/0000 x 0 0 0")},
    {"fadeThatEndsEarly", Events("(Entry) 1 (Infade) 00:00:01;00/000 x 0 0 0")},
    {"fadeWithTooFew", Events("(Entry) 1 (Infade) " + kFade + " x 0 0")},
    {"entryWithoutANumber", Events("(Entry) 1 " + kCut + "(Entry)\n" + kCut)},
    {"strayLabels", Events("(Cut) 1 (odd) (Entry) 1 (odd) 2 " + kCut + "(F) a")},
    {"noEntryAtAll", Events("(Cut) 1 (odd) (Gain)")},
    {"lineEndings", "<ADL>\r\n<EVENT_LIST>\r\r\n\n\r(x)\r\n(Entry)\r1\n\r(odd)\r\r(\nCut)"},
    {"linkedCuts",
     "<ADL> <SOURCE_INDEX> (Index) 1 (F) a b c d (Index) -1 (F) e f g h </SOURCE_INDEX> "
     "<EVENT_LIST> (Entry) 1 (CUT) I 1 1 1 a b c d (Entry) 2 (cut) I -1 1 1 a b c d (Entry) 3"
     " (Alt) 1 1 1 1 (Entry) 4 (Cut) I 9 1 1 a b c d </EVENT_LIST> </ADL>"},
};

TEST_F(ProjectDifferential, OddTexts) {
  for (const auto* const table : {&kTrees, &kReadings})
    for (const Odd& odd : *table) Expect(&ProjectComparison::OfLoad, odd.name, odd.text);
}

TEST_F(ProjectDifferential, OddTextsThatEndAtEveryByte) {
  for (const auto* const table : {&kTrees, &kReadings})
    for (const Odd& odd : *table)
      for (std::size_t size = 0; size < odd.text.size() && !HasFailure(); ++size)
        Expect(&ProjectComparison::OfLoad, odd.name, odd.text.substr(0, size));
}

TEST_F(ProjectDifferential, NestingBeyondWhatIsRead) {
  for (const int depth : {1, 2, 254, 255, 256, 257, 3000}) {
    std::string text = "<ADL> <A> (x) y </A>";
    for (int i = 0; i < depth; ++i) text += " <REF_LIST> <REF> <B> (z) 1 </B>";
    for (int i = 0; i < depth; ++i) text += " </REF> </REF_LIST> /* c */";
    Expect(&ProjectComparison::OfLoad, "depth " + std::to_string(depth), text + " <C> </C> </ADL>");
  }
}

TEST_F(ProjectDifferential, WildTexts) {
  TryRandom(&ProjectComparison::OfLoad, 3000, [](RandomAdl& random) { return random.WildText(); });
}

TEST_F(ProjectDifferential, SoundTexts) {
  TryRandom(&ProjectComparison::OfLoad, 1500, [](RandomAdl& random) { return random.SoundText(); });
}

TEST_F(ProjectDifferential, DamagedTexts) {
  TryRandom(&ProjectComparison::OfLoad, 3000, [](RandomAdl& random) {
    return random.Damaged(random.OneIn(2) ? random.SoundText() : random.WildText());
  });
}

// Long runs of one kind, odd at a few places: for readers that take many bytes or entries at a
// time.
TEST_F(ProjectDifferential, LongTexts) {
  TryRandom(&ProjectComparison::OfLoad, 20, [](RandomAdl& random) {
    std::string text = "<ADL>\n<EVENT_LIST>\n";
    const std::string line = random.OneIn(2) ? kCut : "(Gain) 1 2 (Rem) \"some words\"\r\n";
    for (std::uint32_t entries = 200 + random.Below(1500); entries > 0; --entries)
      text +=
          "(Entry) " + std::to_string(random.OneIn(3) ? random.Below(3000) : entries) + " " + line;
    return random.Damaged(text + "</EVENT_LIST>\n</ADL>\n");
  });
}

TEST_F(ProjectDifferential, UncheckedReadersOfSectionsMadeByHand) {
  for (const auto* const table : {&kTrees, &kReadings})
    for (const Odd& odd : *table)
      Expect(&ProjectComparison::OfUncheckedReaders, odd.name, odd.text);
  TryRandom(&ProjectComparison::OfUncheckedReaders, 1000, [](RandomAdl& random) {
    return random.Damaged(random.OneIn(2) ? random.SoundText() : random.WildText());
  });
}

TEST_F(ProjectDifferential, CheckedReadersOfSectionsMadeByHand) {
  for (const auto* const table : {&kTrees, &kReadings})
    for (const Odd& odd : *table) Expect(&ProjectComparison::OfCheckedReaders, odd.name, odd.text);
  TryRandom(&ProjectComparison::OfCheckedReaders, 600, [](RandomAdl& random) {
    return random.Damaged(random.OneIn(2) ? random.SoundText() : random.WildText());
  });
}

}  // namespace
}  // namespace velmora::test::differential
