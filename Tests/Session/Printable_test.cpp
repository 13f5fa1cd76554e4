#include "Session/Printable.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora::host {
namespace {

struct Row {
  const char* rule;
  std::string text;
  std::string shown;
};

TEST(Printable, blanksWhatATerminalActsOnAndWhatNobodySees) {
  const Row rows[] = {
      {"plain", "Fähre 嵐", "Fähre 嵐"},
      {"controls", "a\x1B[35m\x07z", "a [35m z"},
      {"delete", "a\x7Fz", "a z"},
      {"laterControls", "a\u009B35mz", "a 35mz"},
      {"lineEnds", "a\r\nb\u2028c\u2029d", "a  b c d"},
      {"directions", "a\u061Cb\u200Ec\u202Ed\u2066e", "a b c d e"},
      {"invisible", "a\u200Bb\u2060c\uFEFFd\U000E0041e", "a b c d e"},
      {"joinersStay", "a\u200Cb\u200Dc", "a\u200Cb\u200Dc"},
      {"softHyphenStays", "a\u00ADb", "a\u00ADb"},
      {"blankEnd", "a\u202E\u200B", "a"},
      {"noUtf8", "a\x9B\xFFz", "a\uFFFD\uFFFDz"},
  };
  for (const Row& row : rows) EXPECT_EQ(Printable(row.text), row.shown) << row.rule;
}

}  // namespace
}  // namespace velmora::host
