// Whatever is done to a text, it is read: in bounds, with every piece of the tree inside the text.

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "Field/EntryTexts.h"
#include "Field/FieldProject.h"
#include "Field/TextPlaces.h"
#include "Support/TemporaryFolder.h"

namespace velmora::field {
namespace {

using std::string_view_literals::operator""sv;

std::vector<std::string> ExampleProjects() {
  std::vector<std::string> texts;
  for (const auto& file : std::filesystem::recursive_directory_iterator(VELMORA_EXAMPLES)) {
    if (file.path().extension() == ".adl")
      texts.push_back(test::TemporaryFolder::Read(file.path().string()));
  }
  return texts;
}

void ExpectInside(const Project& project, std::string_view piece) {
  const char* const begin = project.bytes.data();
  ASSERT_GE(piece.data(), begin);
  ASSERT_LE(piece.data() + piece.size(), begin + project.bytes.size());
}

void ExpectSound(const Project& project) {
  const Tree& tree = project.tree;
  const TextPlaces places(project.bytes);
  std::uint32_t entries = 0;
  for (const Section& section : tree.sections) {
    ASSERT_GE(section.firstEntry, entries);
    entries = section.firstEntry + section.entryCount;
    ExpectInside(project, section.name);
  }
  ASSERT_LE(entries, tree.entries.size());
  std::uint32_t values = 0;
  for (const Entry& entry : tree.entries) {
    ASSERT_EQ(entry.firstValue, values);
    values += entry.valueCount;
    ExpectInside(project, entry.label);
    ASSERT_GE(places.At(tree.OffsetOf(entry)).column, 1);
    (void)ReadCutTexts(tree, entry);
    (void)ReadSourceTexts(tree, entry);
    (void)ReadFadeTexts(tree, entry);
    (void)ReadNameText(tree, entry);
  }
  ASSERT_EQ(values, tree.values.size());
  for (const Value& value : tree.values) {
    ExpectInside(project, value.text);
    ExpectInside(project, tree.RawText(value));
  }
  std::size_t at = 0;
  for (const Stray& stray : tree.strays) {
    ExpectInside(project, stray.text);
    ASSERT_GE(tree.OffsetOf(stray.text), at) << "in file order";
    at = tree.OffsetOf(stray.text);
    if (stray.entry) {
      ASSERT_LT(*stray.entry, tree.entries.size());
    }
  }
  for (const std::string_view comment : tree.comments) ExpectInside(project, comment);
  for (const Event& event : project.events) {
    ASSERT_LT(event.place, event.endPlace);
    ASSERT_LE(event.endPlace, tree.entries.size());
    if (event.source) {
      ASSERT_LT(*event.source, project.sources.size());
    }
  }
}

constexpr auto kPieces = std::to_array<std::string_view>({"<ADL>",
                                                          "</ADL>",
                                                          "<EVENT_LIST>",
                                                          "</EVENT_LIST>",
                                                          "<REF_LIST>",
                                                          "</REF_LIST>",
                                                          "<REF>",
                                                          "<",
                                                          "</",
                                                          ">",
                                                          "(",
                                                          ")",
                                                          "(Entry)",
                                                          "(Cut)",
                                                          "(Rem) NAME",
                                                          "(x)9",
                                                          "(x)0",
                                                          "\"",
                                                          "\x1B\"",
                                                          "/*",
                                                          "*/",
                                                          "/*/",
                                                          "\n",
                                                          "\r",
                                                          " ",
                                                          "_",
                                                          "\0"sv,
                                                          "\x82",
                                                          "\xC3\xA4",
                                                          "1~2",
                                                          "00:00:00:00/0000",
                                                          "<a b>",
                                                          "(a b)"});

TEST(Mutation, everyTextIsRead) {
  const std::vector<std::string> examples = ExampleProjects();
  ASSERT_FALSE(examples.empty());
  std::mt19937 random(11);
  for (int round = 0; round < 1500; ++round) {
    std::string text = examples[random() % examples.size()];
    for (auto changes = 1 + random() % 6; changes > 0; --changes) {
      const std::size_t at = random() % (text.size() + 1);
      switch (random() % 4) {
        case 0:
          text.insert(at, kPieces[random() % kPieces.size()]);
          break;
        case 1:
          text.erase(at, random() % 40);
          break;
        case 2:
          if (at < text.size()) text[at] = static_cast<char>(random() % 256);
          break;
        default:
          if (random() % 4 == 0) text.resize(at);
          break;
      }
    }
    const auto project = ReadProject(text, "/nowhere/p.adl", {});
    ASSERT_NO_FATAL_FAILURE(ExpectSound(*project)) << "round " << round << "\n" << text;
  }
}

TEST(Mutation, everyEndOfATextIsRead) {
  for (const std::string& example : ExampleProjects()) {
    std::size_t events = 0;
    for (std::size_t size = 0; size <= example.size(); ++size) {
      const auto project = ReadProject(example.substr(0, size), "/nowhere/p.adl", {});
      ASSERT_NO_FATAL_FAILURE(ExpectSound(*project)) << size;
      ASSERT_GE(project->events.size(), events) << "a longer text has no fewer events, " << size;
      events = project->events.size();
    }
    EXPECT_GT(events, 0U);
  }
}

}  // namespace
}  // namespace velmora::field
