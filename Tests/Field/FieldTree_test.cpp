#include "Field/FieldTree.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "Field/TextPlaces.h"

namespace velmora::field {
namespace {

/// "NAME{Label=one,"two three" Other=}": sections, labels and values, quotation marks as in the
/// file. A section that is not closed ends with "...", one of a reference list begins with "ref ",
/// one that goes on after an inner one with "more ".
std::string Shown(const Tree& tree) {
  std::string text;
  for (const Section& section : tree.sections) {
    if (!text.empty()) text += ' ';
    if (section.inReferenceList) text += "ref ";
    if (section.resumed) text += "more ";
    text += std::string(section.name) + "{";
    bool first = true;
    for (const Entry& entry : tree.EntriesOf(section)) {
      if (!first) text += ' ';
      first = false;
      text += std::string(entry.label) + (entry.counted ? "#" : "=");
      for (std::size_t i = 0; i < entry.valueCount; ++i) {
        if (i > 0) text += ',';
        text += tree.RawText(tree.ValuesOf(entry)[i]);
      }
    }
    text += section.closed || section.resumed ? "}" : "...}";
  }
  return text;
}

const char* NameOf(StrayKind kind) {
  switch (kind) {
    case StrayKind::ByteOrderMark:
      return "mark";
    case StrayKind::BeforeTag:
      return "before";
    case StrayKind::Word:
      return "word";
    case StrayKind::Comment:
      return "comment";
    case StrayKind::WrongTag:
      return "tag";
    case StrayKind::Bracket:
      return "bracket";
    case StrayKind::LabelOutside:
      return "outside";
  }
  return "?";
}

std::string ShownStrays(const Tree& tree) {
  std::string text;
  for (const Stray& stray : tree.strays) {
    if (!text.empty()) text += "; ";
    text += std::string(NameOf(stray.kind)) + " " + std::string(stray.text);
  }
  return text;
}

struct TreeRow {
  const char* rule;
  std::string_view text;
  const char* tree;
  const char* strays;
};

void Expect(const std::vector<TreeRow>& rows) {
  for (const TreeRow& row : rows) {
    SCOPED_TRACE(row.rule);
    const std::string text(row.text);
    const Tree tree = ReadTree(text);
    EXPECT_EQ(Shown(tree), row.tree);
    EXPECT_EQ(ShownStrays(tree), row.strays);
  }
}

TEST(ReadTree, sectionsLabelsAndValues) {
  Expect({
      {"as it should be", "<ADL>\n<A>\n(x) 1 2\n(y)\n</A>\n<B>\n</B>\n</ADL>\n", "A{x=1,2 y=} B{}",
       ""},
      {"tags in any case", "<adl> <a> (X) 1 </A> </Adl> <B> (y) </B>", "a{X=1}", ""},
      {"CR LF and tabs", "<ADL>\r\n<A>\r\n\t(x)\t1\r\n\t(y) 2\r\n</A>\r\n</ADL>\r\n", "A{x=1 y=2}",
       ""},
      {"CR alone", "<ADL>\r<A>\r(x) 1\r</A>\r</ADL>\r", "A{x=1}", ""},
      {"several labels on a line", "<ADL> <A> (Entry) 0001 (Cut) I 1 _ </A> </ADL>",
       "A{Entry=0001 Cut=I,1,_}", ""},
      {"values on the following lines", "<ADL> <A>\n(x)\n 1\n 2\n(y) 3\n 4 </A> </ADL>",
       "A{x=1,2 y=3,4}", ""},
      {"all of it without a line feed", "<ADL><A>(x) 1</A></ADL>", "A{x=1}",
       "bracket <ADL><A>(x); bracket <A>(x); bracket </A></ADL>; bracket </A></ADL>"},
      {"an unclosed section ends with the outer tag", "<ADL> <A> (x) 1 </ADL>", "A{x=1...}", ""},
      {"nothing counts after the outer tag", "<ADL> <A> (x) 1 </A> </ADL> <B> (y) </B> word",
       "A{x=1}", ""},
      {"a longer closing tag closes too", "<ADL> <A> (x) </AB> <C> </C> </ADL>", "A{x=} C{}", ""},
      {"an event list without the outer tag", "<EVENT_LIST> (Entry) 1 </EVENT_LIST>",
       "EVENT_LIST{Entry=1}", ""},
      {"neither of the two", "<VERSION> (ADL_ID) 1 </VERSION>", "", ""},
      {"an empty text", "", "", ""},
  });
}

TEST(ReadTree, quotedValues) {
  Expect({
      {"blanks, brackets and tags inside", "<ADL> <A> (x) \"a (b) </A> c\" 2 </A> </ADL>",
       "A{x=\"a (b) </A> c\",2}", ""},
      {"the escape of a mark", "<ADL> <A> (x) \"a\x1B\"b\" 2 </A> </ADL>", "A{x=\"a\x1B\"b\",2}",
       ""},
      {"two marks are an empty value", "<ADL> <A> (x) \"\" 2 </A> </ADL>", "A{x=\"\",2}", ""},
      {"several lines", "<ADL> <A> (x) \"a\nb\" 2 </A> </ADL>", "A{x=\"a\nb\",2}", ""},
      {"a mark inside a word is a letter", "<ADL> <A> (x) ab\"c d\" </A> </ADL>", "A{x=ab\"c,d\"}",
       ""},
      {"what is glued to the closing mark is the next value", "<ADL> <A> (x) \"a\"b 2 </A> </ADL>",
       "A{x=\"a\",b,2}", ""},
      {"a mark that nothing closes ends with its line", "<ADL> <A> (x) \"a b \n(y) 1 </A> </ADL>",
       "A{x=\"a b y=1}", ""},
  });
}

TEST(ReadTree, bytesBeyondAsciiBelongToValues) {
  Expect({
      {"UTF-8", "<ADL> <A> (x) \xC3\x84rger.wav b </A> </ADL>", "A{x=\xC3\x84rger.wav,b}", ""},
      {"Shift-JIS, of which no second byte is a bracket",
       "<ADL> <A> (x) \x83\x5C\x82\xA0 </A> </ADL>", "A{x=\x83\x5C\x82\xA0}", ""},
      {"labels too", "<ADL> <A> (\x83\x5C) 1 </A> </ADL>", "A{\x83\x5C=1}", ""},
  });
}

TEST(ReadTree, brackets) {
  Expect({
      {"inside a value they are letters", "<ADL> <A> (x) take(2).wav a<b </A> </ADL>",
       "A{x=take(2).wav,a<b}", ""},
      {"a number in brackets is part of a name", "<ADL> <A> (x) take (2).wav _ </A> </ADL>",
       "A{x=take,(2).wav,_}", "bracket (2).wav"},
      {"an unclosed one on the line of values", "<ADL> <A> (x) a (b c\n(y) 1 </A> </ADL>",
       "A{x=a,(b,c y=1}", "bracket (b"},
      {"a label that the text after it touches", "<ADL> <A> (Rem)NAME \"x\" </A> </ADL>",
       "A{Rem=NAME,\"x\"}", "bracket (Rem)NAME"},
      {"labels that touch", "<ADL> <A> (x)(y) 1 </A> </ADL>", "A{x= y=1}", "bracket (x)(y)"},
      {"a label of two words at the start of a line",
       "<ADL> <A> (x) 1\n(Source Name) 2\n</A> </ADL>", "A{x=1 Source Name=2}",
       "bracket (Source Name)"},
      {"no label at the start of a line", "<ADL> <A> (x) 1\n(broken\n(y) 2 </A> </ADL>",
       "A{x=1 y=2}", "word (broken"},
      {"a tag of two words", "<ADL> <A v=\"1\"> (x) 1 </A> </ADL>", "A{x=1}",
       "bracket <A v=\"1\">"},
      {"a tag without its bracket", "<ADL> <A (x) 1 </A> </ADL>", "A{x=1}", "bracket <A"},
      {"a closing tag that a value touches", "<ADL> <A> (x) 1</A> <B> </B> </ADL>", "A{x=1} B{}",
       "bracket </A>"},
      {"a closing tag inside a value", "<ADL> <A> (x) 1</A>2 3</A> 4\n(y) 5</A> </ADL>",
       "A{x=1</A>2,3</A>,4 y=5}", "bracket </A>"},
      {"an arrow on the line of values", "<ADL> <A> (x) a <-- b </A> </ADL>", "A{x=a,<--,b}",
       "bracket <--"},
  });
}

TEST(ReadTree, countedLabels) {
  Expect({
      {"the separator counts", "<ADL> <A> (x)6 a (b) (y) 1 </A> </ADL>", "A{x#a (b) y=1}", ""},
      {"a line feed separates too", "<ADL> <A> (x)4\n</A (y) 1 </A> </ADL>", "A{x#</A y=1}", ""},
      {"1 is an empty value", "<ADL> <A> (x)1  (y) 1 </A> </ADL>", "A{x# y=1}", ""},
      {"a label in the place of the byte after it", "<ADL> <A> (x)1 (y) 1 </A> </ADL>", "A{x# y=1}",
       "bracket (y)"},
      {"the byte after it is passed over", "<ADL> <A> (x)3 ab7 (y) 1 </A> </ADL>", "A{x#ab y=1}",
       ""},
      {"0 too", "<ADL> <A> (x)0 (y) 1 </A> </ADL>", "A{x# y=1}", ""},
      {"more than there is", "<ADL> <A> (x)99 a b", "A{x#a b...}", ""},
      {"more than any number", "<ADL> <A> (x)99999999999999999999 a b", "A{x#a b...}", ""},
      {"a comment may follow", "<ADL> <A> (x)2 a /* c */ (y) 1 </A> </ADL>", "A{x#a y=1}", ""},
  });
}

TEST(ReadTree, comments) {
  Expect({
      {"where the system knows them", "<ADL> /* a */ <A> /* (b) </A> */ (x) 1 </A> /* c */ </ADL>",
       "A{x=1}", ""},
      {"after values", "<ADL> <A> (x) 1 /* (y) 2 */ (z) 3 </A> </ADL>", "A{x=1 z=3}",
       "comment /* (y) 2 */"},
      {"among values", "<ADL> <A> (x) 1 /* a */ 2 </A> </ADL>", "A{x=1,2}", "comment /* a */"},
      {"over lines", "<ADL> <A> (x) 1 /* a\n b */\n(y) 2 </A> </ADL>", "A{x=1 y=2}",
       "comment /* a\n b */"},
      {"no word may stand before its end", "<ADL> /**/ <A> /*/ (x) 1 </A> </ADL>", "A{x=1}", ""},
      {"inside a value it is none", "<ADL> <A> (x) a/*b*/ \"/* c */\" </A> </ADL>",
       "A{x=a/*b*/,\"/* c */\"}", ""},
      {"one that nothing closes ends with its line", "<ADL> <A> /* open\n(y) 2 </A> </ADL>",
       "A{y=2}", ""},
      {"among values it is a value", "<ADL> <A> (x) 1 /*open 3\n(y) 2 </A> </ADL>",
       "A{x=1,/*open,3 y=2}", ""},
      {"the outer tag in one", "/* <ADL> */ <ADL> <A> </A> </ADL>", "A{}", "before /* <ADL> */ "},
  });
  const std::string text = "<ADL> /* a */ <A> (x) 1 /* b */ </A> /*c*/ </ADL>";
  EXPECT_EQ(ReadTree(text).comments, (std::vector<std::string_view>{" a ", " b ", "c"}));
}

TEST(ReadTree, placeOfACommentAmongValues) {
  const std::string text = "<ADL> <A> (w) 0\n(x) 1 2 /* a */ 3 </A> </ADL>";
  const Tree tree = ReadTree(text);
  ASSERT_EQ(tree.strays.size(), 1U);
  EXPECT_EQ(tree.strays[0].entry, 1U);
  EXPECT_EQ(tree.strays[0].valuesBefore, 2U);
  EXPECT_EQ(tree.strays[0].entriesBefore, 2U);
  EXPECT_EQ(tree.OffsetOf(tree.strays[0].text), 24U);
}

TEST(ReadTree, textBeforeTheOpeningTag) {
  Expect({
      {"blanks", " \n<ADL> <A> </A> </ADL>", "A{}", "before  \n"},
      {"words and labels", "made by hand (x) 1\n<ADL> <A> </A> </ADL>", "A{}",
       "before made by hand (x) 1\n"},
      {"a byte order mark", "\xEF\xBB\xBF<ADL> <A> </A> </ADL>", "A{}", "mark \xEF\xBB\xBF"},
      {"both", "\xEF\xBB\xBF\r\n<ADL> <A> </A> </ADL>", "A{}", "mark \xEF\xBB\xBF; before \r\n"},
      {"a section there is passed over", "<B> (y) 1 </B> <ADL> <A> </A> </ADL>", "A{}",
       "before <B> (y) 1 </B> "},
      {"a tag of two words is another one", "<ADL v> <ADL> <A> </A> </ADL>", "A{}",
       "before <ADL v> "},
      {"a tag that only begins like it", "<ADLX> <ADL> <A> </A> </ADL>", "A{}", "before <ADLX> "},
  });
}

TEST(ReadTree, linesWithoutALabelArePassedOver) {
  Expect({
      {"at the start of a section", "<ADL> <A>\n1 00:00 \"one (x)\"\n2 <b> c\n(x) 1 </A> </ADL>",
       "A{x=1}", "word 1 00:00 \"one (x)\"; word 2 <b> c"},
      {"outside of sections", "<ADL>\nfree words here\n<A> (x) 1 </A>\nmore\n</ADL>", "A{x=1}",
       "word free words here; word more"},
      {"a label on the line is read", "<ADL> <A>\nnote (x) 1\n</A> </ADL>", "A{x=1}", "word note"},
      {"after values they are further values", "<ADL> <A>\n(x) 1\nfree words\n(y) 2 </A> </ADL>",
       "A{x=1,free,words y=2}", ""},
  });
}

TEST(ReadTree, wrongTags) {
  Expect({
      {"a section inside a section", "<ADL> <A> (x) 1 <B> (y) 2 </B> (z) 3 </A> <C> </C> </ADL>",
       "A{x=1} B{y=2} more A{z=3} C{}", "tag <B>"},
      {"a closing tag that closes nothing", "<ADL> </B> <A> (x) 1 </C> (y) 2 </A> </ADL>",
       "A{x=1 y=2}", "tag </B>; tag </C>"},
      {"a section that is not closed", "<ADL> <A> (x) 1\n<B> (y) 2 </B>\n<C> (z) 3 </C> </ADL>",
       "A{x=1...} B{y=2} C{z=3}", "tag <B>; tag <C>"},
      {"the outer tag twice", "<ADL> <ADL> <A> (x) 1 </A> </ADL>", "A{x=1}", "tag <ADL>"},
      {"labels outside of sections", "<ADL> (x) 1 <A> (y) 2 </A> (z) 3 </ADL>",
       "{x=1...} A{y=2} {z=3...}", "outside (x); outside (z)"},
  });
}

TEST(ReadTree, referenceLists) {
  Expect({
      {"as the system has them",
       "<ADL> <REF_LIST> <REF> <A> (x) 1 </A> </REF> <REF> <B> (y) 2 </B> </REF> </REF_LIST> "
       "<C> (z) 3 </C> </ADL>",
       "ref A{x=1} ref B{y=2} C{z=3}", ""},
      {"nested",
       "<ADL> <ref_list> <ref> <REF_LIST> <REF> <A> (x) </A> </REF> </REF_LIST> <B> </B> </ref> "
       "</ref_list> <C> </C> </ADL>",
       "ref A{x=} ref B{} C{}", ""},
      {"one that nothing closes", "<ADL> <REF_LIST> <REF> <A> (x) 1 </A> </REF> <C> </C> </ADL>",
       "REF{} A{x=1} C{}", "tag <REF_LIST>; tag <A>"},
      {"words between its blocks mean nothing",
       "<ADL> <REF_LIST> some words <REF> <A> </A> </REF> 12 </REF_LIST> <C> </C> </ADL>",
       "ref A{} C{}", ""},
  });
}

TEST(ReadTree, textsThatAreCutOff) {
  struct Row {
    const char* text;
    bool cutOff;
    std::optional<EntryPlace> entry;
    bool insideValue;
  };
  const std::vector<Row> rows = {
      {"<ADL> <A> (x) 1 (y) 2 </A> </ADL>", false, {}, false},
      {"<ADL> <A> (x) 1 (y) 2 </A> </ADL", true, {}, false},
      {"<ADL> <A> (x) 1 (y) 2 </A>", true, {}, false},
      {"<ADL> <A> (x) 1 (y) 2 </A", true, {}, false},
      {"<ADL> <A> (x) 1 (y) 2\n", true, 1, false},
      {"<ADL> <A> (x) 1 (y) 2", true, 1, true},
      {"<ADL> <A> (x) 1 (y) \"2 3", true, 1, true},
      {"<ADL> <A> (x) 1 (y)9 2", true, 1, true},
      {"<ADL> <A> (x) 1 (y", true, {}, false},
      {"<ADL> <A> /* (x) 1", true, {}, false},
      {"<ADL", false, {}, false},
      {"<EVENT_LIST> (x) 1 </EVENT_LIST>", false, {}, false},
      {"<EVENT_LIST> (x) 1", true, 0, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const std::string text = row.text;
    const Tree tree = ReadTree(text);
    EXPECT_EQ(tree.cutOff, row.cutOff);
    EXPECT_EQ(tree.cutEntry, row.entry);
    EXPECT_EQ(tree.cutInsideValue, row.insideValue);
  }
}

// Each of these would take hours if one search of the text were made for each piece of it.
TEST(ReadTree, comesToAnEndOfRepeatedPieces) {
  constexpr std::size_t kSize = 400'000;
  const std::vector<std::string> pieces = {"(a)",
                                           "(a) ",
                                           "<a>",
                                           "<a> ",
                                           "</a>",
                                           "</a> ",
                                           "(",
                                           "( ",
                                           "<",
                                           "< ",
                                           "\"",
                                           "\" ",
                                           "x\"",
                                           "/*",
                                           "/* ",
                                           "*/",
                                           "/*/ ",
                                           "a</b",
                                           "a</b>",
                                           "(a)1 ",
                                           "(a)9",
                                           "(a b\n",
                                           "<a b\n",
                                           "\n",
                                           " ",
                                           "\x80",
                                           "<REF_LIST> ",
                                           "<REF>",
                                           "a ",
                                           "<ADL ",
                                           "<REF_LIST> <REF> ",
                                           "/* <ADL> ",
                                           "x(y z ",
                                           "(a)(",
                                           "<EVENT_LIST>"};
  for (const std::string& piece : pieces) {
    for (const std::string start : {"<ADL> <A> (x) ", "<ADL> ", ""}) {
      std::string text = start;
      while (text.size() < kSize) text += piece;
      for (const std::string end : {"", " </ADL>"}) {
        (void)ReadTree(text + end);
      }
    }
  }
}

TEST(TextPlaces, linesAndColumns) {
  const std::string text = "ab\ncd\r\n\re\n";
  const TextPlaces places(text);
  const std::vector<TextPlace> expected = {{1, 1}, {1, 2}, {1, 3}, {2, 1}, {2, 2}, {2, 3}};
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(places.At(i), expected[i]) << i;
  EXPECT_EQ(places.At(7), (TextPlace{3, 1}));
  EXPECT_EQ(places.At(8), (TextPlace{4, 1}));
  EXPECT_EQ(places.At(10), (TextPlace{5, 1}));
  EXPECT_EQ(places.At(99), (TextPlace{5, 1}));
}

TEST(TextPlaces, agreeWithACountFromTheStart) {
  std::string text;
  for (int i = 0; i < 3000; ++i)
    text += std::string(static_cast<std::size_t>(i * 7 % 41), 'x') + "\n";
  text += std::string(5000, 'y') + "\nz";
  const TextPlaces places(text);
  TextPlace place;
  for (std::size_t i = 0; i < text.size(); ++i) {
    ASSERT_EQ(places.At(i), place) << i;
    if (text[i] == '\n') {
      ++place.line;
      place.column = 0;
    }
    ++place.column;
  }
}

}  // namespace
}  // namespace velmora::field
