#include <gtest/gtest.h>

#include <array>
#include <string_view>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

struct Cut {
  std::string_view adl;
  std::string_view tree;
};

// A file may end anywhere: it counts as continued by blanks, and what the end cuts is kept as far
// as it goes.
constexpr auto kCuts = std::to_array<Cut>({
    {"", ""},
    {"<", ""},
    {"<ADL", ""},
    {"<ADL>", ""},
    {"<ADL>x", ""},
    {"<ADL> ", ""},
    {"<ADL>\n\n", ""},
    {"<ADL> <", "{}"},
    {"<ADL> <A", "{}"},
    {"<ADL> <A>", "A{}"},
    {"<ADL> <A> ", "A{}"},
    {"<ADL> <A> (", "A{}"},
    {"<ADL> <A> (x", "A{}"},
    {"<ADL> <A> (x)", "A{x:}"},
    {"<ADL> <A> ()", "A{:}"},
    {"<ADL> <A> (x) ", "A{x:}"},
    {"<ADL> <A> (x) 1", "A{x:1}"},
    {"<ADL> <A> (x) 1 ", "A{x:1}"},
    {"<ADL> <A> (x) 1 23", "A{x:1|23}"},
    {"<ADL> <A> (x) 1 (", "A{x:1}"},
    {"<ADL> <A> (x) 1 (y)", "A{x:1; y:}"},
    {"<ADL> <A> (x) \"", "A{x:\"}"},
    {"<ADL> <A> (x) \"a", "A{x:\"a}"},
    {"<ADL> <A> (x) \"a b ", "A{x:\"a b }"},
    {"<ADL> <A> (x) \"a\"", "A{x:\"a\"}"},
    {"<ADL> <A> (x) \"a\x1B\"", "A{x:\"a\x1B\"}"},
    {"<ADL> <A> (x) \"a\x1B", "A{x:\"a\x1B}"},
    {"<ADL> <A> (x) 1 <", "A{x:1}"},
    {"<ADL> <A> (x) 1 </", "A{x:1}"},
    {"<ADL> <A> (x) 1 </A", "A{x:1}"},
    {"<ADL> <A> (x) 1 </A>", "A{x:1}"},
    {"<ADL> <A> (x) 1 </A> ", "A{x:1}"},
    {"<ADL> <A> (x) 1 </A> <", "A{x:1} {}"},
    {"<ADL> <A> (x) 1 </A> </", "A{x:1} {}"},
    {"<ADL> <A> (x) 1 </A> </ADL", "A{x:1} /AD{}"},
    {"<ADL> <LONGNAME> (x) 1 </LONG", "LONGNAME{x:1}"},
    {"<ADL> <A> /", "A{}"},
    {"<ADL> /", ""},
    {"<ADL> <REF_LIST", "REF_LIS{}"},
    {"<ADL> <REF_LIST>", ""},
    {"<ADL> <REF_LIST> ", ""},
    {"<ADL> <REF_LIST> <REF", ""},
    {"<ADL> <REF_LIST> <REF>", ""},
    {"<ADL> <REF_LIST> <REF> <A> (x) 1", ""},
    {"<ADL> <REF_LIST> </REF_LIST", ""},
});

TEST(AdlScannerEnds, keepsWhatThereIs) {
  for (const Cut& row : kCuts) {
    const LoadedProject project(row.adl);
    EXPECT_TRUE(project.ok()) << row.adl;
    EXPECT_EQ(Shown(project->sections), row.tree) << row.adl;
    EXPECT_EQ(project->comments.size(), 0U) << row.adl;
  }
}

struct CutComment {
  std::string_view adl;
  std::string_view tree;
  std::string_view comment;
};

TEST(AdlScannerEnds, cutCommentIsKeptAndEndsThere) {
  constexpr auto kRows = std::to_array<CutComment>({
      {"<ADL> /*", "", ""},
      {"<ADL> /*a", "", "a"},
      {"<ADL> /* a b ", "", " a b "},
      {"<ADL> /* a *", "", " a *"},
      {"<ADL> /* a */", "", " a "},
      {"<ADL> /*/", "", "/"},
      {"<ADL> <A> /*", "A{}", ""},
      {"<ADL> <A> /* a", "A{}", " a"},
      {"<ADL> <A> /* (x) 1 </A> <B> ", "A{}", " (x) 1 </A> <B> "},
      {"<ADL> <A> /*/", "A{}", "/"},
      {"<ADL> <A> (x)3 ab /* c", "A{x:ab}", " c"},
  });
  for (const CutComment& row : kRows) {
    const LoadedProject project(row.adl);
    EXPECT_TRUE(project.ok()) << row.adl;
    EXPECT_EQ(Shown(project->sections), row.tree) << row.adl;
    ASSERT_EQ(project->comments.size(), 1U) << row.adl;
    EXPECT_EQ(ShownTexts(project->comments), row.comment) << row.adl;
  }
}

TEST(AdlScannerEnds, blockHoldsTheFileAndOneSpareNul) {
  for (const Cut& row : kCuts) {
    const LoadedProject project(row.adl);
    ASSERT_EQ(project->bufferEnd - project->buffer, static_cast<std::ptrdiff_t>(row.adl.size()))
        << row.adl;
    EXPECT_EQ(*project->bufferEnd, '\0') << row.adl;
  }
}

}  // namespace
}  // namespace velmora::test
