#include "Session/XmlText.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::host {
namespace {

using namespace std::string_literals;

TEST(XmlText, holdsOnlyWhatXmlCanHold) {
  const struct {
    const char* rule;
    std::string text;
    std::string expected;
  } rows[] = {
      {"markupIsNotItsBusiness", "a & <b> \"c\" 'd'", "a & <b> \"c\" 'd'"},
      {"utf8Stays", "Grüße \xE6\x97\xA5 \xF0\x9F\x8E\xBA", "Grüße \xE6\x97\xA5 \xF0\x9F\x8E\xBA"},
      {"tabsAndLineEndsStay", "a\tb\nc\rd", "a\tb\nc\rd"},
      {"aNul", "a\0b"s,
       "a\xEF\xBF\xBD"
       "b"},
      {"controlCharacters", "\x01\x1F\x1B", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"deleteStays", "\x7F", "\x7F"},
      {"noCharacters", "\xEF\xBF\xBE\xEF\xBF\xBF", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"noUtf8", "a\xFFz", "a\xEF\xBF\xBDz"},
      {"halfASurrogatePair", "\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
  };
  for (const auto& row : rows) EXPECT_EQ(XmlText(row.text), row.expected) << row.rule;
}

TEST(XmlText, markupTellsWhatIsNotToBeShownByReferences) {
  EXPECT_EQ(WithReferences("<a b=\"x\u009By\u0085\">\x7F\u202E\u200B\u2028\U000E0041</a>\n\t"),
            "<a b=\"x&#x9B;y&#x85;\">&#x7F;&#x202E;&#x200B;&#x2028;&#xE0041;</a>\n\t");
  EXPECT_EQ(WithReferences("Gr\u00F6\u00DFe \u97F3 \u00AD\u200D&amp;"),
            "Gr\u00F6\u00DFe \u97F3 \u00AD\u200D&amp;");
}

}  // namespace
}  // namespace velmora::host
