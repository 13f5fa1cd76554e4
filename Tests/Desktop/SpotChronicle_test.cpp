#include "Desktop/Logic/SpotChronicle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "Desktop/Logic/SessionReceiver.h"
#include "Model/Tables.h"
#include "Model/ViewModel.h"
#include "Support/ProjectBuilder.h"
#include "Support/WaveBytes.h"

namespace velmora::desktop {
namespace {

class Quiet : public SpotDisplay {
 public:
  explicit Quiet(std::function<void()> deliver) : deliver_(std::move(deliver)) {}
  void PostReport(std::int32_t) override { deliver_(); }
  void Log(const std::string&) override {}

 private:
  std::function<void()> deliver_;
};

/// Spots as the window does, on the test's own thread.
class SpotChronicleTest : public testing::Test {
 protected:
  std::string Project(const std::string& name, std::int32_t cuts, const std::string& missing = {}) {
    folder_.Write("tone.wav", test::PlainWave({}, std::vector<std::int32_t>(12000, 77)));
    test::ProjectBuilder project;
    project.Source(1, "tone.wav").Source(2, "gone.wav");
    for (std::int32_t i = 0; i < cuts; ++i) {
      test::CutSpec cut;
      cut.destIn = test::Stamp(4800LL * i);
      cut.destOut = test::Stamp(4800LL * (i + 1));
      cut.infade = test::FadeLength(480);
      cut.gainDb = "-3.00";
      project.Cut(cut);
    }
    if (!missing.empty()) {
      test::CutSpec cut;
      cut.source = 2;
      cut.destIn = test::Stamp(960000);
      cut.destOut = test::Stamp(964800);
      project.Cut(cut);
    }
    return project.WriteTo(folder_, name);
  }

  void Load(ViewModel& model, const std::string& path) {
    ASSERT_TRUE(model.LoadFile(path));
    receiver_.Loaded(model.project.get(), path);
  }

  void Spot(ViewModel& model, const SpotOptions& options = {}) {
    SpotQueue queue;
    std::shared_ptr<SpotTask> task;
    Quiet display([&] { task->DeliverReport([](std::int32_t) {}); });
    task =
        queue.Request({model.project, model.numEvents, model.minTrack, model.firstEvent}, options);
    EXPECT_TRUE(task->Execute(receiver_, display, &receiver_));
  }

  test::TemporaryFolder folder_;
  SessionReceiver receiver_{{}};
};

SpotOptions Options() {
  SpotOptions options;
  options.sessionRate = 48000;
  return options;
}

TEST_F(SpotChronicleTest, aSpotTellsWhereItsRegionsCameFromAndWhatIsMissing) {
  const std::string path = Project("one.adl", 2, "gone");
  ViewModel model;
  Load(model, path);
  EXPECT_FALSE(receiver_.HasRecord());
  Spot(model, Options());
  EXPECT_TRUE(receiver_.HasRecord());
  EXPECT_FALSE(receiver_.IsFilling());
  const auto copy = receiver_.Copy();
  EXPECT_EQ(copy->record.projectPath, path);
  EXPECT_EQ(copy->record.title, "one");
  ASSERT_EQ(copy->session.Regions().size(), 2U);
  EXPECT_EQ(copy->session.Regions()[1].origin, (host::RegionOrigin{1, 2, 1, RegionPiece::Main}));
  ASSERT_EQ(copy->record.events.size(), 3U);
  EXPECT_TRUE(copy->record.events[2].isMissing);
  ASSERT_EQ(copy->record.leftOut.size(), 1U);
  EXPECT_EQ(copy->record.leftOut[0].event, 2);
}

TEST_F(SpotChronicleTest, spotsOfOneProjectMakeOneRecord) {
  ViewModel model;
  Load(model, Project("one.adl", 3));
  for (const int only : {0, 2}) {
    for (int i = 0; i < 3; ++i) {
      SetObjectValue(model, "EventListTable", "Space", i, i == only ? 1 : 0);
    }
    Spot(model, Options());
  }
  const auto copy = receiver_.Copy();
  ASSERT_EQ(copy->session.Regions().size(), 2U);
  EXPECT_EQ(copy->session.Regions()[0].origin->event, 0);
  EXPECT_EQ(copy->session.Regions()[1].origin->event, 2);
  EXPECT_TRUE(copy->record.events[0].isOn);
  EXPECT_FALSE(copy->record.events[1].isOn);
  EXPECT_TRUE(copy->record.events[2].isOn);
}

TEST_F(SpotChronicleTest, anotherProjectBeginsANewRecordAndSaysSo) {
  ViewModel first;
  Load(first, Project("one.adl", 2));
  Spot(first, Options());
  ViewModel second;
  Load(second, Project("two.adl", 1));
  Spot(second, Options());
  const auto copy = receiver_.Copy();
  EXPECT_EQ(copy->record.title, "two");
  ASSERT_EQ(copy->session.Regions().size(), 3U);
  EXPECT_EQ(copy->session.Regions()[0].origin, std::nullopt);
  EXPECT_EQ(copy->session.Regions()[2].origin->event, 0);
  const auto tells = [](const host::RecordedMessage& message) {
    return message.text.find("2 regions of earlier spots") != std::string::npos;
  };
  EXPECT_TRUE(std::any_of(copy->record.messages.begin(), copy->record.messages.end(), tells));
}

TEST_F(SpotChronicleTest, fadesAndGainAreFactsUnlessTheyAreRendered) {
  ViewModel model;
  Load(model, Project("one.adl", 1));
  receiver_.SetNative(true);
  Spot(model, Options());
  EXPECT_EQ(receiver_.Copy()->session.Regions()[0].shape, (host::RegionShape{480, 0, -3}));
  EXPECT_TRUE(receiver_.Copy()->record.options.native);

  receiver_.Clear();
  SpotOptions rendered = Options();
  rendered.doFades = 1;
  Spot(model, rendered);
  const auto spotted = receiver_.Copy();
  ASSERT_FALSE(spotted->session.Regions().empty());
  for (const host::SessionRegion& region : spotted->session.Regions()) {
    EXPECT_EQ(region.shape.fadeIn, 0);
  }
  receiver_.Clear();
  receiver_.SetNative(false);
  Spot(model, Options());
  EXPECT_EQ(receiver_.Copy()->session.Regions()[0].shape, host::RegionShape{});
}

TEST_F(SpotChronicleTest, clearForgetsAllOfIt) {
  ViewModel model;
  Load(model, Project("one.adl", 1));
  Spot(model, Options());
  receiver_.Clear();
  EXPECT_FALSE(receiver_.HasRecord());
  EXPECT_FALSE(receiver_.HasRegions());
  EXPECT_TRUE(receiver_.Copy()->record.events.empty());
}

TEST_F(SpotChronicleTest, aCopyStaysAsItIs) {
  ViewModel model;
  Load(model, Project("one.adl", 2));
  Spot(model, Options());
  const auto copy = receiver_.Copy();
  receiver_.Clear();
  Spot(model, Options());
  Spot(model, Options());
  EXPECT_EQ(copy->session.Regions().size(), 2U);
}

}  // namespace
}  // namespace velmora::desktop
