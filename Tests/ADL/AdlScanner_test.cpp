#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

struct Scan {
  std::string_view rule;
  std::string_view adl;
  std::string_view tree;
  std::string_view comments = "";
};

void ExpectScans(const Scan& row) {
  const LoadedProject project(row.adl);
  EXPECT_TRUE(project.ok()) << row.rule;
  EXPECT_EQ(Shown(project->sections), row.tree) << row.rule;
  EXPECT_EQ(ShownTexts(project->comments), row.comments) << row.rule;
}

TEST(AdlScanner, tree) {
  ExpectScans({"twoSections",
               "<ADL>\n<VERSION>\n(ADL_ID) \"1234\"\n(VER_ADL_VERSION) 01.00\n</VERSION>\n"
               "<NOTES>\n(Entry) 0001 (Cut) I 1 1 1 a b c d\n</NOTES>\n</ADL>\n",
               "VERSION{ADL_ID:\"1234\"; VER_ADL_VERSION:01.00} "
               "NOTES{Entry:0001; Cut:I|1|1|1|a|b|c|d}"});
}

TEST(AdlScanner, openingTag) {
  constexpr auto kRows = std::to_array<Scan>({
      {"upperCase", "<ADL> <A> (x) 1 </A> </ADL>", "A{x:1}"},
      {"lowerCase", "<adl> <A> (x) 1 </A> </adl>", "A{x:1}"},
      {"mixedCase", "<aDl> <A> (x) 1 </A> </AdL>", "A{x:1}"},
      {"restOfTheTokenIsPassedOver", "<ADL>xyz <A> (x) 1 </A> </ADL>", "A{x:1}"},
      {"tagGluedToItIsPassedOverToo", "<ADL><A> (x) 1 </A> </ADL>", ""},
      {"blankAhead", " <ADL> <A> (x) 1 </A> </ADL>", ""},
      {"lineFeedAhead", "\n<ADL> <A> (x) 1 </A> </ADL>", ""},
      {"commentAhead", "/* c */ <ADL> <A> (x) 1 </A> </ADL>", ""},
      {"byteOrderMarkAhead", "\xEF\xBB\xBF<ADL> <A> (x) 1 </A> </ADL>", ""},
      {"otherTag", "<ADM> <A> (x) 1 </A> </ADM>", ""},
      {"bracketMissing", "<ADL <A> (x) 1 </A> </ADL>", ""},
      {"blankInside", "< ADL> <A> (x) 1 </A> </ADL>", ""},
      {"nestedOuterTagIsASection", "<ADL> <ADL> (x) 1 </ADL> </ADL>", "ADL{x:1}"},
  });
  for (const Scan& row : kRows) ExpectScans(row);
}

TEST(AdlScanner, closingTags) {
  constexpr auto kRows = std::to_array<Scan>({
      {"closesSectionWithLongerTagOfSamePrefix",
       "<ADL> <VERSION> (x) 1 </VERSIONS> <B> (y) 2 </B> </ADL>", "VERSION{x:1} B{y:2}"},
      {"closesSectionInAnyCase", "<ADL> <VERSION> (x) 1 </version> <B> (y) 2 </B> </ADL>",
       "VERSION{x:1} B{y:2}"},
      {"closingTagOfAnotherNameEndsTheScan",
       "<ADL> <VERSION> (x) 1 </SYSTEM> (z) 3 </VERSION> <B> (y) 2 </B> </ADL>", "VERSION{x:1}"},
      {"shorterClosingTagEndsTheScan", "<ADL> <VERSION> (x) 1 </VERS> <B> (y) 2 </B> </ADL>",
       "VERSION{x:1}"},
      {"nestedSectionEndsTheScan", "<ADL> <A> (x) 1 <B> (y) 2 </B> </A> <C> (z) 3 </C> </ADL>",
       "A{x:1}"},
      {"strayWordEndsTheScan", "<ADL> <A> stray (x) 1 </A> <B> (y) 2 </B> </ADL>", "A{}"},
      {"outerClosingTagEndsTheScan", "<ADL> <A> (x) 1 </A> </ADL> <B> (y) 2 </B>", "A{x:1}"},
      {"outerClosingTagInAnyCase", "<ADL> <A> (x) 1 </A> </adl> <B> (y) 2 </B>", "A{x:1}"},
      {"outerClosingTagAsAPrefix", "<ADL> <A> (x) 1 </A> </ADL>x <B> (y) 2 </B>", "A{x:1}"},
      {"closingTagThatClosesNothingIsASection",
       "<ADL> </SYSTEM> (x) 1 </SYSTEM> <B> (y) 2 </B> </ADL>", "/SYSTEM{x:1}"},
      {"slashedSectionIsClosedByTwoSlashes",
       "<ADL> </SYSTEM> (x) 1 <//SYSTEM> <B> (y) 2 </B> </ADL>", "/SYSTEM{x:1} B{y:2}"},
      {"slashedSectionSwallowsTheNextTag", "<ADL> </SYSTEM> <B> (y) 2 </B> </ADL>", "/SYSTEM{}"},
      {"sectionWithoutAnEntry", "<ADL> <A> </A> <B> </B> </ADL>", "A{} B{}"},
      {"closingTagGluedToAValueBelongsToTheValue", "<ADL> <A> (x) 1</A> (y) 2 </A> <B> </B> </ADL>",
       "A{x:1</A>; y:2} B{}"},
      {"closingTagAfterAQuotedValueNeedsNoBlankButLosesItsBracket",
       "<ADL> <A> (x) \"1\"</A> (y) 2 </A> </ADL>", "A{x:\"1\"|/A>; y:2}"},
      {"strayWordAtTheOuterLevelEndsTheScan", "<ADL> <A> (x) 1 </A> stray <B> (y) 2 </B> </ADL>",
       "A{x:1}"},
      {"entryAtTheOuterLevelEndsTheScan", "<ADL> <A> (x) 1 </A> (y) 2 <B> (z) 3 </B> </ADL>",
       "A{x:1}"},
  });
  for (const Scan& row : kRows) ExpectScans(row);
}

TEST(AdlScanner, sectionNames) {
  constexpr auto kRows = std::to_array<Scan>({
      {"withoutAClosingBracketLosesItsLastLetter", "<ADL> <VERSION (x) 1 </VERSIO> </ADL>",
       "VERSIO{x:1}"},
      {"whateverTheLastByte", "<ADL> <A>> (x) 1 </A>> </ADL>", "A>{x:1}"},
      {"keepItsCase", "<ADL> <Event_Notes> (x) 1 </EVENT_NOTES> </ADL>", "Event_Notes{x:1}"},
      {"noName", "<ADL> <> (x) 1 </> </ADL>", "{x:1}"},
      {"anEmptyNameIsClosedByAnything", "<ADL> <> (x) 1 </ANY> <B> (y) 2 </B> </ADL>",
       "{x:1} B{y:2}"},
      {"singleBracket", "<ADL> < (x) 1 </ANY> <B> (y) 2 </B> </ADL>", "{x:1} B{y:2}"},
      {"twoSectionsOfOneName", "<ADL> <A> (x) 1 </A> <A> (y) 2 </A> </ADL>", "A{x:1} A{y:2}"},
      {"nonAsciiSplitsATag", "<ADL> <A\x82> (x) 1 </A> </ADL>", "{}"},
  });
  for (const Scan& row : kRows) ExpectScans(row);
}

TEST(AdlScanner, plainValues) {
  constexpr auto kRows = std::to_array<Scan>({
      {"overManyLines", "<ADL> <A> (x) 1\n2\r\n\t3\n\n(y)\n4 </A> </ADL>", "A{x:1|2|3; y:4}"},
      {"manyEntriesOnOneLine", "<ADL> <A> (x) 1 (y) 2 (z) 3 </A> </ADL>", "A{x:1; y:2; z:3}"},
      {"labelWithoutValues", "<ADL> <A> (x) (y) </A> </ADL>", "A{x:; y:}"},
      {"quoteCountsOnlyAsTheFirstByte", "<ADL> <A> (x) abc\"d e\" </A> </ADL>", "A{x:abc\"d|e\"}"},
      {"parenthesisInsideAValue", "<ADL> <A> (x) a(b c)d (y) 2 </A> </ADL>", "A{x:a(b|c)d; y:2}"},
      {"bracketInsideAValue", "<ADL> <A> (x) a<b c>d </A> </ADL>", "A{x:a<b|c>d}"},
      {"nonAsciiSplitsAValue", "<ADL> <A> (x) a\x82\xA0z\xFF </A> </ADL>", "A{x:a|z}"},
      {"nonAsciiSplitsALabel", "<ADL> <A> (x\x82) 1 </A> <B> </B> </ADL>", "A{}"},
      {"byte80IsBlank",
       "<ADL>\x80<A>\x80(x)\x80"
       "1\x80</A>\x80</ADL>",
       "A{x:1}"},
      {"byte7FIsNoBlank",
       "<ADL> <A> (x) a\x7F"
       "b </A> </ADL>",
       "A{x:a\x7F"
       "b}"},
      {"controlBytesAreBlank",
       "<ADL>\x01<A>\x1F(x)\x0B"
       "1\x0C"
       "2\x1B"
       "3 </A> </ADL>",
       "A{x:1|2|3}"},
      {"exclamationMarkIsNoBlank", "<ADL> <A> (x) ! </A> </ADL>", "A{x:!}"},
      {"emptyLabel", "<ADL> <A> () 1 </A> </ADL>", "A{:1}"},
      {"labelIsTheWholeToken", "<ADL> <A> (x)(y) 1 </A> </ADL>", "A{x)(y:1}"},
      {"slashAloneIsAValue", "<ADL> <A> (x) / // </A> </ADL>", "A{x:/|//}"},
      {"sameLabelTwice", "<ADL> <A> (x) 1 (x) 2 </A> </ADL>", "A{x:1; x:2}"},
  });
  for (const Scan& row : kRows) ExpectScans(row);
}

TEST(AdlScanner, nulBytesAreBlank) {
  using std::string_view_literals::operator""sv;
  ExpectScans({"nul", "<ADL>\0<A>\0(x)\0001\0\0002\0</A>\0</ADL>"sv, "A{x:1|2}"});
}

TEST(AdlScanner, everyBlankByteSeparatesAndNoOther) {
  for (int code = 0; code < 256; ++code) {
    const auto byte = static_cast<char>(code);
    const std::string adl = std::string("<ADL> <A> (x) a") + byte + "b </A> </ADL>";
    const bool blank = code <= 0x20 || code >= 0x80;
    const std::string tree = blank ? "A{x:a|b}" : std::string("A{x:a") + byte + "b}";
    EXPECT_EQ(Shown(LoadedProject(adl)->sections), tree) << "byte " << code;
  }
}

TEST(AdlScanner, quotedValues) {
  constexpr auto kRows = std::to_array<Scan>({
      {"keepsItsQuotesAndBlanks", "<ADL> <A> (x) \"A B\" </A> </ADL>", "A{x:\"A B\"}"},
      {"holdsParenthesesAndTags", "<ADL> <A> (x) \"(y) </A> /* no */\" z </A> </ADL>",
       "A{x:\"(y) </A> /* no */\"|z}"},
      {"holdsLines", "<ADL> <A> (x) \"one\r\ntwo\" 3 </A> </ADL>", "A{x:\"one\r\ntwo\"|3}"},
      {"empty", "<ADL> <A> (x) \"\" y </A> </ADL>", "A{x:\"\"|y}"},
      {"byteAfterTheClosingMarkIsOverwritten", "<ADL> <A> (x) \"ab\"cd e </A> </ADL>",
       "A{x:\"ab\"|d|e}"},
      {"escapedMarkDoesNotEnd", "<ADL> <A> (x) \"a\x1B\"b c\" d </A> </ADL>",
       "A{x:\"a\x1B\"b c\"|d}"},
      {"escapeAtTheStart", "<ADL> <A> (x) \"\x1B\" b\" d </A> </ADL>", "A{x:\"\x1B\" b\"|d}"},
      {"twoEscapesDoNotCancel", "<ADL> <A> (x) \"a\x1B\x1B\" b\" d </A> </ADL>",
       "A{x:\"a\x1B\x1B\" b\"|d}"},
      {"backslashDoesNotEscape", "<ADL> <A> (x) \"a\\\" b </A> </ADL>", "A{x:\"a\\\"|b}"},
      {"keepsNonAscii", "<ADL> <A> (x) \"\x83\x5C\x82\xA0\" y </A> </ADL>",
       "A{x:\"\x83\x5C\x82\xA0\"|y}"},
      {"twoAfterEachOther", "<ADL> <A> (x) \"a\" \"b\" </A> </ADL>", "A{x:\"a\"|\"b\"}"},
      {"gluedQuoteLosesItsMark", "<ADL> <A> (x) \"a\"\"b\" </A> </ADL>", "A{x:\"a\"|b\"}"},
  });
  for (const Scan& row : kRows) ExpectScans(row);
}

TEST(AdlScanner, comments) {
  constexpr auto kRows = std::to_array<Scan>({
      {"atTheOuterLevel", "<ADL> /* one */ <A> (x) 1 </A> /* two */ <B> </B> </ADL>", "A{x:1} B{}",
       " one | two "},
      {"firstInASection", "<ADL> <A> /* one */ (x) 1 </A> </ADL>", "A{x:1}", " one "},
      {"afterAnotherInASection", "<ADL> <A> /* one */ /* two */ (x) 1 </A> </ADL>", "A{x:1}",
       " one | two "},
      {"afterAValueListIsMoreValues", "<ADL> <A> (x) 1 /* two */ (y) 2 </A> </ADL>",
       "A{x:1|/*|two|*/; y:2}", ""},
      {"labelInsideACommentAfterAValueListStartsAnEntry",
       "<ADL> <A> (x) 1 /* see (y) 2 */ </A> </ADL>", "A{x:1|/*|see; y:2|*/}", ""},
      {"afterALabelWithoutValuesIsItsValues", "<ADL> <A> (x) /* c */ </A> </ADL>", "A{x:/*|c|*/}",
       ""},
      {"afterACountedEntry", "<ADL> <A> (x)3 ab /* c */ (y) 1 </A> </ADL>", "A{x:ab; y:1}", " c "},
      {"holdsTagsAndLabels", "<ADL> /* <A> (x) </ADL> */ <B> (y) 2 </B> </ADL>", "B{y:2}",
       " <A> (x) </ADL> "},
      {"overManyLines", "<ADL> /* one\r\ntwo */ <B> </B> </ADL>", "B{}", " one\r\ntwo "},
      {"withoutBlanks", "<ADL> /*c*/ <B> </B> </ADL>", "B{}", "c"},
      {"gluedToTheNextTag", "<ADL> /*c*/<B> (x) 1 </B> </ADL>", "B{x:1}", "c"},
      {"empty", "<ADL> /**/ <B> </B> </ADL>", "B{}", ""},
      {"starsInside", "<ADL> /* ** * / **/ <B> </B> </ADL>", "B{}", " ** * / *"},
      {"noNesting", "<ADL> /* a /* b */ <B> (x) 1 </B> </ADL>", "B{x:1}", " a /* b "},
      {"shortestCommentShowsItsOwnSlash", "<ADL> /*/ <B> (x) 1 </B> </ADL>", "B{x:1}", "/ <B"},
  });
  for (const Scan& row : kRows) ExpectScans(row);
  EXPECT_EQ(LoadedProject("<ADL> /**/ <B> </B> </ADL>")->comments.size(), 1U);
}

TEST(AdlScanner, commentsOfEveryLevelStandInFileOrder) {
  const LoadedProject project(
      "<ADL> /*1*/ <REF_LIST> <REF> /*2*/ <A> /*3*/ (x) 1 </A> /*4*/ </REF> </REF_LIST> /*5*/ "
      "<B> /*6*/ </B> /*7*/ </ADL>");
  EXPECT_EQ(ShownTexts(project->comments), "1|2|3|4|5|6|7");
}

TEST(AdlScanner, saysNothing) {
  const LoadedProject project("<ADL> <A> stray (x) \"\x82\xA0 /* <REF_LIST> <REF> (");
  EXPECT_EQ(project.standardError(), "");
  EXPECT_TRUE(project.ok());
}

TEST(AdlScanner, textsArePiecesOfTheBlock) {
  const LoadedProject project("<ADL> <A> (x) 1 \"2\" </A> /* c */ </ADL>");
  const std::string& bytes = project.bytes;
  const char* const buffer = project->buffer;
  ASSERT_EQ(project->bufferEnd - buffer, static_cast<std::ptrdiff_t>(bytes.size()));
  ASSERT_EQ(project->sections.size(), 1U);
  const AES31Section& section = project->sections[0];
  EXPECT_EQ(section.name - buffer, static_cast<std::ptrdiff_t>(bytes.find("A> (x)")));
  EXPECT_EQ(section.entries[0].label - buffer, static_cast<std::ptrdiff_t>(bytes.find("x)")));
  EXPECT_EQ(section.entries[0].values[0] - buffer, static_cast<std::ptrdiff_t>(bytes.find("1 ")));
  EXPECT_EQ(section.entries[0].values[1] - buffer, static_cast<std::ptrdiff_t>(bytes.find("\"2")));
  EXPECT_EQ(project->comments[0] - buffer, static_cast<std::ptrdiff_t>(bytes.find(" c ")));
}

TEST(AdlScanner, scannedListsAreCopiedByValueAndTextIsNot) {
  const LoadedProject project("<ADL> <A> (x) 1 </A> </ADL>");
  std::vector<AES31Section> copy = project->sections;
  copy[0].entries[0].values.push_back("more");
  EXPECT_EQ(project->sections[0].entries[0].values.size(), 1U);
  EXPECT_EQ(copy[0].entries[0].values[0], project->sections[0].entries[0].values[0]);
}

}  // namespace
}  // namespace velmora::test
