#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

struct Lists {
  std::string_view rule;
  std::string_view adl;
  std::string_view refLists;
  std::string_view sections;
};

TEST(ReferenceLists, blocks) {
  constexpr auto kRows = std::to_array<Lists>({
      {"oneListForEachBlock",
       "<ADL> <REF_LIST> <REF> <A> (x) 1 </A> <B> </B> </REF> <REF> <C> (y) 2 </C> </REF> "
       "</REF_LIST> <D> (z) 3 </D> </ADL>",
       "[A{x:1} B{}][C{y:2}]", "D{z:3}"},
      {"emptyBlock", "<ADL> <REF_LIST> <REF> </REF> </REF_LIST> <D> </D> </ADL>", "[]", "D{}"},
      {"emptyList", "<ADL> <REF_LIST> </REF_LIST> <D> </D> </ADL>", "", "D{}"},
      {"anyCase", "<ADL> <ref_list> <Ref> <A> </A> </rEF> </Ref_List> <D> </D> </ADL>", "[A{}]",
       "D{}"},
      {"longerTagsOfTheSamePrefix",
       "<ADL> <REF_LIST>ing <REF>x <A> </A> </REF>y </REF_LIST>z <D> </D> </ADL>", "[A{}]", "D{}"},
      {"otherTokensArePassedOver",
       "<ADL> <REF_LIST> (x) 1 <A> \"two words\" </A> <REF> <B> </B> </REF> stray </REF_LIST> "
       "<D> </D> </ADL>",
       "[B{}]", "D{}"},
      {"tagWithoutBracketIsPassedOver",
       "<ADL> <REF_LIST> <REF <REFX> <REF> <B> </B> </REF> </REF_LIST> <D> </D> </ADL>", "[B{}]",
       "D{}"},
      {"outerClosingTagInsideIsPassedOver",
       "<ADL> <REF_LIST> </ADL> <REF> <B> </B> </REF> </REF_LIST> <D> </D> </ADL>", "[B{}]", "D{}"},
      {"nestedListStandsBeforeTheOneAroundIt",
       "<ADL> <REF_LIST> <REF> <A> </A> <REF_LIST> <REF> <B> </B> </REF> </REF_LIST> <C> </C> "
       "</REF> </REF_LIST> <D> </D> </ADL>",
       "[B{}][A{} C{}]", "D{}"},
      {"blockOutsideAListIsASection", "<ADL> <REF> (x) 1 </REF> <D> </D> </ADL>", "",
       "REF{x:1} D{}"},
      {"listInsideASectionEndsTheScan",
       "<ADL> <A> (x) 1 <REF_LIST> <REF> <B> </B> </REF> </REF_LIST> </A> <D> </D> </ADL>", "",
       "A{x:1}"},
      {"failedBlockDropsItsListAndEndsTheScan",
       "<ADL> <Z> </Z> <REF_LIST> <REF> <A> </A> </REF> <REF> <B> </B> stray </REF> </REF_LIST> "
       "<D> </D> </ADL>",
       "[A{}]", "Z{}"},
      {"failedSectionFailsItsBlock",
       "<ADL> <REF_LIST> <REF> <B> stray </B> </REF> </REF_LIST> <D> </D> </ADL>", "", ""},
      {"failureRunsUpThroughEveryLevel",
       "<ADL> <REF_LIST> <REF> <A> </A> <REF_LIST> <REF> <B> </B> </REF> <REF> stray </REF> "
       "</REF_LIST> </REF> </REF_LIST> <D> </D> </ADL>",
       "[B{}]", ""},
      {"blockThatEndsWithTheFileIsKept", "<ADL> <REF_LIST> <REF> <A> (x) 1 </A> </REF>", "[A{x:1}]",
       ""},
      {"sectionThatEndsWithTheFileFailsItsBlock", "<ADL> <REF_LIST> <REF> <A> (x) 1 </A>", "", ""},
      {"closingTagOfTheOuterSectionIsASectionInABlock",
       "<ADL> <REF_LIST> <REF> </ADL> </REF> </REF_LIST> <D> </D> </ADL>", "", ""},
      {"listClosedTwiceOpensASection", "<ADL> <REF_LIST> </REF_LIST> </REF_LIST> (x) 1 </ADL>", "",
       "/REF_LIST{x:1}"},
  });
  for (const Lists& row : kRows) {
    const LoadedProject project(row.adl);
    EXPECT_TRUE(project.ok()) << row.rule;
    EXPECT_EQ(Shown(project->refLists), row.refLists) << row.rule;
    EXPECT_EQ(Shown(project->sections), row.sections) << row.rule;
  }
}

TEST(ReferenceLists, commentBetweenBlocksIsNoComment) {
  const LoadedProject project(
      "<ADL> <REF_LIST> /* <REF> <A> </A> </REF> */ </REF_LIST> <D> </D> </ADL>");
  EXPECT_EQ(Shown(project->refLists), "[A{}]");
  EXPECT_EQ(Shown(project->sections), "D{}");
  EXPECT_TRUE(project->comments.empty());
}

TEST(ReferenceLists, commentInsideABlockIsOne) {
  const LoadedProject project("<ADL> <REF_LIST> <REF> /* a */ </REF> </REF_LIST> </ADL>");
  EXPECT_EQ(Shown(project->refLists), "[]");
  EXPECT_EQ(ShownTexts(project->comments), " a ");
}

TEST(ReferenceLists, areNotReadForConstantsOrEvents) {
  const LoadedProject project(
      "<ADL> <REF_LIST> <REF> <PROJECT> (PROJ_TITLE) x </PROJECT> <EVENT_LIST> (Entry) 1 (Rem) "
      "</EVENT_LIST> </REF> </REF_LIST> </ADL>");
  EXPECT_TRUE(project.ok());
  EXPECT_EQ(project->GetConstant(5), nullptr);
  EXPECT_EQ(project->GetEventCount(), 0);
}

std::string Nested(std::size_t depth, bool closed) {
  std::string adl = "<ADL> <BEFORE> </BEFORE> ";
  for (std::size_t i = 0; i < depth; ++i) adl += "<REF_LIST> <REF> ";
  adl += "<A> (x) 1 </A> ";
  if (closed) {
    for (std::size_t i = 0; i < depth; ++i) adl += "</REF> </REF_LIST> ";
    adl += "<AFTER> </AFTER> </ADL>";
  }
  return adl;
}

TEST(ReferenceLists, nestBelowDepth256WithoutLoss) {
  const LoadedProject project(Nested(255, true));
  ASSERT_EQ(project->refLists.size(), 255U);
  EXPECT_EQ(Shown(project->refLists.front()), "A{x:1}");
  for (std::size_t i = 1; i < 255; ++i) EXPECT_TRUE(project->refLists[i].empty()) << i;
  EXPECT_EQ(Shown(project->sections), "BEFORE{} AFTER{}");
}

// Deeper nesting either goes on or fails as any block fails; it never exhausts the stack.
TEST(ReferenceLists, nestToAnyDepthOrFailAsABlockDoes) {
  for (const std::size_t depth : {256U, 257U, 300U, 5'000U, 200'000U}) {
    const LoadedProject project(Nested(depth, true));
    EXPECT_TRUE(project.ok());
    if (project->refLists.empty()) {
      EXPECT_EQ(Shown(project->sections), "BEFORE{}") << depth;
    } else {
      EXPECT_EQ(project->refLists.size(), depth);
      EXPECT_EQ(Shown(project->sections), "BEFORE{} AFTER{}") << depth;
    }
  }
}

TEST(ReferenceLists, deepNestingMayEndWithTheFile) {
  for (const std::size_t depth : {1U, 255U, 256U, 5'000U, 200'000U}) {
    EXPECT_EQ(Shown(LoadedProject(Nested(depth, false))->sections), "BEFORE{}") << depth;
  }
}

}  // namespace
}  // namespace velmora::test
