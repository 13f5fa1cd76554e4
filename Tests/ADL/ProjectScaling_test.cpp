#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "LoadedProject.h"
#include "Support/CpuTime.h"

namespace velmora::test {
namespace {

// A file of a megabyte can hold tens of thousands of anything. Whatever it repeats, the load's time
// grows with the size of the file and not with its square.

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

/// The least processor time of several loads, to leave out what else the machine does.
double SecondsToLoad(const std::string& path) {
  double least = 1e9;
  for (int i = 0; i < 3; ++i) {
    least = std::min(least, CpuSeconds([&path] { EXPECT_TRUE(Loading(path).ok); }));
  }
  return least;
}

TEST(ProjectScaling, timeGrowsWithTheSizeOfTheFile) {
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
  constexpr int kFew = 4000;
  constexpr int kTimes = 5;
  for (const Repeated& row : rows) {
    const double few = SecondsToLoad(folder.Write("few.adl", Adl(row, kFew)));
    const double many = SecondsToLoad(folder.Write("many.adl", Adl(row, kTimes * kFew)));
    // Linear time is 5 times as long and quadratic time 25 times.
    EXPECT_LT(many, 10 * few + 0.02) << row.rule << ": " << few << " s and " << many << " s";
  }
}

}  // namespace
}  // namespace velmora::test
