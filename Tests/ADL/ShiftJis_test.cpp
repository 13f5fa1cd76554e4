#include "ADL/ShiftJis.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct Text {
  std::string_view rule;
  const char* shiftJis;
  const char* utf8;
};

TEST(ShiftJisToUtf8, texts) {
  constexpr auto kRows = std::to_array<Text>({
      {"empty", "", ""},
      {"ascii", "take one.wav", "take one.wav"},
      {"backslashIsItself", "a\\b", "a\\b"},
      {"tildeIsItself", "a~b", "a~b"},
      {"lineFeed", "a\r\nb", "a\r\nb"},
      {"hiragana", "\x82\xA0\x82\xA2", "あい"},
      {"kanji", "\x93\xFA\x96\x7B\x8C\xEA", "日本語"},
      {"mixed", "dx_\x93\xFA\x96\x7B_01.wav", "dx_日本_01.wav"},
      {"halfWidthKatakana", "\xB1\xB2\xDF", "ｱｲﾟ"},
      {"secondByteIsABackslash", "\x83\x5C\x95\x5C", "ソ表"},
      {"secondByteIsATilde", "\x83\x7E", "ミ"},
      {"secondByteIsAVerticalBar", "\x83\x7C", "ポ"},
      {"oneCodeForTwoCharacters", "\x82\xF5", "か\xE3\x82\x9A"},
      {"oneCodeForTwoCharactersInside",
       "a\x82\xF5"
       "b",
       "aか\xE3\x82\x9A"
       "b"},
      {"beyondTheBasicPlane", "\xFC\xF4", "\xF0\xAA\x9A\xB2"},
      {"charactersOfX0213", "\x85\x40", "€"},
      {"combiningMark", "\x86\x8E", "\xCC\xBD"},
  });
  for (const Text& row : kRows) EXPECT_EQ(ShiftJisToUtf8(row.shiftJis), row.utf8) << row.rule;
}

TEST(ShiftJisToUtf8, nullIsTheEmptyText) {
  EXPECT_EQ(ShiftJisToUtf8(nullptr), "");
}

TEST(ShiftJisToUtf8, everyByteBelow80IsItself) {
  for (int code = 1; code < 0x80; ++code) {
    const std::string text(1, static_cast<char>(code));
    EXPECT_EQ(ShiftJisToUtf8(text.c_str()), text) << code;
  }
}

struct Broken {
  std::string_view rule;
  const char* shiftJis;
  const char* utf8;  ///< with `?` for each replacement character
};

TEST(ShiftJisToUtf8, eachByteThatCannotBeConvertedIsReplaced) {
  constexpr auto kRows = std::to_array<Broken>({
      {"loneByteAtTheEnd", "a\x82", "a?"},
      {"firstByteBeforeAscii",
       "\x82"
       "1",
       "?1"},
      {"nextByteIsLookedAtAfresh", "\x82\x20\x82\xA0", "? あ"},
      {"firstByteBeforeDelete", "\x82\x7F", "?\x7F"},
      {"nextByteMayBeginACharacter", "\x80\x82\xA0", "?あ"},
      {"nextByteMayBeKatakana", "\xA0\xB1", "?ｱ"},
      {"everyByteByItself", "\xFF\xFE\xFD", "???"},
      {"secondByteOutOfRange", "\x82\xFD\x82\xA0", "??あ"},
      {"unusedCode", "\x87w\x82\xA0", "?wあ"},
      {"utf8IsNotShiftJis", "\xC3\xA4", "ﾃ､"},
  });
  for (const Broken& row : kRows) {
    std::string expected;
    for (const char* c = row.utf8; *c != '\0'; ++c) {
      expected += *c == '?' ? std::string(kReplacement) : std::string(1, *c);
    }
    EXPECT_EQ(ShiftJisToUtf8(row.shiftJis), expected) << row.rule;
  }
}

TEST(ShiftJisToUtf8, hasNoLimitOfLength) {
  std::string text;
  std::string expected;
  for (int i = 0; i < 50'000; ++i) {
    text +=
        "\x83\x5C"
        "a\x82\xF5\xFF";
    expected += "ソaか\xE3\x82\x9A" + std::string(kReplacement);
  }
  EXPECT_EQ(ShiftJisToUtf8(text.c_str()), expected);
}

std::uint64_t Fnv1a(std::uint64_t hash, std::string_view text) {
  for (const char c : text) hash = (hash ^ static_cast<std::uint8_t>(c)) * 0x100000001B3U;
  return hash;
}

struct FirstByte {
  int code;
  std::uint64_t hash;
};

// The outside witness: for each first byte, the FNV-1a hash of all of its 255 pairs in UTF-8, a
// line each, by Python's codec shift_jis_2004 under the rules above. Where the two converters
// differ by taste (the dash, the full-width backslash and tilde, the white parentheses) the pair is
// left out.
constexpr auto kFirstBytes = std::to_array<FirstByte>(
    {{0x80, 0x290C6D47D1CA819Fu}, {0x81, 0x0029EDD87FC5A943u}, {0x82, 0xD648DF0665FF347Fu},
     {0x83, 0x9B32A770AF0282BDu}, {0x84, 0xA803FBE4D7A5E48Au}, {0x85, 0x4D0DF333A72F8181u},
     {0x86, 0x6BB7DE8E60AB9F65u}, {0x87, 0xE2BCE85C9195888Bu}, {0x88, 0xB31E17B6C37F522Au},
     {0x89, 0x8BCCEDE91BC8B8B3u}, {0x8A, 0x41814DD0D35655EBu}, {0x8B, 0xE9D275F0029342F0u},
     {0x8C, 0xAE503DC8DDC52015u}, {0x8D, 0xF03DDE39D22D5E32u}, {0x8E, 0x719D17370B5A4C74u},
     {0x8F, 0x7353B8971A2D439Cu}, {0x90, 0xC8CB2315144D6D3Bu}, {0x91, 0x0C99E631F24D0C59u},
     {0x92, 0x5F8594F63916BB95u}, {0x93, 0x50B6F5DEF7504A47u}, {0x94, 0x386CD4B13822F219u},
     {0x95, 0x110CE45E90099CB8u}, {0x96, 0x0662558663052441u}, {0x97, 0x0C9A6B0D46733063u},
     {0x98, 0x46E0D2785B1DF29Du}, {0x99, 0x422B416840391170u}, {0x9A, 0x305D3294D973415Au},
     {0x9B, 0x931B2CC68356AEF2u}, {0x9C, 0x820CC418B33EB8A6u}, {0x9D, 0x77911E92E8EE43F2u},
     {0x9E, 0x2EB60E29D46C4DCAu}, {0x9F, 0xDFE63613458C3262u}, {0xA0, 0x290C6D47D1CA819Fu},
     {0xE0, 0xD28AC9A2F530F66Au}, {0xE1, 0xEE074D0E448CBDC4u}, {0xE2, 0xE389CF05B9455713u},
     {0xE3, 0x7F93B123BA6FB0E4u}, {0xE4, 0xFD198807B2A211FBu}, {0xE5, 0x4E0D1EC95F63E06Cu},
     {0xE6, 0x73455E94D8E97993u}, {0xE7, 0x3FA335C19AC57470u}, {0xE8, 0x3A317BF3BAA457B9u},
     {0xE9, 0xBE1D2DDFD1383959u}, {0xEA, 0x7ABEE6E10D2512D0u}, {0xEB, 0x7D5B3B84E93B8DD8u},
     {0xEC, 0x76577886A6433DF9u}, {0xED, 0xEA8374E1358EC511u}, {0xEE, 0x560DD98BBF8EFC8Cu},
     {0xEF, 0x138B562C5582A0A0u}, {0xF0, 0x0C93882EFE3EF126u}, {0xF1, 0xD10209BB372874A8u},
     {0xF2, 0xF724A1EDC8DAC601u}, {0xF3, 0x1E771F14766842DFu}, {0xF4, 0xC4B41E45F4685DEDu},
     {0xF5, 0xE3F6DD2D955ED676u}, {0xF6, 0x8E53E7A1F25A71D4u}, {0xF7, 0x0C1D005D7FD43D08u},
     {0xF8, 0xA5FC475DDC86DE4Au}, {0xF9, 0x0B07A4706BBA4B9Bu}, {0xFA, 0x53AF8DBD855D9E2Au},
     {0xFB, 0xB4F196CA4C8C3FF9u}, {0xFC, 0x296E44FED19ECCE8u}, {0xFD, 0x290C6D47D1CA819Fu},
     {0xFE, 0x290C6D47D1CA819Fu}, {0xFF, 0x290C6D47D1CA819Fu}});

bool IsMatterOfTaste(int code) {
  return code == 0x815C || code == 0x815F || code == 0x81B0 || code == 0x81D4 || code == 0x81D5;
}

TEST(ShiftJisToUtf8, everyPairAsAnotherConverterHasIt) {
  ASSERT_EQ(kFirstBytes.size(), 65U);
  for (const FirstByte& row : kFirstBytes) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (int second = 1; second < 256; ++second) {
      if (IsMatterOfTaste(row.code << 8 | second)) continue;
      const std::string pair = {static_cast<char>(row.code), static_cast<char>(second)};
      hash = Fnv1a(Fnv1a(hash, ShiftJisToUtf8(pair.c_str())), "\n");
    }
    EXPECT_EQ(hash, row.hash) << "first byte " << std::hex << row.code;
  }
}

TEST(AppendShiftJisAsUtf8, leavesWhatStoodThere) {
  std::string text = "before ";
  AppendShiftJisAsUtf8("\x82\xA0", text);
  AppendShiftJisAsUtf8("", text);
  AppendShiftJisAsUtf8(" after", text);
  EXPECT_EQ(text, "before あ after");
}

TEST(AppendShiftJisAsUtf8, findsAByteThatIsNotAsciiWhereverItStands) {
  for (std::size_t length = 0; length < 40; ++length) {
    const std::string ascii(length, 'a');
    std::string whole;
    AppendShiftJisAsUtf8(ascii, whole);
    EXPECT_EQ(whole, ascii);
    for (std::size_t at = 0; at <= length; ++at) {
      std::string converted;
      AppendShiftJisAsUtf8(ascii.substr(0, at) + "\x82\xA0" + ascii.substr(at), converted);
      EXPECT_EQ(converted, ascii.substr(0, at) + "あ" + ascii.substr(at)) << length << ' ' << at;
    }
  }
}

TEST(AppendShiftJisAsUtf8, textEndsWhereItsViewEnds) {
  constexpr std::string_view kPair = "\x82\xA0";
  std::string text;
  AppendShiftJisAsUtf8(kPair.substr(0, 1), text);
  EXPECT_EQ(text, kReplacement);
  text.clear();
  AppendShiftJisAsUtf8({"a\0b", 3}, text);
  EXPECT_EQ(text, std::string("a\0b", 3));
}

}  // namespace
}  // namespace velmora
