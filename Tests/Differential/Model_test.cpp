#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Description.h"
#include "RandomAdl.h"
#include "Support/TemporaryFolder.h"
#include "TwinModels.h"

// The view's model and its tables, held against lists of texts that are made anew after every
// change.

namespace velmora::test::differential {
namespace {

class ModelDifferential : public testing::Test {
 protected:
  ModelDifferential() {
    for (const char* const name : {"a.wav", "s/b.wav", "c.wav"}) folder_.Write(name, "RIFF");
  }

  /// A model's life: each text is loaded and edited. Returns what was different, and all that
  /// happened until then; empty if nothing was.
  std::string DifferenceOf(const std::vector<std::string>& texts, std::uint32_t seed) {
    TwinModels models(folder_);
    RandomAdl random(seed);
    for (const std::string& text : texts) {
      models.Load(text);
      for (int edits = 0; edits <= 8; ++edits) {
        if (edits > 0) models.EditSomething(random);
        if (!models.Difference().empty()) return models.Difference() + "\nafter\n" + models.Notes();
      }
      if (random.OneIn(2)) models.SetSpotRunning(false);
    }
    return {};
  }

  template <class Make>
  void TryRandom(std::uint32_t rounds, const Make& make) {
    for (std::uint32_t seed = 1; seed <= Rounds(rounds) && !HasFailure(); ++seed) {
      RandomAdl random(seed);
      std::vector<std::string> texts = {make(random), make(random), make(random)};
      if (DifferenceOf(texts, seed).empty()) continue;
      for (std::string& text : texts)
        text = Shrunk(text, [&](const std::string& shorter) {
          std::string whole = shorter;
          text.swap(whole);
          const bool fails = !DifferenceOf(texts, seed).empty();
          text.swap(whole);
          return fails;
        });
      ADD_FAILURE() << "seed " << seed << "\n" << DifferenceOf(texts, seed);
    }
  }

  TemporaryFolder folder_;
};

TEST_F(ModelDifferential, NothingLoaded) {
  TwinModels models(folder_);
  EXPECT_EQ(models.Difference(), "");
  models.SetTrackBox(0, false);
  models.SetEventBox(0, false);
  EXPECT_EQ(models.Difference(), "");
}

TEST_F(ModelDifferential, ProjectsForTables) {
  TryRandom(80, [](RandomAdl& random) { return random.TableText(); });
}

TEST_F(ModelDifferential, ProjectsThatMayNotLoad) {
  TryRandom(60, [](RandomAdl& random) {
    switch (random.Below(4)) {
      case 0:
        return random.Damaged(random.TableText());
      case 1:
        return random.SoundText();
      case 2:
        return std::string("<ADL>\n<EVENT_LIST>\n(Entry) 1 (Silence) 1 a b c\n");
      default:
        return random.TableText();
    }
  });
}

}  // namespace
}  // namespace velmora::test::differential
