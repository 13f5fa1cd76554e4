// What a check calls clean spots with every cut, whole and at its place; and what does not load has
// a finding that says so. Held against the system itself, on projects that are damaged at random.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "CheckFixture.h"
#include "DamagedText.h"
#include "Model/ViewModel.h"
#include "Spot/SpotWorker.h"
#include "Support/Meaning.h"

namespace velmora::check {
namespace {

class Guarantee : public CheckTest {};

TEST_F(Guarantee, cleanMeansSpottedAndWhatDoesNotLoadFails) {
  testing::internal::CaptureStderr();  // the system's own words about odd projects
  std::size_t clean = 0;
  std::size_t refused = 0;
  std::string faults;
  const char* const more = std::getenv("VELMORA_SEEDS");
  const std::uint32_t seeds = more != nullptr ? static_cast<std::uint32_t>(std::stoul(more)) : 1500;
  for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
    std::mt19937 random(seed);
    const std::string text = Damaged(kClean, random);
    const CheckedProject checked = Check(text);
    ViewModel model;
    const bool loads = model.LoadFile(folder_.Path("p.adl"));
    if (!loads) {
      ++refused;
      if (checked.Count(Severity::Fails) == 0) {
        faults += "seed " + std::to_string(seed) + " does not load:\n" + Told(checked.findings);
      }
    }
    if (checked.verdict != Verdict::Clean || checked.project->events.empty()) continue;
    ++clean;
    const std::string meant = test::Meant(checked);
    const std::string spotted = loads ? test::Spotted(model, RunSpot) : "nothing";
    if (meant != spotted) {
      faults += "seed " + std::to_string(seed) + " meant\n" + meant + "spotted\n" + spotted + text;
    }
    if (faults.size() > 20000) break;
  }
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(faults, "");
  EXPECT_GT(clean, 100U);
  EXPECT_GT(refused, 100U);
}

}  // namespace
}  // namespace velmora::check
