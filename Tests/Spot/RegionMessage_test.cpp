#include "Spot/RegionMessage.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "Spot/RecordingHost.h"

namespace velmora {
namespace {

using Bytes = std::vector<std::uint8_t>;
using test::ValueOf;

/// A number's bytes as the machine holds them, put together by hand.
Bytes Native(std::uint64_t value, std::size_t count) {
  Bytes bytes;
  for (std::size_t i = 0; i < count; ++i, value >>= 8) {
    const auto low = static_cast<std::uint8_t>(value & 0xFF);
    bytes.insert(std::endian::native == std::endian::little ? bytes.end() : bytes.begin(), low);
  }
  return bytes;
}

RegionMessage Build(const RegionPlacement& placement, const std::string& name = "take") {
  return BuildRegionMessage(placement, name, Bytes{'a', 'l'});
}

TEST(FourCharCode, readsInBigEndianOrder) {
  EXPECT_EQ(FourCharCode("PTul"), 0x5054756CU);
  EXPECT_EQ(FourCharCode("Rgn "), 0x52676E20U);
}

TEST(RegionMessage, headIsTheSameInEveryMessage) {
  const RegionMessage message = Build({});
  EXPECT_EQ(message.eventClass, 0x53643261U);  // Sd2a
  EXPECT_EQ(message.eventId, 0x5352676EU);     // SRgn
  EXPECT_EQ(message.target, 0x5054756CU);      // PTul
  EXPECT_EQ(message.returnId, -1);
  EXPECT_EQ(message.transactionId, 0);
  EXPECT_EQ(message.sendMode, 35);
  EXPECT_EQ(message.timeoutTicks, 100);
}

TEST(RegionMessage, parametersStandInOrderByteForByte) {
  const RegionMessage message = BuildRegionMessage({.track = 4,
                                                    .position = 0x01234567,
                                                    .stream = 1,
                                                    .relative = false,
                                                    .start = 0x10203040,
                                                    .stop = 0x50607080},
                                                   "takeA", Bytes{0x00, 0xFF, 'x'});
  struct Row {
    std::uint32_t key, type;
    Bytes data;
  };
  const std::vector<Row> parameters = {
      {0x46494C45, 0x616C6973, {0x00, 0xFF, 'x'}},                 // FILE alis
      {0x5472616B, 0x73686F72, Native(5, 2)},                      // Trak shor
      {0x4646726D, 0x73686F72, Native(1, 2)},                      // FFrm shor
      {0x546B4F66, 0x73686F72, Native(0, 2)},                      // TkOf shor
      {0x534D5374, 0x6C6F6E67, Native(0x01234567, sizeof(long))},  // SMSt long
      {0x5374726D, 0x73686F72, Native(1, 2)},                      // Strm shor
  };
  ASSERT_EQ(message.parameters.size(), parameters.size());
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    EXPECT_EQ(message.parameters[i].key, parameters[i].key) << i;
    EXPECT_EQ(message.parameters[i].type, parameters[i].type) << i;
    EXPECT_EQ(message.parameters[i].data, parameters[i].data) << i;
  }
  Bytes name(256, 0);
  name[0] = 5;
  std::copy_n("takeA", 5, name.begin() + 1);
  const std::vector<Row> region = {
      {0x53746172, 0x6C6F6E67, Native(0x10203040, 4)},  // Star long
      {0x53746F70, 0x6C6F6E67, Native(0x50607080, 4)},  // Stop long
      {0x4E616D65, 0x54455854, name},                   // Name TEXT
  };
  ASSERT_EQ(message.region.size(), region.size());
  for (std::size_t i = 0; i < region.size(); ++i) {
    EXPECT_EQ(message.region[i].key, region[i].key) << i;
    EXPECT_EQ(message.region[i].type, region[i].type) << i;
    EXPECT_EQ(message.region[i].data, region[i].data) << i;
  }
}

struct TrackRow {
  const char* rule;
  std::int16_t track;
  bool relative;
  std::int16_t trak, tkOf;
};

void PrintTo(const TrackRow& row, std::ostream* out) {
  *out << row.rule;
}

class TrackRows : public testing::TestWithParam<TrackRow> {};

TEST_P(TrackRows, givesBothTrackParameters) {
  const TrackRow& row = GetParam();
  const RegionMessage message = Build({.track = row.track, .relative = row.relative});
  EXPECT_EQ(ValueOf<std::int16_t>(message.parameters.at(1)), row.trak);
  EXPECT_EQ(ValueOf<std::int16_t>(message.parameters.at(3)), row.tkOf);
}

constexpr TrackRow kTrackRows[] = {
    {"absoluteTrackCountsFrom1", 0, false, 1, 0},
    {"absoluteTrack3", 3, false, 4, 0},
    {"relativeTrackStandsInTheOffset", 3, true, -99, 3},
    {"relativeTrack0", 0, true, -99, 0},
    {"highestTrackWrapsAt16Bits", 32767, false, -32768, 0},
    {"highestRelativeTrackDoesNotWrap", 32767, true, -99, 32767},
    {"negativeTrack", -1, false, 0, 0},
    {"lowestRelativeTrack", -32768, true, -99, -32768},
};

INSTANTIATE_TEST_SUITE_P(RegionMessage, TrackRows, testing::ValuesIn(kTrackRows),
                         [](const auto& row) { return std::string(row.param.rule); });

TEST(RegionMessage, streamIsWhatTheCallerGives) {
  for (const std::int16_t stream : {std::int16_t{1}, std::int16_t{7}, std::int16_t{-2}}) {
    const RegionMessage message = Build({.stream = stream});
    EXPECT_EQ(ValueOf<std::int16_t>(message.parameters.at(5)), stream);
    EXPECT_EQ(ValueOf<std::int16_t>(message.parameters.at(2)), 1) << "FFrm never changes";
  }
}

TEST(RegionMessage, positionHasTheWidthOfALong) {
  for (const std::int64_t position :
       {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-172800}, std::int64_t{15552000000},
        std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    const RegionMessage message = Build({.position = position});
    EXPECT_EQ(message.parameters.at(4).data,
              Native(static_cast<std::uint64_t>(position), sizeof(long)))
        << position;
  }
}

struct NameRow {
  const char* rule;
  std::size_t length;
  std::uint8_t lengthByte;
  std::size_t copied;
};

void PrintTo(const NameRow& row, std::ostream* out) {
  *out << row.rule;
}

class NameRows : public testing::TestWithParam<NameRow> {};

TEST_P(NameRows, isAPascalStringIn256Bytes) {
  const NameRow& row = GetParam();
  std::string name;
  for (std::size_t i = 0; i < row.length; ++i) name.push_back(static_cast<char>('a' + i % 23));
  Bytes expected(256, 0);
  expected[0] = row.lengthByte;
  std::copy_n(name.begin(), row.copied, expected.begin() + 1);
  EXPECT_EQ(Build({}, name).region.at(2).data, expected);
}

constexpr NameRow kNameRows[] = {
    {"emptyName", 0, 0, 0},
    {"oneByte", 1, 1, 1},
    {"fiveBytes", 5, 5, 5},
    {"fullField", 255, 255, 255},
    {"lengthByteWrapsAndCopyStopsAt256", 256, 0, 255},
    {"lengthByteWrapsAndCopyStopsAt300", 300, 44, 255},
    {"lengthByteWrapsTwice", 513, 1, 255},
};

INSTANTIATE_TEST_SUITE_P(RegionMessage, NameRows, testing::ValuesIn(kNameRows),
                         [](const auto& row) { return std::string(row.param.rule); });

TEST(RegionMessage, nameBytesPassUnchanged) {
  const RegionMessage message = Build({}, "\xE3\x83\x86 \x01");
  const Bytes start = {5, 0xE3, 0x83, 0x86, ' ', 0x01, 0};
  EXPECT_EQ(Bytes(message.region.at(2).data.begin(), message.region.at(2).data.begin() + 7), start);
}

TEST(RegionMessage, aliasMayBeOfAnySize) {
  const Bytes alias(70000, 0xA5);
  EXPECT_EQ(BuildRegionMessage({}, "take", alias).parameters.at(0).data, alias);
}

}  // namespace
}  // namespace velmora
