#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "ADL/AES31Project.h"
#include "LoadedProject.h"
#include "Support/CpuTime.h"

namespace velmora::test {
namespace {

std::string ManyEventLists(int sections) {
  std::string adl = "<ADL>\n";
  for (int i = 0; i < sections; ++i) {
    adl += "<EVENT_LIST>\n(Entry) " + std::to_string(i) + " (Vid) a b c d\n</EVENT_LIST>\n";
  }
  return adl + "</ADL>\n";
}

/// The least of several runs: what a busy machine adds comes and goes.
double SecondsToLoad(const std::string& path, int sections) {
  double least = 1e9;
  for (int run = 0; run < 3; ++run) {
    least = std::min(least, CpuSeconds([&] {
                       bool ok = false;
                       const AES31Project project(path.c_str(), nullptr, &ok);
                       ASSERT_TRUE(ok);
                       ASSERT_EQ(project.events.size(), static_cast<std::size_t>(sections));
                     }));
  }
  return least;
}

// Four times the sections cost four times the time, where a quadratic reader would take sixteen.
TEST(ManySections, EventListsCostTimeInProportion) {
  const TemporaryFolder folder;
  const double few = SecondsToLoad(folder.Write("few.adl", ManyEventLists(10000)), 10000);
  const double many = SecondsToLoad(folder.Write("many.adl", ManyEventLists(40000)), 40000);
  EXPECT_LT(many, 9 * few + 0.05) << "10,000 sections took " << few << " s";
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
