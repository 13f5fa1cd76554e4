#include "Peaks/PeakDesk.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "Peaks/PeaksMaterial.h"
#include "Support/SystemConditions.h"

namespace velmora::peaks {
namespace {

constexpr ColumnGrid kGrid{0, 256};
constexpr std::size_t kMostBytes = std::size_t{1} << 19;

class PeakDeskTest : public testing::Test {
 protected:
  ~PeakDeskTest() override { desk_.Close(); }

  std::string File(const std::string& name, std::int32_t sample, std::size_t frames = 1000) const {
    return WriteWave(folder_, name, std::vector<std::int32_t>(frames, sample));
  }
  /// One that takes a while.
  std::string LongFile(const std::string& name) const {
    return WriteSilence(folder_, name, 40'000'000);
  }
  static WaveformNeed Need(const std::string& path, const ColumnGrid& grid = kGrid) {
    return {path, grid, 0, 4};
  }
  Peak Shown(const std::string& path, const ColumnGrid& grid = kGrid) const {
    std::vector<Peak> columns(1);
    desk_.AddColumns(path, grid, 0, columns);
    return columns[0];
  }
  /// Waits for a notice and takes what has arrived.
  std::set<std::string> WaitForArrivals() {
    std::unique_lock lock(mutex_);
    EXPECT_TRUE(changed_.wait_for(lock, std::chrono::seconds(60), [this] { return notices_ > 0; }));
    --notices_;
    lock.unlock();
    return desk_.TakeArrived();
  }
  void WaitUntilQuiet() const {
    while (desk_.IsReading()) std::this_thread::yield();
  }
  int Notices() {
    const std::lock_guard lock(mutex_);
    return notices_;
  }

  test::TemporaryFolder folder_;
  std::mutex mutex_;
  std::condition_variable changed_;
  int notices_ = 0;
  PeakDesk desk_{[this] {
                   const std::lock_guard lock(mutex_);
                   ++notices_;
                   changed_.notify_all();
                 },
                 {kMostBytes, std::chrono::milliseconds(0)}};
};

TEST_F(PeakDeskTest, whatIsWantedComes) {
  const std::string path = File("w.wav", 7);
  EXPECT_TRUE(Shown(path).IsEmpty());
  EXPECT_FALSE(desk_.IsReading());
  desk_.Want({Need(path)});
  EXPECT_EQ(WaitForArrivals(), std::set<std::string>{path});
  EXPECT_EQ(Shown(path), (Peak{7, 7}));
  EXPECT_TRUE(desk_.TakeArrived().empty()) << "once";
  EXPECT_GT(desk_.Bytes(), 0U);
}

TEST_F(PeakDeskTest, closerZoomsReadPages) {
  const std::string path = File("w.wav", 7);
  const ColumnGrid close{500, 0.5};
  desk_.Want({Need(path, close)});
  (void)WaitForArrivals();
  EXPECT_EQ(Shown(path, close), (Peak{7, 7}));
}

TEST_F(PeakDeskTest, oneNoticeUntilItIsAnswered) {
  std::vector<WaveformNeed> needs;
  for (int i = 0; i < 50; ++i) needs.push_back(Need(File("w" + std::to_string(i), i)));
  desk_.Want(needs);
  WaitUntilQuiet();
  desk_.Want({});
  (void)WaitForArrivals();
  EXPECT_EQ(Notices(), 0);
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(Shown(needs[static_cast<std::size_t>(i)].path).highest, i);
  }
}

TEST_F(PeakDeskTest, missingFilesComeOnceAndShowNothing) {
  const test::Watchdog watchdog;
  const std::string gone = folder_.Path("gone.wav");
  const std::string fifo = test::Fifo(folder_, "fifo.wav");
  desk_.Want({Need(gone), Need(fifo)});
  WaitUntilQuiet();
  EXPECT_TRUE(Shown(gone).IsEmpty());
  EXPECT_TRUE(Shown(fifo).IsEmpty());
  (void)WaitForArrivals();
  desk_.Want({Need(gone), Need(fifo)});
  WaitUntilQuiet();
  EXPECT_TRUE(desk_.TakeArrived().empty()) << "nothing has changed";
}

TEST_F(PeakDeskTest, fileThatChangesIsReadAnew) {
  const std::string path = File("w.wav", 7);
  desk_.Want({Need(path)});
  (void)WaitForArrivals();
  File("w.wav", 9, 2000);
  desk_.Want({Need(path)});
  (void)WaitForArrivals();
  EXPECT_EQ(Shown(path), (Peak{9, 9}));
  std::filesystem::remove(path);
  desk_.Want({Need(path)});
  (void)WaitForArrivals();
  EXPECT_TRUE(Shown(path).IsEmpty());
}

// While the first is read, the second comes into view and the first leaves it.
TEST_F(PeakDeskTest, whatScrollsAwayMakesWay) {
  const std::string away = LongFile("away.wav");
  const std::string near = File("near.wav", 5);
  desk_.Want({Need(away)});
  desk_.Want({Need(near)});
  EXPECT_EQ(WaitForArrivals(), std::set<std::string>{near});
  EXPECT_FALSE(desk_.IsReading());
}

TEST_F(PeakDeskTest, whatComesBackIntoViewIsRead) {
  const std::string first = LongFile("first.wav");
  const std::string second = File("second.wav", 5);
  for (int i = 0; i < 20; ++i) {
    desk_.Want({Need(first)});
    desk_.Want({Need(second)});
  }
  desk_.Want({Need(second), Need(first)});
  WaitUntilQuiet();
  EXPECT_EQ(Shown(second), (Peak{5, 5}));
  // Its pyramid is larger than all memory here: it was read, and turned away.
  EXPECT_LE(desk_.Bytes(), kMostBytes);
}

TEST_F(PeakDeskTest, closingStopsWhatIsRead) {
  desk_.Want({Need(LongFile("a.wav")), Need(LongFile("b.wav"))});
  while (!desk_.IsReading()) std::this_thread::yield();
  desk_.Close();
  desk_.Want({Need(File("w.wav", 7))});
  EXPECT_FALSE(desk_.IsReading());
  EXPECT_TRUE(desk_.TakeArrived().empty());
  desk_.Close();
}

TEST_F(PeakDeskTest, aDeskThatNeverReadNeedsNoThread) {
  PeakDesk idle([] {});
  idle.Want({});
  EXPECT_FALSE(idle.IsReading());
}

// The main thread scrolls, draws and takes, as fast as it can, while files are read and change.
TEST_F(PeakDeskTest, bothThreadsAtOnce) {
  std::vector<std::string> paths;
  for (int i = 0; i < 8; ++i) paths.push_back(File("w" + std::to_string(i), i, 40000));
  paths.push_back(folder_.Path("gone.wav"));
  for (int round = 0; round < 300; ++round) {
    std::vector<WaveformNeed> needs;
    for (std::size_t i = 0; i < 4; ++i) {
      const std::size_t which = (static_cast<std::size_t>(round) + i) % paths.size();
      needs.push_back(Need(paths[which], {round * 100, round % 3 == 0 ? 256.0 : 3.0}));
    }
    desk_.Want(needs);
    for (const WaveformNeed& need : needs) {
      const Peak peak = Shown(need.path, need.grid);
      const auto index = static_cast<std::size_t>(std::find(paths.begin(), paths.end(), need.path) -
                                                  paths.begin());
      if (!peak.IsEmpty()) {
        EXPECT_EQ(static_cast<std::size_t>(peak.highest) % 8, index);
      }
    }
    (void)desk_.TakeArrived();
    if (round % 50 == 0) {
      File("w0", 8, 40000 + static_cast<std::size_t>(round));
    }
  }
}

}  // namespace
}  // namespace velmora::peaks
