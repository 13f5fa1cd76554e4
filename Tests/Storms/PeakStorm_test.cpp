// Waveforms are read while the view scrolls, files change and go, and the window closes.

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "Peaks/PeakDesk.h"
#include "Peaks/PeaksMaterial.h"
#include "Storms/Storm.h"

namespace velmora::peaks {
namespace {

constexpr std::size_t kMostBytes = std::size_t{1} << 19;
constexpr int kFiles = 5;

/// All samples of file i have values that are i when divided by kFiles, at any time: whatever is
/// shown of a file tells whose it is.
class PeakRound {
 public:
  PeakRound(test::Dice& dice, const test::TemporaryFolder& folder, int& writes)
      : dice_(dice), folder_(folder), writes_(writes) {}

  void Run() {
    for (int i = 0; i < kFiles; ++i) Write(i);
    for (int steps = dice_.Between(5, 25); steps > 0; --steps) {
      Act();
      dice_.Dawdle();
    }
    if (dice_.OneIn(3)) {
      CloseWhileReading();
    } else {
      ShowAllAtRest();
    }
  }

 private:
  std::string Path(int file) const { return folder_.Path("w" + std::to_string(file) + ".wav"); }

  /// Another length each time: the clock that files are dated by stands still for milliseconds.
  void Write(int file) {
    const std::string name = "w" + std::to_string(file) + ".wav";
    values_[file] = file + kFiles * dice_.Throw(100);
    const auto frames = static_cast<std::size_t>(1000 + (++writes_ % 5000));
    const std::vector<std::int32_t> samples(frames, values_[file]);
    if (dice_.OneIn(2)) {
      WriteWave(folder_, name, samples);
    } else {
      std::filesystem::rename(WriteWave(folder_, "new.wav", samples), Path(file));
    }
  }

  void Act() {
    switch (dice_.Throw(8)) {
      case 0:
      case 1:
      case 2:
        desk_.Want(View());
        break;
      case 3:
      case 4:
        LookAt(dice_.Throw(kFiles));
        break;
      case 5:
        (void)desk_.TakeArrived();
        break;
      case 6:
        if (dice_.OneIn(3)) Write(dice_.Throw(kFiles));
        break;
      default:
        if (dice_.OneIn(4)) std::filesystem::remove(Path(dice_.Throw(kFiles)));
        EXPECT_LE(desk_.Bytes(), kMostBytes);
        (void)desk_.IsReading();
        break;
    }
  }

  ColumnGrid Grid() { return {dice_.Throw(500), dice_.OneIn(2) ? 256.0 : 0.5}; }

  std::vector<WaveformNeed> View() {
    std::vector<WaveformNeed> needs;
    const int count = dice_.Throw(4);
    for (int i = 0; i < count; ++i) needs.push_back({Path(dice_.Throw(kFiles)), Grid(), 0, 4});
    return needs;
  }

  Peak LookAt(int file, const ColumnGrid& grid) {
    std::vector<Peak> columns(2);
    desk_.AddColumns(Path(file), grid, 0, columns);
    for (const Peak& peak : columns) {
      if (peak.IsEmpty()) continue;
      EXPECT_EQ(peak.lowest % kFiles, file);
      EXPECT_EQ(peak.highest % kFiles, file);
    }
    return columns[0];
  }
  void LookAt(int file) { LookAt(file, Grid()); }

  /// Once the files are left alone, what is wanted comes as it is on disk.
  void ShowAllAtRest() {
    const ColumnGrid grid{0, 256};
    std::vector<WaveformNeed> all;
    for (int i = 0; i < kFiles; ++i) all.push_back({Path(i), grid, 0, 4});
    // What was read before a file changed may come in first, and is looked at again once it has.
    for (int looks = 0; looks < 2; ++looks) {
      desk_.Want(all);
      while (desk_.IsReading()) test::GiveWay();
    }
    for (int i = 0; i < kFiles; ++i) {
      const Peak shown = LookAt(i, grid);
      if (!std::filesystem::exists(Path(i))) {
        EXPECT_TRUE(shown.IsEmpty()) << i;
      } else {
        EXPECT_EQ(shown.highest, values_[i]) << i;
        EXPECT_EQ(shown.lowest, values_[i]) << i;
      }
    }
    desk_.Close();
  }

  void CloseWhileReading() {
    desk_.Want(View());
    dice_.Dawdle();
    desk_.Close();
    const int noticed = noticed_;
    desk_.Want(View());
    EXPECT_FALSE(desk_.IsReading());
    EXPECT_TRUE(desk_.TakeArrived().empty());
    EXPECT_EQ(noticed_, noticed) << "nobody is told after it";
  }

  test::Dice& dice_;
  const test::TemporaryFolder& folder_;
  int& writes_;
  int values_[kFiles] = {};
  std::atomic<int> noticed_ = 0;
  PeakDesk desk_{[this] { ++noticed_; }, {kMostBytes, std::chrono::milliseconds(0)}};
};

TEST(PeakStorm, eachFileShowsItsOwnAndAtRestWhatIsOnDisk) {
  const test::TemporaryFolder folder;
  int writes = 0;
  test::RunStorm([&](test::Dice& dice) { PeakRound(dice, folder, writes).Run(); });
}

}  // namespace
}  // namespace velmora::peaks
