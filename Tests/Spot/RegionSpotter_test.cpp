#include "Spot/RegionSpotter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "Spot/RecordingHost.h"
#include "Support/SlotOf.h"
#include "Support/TemporaryFolder.h"

namespace velmora {
namespace {

using test::Journal;
using test::Placed;
using test::Read;
using test::ValueOf;

class RegionSpotterTest : public testing::Test {
 protected:
  test::TemporaryFolder folder;
  std::string path = folder.Write("take.wav", "any bytes: the file is not read");
  Journal journal;
  test::RecordingHost host{journal, folder.Path()};
};

TEST_F(RegionSpotterTest, placesOneRegionByOneMessage) {
  RegionSpotter spotter(path.c_str(), 100, 1100, host);
  EXPECT_EQ(spotter.SpotRegion(2, 48000, 1, "take", false), 0);
  EXPECT_EQ(journal, (Journal{"alias take.wav", "send"}));
  EXPECT_EQ(Read(host.messages.at(0)), (Placed{"take.wav", 3, 0, 48000, 100, 1100, "take"}));
}

TEST_F(RegionSpotterTest, relativePlacementPassesTheTrackAsOffset) {
  RegionSpotter spotter(path.c_str(), 0, 1, host);
  EXPECT_EQ(spotter.SpotRegion(3, -5, 9, "x", true), 0);
  EXPECT_EQ(Read(host.messages.at(0)), (Placed{"take.wav", -99, 3, -5, 0, 1, "x"}));
  EXPECT_EQ(ValueOf<std::int16_t>(host.messages.at(0).parameters.at(5)), 9);
}

TEST_F(RegionSpotterTest, boundsLoseTheirHighBits) {
  // 90 hours at 48000 Hz: 15552000000 less three times 2^32 is 2667098112, negative in 32 bits.
  RegionSpotter spotter(path.c_str(), 15552000000, (std::int64_t{1} << 32) + 7, host);
  spotter.SpotRegion(0, 0, 1, "x", false);
  const auto& region = host.messages.at(0).region;
  EXPECT_EQ(static_cast<std::uint32_t>(ValueOf<std::int32_t>(region.at(0))), 2667098112U);
  EXPECT_EQ(ValueOf<std::int32_t>(region.at(1)), 7);
}

TEST_F(RegionSpotterTest, negativeBoundsPassInTwosComplement) {
  RegionSpotter spotter(path.c_str(), -1, -4294967296 - 2, host);
  spotter.SpotRegion(0, 0, 1, "x", false);
  EXPECT_EQ(ValueOf<std::int32_t>(host.messages.at(0).region.at(0)), -1);
  EXPECT_EQ(ValueOf<std::int32_t>(host.messages.at(0).region.at(1)), -2);
}

TEST_F(RegionSpotterTest, eachCallBuildsAliasAndMessageAnew) {
  RegionSpotter spotter(path.c_str(), 0, 10, host);
  EXPECT_EQ(spotter.SpotRegion(0, 1, 1, "first", false), 0);
  EXPECT_EQ(spotter.SpotRegion(1, 2, 1, "second", true), 0);
  EXPECT_EQ(journal, (Journal{"alias take.wav", "send", "alias take.wav", "send"}));
  EXPECT_EQ(Read(host.messages.at(0)), (Placed{"take.wav", 1, 0, 1, 0, 10, "first"}));
  EXPECT_EQ(Read(host.messages.at(1)), (Placed{"take.wav", -99, 1, 2, 0, 10, "second"}));
}

TEST_F(RegionSpotterTest, pathThatDoesNotExistSendsNothing) {
  const std::string missing = folder.Path("gone.wav");
  RegionSpotter spotter(missing.c_str(), 0, 10, host);
  EXPECT_EQ(spotter.SpotRegion(0, 0, 1, "gone", false), -43);
  EXPECT_EQ(journal, (Journal{"alias gone.wav"}));
}

TEST_F(RegionSpotterTest, nameOverTheFieldIsCut) {
  RegionSpotter spotter(path.c_str(), 0, 10, host);
  const std::string name(300, 'n');
  EXPECT_EQ(spotter.SpotRegion(0, 0, 1, name.c_str(), false), 0);
  const auto& data = host.messages.at(0).region.at(2).data;
  ASSERT_EQ(data.size(), 256U);
  EXPECT_EQ(data.front(), 44);
  EXPECT_EQ(data.back(), 'n');
}

/// A host whose alias step answers a status while it has filled the alias in.
class FailingAliasHost : public RegionHost {
 public:
  std::int32_t MakeAlias(const char* /*path*/, std::vector<std::uint8_t>& alias) override {
    alias = {1, 2, 3};
    return -35;
  }
  std::int32_t Send(const RegionMessage& /*message*/) override {
    ++sends;
    return 0;
  }
  int sends = 0;
};

TEST_F(RegionSpotterTest, failedAliasStepEndsTheCallEvenWithAnAlias) {
  FailingAliasHost failing;
  RegionSpotter spotter(path.c_str(), 0, 10, failing);
  EXPECT_EQ(spotter.SpotRegion(0, 0, 1, "x", false), -35);
  EXPECT_EQ(failing.sends, 0);
}

struct StatusRow {
  const char* rule;
  std::int32_t sent, returned;
};

void PrintTo(const StatusRow& row, std::ostream* out) {
  *out << row.rule;
}

class StatusRows : public RegionSpotterTest, public testing::WithParamInterface<StatusRow> {};

TEST_P(StatusRows, isSignExtendedFromItsLow16Bits) {
  host.answer = [](std::size_t) { return GetParam().sent; };
  RegionSpotter spotter(path.c_str(), 0, 10, host);
  EXPECT_EQ(spotter.SpotRegion(0, 0, 1, "x", false), GetParam().returned);
  EXPECT_EQ(host.messages.size(), 1U);
}

constexpr StatusRow kStatusRows[] = {
    {"success", 0, 0},
    {"timeOut", -1712, -1712},
    {"hostNotRunning", -600, -600},
    {"positive", 1, 1},
    {"highestOf16Bits", 32767, 32767},
    {"bit15IsTheSign", 32768, -32768},
    {"from40000", 40000, -25536},
    {"highBitsAloneAreSuccess", 0x10000, 0},
    {"highBitsAreDropped", 0x12345678, 0x5678},
    {"lowestNumber", static_cast<std::int32_t>(0x80000000), 0},
};

INSTANTIATE_TEST_SUITE_P(RegionSpotter, StatusRows, testing::ValuesIn(kStatusRows),
                         [](const auto& row) { return std::string(row.param.rule); });

TEST(RegionSpotterClass, spotRegionStandsBeforeTheDestructors) {
  EXPECT_EQ(test::SlotOf(&RegionSpotter::SpotRegion), 0);
}

}  // namespace
}  // namespace velmora
