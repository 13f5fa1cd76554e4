#include "Bounce/SamplePlacing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "Bounce/BroadcastHeader.h"
#include "Support/WaveBytes.h"

namespace velmora::bounce {
namespace {

using host::BounceDepth;

template <typename Sample>
std::vector<std::uint8_t> Placed(const std::vector<Sample>& samples, BounceDepth depth) {
  std::vector<std::uint8_t> bytes(samples.size() * SampleBytes(depth));
  const Placing placing = {bytes.data(), SampleBytes(depth), 1, 1, samples.size()};
  if constexpr (std::is_same_v<Sample, double>) {
    PlaceFractions(samples.data(), depth, placing);
  } else {
    PlaceIntegers(samples.data(), depth, placing);
  }
  return bytes;
}

template <typename Sample>
std::int32_t PlacedInteger(Sample sample, BounceDepth depth) {
  const std::vector<std::uint8_t> bytes = Placed(std::vector<Sample>{sample}, depth);
  return test::PcmSamples(depth == BounceDepth::Bits16 ? 16 : 24,
                          std::string(bytes.begin(), bytes.end()))[0];
}

template <typename Sample>
float PlacedFloat(Sample sample) {
  const std::vector<std::uint8_t> bytes = Placed(std::vector<Sample>{sample}, BounceDepth::Float32);
  float value = 0;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

TEST(SamplePlacing, integersAreRoundedToNearestTiesToEvenAndClipped) {
  struct Row {
    std::int32_t left;  ///< at the left end of 32 bits
    std::int32_t in16;
    std::int32_t in24;
  };
  const Row rows[] = {
      {0, 0, 0},
      {0x12340000, 0x1234, 0x123400},  // 16 bits: times 256
      {-0x12340000, -0x1234, -0x123400},
      {0x12345600, 0x1234, 0x123456},  // 24 bits pass
      {0x12348000, 0x1234, 0x123480},  // a tie below an even one
      {0x12358000, 0x1236, 0x123580},  // a tie below an odd one
      {0x12348001, 0x1235, 0x123480},  // just above a tie
      {0x12347FFF, 0x1234, 0x123480},
      {-0x00008000, 0, -0x80},  // ties on the negative side
      {-0x00018000, -2, -0x180},
      {0x00000080, 0, 0},
      {0x00000180, 0, 2},
      {0x7FFFFFFF, 0x7FFF, 0x7FFFFF},  // rounded up it would be beyond full scale
      {0x7FFF8000, 0x7FFF, 0x7FFF80},
      {std::numeric_limits<std::int32_t>::min(), -0x8000, -0x800000},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(PlacedInteger(row.left, BounceDepth::Bits16), row.in16) << row.left;
    EXPECT_EQ(PlacedInteger(row.left, BounceDepth::Bits24), row.in24) << row.left;
    EXPECT_EQ(PlacedFloat(row.left), static_cast<float>(row.left / 2147483648.0)) << row.left;
  }
}

TEST(SamplePlacing, fractionsAreTimesFullScale) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  struct Row {
    double fraction;
    std::int32_t in16;
    std::int32_t in24;
  };
  const Row rows[] = {
      {0.0, 0, 0},
      {0.5, 0x4000, 0x400000},
      {-0.5, -0x4000, -0x400000},
      {1.0, 0x7FFF, 0x7FFFFF},
      {-1.0, -0x8000, -0x800000},
      {3.25, 0x7FFF, 0x7FFFFF},
      {-3.25, -0x8000, -0x800000},
      {1e300, 0x7FFF, 0x7FFFFF},
      {kInfinity, 0x7FFF, 0x7FFFFF},
      {-kInfinity, -0x8000, -0x800000},
      {std::numeric_limits<double>::quiet_NaN(), 0, 0},
      {2.5 / 32768, 2, 640},
      {3.5 / 32768, 4, 896},
      {-2.5 / 32768, -2, -640},
      {2.5 / 8388608, 0, 2},
      {-3.5 / 8388608, 0, -4},
      {std::nextafter(2.5, 3.0) / 8388608, 0, 3},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(PlacedInteger(row.fraction, BounceDepth::Bits16), row.in16) << row.fraction;
    EXPECT_EQ(PlacedInteger(row.fraction, BounceDepth::Bits24), row.in24) << row.fraction;
  }
}

TEST(SamplePlacing, floatsAreNeverClipped) {
  EXPECT_EQ(PlacedFloat(3.25), 3.25F);
  EXPECT_EQ(PlacedFloat(-1e30), -1e30F);
  EXPECT_EQ(PlacedFloat(0.1), 0.1F);
  EXPECT_EQ(PlacedFloat(-1e300), -std::numeric_limits<float>::infinity());
  EXPECT_TRUE(std::isnan(PlacedFloat(std::nan(""))));
}

TEST(SamplePlacing, channelCTakesChannelCModK) {
  // Two frames of a source of two channels, on a track of three, in frames of five channels of 16
  // bits of which the track's are the second to the fourth.
  const std::vector<std::int32_t> integers = {0x10000, 0x20000, 0x30000, 0x40000};
  const std::vector<std::int32_t> expected = {0, 1, 2, 1, 0, 0, 3, 4, 3, 0};
  std::vector<double> fractions;
  for (const std::int32_t sample : integers) fractions.push_back(sample / 2147483648.0);
  const std::string raw = test::PcmBytes(16, {1, 2, 3, 4});
  for (const int way : {0, 1, 2}) {
    std::vector<std::uint8_t> bytes(2 * 5 * 2);
    const Placing placing = {bytes.data() + 2, 10, 3, 2, 2};
    if (way == 0) PlaceIntegers(integers.data(), BounceDepth::Bits16, placing);
    if (way == 1) PlaceFractions(fractions.data(), BounceDepth::Bits16, placing);
    if (way == 2) {
      PlaceBytes(reinterpret_cast<const std::uint8_t*>(raw.data()), BounceDepth::Bits16, placing);
    }
    EXPECT_EQ(test::PcmSamples(16, std::string(bytes.begin(), bytes.end())), expected) << way;
  }
}

}  // namespace
}  // namespace velmora::bounce
