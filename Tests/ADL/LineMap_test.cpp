#include "ADL/LineMap.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {
namespace {

struct Row {
  std::string_view rule;
  std::string_view text;
  std::vector<std::int64_t> lines;  ///< of each byte, and of the end
};

TEST(LineMap, tellsTheLineOfEachByte) {
  const auto rows = std::to_array<Row>({
      {"emptyTextIsOneLine", "", {1}},
      {"noLineEnd", "ab", {1, 1, 1}},
      {"lineFeedBelongsToTheLineItEnds", "a\nb", {1, 1, 2, 2}},
      {"carriageReturn", "a\rb", {1, 1, 2, 2}},
      {"bothTogetherEndOneLine", "a\r\nb", {1, 1, 2, 2, 2}},
      {"theOtherWayAboutTheyEndTwo", "\n\rb", {1, 2, 3, 3}},
      {"emptyLines", "\n\n\n", {1, 2, 3, 4}},
      {"firstByteEndsALine", "\nab", {1, 2, 2, 2}},
      {"nulEndsNone", std::string_view("a\0b\nc", 5), {1, 1, 1, 1, 2, 2}},
  });
  for (const Row& row : rows) {
    const LineMap map(row.text.data(), row.text.size());
    for (std::size_t at = 0; at < row.lines.size(); ++at) {
      EXPECT_EQ(map.LineAt(at), row.lines[at]) << row.rule << ", byte " << at;
    }
  }
}

TEST(LineMap, ofNoTextHasOneLine) {
  EXPECT_EQ(LineMap().LineAt(0), 1);
  EXPECT_EQ(LineMap().LineAt(1000), 1);
}

TEST(LineMap, offsetPastTheEndStandsOnTheLastLine) {
  const std::string text = "a\nb\nc";
  EXPECT_EQ(LineMap(text.data(), text.size()).LineAt(1'000'000), 3);
}

// Against a plain count, over lengths on both sides of every boundary between words and blocks.
TEST(LineMap, agreesWithCountingFromTheStart) {
  std::mt19937 random(1);
  for (std::size_t size = 0; size < 2300; size += 1 + size / 64) {
    std::string text(size, 'x');
    for (char& c : text) c = "xxx\r\n\n"[random() % 6];
    const LineMap map(text.data(), text.size());
    std::int64_t line = 1;
    for (std::size_t at = 0; at <= size; ++at) {
      ASSERT_EQ(map.LineAt(at), line) << "byte " << at << " of " << size;
      if (at == size) break;
      if (text[at] == '\r' || (text[at] == '\n' && (at == 0 || text[at - 1] != '\r'))) ++line;
    }
  }
}

}  // namespace
}  // namespace velmora::test
