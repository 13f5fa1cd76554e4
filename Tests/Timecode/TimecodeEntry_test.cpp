#include "Timecode/TimecodeEntry.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

namespace velmora {
namespace {

TimecodeValue Committed(bool sign, const char* text) {
  TimecodeValue value;
  value.sign = sign;
  value.DigestString(text);
  return value;
}

/// The field's text after a series of keys.
std::string Typed(std::string text, std::string_view keys, const TimecodeValue& committed) {
  for (const char key : keys) {
    const EntryResult result = TimeDataOperation(text, key, committed);
    EXPECT_FALSE(result.leave) << "key " << static_cast<int>(key);
    text = result.text;
  }
  return text;
}

struct Typing {
  std::string_view rule;
  bool sign;
  const char* text;
  std::string_view keys;
  const char* shown;
};

TEST(TimeDataOperation, typing) {
  constexpr auto kRows = std::to_array<Typing>({
      {"digitsEnterAtTheRight", false, " 00:00:00:00", "123", " 00:00:01:23"},
      {"ninthDigitPushesTheFirstOut", false, " 00:00:00:00", "123456789", " 23:45:67:89"},
      {"eightDigitsFillTheField", true, "-00:00:00:00", "12345678", "-12:34:56:78"},
      {"noLimitWhileTyping", false, " 00:00:00:00", "99999999", " 99:99:99:99"},
      {"zeroIsADigit", false, " 00:00:00:07", "0", " 00:00:00:70"},
      {"colonsStay", false, " 12:34:56:78", "9", " 23:45:67:89"},
      {"minusAtOnceInASignedField", true, "+00:00:01:23", "-", "-00:00:01:23"},
      {"plusAtOnceInASignedField", true, "-00:00:01:23", "+", "+00:00:01:23"},
      {"minusIsIgnoredInAnUnsignedField", false, " 00:00:01:23", "-", " 00:00:01:23"},
      {"plusIsIgnoredInAnUnsignedField", false, " 00:00:01:23", "+", " 00:00:01:23"},
      {"signStaysWhileTyping", true, "+00:00:00:00", "1-2", "-00:00:00:12"},
      {"backspaceClearsWithPlus", true, "-12:34:56:78", "\b", "+00:00:00:00"},
      {"backspaceClearsWithBlank", false, " 12:34:56:78", "\b", " 00:00:00:00"},
      {"deleteClearsWithPlus", true, "-12:34:56:78", "\x7F", "+00:00:00:00"},
      {"deleteClearsWithBlank", false, " 12:34:56:78", "\x7F", " 00:00:00:00"},
      {"backspaceLosesATypedMinus", true, "+00:00:00:00", "-5\b", "+00:00:00:00"},
      {"tabIsIgnored", false, " 12:34:56:78", "\t", " 12:34:56:78"},
      {"lineFeedIsIgnored", false, " 12:34:56:78", "\n", " 12:34:56:78"},
      {"arrowKeysAreIgnored", true, "+12:34:56:78", "\xEF\x9C\x80", "+12:34:56:78"},
  });
  for (const Typing& row : kRows) {
    EXPECT_EQ(Typed(row.text, row.keys, Committed(row.sign, "")), row.shown) << row.rule;
  }
}

TEST(TimeDataOperation, returnAndEnterLeaveTheTextAsItIs) {
  for (const char key : {'\r', '\x03'}) {
    const EntryResult result = TimeDataOperation("-99:99:99:99", key, Committed(true, ""));
    EXPECT_EQ(result.text, "-99:99:99:99");
    EXPECT_TRUE(result.leave);
  }
}

TEST(TimeDataOperation, escapeBringsBackTheLastCommit) {
  const EntryResult result =
      TimeDataOperation("-99:99:99:99", '\x1B', Committed(true, "+01:02:03:04"));
  EXPECT_EQ(result.text, "+01:02:03:04");
  EXPECT_TRUE(result.leave);
}

TEST(TimeDataOperation, escapeBeforeAnyCommitShowsZero) {
  TimecodeValue unsignedField;
  EXPECT_EQ(TimeDataOperation(" 11:11:11:11", '\x1B', unsignedField).text, " 00:00:00:00");
  TimecodeValue signedField;
  signedField.sign = true;
  EXPECT_EQ(TimeDataOperation("-11:11:11:11", '\x1B', signedField).text, "+00:00:00:00");
}

TEST(TimeDataOperation, clearingKeepsTheCommittedValue) {
  const TimecodeValue committed = Committed(true, "-01:02:03:04");
  const std::string cleared = TimeDataOperation("-01:02:03:04", '\b', committed).text;
  EXPECT_EQ(cleared, "+00:00:00:00");
  EXPECT_EQ(TimeDataOperation(cleared, '\x1B', committed).text, "-01:02:03:04");
}

/// What each of the 256 keys does to a field, told by the rule and not by the code.
EntryResult Expected(const std::string& text, int code, const TimecodeValue& committed) {
  if (code == 3 || code == 13) return {text, true};
  if (code == 8 || code == 127) return {committed.sign ? "+00:00:00:00" : " 00:00:00:00", false};
  if (code == 27) return {committed.ComposeString(), true};
  if (code == '+' || code == '-') {
    return {committed.sign ? static_cast<char>(code) + text.substr(1) : text, false};
  }
  if (code >= '0' && code <= '9') {
    const std::string digits = text.substr(2, 1) + text.substr(4, 2) + text.substr(7, 2) +
                               text.substr(10, 2) + static_cast<char>(code);
    return {text.substr(0, 1) + digits.substr(0, 2) + ":" + digits.substr(2, 2) + ":" +
                digits.substr(4, 2) + ":" + digits.substr(6, 2),
            false};
  }
  return {text, false};
}

TEST(TimeDataOperation, everyKeyOfBothFields) {
  for (const bool sign : {false, true}) {
    const TimecodeValue committed = Committed(sign, "-10:20:30:15");
    const std::string text = sign ? "-98:76:54:32" : " 98:76:54:32";
    for (int code = 0; code < 256; ++code) {
      const EntryResult result = TimeDataOperation(text, static_cast<char>(code), committed);
      const EntryResult expected = Expected(text, code, committed);
      EXPECT_EQ(result.text, expected.text) << "key " << code << " signed " << sign;
      EXPECT_EQ(result.leave, expected.leave) << "key " << code << " signed " << sign;
    }
  }
}

// A field always shows its twelve characters, but nothing may step outside a text that does not.
TEST(TimeDataOperation, survivesTextsOfOtherLengths) {
  for (const std::size_t length : {0U, 1U, 2U, 3U, 11U, 13U, 31U, 32U, 33U, 1000U}) {
    const std::string text(length, '1');
    for (int code = 0; code < 256; ++code) {
      const EntryResult result =
          TimeDataOperation(text, static_cast<char>(code), Committed(true, ""));
      const bool left = code == 3 || code == 13 || code == 27;
      EXPECT_EQ(result.leave, left) << "length " << length << " key " << code;
    }
  }
}

}  // namespace
}  // namespace velmora
