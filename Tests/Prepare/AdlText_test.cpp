#include "Prepare/AdlText.h"

#include <gtest/gtest.h>

#include "ADL/AES31Project.h"
#include "Support/TemporaryFolder.h"

namespace velmora::prepare {
namespace {

TEST(AdlText, writesOneLabelALineWithCrLf) {
  AdlText text;
  text.OpenSection("EVENT_LIST");
  text.Line("Entry", {"0001"});
  text.Line("Rem", {"NAME", AdlText::Quoted("a \"b\"")});
  text.CloseSection();
  EXPECT_EQ(text.Finish(),
            "<ADL>\r\n"
            "<EVENT_LIST>\r\n"
            "(Entry) 0001\r\n"
            "(Rem) NAME \"a \x1B\"b\x1B\"\"\r\n"
            "</EVENT_LIST>\r\n"
            "</ADL>\r\n");
}

struct ValueRow {
  const char* name;
  const char* text;
  bool quoted;
  const char* value;
};

const ValueRow kValues[] = {
    {"a plain word stays", "S48000", false, "S48000"},
    {"a word that was quoted stays so", "S48000", true, "\"S48000\""},
    {"an empty one needs marks", "", false, "\"\""},
    {"blanks need marks", "a b", false, "\"a b\""},
    {"what would open a label", "(x", false, "\"(x\""},
    {"what would open a tag", "<x", false, "\"<x\""},
    {"what would open a value", "\"x", false, "\"\x1B\"x\""},
    {"what would open a comment", "/*x", false, "\"/*x\""},
    {"other characters need marks", "\xE6\x97\xA5", false, "\"\x93\xFA\""},
    {"line ends become blanks", "a\r\nb", false, "\"a  b\""},
    {"a lone escape would hide the closing mark", "a\x1B", false, "\"a \""},
};

TEST(AdlText, valuesCanStandWhereTheyStand) {
  for (const ValueRow& row : kValues) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(AdlText::Value(row.text, row.quoted), row.value);
  }
}

/// Written text as the system reads it.
class SystemReading {
 public:
  explicit SystemReading(const std::string& bytes)
      : project_(folder_.Write("p.adl", bytes).c_str(), nullptr, &ok_) {}
  AES31Project& operator*() { return project_; }
  AES31Project* operator->() { return &project_; }

 private:
  test::TemporaryFolder folder_;
  bool ok_ = false;
  AES31Project project_;
};

TEST(AdlText, namesLabelsAndValuesOfAnyBytesDoNotEndTheReading) {
  AdlText text;
  const std::string all = [] {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) bytes += static_cast<char>(byte);
    return bytes;
  }();
  text.Comment("/ comment */ with marks /* " + all);
  text.OpenSection("x" + all);
  text.Comment(all);
  text.Line("y" + all, {AdlText::Value(all), AdlText::Quoted(all)});
  text.CountedLine("z", "(a) <b> \"c\r\nd");
  text.Line("after", {"1"});
  text.CloseSection();
  text.OpenSection("VERSION");
  text.Line("ADL_ID", {"1234"});
  text.CloseSection();
  SystemReading system(text.Finish());
  ASSERT_EQ(system->sections.size(), 2U);
  ASSERT_EQ(system->sections[0].entries.size(), 3U);
  EXPECT_EQ(system->sections[0].entries[0].values.size(), 2U);
  EXPECT_STREQ(system->sections[0].entries[1].label, "z");
  EXPECT_STREQ(system->sections[0].entries[1].values[0], "(a) <b> \"c\r\nd");
  EXPECT_STREQ(system->sections[0].entries[2].label, "after");
  EXPECT_EQ(system->comments.size(), 2U);
  EXPECT_STREQ(system->GetConstant(0), "1234");
}

TEST(AdlText, aNameMadeSafeIsNoneThatIsRead) {
  AdlText text;
  text.OpenSection("SOURCE\xFFINDEX");
  text.CloseSection();
  text.OpenSection("SEQUENCE");
  text.Line("SEQ SAMPLE_RATE", {"S44100"});
  text.CountedLine("SEQ_FRAME\xFFRATE", "30");
  text.Line("(SEQ)DEST_START)", {"1"});
  text.CloseSection();
  EXPECT_EQ(text.Finish(),
            "<ADL>\r\n<SOURCE-INDEX>\r\n</SOURCE-INDEX>\r\n<SEQUENCE>\r\n"
            "(SEQ-SAMPLE_RATE) S44100\r\n(SEQ_FRAME-RATE)3 30\r\n(-SEQ-DEST_START-) 1\r\n"
            "</SEQUENCE>\r\n</ADL>\r\n");
}

TEST(AdlText, aCommentHasOneBlankAtEachEnd) {
  const struct {
    const char* name;
    std::string_view text;
    const char* line;
  } kComments[] = {
      {"blanks", "  words \t", "/* words */\r\n"},
      {"control characters, which are written as blanks", "\x7F\x01 two words\x02 \x7F",
       "/* two words */\r\n"},
      {"empty lines", "\r\n\x7F\n one\n\n two\r\n\x7F", "/* one\r\n\r\n two */\r\n"},
      {"nothing else", " \x7F ", "/*  */\r\n"},
  };
  for (const auto& comment : kComments) {
    AdlText text;
    text.Comment(comment.text);
    EXPECT_EQ(text.Finish(), std::string("<ADL>\r\n") + comment.line + "</ADL>\r\n")
        << comment.name;
  }
}

TEST(AdlText, textThatLooksLikeUtf8GetsAWordThatDoesNot) {
  AdlText text;
  // U+FF83 U+FF68, half-width kana, are C3 A8 in Shift-JIS and a letter in UTF-8.
  text.OpenSection("PROJECT");
  text.Line("PROJ_TITLE", {AdlText::Quoted("\xEF\xBE\x83\xEF\xBD\xA8")});
  text.CloseSection();
  const std::string bytes = text.Finish();
  EXPECT_NE(bytes.find("\"\xC3\xA8\""), std::string::npos);
  EXPECT_EQ(bytes.find("<ADL>\r\n/* Shift-JIS \x93\xFA\x96\x7B\x8C\xEA */\r\n"), 0U);
}

TEST(AdlText, tagsOfReferenceListsNest) {
  AdlText text;
  text.Tag("REF_LIST");
  text.Tag("REF");
  text.OpenSection("VERSION");
  text.CloseSection();
  text.Tag("/REF");
  text.Tag("/REF_LIST");
  text.OpenSection("PROJECT");
  text.CloseSection();
  SystemReading system(text.Finish());
  ASSERT_EQ(system->refLists.size(), 1U);
  EXPECT_STREQ(system->refLists[0].at(0).name, "VERSION");
  ASSERT_EQ(system->sections.size(), 1U);
}

}  // namespace
}  // namespace velmora::prepare
