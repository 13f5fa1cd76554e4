#include <gtest/gtest.h>

#include <string>

#include "ADL/AES31Project.h"
#include "LoadedProject.h"

namespace velmora::test {
namespace {

TEST(ManySections, EveryEventListIsRead) {
  constexpr int kSections = 40000;
  std::string adl = "<ADL>\n";
  for (int i = 0; i < kSections; ++i) {
    adl += "<EVENT_LIST>\n(Entry) " + std::to_string(i) + " (Vid) a b c d\n</EVENT_LIST>\n";
  }
  const LoadedProject project(adl + "</ADL>\n");
  ASSERT_TRUE(project.ok());
  EXPECT_EQ(project->events.size(), static_cast<std::size_t>(kSections));
}

// The sections' events follow each other, each section's by its own numbers.
TEST(ManySections, EventsOfASectionFollowThoseOfTheOneBefore) {
  const LoadedProject project(
      "<ADL> <EVENT_LIST> (Entry) 9 (Vid) a b c d (Entry) 3 (Vid) a b c d </EVENT_LIST>"
      " <EVENT_LIST> (Entry) 3 (Vid) e b c d (Entry) 1 (Vid) e b c d </EVENT_LIST> </ADL>");
  ASSERT_TRUE(project.ok());
  std::string numbers;
  for (const AES31Event& event : project.loading.project->events) {
    numbers += event.vid.vidText0 + std::to_string(event.entryNumber) + " ";
  }
  EXPECT_EQ(numbers, "a3 a9 e1 e3 ");
}

}  // namespace
}  // namespace velmora::test
