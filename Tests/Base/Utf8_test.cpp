#include "Base/Utf8.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

struct Row {
  const char* rule;
  std::string utf8;
  std::u16string utf16;
};

const Row kWellFormed[] = {
    {"emptyText", "", u""},
    {"oneByte", "a~\x7F", u"a~\x7F"},
    {"nulIsACharacter", std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
    {"lowestAndHighestOfTwoBytes", "\xC2\x80\xDF\xBF", u"\x80\x7FF"},
    {"lowestAndHighestOfThreeBytes", "\xE0\xA0\x80\xEF\xBF\xBF", u"\x800\xFFFF"},
    {"aroundTheSurrogates", "\xED\x9F\xBF\xEE\x80\x80", u"\xD7FF\xE000"},
    {"fourBytesAreAPair", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\xD800\xDC00\xDBFF\xDFFF"},
};

TEST(Utf8, convertsWellFormedTextsBothWays) {
  for (const Row& row : kWellFormed) {
    EXPECT_EQ(Utf16FromUtf8(row.utf8), row.utf16) << row.rule;
    EXPECT_EQ(Utf8FromUtf16(row.utf16), row.utf8) << row.rule;
  }
}

TEST(Utf8, givesEachByteThatIsNoUtf8AReplacement) {
  const Row rows[] = {
      {"loneContinuation", "a\x80z", u"a\xFFFDz"},
      {"neverALead", "\xC0\xC1\xF5\xFF", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
      {"cutAtTheEnd", "a\xE3\x81", u"a\xFFFD\xFFFD"},
      {"cutByAnotherCharacter", "\xE3\x81z", u"\xFFFD\xFFFDz"},
      {"longerThanNeeded", "\xE0\x9F\xBF", u"\xFFFD\xFFFD\xFFFD"},
      {"longerThanNeededInFour", "\xF0\x8F\xBF\xBF", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
      {"surrogate", "\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},
      {"beyondTheLastCharacter", "\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
  };
  for (const Row& row : rows) EXPECT_EQ(Utf16FromUtf8(row.utf8), row.utf16) << row.rule;
}

TEST(Utf8, givesHalfAPairAReplacement) {
  EXPECT_EQ(Utf8FromUtf16(u"a\xD800"), "a\xEF\xBF\xBD");
  EXPECT_EQ(Utf8FromUtf16(u"\xD800z"), "\xEF\xBF\xBDz");
  EXPECT_EQ(Utf8FromUtf16(u"\xDC00\xD800"), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(Utf8FromUtf16(u"\xD800\xD800\xDC00"), "\xEF\xBF\xBD\xF0\x90\x80\x80");
}

}  // namespace
}  // namespace velmora
