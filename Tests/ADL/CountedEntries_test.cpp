#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

struct Counted {
  std::string_view rule;
  std::string_view entries;  ///< after "<ADL> <A> "
  std::string_view tree;
};

// (label)N: the value is the N - 1 bytes after one separator, whatever they are.
TEST(CountedEntries, values) {
  constexpr auto kRows = std::to_array<Counted>({
      {"carriesParenthesesAndBrackets", "(x)9 a (b) <c (y) 1 </A> </ADL>", "A{x:a (b) <c; y:1}"},
      {"carriesAQuotationMark", "(x)4 \"a  (y) 1 </A> </ADL>", "A{x:\"a ; y:1}"},
      {"carriesLineFeeds", "(x)4 a\nb\n(y) 1 </A> </ADL>", "A{x:a\nb; y:1}"},
      {"carriesNonAscii", "(x)3 \x82\xA0 (y) 1 </A> </ADL>", "A{x:\x82\xA0; y:1}"},
      {"separatorIsNotLookedAt", "(x)3\nab (y) 1 </A> </ADL>", "A{x:ab; y:1}"},
      {"separatorMayBeNonAscii",
       "(x)3\x80"
       "ab (y) 1 </A> </ADL>",
       "A{x:ab; y:1}"},
      {"byteAfterTheValueIsOverwritten", "(x)3 ab(y) 1 </A> </ADL>", "A{x:ab}"},
      {"leadingZeros", "(x)0003 ab (y) 1 </A> </ADL>", "A{x:ab; y:1}"},
      {"plusAheadOfTheNumber", "(x)+3 ab (y) 1 </A> </ADL>", "A{x:ab; y:1}"},
      {"lettersAfterTheNumber", "(x)3abc ab (y) 1 </A> </ADL>", "A{x:ab; y:1}"},
      {"lastParenthesisCounts", "(x)y)3 ab (z) 1 </A> </ADL>", "A{x)y:ab; z:1}"},
      {"emptyLabel", "()3 ab (z) 1 </A> </ADL>", "A{:ab; z:1}"},
      {"zeroRunsToTheNextNul", "(x)0 (y) 1 </A> </ADL>", "A{x:(y; y:1}"},
      {"zeroAheadOfAWordRunsToTheEnd", "(x)0 ab (y) 1 </A> </ADL>", "A{x:ab (y) 1 </A> </ADL>}"},
      {"noNumberIsZero", "(x)abc (y) 1 </A> </ADL>", "A{x:(y; y:1}"},
      {"negativeIsZero", "(x)-5 (y) 1 </A> </ADL>", "A{x:(y; y:1}"},
      {"farNegativeIsZero", "(x)-99999999999999999999 (y) 1 </A> </ADL>", "A{x:(y; y:1}"},
      {"beyondTheEndIsCutThere", "(x)999 ab (y) 1 </A> </ADL>", "A{x:ab (y) 1 </A> </ADL>}"},
      {"beyond32BitsIsCutAtTheEnd", "(x)99999999999999999999 ab (y) 1 </A>", "A{x:ab (y) 1 </A>}"},
      {"highest32BitNumberIsCutAtTheEnd", "(x)2147483647 ab", "A{x:ab}"},
      {"exactlyToTheEnd", "(x)3 ab", "A{x:ab}"},
      {"oneShortOfTheEnd", "(x)3 ab ", "A{x:ab}"},
      {"closedByItsSection", "(x)3 ab</A> <B> </B> </ADL>", "A{x:ab}"},
  });
  for (const Counted& row : kRows) {
    const LoadedProject project("<ADL> <A> " + std::string(row.entries));
    EXPECT_TRUE(project.ok()) << row.rule;
    EXPECT_EQ(Shown(project->sections), row.tree) << row.rule;
  }
}

TEST(CountedEntries, emptyValueIsAValue) {
  constexpr auto kRows = std::to_array<Counted>({
      {"one", "(x)1  (y) 1 </A> </ADL>", "A{x:; y:1}"},
      {"oneOverwritesALabel", "(x)1 (y) 1 </A> </ADL>", "A{x:}"},
      {"endsAtTheToken", "(x)3", "A{x:}"},
      {"zeroAtTheEnd", "(x)0", "A{x:}"},
      {"endsAtTheSeparator", "(x)3 ", "A{x:}"},
      {"zeroEndsAtTheSeparator", "(x)0 ", "A{x:}"},
  });
  for (const Counted& row : kRows) {
    const LoadedProject project("<ADL> <A> " + std::string(row.entries));
    EXPECT_EQ(Shown(project->sections), row.tree) << row.rule;
    ASSERT_FALSE(project->sections.empty()) << row.rule;
    ASSERT_FALSE(project->sections[0].entries.empty()) << row.rule;
    ASSERT_EQ(project->sections[0].entries[0].values.size(), 1U) << row.rule;
    EXPECT_STREQ(project->sections[0].entries[0].values[0], "") << row.rule;
  }
}

// An opening parenthesis that is not closed in its token finds the last one before it, be it in
// another entry's value.
TEST(CountedEntries, walksBackPastItsOwnStart) {
  const LoadedProject project("<ADL> <A> (x) \"q)7 z\" (y 1 </A> </ADL>");
  EXPECT_EQ(Shown(project->sections), "A{x:\"q; y 1 </A>:1 </A>}");
}

TEST(CountedEntries, withoutAnyParenthesisBeforeItEndsTheScan) {
  EXPECT_EQ(Shown(LoadedProject("<ADL> <A> (x) 1 (y 2 </A> <B> </B> </ADL>")->sections), "A{x:1}");
  EXPECT_EQ(Shown(LoadedProject("<ADL> <A> ( x ) 1 </A> <B> </B> </ADL>")->sections), "A{}");
}

TEST(CountedEntries, closingParenthesisAsLastByteIsThePlainForm) {
  EXPECT_EQ(Shown(LoadedProject("<ADL> <A> (x)5) ab </A> </ADL>")->sections), "A{x)5:ab}");
}

}  // namespace
}  // namespace velmora::test
