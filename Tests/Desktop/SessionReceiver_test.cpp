#include "Desktop/Logic/SessionReceiver.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "Spot/RegionSpotter.h"
#include "Support/TemporaryFolder.h"

namespace velmora::desktop {
namespace {

class SessionReceiverTest : public testing::Test {
 protected:
  std::int32_t Spot(std::int64_t position) {
    RegionSpotter spotter(path_.c_str(), 0, 100, receiver_);
    return spotter.SpotRegion(0, position, 1, "Take", false);
  }
  test::TemporaryFolder folder_;
  std::string path_ = folder_.Write("Take.wav", "not a wave file");
  std::atomic<int> notices_ = 0;
  SessionReceiver receiver_{[this] { ++notices_; }};
};

TEST_F(SessionReceiverTest, handsOutWhatLandedSinceTheLastTime) {
  EXPECT_EQ(Spot(0), 0);
  EXPECT_EQ(Spot(100), 0);
  auto regions = receiver_.TakeNew();
  ASSERT_EQ(regions.size(), 2U);
  EXPECT_EQ(regions[1].position, 100);
  EXPECT_EQ(regions[1].path, path_);
  EXPECT_TRUE(receiver_.TakeNew().empty());
  EXPECT_EQ(Spot(200), 0);
  regions = receiver_.TakeNew();
  ASSERT_EQ(regions.size(), 1U);
  EXPECT_EQ(regions[0].position, 200);
}

TEST_F(SessionReceiverTest, givesOneNoticeUntilItIsAnswered) {
  Spot(0);
  Spot(100);
  EXPECT_EQ(notices_, 1);
  EXPECT_EQ(receiver_.TakeNew().size(), 2U);
  Spot(200);
  EXPECT_EQ(notices_, 2);
}

TEST_F(SessionReceiverTest, aRefusedRegionGivesNoNotice) {
  RegionSpotter spotter("/nowhere/absent.wav", 0, 100, receiver_);
  EXPECT_NE(spotter.SpotRegion(0, 0, 1, "Absent", false), 0);
  EXPECT_EQ(notices_, 0);
  EXPECT_TRUE(receiver_.TakeNew().empty());
}

TEST_F(SessionReceiverTest, clearStartsANewSession) {
  Spot(0);
  receiver_.Clear();
  EXPECT_EQ(receiver_.Summary().regions, 0U);
  EXPECT_TRUE(receiver_.TakeNew().empty());
  Spot(500);
  EXPECT_EQ(notices_, 2);
  EXPECT_EQ(receiver_.TakeNew().size(), 1U);
}

TEST_F(SessionReceiverTest, aNoticeMayTakeAtOnce) {
  std::size_t taken = 0;
  SessionReceiver* self = nullptr;
  SessionReceiver receiver([&] { taken += self->TakeNew().size(); });
  self = &receiver;
  RegionSpotter spotter(path_.c_str(), 0, 100, receiver);
  for (int i = 0; i < 3; ++i) spotter.SpotRegion(0, i, 1, "Take", false);
  EXPECT_EQ(taken, 3U);
}

TEST_F(SessionReceiverTest, losesNothingWhileAnotherThreadSends) {
  constexpr int kRegions = 500;
  std::thread worker([this] {
    for (int i = 0; i < kRegions; ++i) Spot(i * 100);
  });
  std::vector<host::SessionRegion> all;
  while (all.size() < kRegions) {
    for (auto& region : receiver_.TakeNew()) all.push_back(std::move(region));
    std::this_thread::yield();
  }
  worker.join();
  for (int i = 0; i < kRegions; ++i) EXPECT_EQ(all[static_cast<std::size_t>(i)].position, i * 100);
}

}  // namespace
}  // namespace velmora::desktop
