#include "Prepare/MediaNames.h"

#include <gtest/gtest.h>

namespace velmora::prepare {
namespace {

struct Row {
  const char* name;
  const char* fileName;
  const char* suffix;
  const char* extension;
  const char* expected;
};

const Row kRows[] = {
    {"a plain name stays", "take 1.wav", "", "", "take 1.wav"},
    {"case counts for nothing", "TAKE 1.WAV", "", "", "TAKE 1_2.WAV"},
    {"one more", "take 1.wav", "", "", "take 1_3.wav"},
    {"a channel", "take 1.wav", "_ch2", ".wav", "take 1_ch2.wav"},
    {"another extension", "bell.flac", "", ".wav", "bell.wav"},
    {"escapes would be read two ways", "50%20.wav", "", "", "50_20.wav"},
    {"what paths and other systems read", "a:b\\c?d*e|f<g>h\".wav", "", "", "a_b_c_d_e_f_g_h_.wav"},
    {"a dot would hide it", ".take.wav", "", "", "_take.wav"},
    {"dots and blanks at the end", "end. .wav", "", "", "end.wav"},
    {"nothing left", " .wav", "", "", "audio.wav"},
    {"control characters", "a\nb.wav", "", "", "a b.wav"},
    {"letters that Shift-JIS has", "\xE6\xB3\xA2.wav", "", "", "\xE6\xB3\xA2.wav"},
    {"letters that it lacks", "\xED\x95\x9C.wav", "", "", "_.wav"},
    {"no extension", "roll", "", "", "roll"},
};

TEST(MediaNames, areSafeAndUnique) {
  MediaNames names;
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(names.NameFor(row.fileName, row.suffix, row.extension), row.expected);
  }
}

TEST(MediaNames, longOnesAreCutBetweenCharactersAndStayUnique) {
  std::string longName;
  for (int i = 0; i < 100; ++i) longName += "\xE6\xB3\xA2";
  MediaNames names;
  const std::string first = names.NameFor(longName + ".wav", "", "");
  const std::string second = names.NameFor(longName + ".wav", "", "");
  EXPECT_LT(first.size(), 200U);
  EXPECT_EQ(first.substr(first.size() - 7), "\xE6\xB3\xA2.wav");
  EXPECT_NE(first, second);
  // Names that were handed out are handed out again for themselves.
  MediaNames again;
  EXPECT_EQ(again.NameFor(first, "", ""), first);
  EXPECT_EQ(again.NameFor(second, "", ""), second);
}

TEST(MediaNames, keepAwayFromReservedStems) {
  MediaNames names;
  names.Reserve("Take.aif");
  EXPECT_EQ(names.NameFor("take.wav", "", ""), "take_2.wav");
}

}  // namespace
}  // namespace velmora::prepare
