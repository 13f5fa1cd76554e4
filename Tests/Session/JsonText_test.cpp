#include "Session/JsonText.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::host {
namespace {

struct TextRow {
  const char* rule;
  std::string text;
  std::string json;
};

TEST(JsonText, givesEachByteThatIsNoUtf8AReplacement) {
  const TextRow rows[] = {
      {"empty", "", R"("")"},
      {"wellFormedStays", "Fähre 嵐 \xF0\x9F\x8E\xB5", "\"Fähre 嵐 \xF0\x9F\x8E\xB5\""},
      {"escapes", "a\"b\\c\n\x01", R"("a\"b\\c\n\u0001")"},
      {"deleteStays", "\x7F", "\"\x7F\""},
      {"laterControlsAreEscaped", "a\u0085\u009B35m", R"("a\u0085\u009b35m")"},
      {"directionsAreEscaped", "\u061C\u200F\u202E\u2066", R"("\u061c\u200f\u202e\u2066")"},
      {"lineEndsAreEscaped", "\u2028\u2029", R"("\u2028\u2029")"},
      {"invisibleOnesAreEscaped", "\u200B\uFEFF\U000E0041", R"("\u200b\ufeff\udb40\udc41")"},
      {"joinersAndTheSoftHyphenStay", "\u200C\u200D\u00AD", "\"\u200C\u200D\u00AD\""},
      {"loneByte", "a\xFFz", "\"a\xEF\xBF\xBDz\""},
      // A parser that mends runs of such bytes would make one character of each of these.
      {"characterCutByAnother", "\xE3\x81z", "\"\xEF\xBF\xBD\xEF\xBF\xBDz\""},
      {"characterCutByTheEnd", "\xF0\x9F\x8E", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},
      {"surrogate", "\xED\xA0\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""},
  };
  for (const TextRow& row : rows) EXPECT_EQ(JsonText(row.text), row.json) << row.rule;
}

TEST(JsonText, mendsTextsAtAnyDepthAndKeepsTheOrderOfKeys) {
  const Json value = {{"z", {1, "\xFF", {{"y", "\xFE"}}}}, {"a", nullptr}};
  EXPECT_EQ(JsonText(value), "{\"z\":[1,\"\xEF\xBF\xBD\",{\"y\":\"\xEF\xBF\xBD\"}],\"a\":null}");
}

}  // namespace
}  // namespace velmora::host
