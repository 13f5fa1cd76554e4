#include "Report/Peaks.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Support/TargetMaterial.h"

namespace velmora::report {
namespace {

class PeaksTest : public testing::Test {
 protected:
  /// A file of 16 bits with these samples. Returns its path.
  std::string Wave(const std::vector<std::int32_t>& samples) const {
    return material_.folder.Write("w.wav", test::PlainWave(test::WaveFormat(), samples));
  }
  test::TargetMaterial material_;
};

TEST_F(PeaksTest, areTheLoudestSamplesOfEqualStretches) {
  std::vector<std::int32_t> samples(400, 0);
  samples[250] = -16384;  // half of full scale
  material_.Place(Wave(samples), 0, 400);
  const std::vector<Peaks> peaks = PeaksOf(material_.session.Regions(), 8, {}).byRegion;
  ASSERT_EQ(peaks.size(), 1U);
  ASSERT_FALSE(peaks[0].empty());
  const auto loudest = std::max_element(peaks[0].begin(), peaks[0].end());
  EXPECT_EQ(*loudest, 0.5F);
  EXPECT_EQ(static_cast<std::size_t>(loudest - peaks[0].begin()), 250 * peaks[0].size() / 400);
  EXPECT_EQ(std::count(peaks[0].begin(), peaks[0].end(), 0.0F),
            static_cast<std::ptrdiff_t>(peaks[0].size()) - 1);
}

TEST_F(PeaksTest, areSilentPastTheFileAndNoneWithoutOne) {
  material_.Place(Wave(std::vector<std::int32_t>(100, 16384)), 0, 200);
  material_.Place(material_.folder.Path("gone.wav"), 0, 200);
  const std::vector<Peaks> peaks = PeaksOf(material_.session.Regions(), 8, {}).byRegion;
  EXPECT_EQ(peaks[0].front(), 0.5F);
  EXPECT_EQ(peaks[0].back(), 0.0F);
  EXPECT_TRUE(peaks[1].empty());
}

TEST_F(PeaksTest, stopWhenTheyAreCancelled) {
  material_.Place(Wave(std::vector<std::int32_t>(100, 16384)), 0, 100);
  EXPECT_TRUE(PeaksOf(material_.session.Regions(), 8, [] { return false; }).byRegion[0].empty());
}

}  // namespace
}  // namespace velmora::report
