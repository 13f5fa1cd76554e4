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

}  // namespace
}  // namespace velmora::host
