#include "DawProject/MediaNames.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace velmora::dawproject {
namespace {

TEST(MediaNames, areUniqueAndSafe) {
  MediaNames names;
  const struct {
    const char* path;
    const char* name;
  } rows[] = {
      {"/a/wind.wav", "audio/wind.wav"},
      {"/b/wind.wav", "audio/wind-2.wav"},
      {"/c/WIND.wav", "audio/WIND-3.wav"},
      {"/a/wind.wav", "audio/wind.wav"},
      {"/a/wind-4.wav", "audio/wind-4.wav"},
      {"/d/wind.wav", "audio/wind-5.wav"},
      {"/a/a:b\\c*?\".wav", "audio/a_b_c___.wav"},
      {"/a/two\nlines", "audio/two_lines"},
      {"/a/bad\xFF.wav", "audio/bad\xEF\xBF\xBD.wav"},
      {"/a/\x01.wav", "audio/\xEF\xBF\xBD.wav"},
      {"/a/.wav", "audio/audio.wav"},
      {"/a/Grüße.wav", "audio/Grüße.wav"},
  };
  for (const auto& row : rows) EXPECT_EQ(names.Of(row.path), row.name) << row.path;
  EXPECT_EQ(names.Entries().size(), 11u);
  EXPECT_EQ(names.Entries()[1].path, "/b/wind.wav");
}

TEST(MediaNames, staysWithinWhatSystemsTake) {
  MediaNames names;
  std::string longName;
  for (int i = 0; i < 84; ++i) longName += "\xE6\x97\xA5";  // 252 bytes
  const std::string one = names.Of("/a/" + longName + ".wav");
  const std::string two = names.Of("/b/" + longName + ".wav");
  EXPECT_LT(one.size(), 250u);
  EXPECT_LT(two.size(), 250u);
  EXPECT_NE(one, two);
  EXPECT_TRUE(one.ends_with("\xE6\x97\xA5.wav")) << one;
}

TEST(MediaNames, tenThousandOfOneNameCostNoSearchEach) {
  MediaNames names;
  std::set<std::string> all;
  for (int i = 0; i < 10000; ++i) all.insert(names.Of("/" + std::to_string(i) + "/a.wav"));
  EXPECT_EQ(all.size(), 10000u);
  EXPECT_EQ(names.Of("/9999/a.wav"), "audio/a-10000.wav");
}

}  // namespace
}  // namespace velmora::dawproject
