#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

// A file of a megabyte can hold tens of thousands of anything. Whatever it repeats, it loads;
// how its time grows is measured by Bench/hostile.

struct Repeated {
  std::string_view rule;
  std::string before;
  std::string_view piece;  ///< "#" stands for its number
  std::string after;
};

std::string Adl(const Repeated& row, int count) {
  std::string text = "<ADL>\n" + row.before;
  for (int i = 0; i < count; ++i) {
    for (const char c : row.piece) text += c == '#' ? std::to_string(i) : std::string(1, c);
  }
  return text + row.after + "</ADL>\n";
}

TEST(ProjectScaling, manyOfAnythingLoad) {
  const auto rows = std::to_array<Repeated>({
      {"eventListSections", "", "<EVENT_LIST>\n(Entry) # (Vid) a b c d\n</EVENT_LIST>\n", ""},
      {"sourceIndexSections", "", "<SOURCE_INDEX>\n(Index) #\n</SOURCE_INDEX>\n", ""},
      {"constantSections", "", "<PROJECT>\n(PROJ_TITLE) #\n</PROJECT>\n", ""},
      {"otherSections", "", "<A>\n</A>\n", ""},
      {"events", "<EVENT_LIST>\n", "(Entry) # (Vid) a b c d\n", "</EVENT_LIST>\n"},
      {"sources", "<SOURCE_INDEX>\n", "(Index) #\n", "</SOURCE_INDEX>\n"},
      {"oddities", "<EVENT_LIST>\n(Entry) 1\n", "(x)\n", "</EVENT_LIST>\n"},
      {"comments", "", "/* # */\n", ""},
      {"referenceLists", "", "<REF_LIST> <REF> </REF> </REF_LIST>\n", ""},
      {"countedLabelsWithoutAParenthesis", "<A>\n(x) \")))\" ", "(1\n", "</A>\n"},
  });
  const TemporaryFolder folder;
  for (const Repeated& row : rows) {
    EXPECT_TRUE(Loading(folder.Write("many.adl", Adl(row, 20000))).ok) << row.rule;
  }
}

}  // namespace
}  // namespace velmora::test
