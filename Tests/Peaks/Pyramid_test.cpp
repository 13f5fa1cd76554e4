#include "Peaks/Pyramid.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "PeaksMaterial.h"

namespace velmora::peaks {
namespace {

std::shared_ptr<const Pyramid> PyramidOf(const std::string& path) {
  const std::unique_ptr<PeakSource> source = PeakSource::Open(path);
  return source == nullptr ? nullptr : Pyramid::Read(*source, {});
}

std::vector<Peak> Columns(const Pyramid& pyramid, const ColumnGrid& grid, std::int64_t first,
                          std::size_t count) {
  std::vector<Peak> columns(count);
  pyramid.AddColumns(grid, first, columns);
  return columns;
}

TEST(ColumnGrid, edgesAreThoseOfTheTimeline) {
  const ColumnGrid grid{100, 2.5};
  EXPECT_EQ(grid.Edge(0), 100);
  EXPECT_EQ(grid.Edge(1), 102);
  EXPECT_EQ(grid.Edge(2), 105);
  EXPECT_EQ(grid.Edge(-1), 97);
  EXPECT_EQ((ColumnGrid{INT64_MAX, 1e15}).Edge(1000),
            (std::int64_t{1} << 62) + 1000000000000000000);
  EXPECT_LT((ColumnGrid{INT64_MIN, 1e15}).Edge(-100000), -(std::int64_t{1} << 62));
}

// At zooms that are its own, each column is what stands in the file, sample for sample.
TEST(Pyramid, columnsOfItsOwnLevelsAreExact) {
  const test::TemporaryFolder folder;
  const std::string path = folder.Path("n.wav");
  for (const std::size_t frames : {1U, 256U, 257U, 100001U}) {
    ASSERT_TRUE(WriteSound(path, SF_FORMAT_WAV | SF_FORMAT_PCM_24, 2, Noise(2 * frames, 1)));
    const auto pyramid = PyramidOf(path);
    ASSERT_NE(pyramid, nullptr);
    EXPECT_EQ(pyramid->Frames(), static_cast<std::int64_t>(frames));
    const Literal literal(path);
    for (const std::int64_t zoom : {256, 512, 1024, 4096, 65536, 1 << 20}) {
      const auto expected = literal.Stretches(0, 1 << 22, zoom);
      EXPECT_EQ(Columns(*pyramid, {0, static_cast<double>(zoom)}, 0, expected.size()), expected)
          << frames << " frames at " << zoom;
    }
  }
}

// At any other zoom an edge moves by a peak of a level that is fine enough.
TEST(Pyramid, columnsOfAnyZoomAreExactButForTheirEdges) {
  const test::TemporaryFolder folder;
  const std::string path = folder.Path("n.wav");
  ASSERT_TRUE(WriteSound(path, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 1, Noise(400000, 2)));
  const auto pyramid = PyramidOf(path);
  ASSERT_NE(pyramid, nullptr);
  const Literal literal(path);
  std::mt19937 random(4);
  for (int round = 0; round < 300; ++round) {
    const ColumnGrid grid{static_cast<std::int64_t>(random() % 50000),
                          1024 + static_cast<double>(random() % 3000000) / 100};
    const auto column = static_cast<std::int64_t>(random() % 8);
    const Peak got = Columns(*pyramid, grid, column, 1)[0];
    const std::int64_t from = grid.Edge(column);
    const std::int64_t to = grid.Edge(column + 1);
    const auto slack = static_cast<std::int64_t>(grid.framesPerColumn / 4) + 1;
    if (from >= 400000) {
      EXPECT_TRUE(got.IsEmpty());
      continue;
    }
    const Peak least = literal.Over(from + slack, to - slack);
    const Peak most = literal.Over(std::max<std::int64_t>(from - slack, 0), to + slack);
    EXPECT_LE(got.lowest, least.lowest);
    EXPECT_GE(got.highest, least.highest);
    EXPECT_GE(got.lowest, most.lowest);
    EXPECT_LE(got.highest, most.highest);
  }
}

TEST(Pyramid, noPeakIsLostBetweenColumns) {
  const test::TemporaryFolder folder;
  for (std::size_t place = 0; place < 20000; place += 977) {
    std::vector<std::int32_t> samples(20000, 0);
    samples[place] = 20000;
    const auto pyramid = PyramidOf(WriteWave(folder, "click.wav", samples));
    ASSERT_NE(pyramid, nullptr);
    for (const double zoom : {256.0, 300.7, 1000.1, 5555.5}) {
      int found = 0;
      for (const Peak& peak : Columns(*pyramid, {0, zoom}, 0, 100)) found += peak.highest == 20000;
      EXPECT_EQ(found, 1) << place << " at " << zoom;
    }
  }
}

TEST(Pyramid, columnsOutsideTheFileStayEmpty) {
  const test::TemporaryFolder folder;
  const auto pyramid = PyramidOf(WriteWave(folder, "w.wav", std::vector<std::int32_t>(1000, 3)));
  ASSERT_NE(pyramid, nullptr);
  const std::vector<Peak> columns = Columns(*pyramid, {-512, 256}, 0, 8);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    EXPECT_EQ(columns[i].IsEmpty(), i < 2 || i > 5) << i;
  }
  EXPECT_TRUE(Columns(*pyramid, {INT64_MAX, 1e15}, 0, 1)[0].IsEmpty());
  EXPECT_TRUE(Columns(*pyramid, {INT64_MIN, 256}, 0, 1)[0].IsEmpty());
}

// Large plain files are read by two threads; the literal way has one.
TEST(Pyramid, isTheSameWithTwoThreads) {
  const test::TemporaryFolder folder;
  const std::string path = folder.Path("large.wav");
  constexpr std::size_t kFrames = (std::size_t{1} << 22) + 12345;
  ASSERT_TRUE(WriteSound(path, SF_FORMAT_WAV | SF_FORMAT_PCM_24, 2, Noise(2 * kFrames, 8)));
  const auto pyramid = PyramidOf(path);
  ASSERT_NE(pyramid, nullptr);
  const auto expected = Literal(path).Stretches(0, kFrames, 256);
  EXPECT_EQ(Columns(*pyramid, {0, 256}, 0, expected.size()), expected);
}

TEST(Pyramid, takesFourBytesForAStretchAndAThirdMore) {
  const test::TemporaryFolder folder;
  const auto pyramid = PyramidOf(WriteSilence(folder, "w.wav", 256 * 65536));
  ASSERT_NE(pyramid, nullptr);
  EXPECT_LT(pyramid->Bytes(), 65536 * 4 * 4 / 3 + 1000);
}

// However long a file is, memory stays bounded.
TEST(Pyramid, veryLongFilesBeginWithACoarserLevel) {
  EXPECT_EQ(Pyramid::FinestFor(0), 256);
  EXPECT_EQ(Pyramid::FinestFor(256 * Pyramid::kMostPeaks), 256);
  EXPECT_EQ(Pyramid::FinestFor(256 * Pyramid::kMostPeaks + 1), 1024);
  EXPECT_EQ(Pyramid::FinestFor(INT64_MAX) / 256 % 4, 0);
  EXPECT_GE(Pyramid::FinestFor(INT64_MAX), INT64_MAX / Pyramid::kMostPeaks);
}

TEST(Pyramid, isNoneWithoutAudioAndWhenStopped) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(PyramidOf(WriteWave(folder, "none.wav", {})), nullptr);
  const std::string path = WriteWave(folder, "w.wav", std::vector<std::int32_t>(1000, 3));
  const std::unique_ptr<PeakSource> source = PeakSource::Open(path);
  ASSERT_NE(source, nullptr);
  EXPECT_EQ(Pyramid::Read(*source, [] { return true; }), nullptr);
}

}  // namespace
}  // namespace velmora::peaks
