#include "Prepare/ShiftJisWriter.h"

#include <gtest/gtest.h>

#include "ADL/ShiftJis.h"
#include "Base/Utf8.h"

namespace velmora::prepare {
namespace {

struct Row {
  const char* name;
  const char* utf8;
  const char* bytes;
  bool whole;
};

const Row kRows[] = {
    {"ASCII", "a\\b~c", "a\\b~c", true},
    {"kanji", "\xE6\x97\xA5\xE6\x9C\xAC", "\x93\xFA\x96\x7B", true},
    {"a letter whose second byte is a backslash", "\xE8\xA1\xA8", "\x95\x5C", true},
    {"half-width kana", "\xEF\xBD\xB1", "\xB1", true},
    {"what Shift-JIS lacks", "\xED\x95\x9C", "?", false},
    {"a byte that is no UTF-8", "a\xFFz", "a?z", false},
    {"control characters", "a\tb\x7F", "a b ", false},
    {"an accent of its own goes", "e\xCC\xBE", "e", false},
    // KA and the voiced mark are GA; HA and the half-voiced mark are PA.
    {"kana taken apart", "\xE3\x81\x8B\xE3\x82\x99", "\x82\xAA", false},
    {"katakana taken apart", "\xE3\x83\x8F\xE3\x82\x9A", "\x83\x70", false},
};

TEST(ToShiftJis, writesWhatShiftJisHolds) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    const ShiftJisText text = ToShiftJis(row.utf8, '?');
    EXPECT_EQ(text.bytes, row.bytes);
    EXPECT_EQ(text.whole, row.whole);
  }
}

TEST(ToShiftJis, everyCharacterOfTheFirstTwoPlanesIsReadBackTheSameOrHasAStandIn) {
  std::size_t held = 0;
  for (char32_t character = 0x20; character < 0x30000; ++character) {
    if (character >= 0xD800 && character < 0xE000) continue;
    std::string utf8;
    AppendUtf8(utf8, character);
    const ShiftJisText text = ToShiftJis(utf8, '?');
    if (!text.whole) continue;
    ++held;
    ASSERT_EQ(ShiftJisToUtf8(text.bytes.c_str()), utf8) << std::hex << std::uint32_t{character};
  }
  EXPECT_GT(held, 11000U);  // the two planes of JIS X 0213 have 11233 characters
}

TEST(ToShiftJis, whatIsReadBackIsWrittenTheSameAgain) {
  const std::string first =
      ToShiftJis("Caf\xC3\xA9 \xED\x95\x9C \xE3\x81\x8B\xE3\x82\x99 e\xCC\x81", '_').bytes;
  EXPECT_EQ(ToShiftJis(ShiftJisToUtf8(first.c_str()), '_').bytes, first);
}

}  // namespace
}  // namespace velmora::prepare
