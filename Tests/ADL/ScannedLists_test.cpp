#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "LoadedProject.h"

namespace velmora::test {
namespace {

// Lists that the scanner made find their texts again in the block; lists that somebody wrote to are
// arrays. Both have to show the same.

std::string ShownAsArrays(std::vector<AES31Section> sections) {
  for (AES31Section& section : sections) {
    for (AES31Entry& entry : section.entries) entry.values.AsArray();
  }
  return Shown(sections);
}

TEST(ScannedLists, areTheSameAsArrays) {
  const auto rows = std::to_array<std::string>({
      "(a) 1 2 (b) (c) \"x y\" z",
      "(a) \"in \x1B\" quotes\" (b) \"no end",
      "/* first */ (a) 1 (b) 2",
      "(a)3 () (b) 1 (c)0 (d)99 cut by the end",
      "(a)3 () /* between */ (b) 1 /* a value */ (c) 2",
      "(a) 1)2 \"3)\" (b 4 (c) 5",
      "(a)b) x)y (b 4 (c)b) 5 (d)2 )(e) 6",
      "() ()2 x (()) 1",
      "(a) \"1\"2 \"3\"\"4\" (b)",
      "(a) \"nul " + std::string(1, '\0') + " inside\" b",
  });
  for (const std::string& row : rows) {
    for (const char* const end : {"", " ", " </A> <B> (x) 1 </B> </ADL>"}) {
      const LoadedProject project("<ADL> <A> " + row + end);
      ASSERT_FALSE(project->sections.empty()) << row << end;
      EXPECT_EQ(Shown(project->sections), ShownAsArrays(project->sections)) << row << end;
    }
  }
}

TEST(ScannedLists, giveEachEntryByItsPlace) {
  std::string adl = "<ADL> <A> ";
  constexpr std::size_t kEntries = 200;
  for (std::size_t i = 0; i < kEntries; ++i) {
    adl += "(l" + std::to_string(i) + (i % 3 == 0 ? ")3 ab " : ") v" + std::to_string(i) + " w ");
  }
  const LoadedProject project(adl + "</A> </ADL>");
  const AES31Section& section = project->sections.at(0);
  ASSERT_EQ(section.entries.size(), kEntries);
  for (std::size_t i = 0; i < kEntries; ++i) {
    EXPECT_EQ(Shown(section.entries[i].label), "l" + std::to_string(i));
    const auto at = section.entries.From(i);
    EXPECT_EQ(at->label, section.entries.at(i).label);
    EXPECT_EQ(at->values.back(), section.entries[i].values.back());
    EXPECT_EQ(std::distance(at, section.entries.end()), static_cast<std::ptrdiff_t>(kEntries - i));
  }
  EXPECT_TRUE(section.entries.From(kEntries) == section.entries.end());
  EXPECT_EQ(Shown(section.entries.front().label), "l0");
  EXPECT_EQ(Shown(section.entries.back().label), "l199");
  EXPECT_THROW(static_cast<void>(section.entries.at(kEntries)), std::out_of_range);
}

TEST(ScannedLists, linesBeginWithAnyEntryAndHaveAllOfItsValues) {
  std::string adl = "<ADL> <A> ";
  constexpr std::size_t kEntries = 150;
  for (std::size_t i = 0; i < kEntries; ++i) {
    adl += "(l" + std::to_string(i) + (i % 5 == 0 ? ")3 ab " : ")");
    for (std::size_t value = 0; i % 5 != 0 && value < i % 12; ++value) {
      adl += value % 3 == 0 ? " \"a (b) \x1B\" c\"" : " v" + std::to_string(value);
    }
    adl += "\n";
  }
  const LoadedProject project(adl + "</A> </ADL>");
  AES31Section arrays = project->sections.at(0);
  for (AES31Entry& entry : arrays.entries) entry.values.AsArray();
  const AES31Section& written = arrays;
  const AES31Section& scanned = project->sections.at(0);
  for (const AES31Entries* const entries : {&scanned.entries, &written.entries}) {
    for (std::size_t first = 0; first <= kEntries; first += 15) {
      EntryLines lines(*entries, first);
      EntryLine line;
      for (std::size_t i = first; i < kEntries; ++i) {
        ASSERT_TRUE(lines.Next(line));
        ASSERT_EQ(line.label, (*entries)[i].label) << i << " from " << first;
        ASSERT_TRUE(lines.ValuesOf(line) == (*entries)[i].values) << i << " from " << first;
      }
      ASSERT_FALSE(lines.Next(line));
    }
  }
}

TEST(ScannedLists, copiesAreBoundToTheBlockAndChangeAlone) {
  const LoadedProject project("<ADL> <A> (a) 1 2 (b) 3 </A> </ADL>");
  AES31Section copy = project->sections[0];
  AES31Section moved = std::move(copy);
  EXPECT_EQ(Shown(moved), "A{a:1|2; b:3}");
  moved.entries[0].values[1] = "new";
  moved.entries[1].values.push_back("more");
  moved.entries.push_back({"c", {"x"}});
  moved.entries.emplace_back("d", AES31Values{"y", "z"});
  EXPECT_EQ(Shown(moved), "A{a:1|new; b:3|more; c:x; d:y|z}");
  EXPECT_EQ(Shown(project->sections), "A{a:1|2; b:3}");

  copy = moved;
  copy.entries.front().values.clear();
  copy.entries.pop_back();
  EXPECT_EQ(Shown(copy), "A{a:; b:3|more; c:x}");
  copy.entries = {{"e", {"1"}}};
  EXPECT_EQ(Shown(copy), "A{e:1}");
  copy.entries.clear();
  EXPECT_TRUE(copy.entries.empty());
  EXPECT_EQ(Shown(moved), "A{a:1|new; b:3|more; c:x; d:y|z}");
}

// The number of values has 16 bits beside the place of the first.
TEST(ScannedLists, holdMoreValuesThanTheyCount) {
  for (const std::size_t count : {65535U, 65536U, 70001U}) {
    std::string adl = "<ADL> <A> (a) ";
    for (std::size_t i = 0; i < count; ++i) adl += std::to_string(i) + " ";
    const LoadedProject project(adl + "</A> </ADL>");
    const AES31Section& section = project->sections.at(0);
    const AES31Values values = section.entries[0].values;
    ASSERT_EQ(values.size(), count);
    std::size_t place = 0;
    for (const char* const value : values) ASSERT_EQ(value, std::to_string(place++));
    EXPECT_EQ(place, count);
  }
}

TEST(ScannedLists, readersTakeListsMadeByHandAndTwice) {
  const LoadedProject project(WithEvents("(Entry) 2 (Vid) a b c d (Rem) x"));
  const AES31Section section = project->sections.at(0);
  EXPECT_TRUE(project->CheckEventList(section));
  EXPECT_TRUE(project->CheckEventList(
      {"EVENT_LIST", {{"Entry", {"7"}}, {"Cut", {"I", "1", "2", "3", "i", "d", "o", "_"}}}}));
  ASSERT_EQ(project->GetEventCount(), 3);
  EXPECT_EQ(project->events[1].entryNumber, 2);
  EXPECT_EQ(project->events[1].vid.vidText3, project->events[0].vid.vidText3);
  EXPECT_EQ(project->events[2].entryNumber, 7);
  EXPECT_STREQ(project->events[2].cut.cutTail, "_");
}

}  // namespace
}  // namespace velmora::test
