#include "Peaks/PeakParts.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "PeaksMaterial.h"
#include "Support/SystemConditions.h"

namespace velmora::peaks {
namespace {

using Names = std::set<PartName>;
using State = PeakParts::State;
using Time = std::chrono::steady_clock::time_point;

Names NamesOf(const PeakParts& parts, const std::string& path, const ColumnGrid& grid,
              std::int64_t first, std::int64_t count) {
  Names names;
  parts.AddNames(path, grid, first, count, names);
  return names;
}

void Take(PeakParts& parts, const PartName& name) {
  parts.Put(name, ReadPartOf(name, nullptr, {}), Time());
}

std::vector<Peak> Columns(const PeakParts& parts, const std::string& path, const ColumnGrid& grid,
                          std::int64_t first, std::size_t count) {
  std::vector<Peak> columns(count);
  parts.AddColumns(path, grid, first, columns);
  return columns;
}

TEST(PeakParts, zoomDecidesWhichPartsAreNeeded) {
  const PeakParts parts(1 << 20);
  EXPECT_EQ(NamesOf(parts, "a", {0, 256}, 0, 1000), (Names{{"a", 0, 0}}));
  EXPECT_EQ(NamesOf(parts, "a", {0, 255.9}, 0, 10), (Names{{"a", 16, 0}}));
  EXPECT_EQ(NamesOf(parts, "a", {0, 64}, 0, 4097), (Names{{"a", 16, 0}, {"a", 16, 1}}));
  EXPECT_EQ(NamesOf(parts, "a", {16380, 1}, 0, 5), (Names{{"a", 1, 0}, {"a", 1, 1}}));
  EXPECT_EQ(NamesOf(parts, "a", {16380, 1}, 4, 1), (Names{{"a", 1, 1}}));
  EXPECT_EQ(NamesOf(parts, "a", {16384, 0.0625}, 0, 1), (Names{{"a", 1, 1}}));
  EXPECT_EQ(NamesOf(parts, "a", {-500, 1}, 0, 100), Names()) << "before the file";
  EXPECT_EQ(NamesOf(parts, "a", {0, 256}, 0, 0), Names());
}

// Below the pyramid's zooms the frames themselves are shown, whichever page they stand on.
TEST(PeakParts, pagesShowWhatStandsInTheFile) {
  const test::TemporaryFolder folder;
  const std::string path = folder.Path("n.wav");
  ASSERT_TRUE(WriteSound(path, SF_FORMAT_WAV | SF_FORMAT_PCM_24, 1, Noise(600001, 6)));
  const Literal literal(path);
  for (const double zoom : {0.0625, 0.3, 1.0, 7.0, 63.0, 64.0, 128.0, 240.0}) {
    PeakParts parts(1 << 24);
    const ColumnGrid grid{262144 - 160 - static_cast<std::int64_t>(zoom) * 16, zoom};
    for (const PartName& name : NamesOf(parts, path, grid, 0, 200)) Take(parts, name);
    const std::vector<Peak> got = Columns(parts, path, grid, 0, 200);
    for (std::size_t i = 0; i < got.size(); ++i) {
      const auto column = static_cast<std::int64_t>(i);
      std::int64_t from = grid.Edge(column);
      std::int64_t to = std::max(grid.Edge(column + 1), from + 1);
      if (zoom >= 64) {
        from -= from % 16;
        to -= to % 16;
      }
      EXPECT_EQ(got[i], literal.Over(from, to)) << "column " << i << " at " << zoom;
    }
  }
}

TEST(PeakParts, pyramidStandsInForAPageThatIsNotThere) {
  const test::TemporaryFolder folder;
  const std::string path = WriteWave(folder, "w.wav", std::vector<std::int32_t>(20000, 9));
  PeakParts parts(1 << 20);
  const ColumnGrid grid{16300, 1};
  EXPECT_TRUE(Columns(parts, path, grid, 0, 1)[0].IsEmpty());
  Take(parts, {path, 0, 0});
  EXPECT_EQ(Columns(parts, path, grid, 0, 1)[0], (Peak{9, 9}));
  Take(parts, {path, 1, 0});
  EXPECT_EQ(Columns(parts, path, grid, 0, 100), std::vector<Peak>(100, Peak{9, 9}));
  EXPECT_TRUE(Columns(parts, path, {20000, 1}, 0, 1)[0].IsEmpty()) << "after the file's end";
}

TEST(PeakParts, aPartIsOldAfterAWhileUntilItIsConfirmed) {
  PeakParts parts(1 << 20);
  const PartName name{"/nowhere/w.wav", 0, 0};
  const Time start;
  EXPECT_EQ(parts.Mark(name, start), State::Missing);
  parts.Put(name, {}, start);
  EXPECT_EQ(parts.Mark(name, start), State::Fresh) << "also of a file that is not there";
  EXPECT_EQ(parts.Mark(name, start + std::chrono::seconds(1)), State::Old);
  parts.Confirm(name, start + std::chrono::seconds(1));
  EXPECT_EQ(parts.Mark(name, start + std::chrono::seconds(1)), State::Fresh);
}

// A megabyte for files of a third of it each.
class BoundedTest : public testing::Test {
 protected:
  static constexpr std::size_t kMost = 1 << 20;

  std::string File(const std::string& name) const {
    return WriteSilence(folder_, name, 256 * 65536);
  }
  bool Shows(const std::string& path) const {
    return !Columns(parts_, path, {0, 256}, 0, 1)[0].IsEmpty();
  }

  test::TemporaryFolder folder_;
  PeakParts parts_{kMost};
};

TEST_F(BoundedTest, whatWasNotOnViewForLongestGoesFirst) {
  std::vector<std::string> paths;
  for (const char* name : {"a", "b", "c", "d"}) paths.push_back(File(name));
  for (const int each : {0, 1}) {
    parts_.NewView();
    Take(parts_, {paths[static_cast<std::size_t>(each)], 0, 0});
  }
  parts_.NewView();
  Take(parts_, {paths[2], 0, 0});
  EXPECT_FALSE(Shows(paths[0])) << "the third has driven out the first";
  EXPECT_TRUE(Shows(paths[1]));
  parts_.NewView();
  (void)parts_.Mark({paths[1], 0, 0}, Time());
  Take(parts_, {paths[3], 0, 0});
  EXPECT_TRUE(Shows(paths[1])) << "it is on view";
  EXPECT_FALSE(Shows(paths[2]));
  EXPECT_TRUE(Shows(paths[3]));
  EXPECT_LE(parts_.Bytes(), kMost);
}

TEST_F(BoundedTest, whatIsOnViewStaysAndTheRestIsTurnedAway) {
  std::vector<std::string> paths;
  for (const char* name : {"a", "b", "c", "d"}) {
    paths.push_back(File(name));
    Take(parts_, {paths.back(), 0, 0});
  }
  EXPECT_TRUE(Shows(paths[0]));
  EXPECT_FALSE(Shows(paths[3]));
  EXPECT_LE(parts_.Bytes(), kMost);
  const PartName turnedAway{paths[3], 0, 0};
  EXPECT_EQ(parts_.Mark(turnedAway, Time() + std::chrono::hours(1)), State::Fresh)
      << "not read again and again";
  EXPECT_FALSE(parts_.WouldFit(turnedAway));
  parts_.NewView();
  (void)parts_.Mark(turnedAway, Time());
  EXPECT_TRUE(parts_.WouldFit(turnedAway)) << "once the others are not on view";
  EXPECT_EQ(parts_.StampOf(turnedAway), nullptr) << "it must be read";
  Take(parts_, turnedAway);
  EXPECT_TRUE(Shows(paths[3]));
}

TEST_F(BoundedTest, namesOfMissingFilesAreBoundedToo) {
  for (int i = 0; i < 8000; ++i) {
    parts_.NewView();
    parts_.Put({"/nowhere/" + std::to_string(i), 0, 0}, {}, Time());
  }
  EXPECT_LE(parts_.Bytes(), kMost);
}

TEST(ReadPartOf, fileThatIsUnchangedIsNotReadAgain) {
  const test::TemporaryFolder folder;
  const std::string path = WriteWave(folder, "w.wav", {1, 2, 3});
  const ReadPart first = ReadPartOf({path, 0, 0}, nullptr, {});
  EXPECT_NE(first.pyramid, nullptr);
  EXPECT_TRUE(ReadPartOf({path, 0, 0}, &first.stamp, {}).isUnchanged);
  WriteWave(folder, "w.wav", {1, 2, 3, 4});
  const ReadPart longer = ReadPartOf({path, 0, 0}, &first.stamp, {});
  EXPECT_FALSE(longer.isUnchanged);
  EXPECT_EQ(longer.pyramid->Frames(), 4);
  std::filesystem::last_write_time(path,
                                   std::filesystem::last_write_time(path) - std::chrono::hours(1));
  EXPECT_FALSE(ReadPartOf({path, 0, 0}, &longer.stamp, {}).isUnchanged) << "of the same length";
  std::filesystem::remove(path);
  const ReadPart gone = ReadPartOf({path, 0, 0}, &longer.stamp, {});
  EXPECT_FALSE(gone.isUnchanged);
  EXPECT_EQ(gone.pyramid, nullptr);
  EXPECT_TRUE(ReadPartOf({path, 0, 0}, &gone.stamp, {}).isUnchanged);
}

TEST(ReadPartOf, whatIsNoAudioFileHasNothing) {
  const test::Watchdog watchdog;
  const test::TemporaryFolder folder;
  for (const std::string& path :
       {folder.Path("gone.wav"), folder.Path(""), test::Fifo(folder, "fifo.wav"),
        folder.Write("noise.wav", std::string(5000, 'x')), std::string("/dev/zero"),
        std::string()}) {
    for (const std::int64_t stretch : {0, 1}) {
      const ReadPart part = ReadPartOf({path, stretch, 0}, nullptr, {});
      EXPECT_EQ(part.pyramid, nullptr) << path;
      EXPECT_TRUE(part.page.empty()) << path;
    }
  }
}

}  // namespace
}  // namespace velmora::peaks
