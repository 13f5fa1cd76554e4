// Edits of boxes in a program that runs out of memory: an edit is made as a whole or not at all.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "Model/ModelFixture.h"
#include "Support/OwnNew.h"

namespace {

int allocationsLeft = -1;  ///< before one fails; below 0 none does

}  // namespace

bool velmora::test::RefusesMemory(std::size_t) noexcept {
  return allocationsLeft >= 0 && allocationsLeft-- == 0;
}

namespace velmora {
namespace {

using Texts = std::vector<std::string>;

class ModelMemory : public test::ModelTest {
 protected:
  /// Everything that the edit of a track changes, the message aside.
  Texts State() {
    Texts state;
    for (std::int32_t row = 0; row < model.trackEnable.Rows(); ++row) {
      state.push_back("track " + std::to_string(static_cast<int>(*model.trackEnable.At(row))));
    }
    for (std::size_t i = 0; i < model.project->events.size(); ++i) {
      state.push_back("event " + std::to_string(model.project->events[i].trackOn) + " " +
                      std::to_string(static_cast<int>(model.eventEnable.at(i))));
    }
    for (std::int32_t row = 0; row < model.Rows().Size(); ++row) {
      state.push_back("row " + std::to_string(model.Rows().Index(row)));
    }
    return state;
  }
  /// Lets each allocation of the edit fail in turn.
  void ExpectWholeOrNothing(const std::function<void()>& edit) {
    bool failed = true;
    for (int n = 0; failed; ++n) {
      ASSERT_TRUE(LoadCuts({{.track = 1}, {.track = 2}, {.track = 2}}));
      const Texts before = State();
      allocationsLeft = n;
      edit();
      failed = allocationsLeft < 0;
      allocationsLeft = -1;
      EXPECT_EQ(model.errorMessage == "Out of memory.", failed) << n;
      EXPECT_EQ(State() == before, failed) << n;
      ASSERT_LT(n, 1000);
    }
  }
};

TEST_F(ModelMemory, aTrackIsEditedWhollyOrNotAtAll) {
  ExpectWholeOrNothing([this] { model.SetTrackBox(1, false); });
}

TEST_F(ModelMemory, allTracksAreEditedWhollyOrNotAtAll) {
  ExpectWholeOrNothing(
      [this] { model.SetTrackBoxes([](std::int32_t track) { return track != 2; }); });
}

}  // namespace
}  // namespace velmora
