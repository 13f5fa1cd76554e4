#include "Report/Markup.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace velmora::report {
namespace {

TEST(Markup, leavesNoCharacterThatHtmlReadsAsMarkup) {
  EXPECT_EQ(Html("</td><script>alert('x')&\"</script>"),
            "&lt;/td&gt;&lt;script&gt;alert(&#39;x&#39;)&amp;&quot;&lt;/script&gt;");
}

TEST(Markup, keepsTextsOfAllLanguages) {
  EXPECT_EQ(Html("Größe 音 é\t1"), "Größe 音 é\t1");
}

TEST(Markup, showsWhatIsNoTextAsReplacementCharacters) {
  EXPECT_EQ(Html(std::string_view("a\0b\x1b\xff\x7f", 6)),
            "a\uFFFD"
            "b\uFFFD\uFFFD\uFFFD");
}

TEST(Markup, showsWhatTurnsTheDirectionOfWriting) {
  EXPECT_EQ(Html("a\u202Egnp.exe\u2066\u2069\u202A"), "a\uFFFDgnp.exe\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(Html("\u05E9\u200F \u0639\u061C\u200E"), "\u05E9&#x200F; \u0639&#x61C;&#x200E;");
}

TEST(Markup, showsWhatNobodySeesAsReplacementCharacters) {
  EXPECT_EQ(Html("a\u200Bb\u2028\u2060\uFEFF\U000E0041"), "a\uFFFDb\uFFFD\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(Html("a\u00ADb\u200Dc"), "a\u00ADb\u200Dc");  // needed by texts and Shift-JIS
}

TEST(Markup, showsHalvesOfSurrogatePairsAsReplacementCharacters) {
  EXPECT_EQ(Html("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
}

TEST(Markup, shortensAtAWholeCharacter) {
  EXPECT_EQ(Shortened("音音", 6), "音音");
  EXPECT_EQ(Shortened("音音音", 8), "音音… (9 bytes)");
  EXPECT_EQ(Shortened("\xff\xff\xff", 2), "\xff\xff… (3 bytes)");
  EXPECT_EQ(Shortened("", 0), "");
}

TEST(Markup, jsonInAScriptCannotEndIt) {
  const nlohmann::json value = {{"name", "</script><!--<script>&"}};
  const std::string safe = ScriptJson(value.dump());
  EXPECT_EQ(safe.find_first_of("<>&"), std::string::npos);
  EXPECT_EQ(nlohmann::json::parse(safe), value);
}

}  // namespace
}  // namespace velmora::report
