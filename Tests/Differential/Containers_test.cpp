#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "ADL/AES31Project.h"
#include "ADL/AES31Section.h"
#include "RandomAdl.h"
#include "Support/CapturedStandardError.h"
#include "Support/TemporaryFolder.h"

// Sections, entries and values are values of their own, wherever they come from: cut from a file,
// made by hand, copied, moved, or changed after any of these. Held against vectors of pointers.

namespace velmora::test::differential {
namespace {

struct PlainEntry {
  const char* label;
  std::vector<const char*> values;
};
using PlainEntries = std::vector<PlainEntry>;
using Entries = decltype(AES31Section::entries);

PlainEntries PlainOf(const Entries& entries) {
  PlainEntries plain;
  for (const auto& entry : entries) {
    plain.push_back({entry.label, {}});
    for (const char* const value : entry.values) plain.back().values.push_back(value);
  }
  return plain;
}

/// The first entry that is not as it should be, in words; empty if there is none.
std::string DifferenceOf(const PlainEntries& plain, const Entries& entries) {
  if (entries.size() != plain.size() || entries.empty() != plain.empty())
    return "another number of entries";
  for (std::size_t i = 0; i < plain.size(); ++i) {
    const auto& entry = entries[i];
    const PlainEntry& expected = plain[i];
    const std::string at = "entry " + std::to_string(i);
    if (entry.label != expected.label) return at + " has another label";
    if (entry.values.size() != expected.values.size()) return at + " has another number of values";
    if (entry.values.empty() != expected.values.empty()) return at + " is empty or not";
    std::size_t seen = 0;
    for (const char* const value : entry.values)
      if (value != expected.values[seen++]) return at + " goes through other values";
    for (std::size_t value = 0; value < seen; ++value)
      if (entry.values[value] != expected.values[value] ||
          entry.values.at(value) != expected.values[value])
        return at + " has another value";
    if (seen > 0 && (entry.values.front() != expected.values.front() ||
                     entry.values.back() != expected.values.back()))
      return at + " begins or ends with another value";
  }
  return {};
}

/// Lists of entries of both kinds, to which the same happens.
struct Twin {
  Entries entries;
  PlainEntries plain;
};

class ContainersDifferential : public testing::Test {
 protected:
  // What a value may point to: a text of the file, or one that stands elsewhere.
  const char* Somewhere(RandomAdl& random, const AES31Project& project) {
    static const char* const kTexts[] = {"", "\"by hand\"", "0001", "I"};
    const auto size = static_cast<std::uint32_t>(project.bufferEnd - project.buffer);
    return random.OneIn(2) ? kTexts[random.Below(4)] : project.buffer + random.Below(size);
  }

  void Change(RandomAdl& random, const AES31Project& project, std::vector<Twin>& twins) {
    const auto pick = [&random](std::size_t size) {
      return std::size_t{random.Below(static_cast<std::uint32_t>(size))};
    };
    Twin& twin = twins[pick(twins.size())];
    switch (random.Below(8)) {
      case 0:
        twin = twins[pick(twins.size())];
        break;
      case 1: {
        Twin copy = twin;
        twin = std::move(copy);
        break;
      }
      case 2: {
        AES31Entry entry;
        entry.label = Somewhere(random, project);
        twin.entries.push_back(entry);
        twin.plain.push_back({entry.label, {}});
        break;
      }
      case 3: {
        if (twin.plain.empty()) break;
        const std::size_t from = pick(twin.plain.size());
        const AES31Entry entry = twin.entries[from];
        twin.entries.push_back(entry);
        twin.plain.push_back(PlainEntry(twin.plain[from]));
        break;
      }
      default: {
        if (twin.plain.empty()) break;
        const std::size_t at = pick(twin.plain.size());
        if (random.OneIn(6)) {
          twin.entries[at].values.clear();
          twin.plain[at].values.clear();
        } else if (random.OneIn(6)) {
          const std::size_t from = pick(twin.plain.size());
          twin.entries[at].values = twin.entries[from].values;
          twin.plain[at].values = std::vector<const char*>(twin.plain[from].values);
        } else {
          for (std::uint32_t more = 1 + random.Below(4); more > 0; --more) {
            const char* const value = Somewhere(random, project);
            if (random.OneIn(2))
              twin.entries[at].values.push_back(value);
            else
              twin.entries[at].values.emplace_back(value);
            twin.plain[at].values.push_back(value);
          }
        }
        break;
      }
    }
  }

  TemporaryFolder folder_;
};

TEST_F(ContainersDifferential, EntriesThatAreCopiedAndChanged) {
  for (std::uint32_t seed = 1; seed <= Rounds(300); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomAdl random(seed);
    const std::string path = folder_.Path(std::to_string(seed));
    folder_.Write(std::to_string(seed), random.OneIn(2) ? random.SoundText() : random.WildText());
    bool ok = false;
    const CapturedStandardError error;
    const AES31Project project(path.c_str(), nullptr, &ok);
    if (project.buffer == project.bufferEnd) continue;
    std::vector<Twin> twins(1);
    std::vector<PlainEntries> scanned;
    for (const AES31Section& section : project.sections) {
      scanned.push_back(PlainOf(section.entries));
      twins.push_back({section.entries, scanned.back()});
    }
    for (int changes = 40; changes > 0; --changes) {
      Change(random, project, twins);
      for (const Twin& twin : twins) ASSERT_EQ(DifferenceOf(twin.plain, twin.entries), "");
    }
    // What was copied from has not changed.
    for (std::size_t i = 0; i < scanned.size(); ++i)
      ASSERT_EQ(DifferenceOf(scanned[i], project.sections[i].entries), "");
  }
}

TEST_F(ContainersDifferential, SectionsWrittenInBraces) {
  const char* const one = "1";
  const char* const two = "2";
  const AES31Section section{"EVENT_LIST", {{"Entry", {one}}, {"Gain", {one, two}}, {"Rem", {}}}};
  EXPECT_EQ(DifferenceOf({{section.entries[0].label, {one}},
                          {section.entries[1].label, {one, two}},
                          {section.entries[2].label, {}}},
                         section.entries),
            "");
  EXPECT_STREQ(section.entries.front().label, "Entry");
  EXPECT_STREQ(section.entries.back().label, "Rem");
  EXPECT_STREQ(section.entries.at(1).values.back(), "2");
}

}  // namespace
}  // namespace velmora::test::differential
