#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Support/BwfReference.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

class BwfConversion : public testing::Test {
 protected:
  // The bytes of the whole target file that a conversion of `sourceBytes` leaves.
  std::string Converted(const std::string& sourceBytes, std::int32_t toBits, bool applyGain = false,
                        double gain = 0.0) {
    AES31BWF source(folder.Write("source.wav", sourceBytes).c_str());
    EXPECT_TRUE(source.IsValid());
    AES31BWF target(targetPath.c_str(), source.GetSampleRate(), source.GetChannels(), toBits,
                    source.GetFrames());
    source.OpenAtData();
    EXPECT_EQ(source.ConvertInto(&target, applyGain, gain), 0);
    target.CloseFile();
    return TemporaryFolder::Read(targetPath);
  }
  std::vector<std::int32_t> Samples(std::int32_t fromBits, const std::vector<std::int32_t>& samples,
                                    std::int32_t toBits, bool applyGain = false,
                                    double gain = 0.0) {
    const WaveFormat format{.bits = static_cast<std::uint16_t>(fromBits)};
    const std::string bytes = Converted(PlainWave(format, samples), toBits, applyGain, gain);
    EXPECT_EQ(bytes.substr(0, kHeaderBytes),
              WrittenHeader(48000, 1, toBits, static_cast<std::int32_t>(samples.size())));
    return PcmSamples(toBits, bytes, kHeaderBytes);
  }

  TemporaryFolder folder;
  const std::string targetPath = folder.Path("target.wav");
};

using Ints = std::vector<std::int32_t>;
constexpr std::int32_t kMostNegative = std::numeric_limits<std::int32_t>::min();

TEST_F(BwfConversion, sixteenToTwentyFourBits) {
  EXPECT_EQ(Samples(16, {32767, -32768, 1, -1, 0}, 24), (Ints{8388351, -8388607, 255, -255, 0}));
}

TEST_F(BwfConversion, twentyFourToSixteenBits) {
  EXPECT_EQ(Samples(24, {8388607, -8388608, 256, -256, 0}, 16), (Ints{32766, -32767, 0, 0, 0}));
}

TEST_F(BwfConversion, multipliesInFloats) {
  // The exact products lie just below 512, 1153 and 2304; as floats they reach them.
  EXPECT_EQ(Samples(24, {131076, 295177, 589842}, 16), (Ints{512, 1153, 2304}));
}

TEST_F(BwfConversion, toAndFromThirtyTwoBits) {
  EXPECT_EQ(Samples(16, {32767, -32768, 1}, 32), (Ints{0x7FFF0000, kMostNegative, 65536}));
  EXPECT_EQ(Samples(24, {8388607, -8388608, 1}, 32), (Ints{2147483392, kMostNegative, 256}));
  EXPECT_EQ(Samples(32, {0x7FFFFF80, kMostNegative, 0x40000000}, 16), (Ints{32766, -32767, 16383}));
  EXPECT_EQ(Samples(32, {0x7FFFFFFF}, 24), (Ints{8388607}));
}

TEST_F(BwfConversion, oneTurnsNegativeInThirtyTwoBits) {
  EXPECT_EQ(Samples(32, {0x7FFFFFFF, 0x7FFFFF80, 0x01000001}, 32),
            (Ints{kMostNegative, 0x7FFFFF80, 0x01000000}));
}

TEST_F(BwfConversion, eightBitsAreSignedBothWays) {
  EXPECT_EQ(Samples(16, {32767, -32768, 16384}, 8), (Ints{126, -127, 63}));
  EXPECT_EQ(Samples(8, {127, -128, 1}, 16), (Ints{32511, -32767, 255}));
}

TEST_F(BwfConversion, sameDepthIsNoCopy) {
  EXPECT_EQ(Samples(16, {32767, -32768, 1, -1, 100}, 16), (Ints{32766, -32767, 0, 0, 99}));
  EXPECT_EQ(Samples(24, {8388607, -8388608, 1}, 24), (Ints{8388606, -8388607, 0}));
}

TEST_F(BwfConversion, everySixteenBitValueGoesToTwentyFourBits) {
  Ints all;
  Ints expected;
  for (std::int32_t sample = -32768; sample <= 32767; ++sample) {
    all.push_back(sample);
    // 256 times the sample lacks less than one, which the truncation toward zero takes.
    expected.push_back(sample == 0 ? 0 : sample * 256 - (sample > 0 ? 1 : -1));
  }
  EXPECT_EQ(Samples(16, all, 24), expected);
}

TEST_F(BwfConversion, everyPairOfDepthsFollowsTheIntegerArithmetic) {
  std::mt19937 random(11);
  for (const std::int32_t from : {8, 16, 24, 32}) {
    Ints samples;
    const std::int32_t largest = static_cast<std::int32_t>((std::int64_t{1} << (from - 1)) - 1);
    for (std::int32_t near = -70; near <= 70; ++near) samples.push_back(near);
    for (std::int32_t near = 0; near < 50; ++near) {
      samples.push_back(largest - near);
      samples.push_back(-largest - 1 + near);
    }
    for (int i = 0; i < 30000; ++i) {
      const auto left = static_cast<std::int32_t>(static_cast<std::uint32_t>(random()));
      samples.push_back(left >> (32 - from));
      samples.push_back(left >> (32 - from + static_cast<int>(random() % 16) * (from - 1) / 16));
    }
    for (const std::int32_t to : {8, 16, 24, 32}) {
      SCOPED_TRACE(testing::Message() << from << " to " << to << " bits");
      Ints expected;
      for (const std::int32_t sample : samples) expected.push_back(Requantised(sample, from, to));
      const Ints converted = Samples(from, samples, to);
      ASSERT_EQ(converted.size(), expected.size());
      const auto wrong = std::mismatch(converted.begin(), converted.end(), expected.begin());
      if (wrong.first != converted.end()) {
        FAIL() << "sample " << samples[static_cast<std::size_t>(wrong.first - converted.begin())]
               << " became " << *wrong.first << ", not " << *wrong.second;
      }
    }
  }
}

TEST_F(BwfConversion, moreThanFourBytesCountTheLastFour) {
  const std::string source = WaveBytes()
                                 .Format({.bits = 40})
                                 .Data(std::string("\x99\x88\x00\x00\x40\x11\x22\x00\x00\xC0", 10))
                                 .Bytes();
  // The second byte counts: 0x40000088 and 0xC0000022 before the rounding to a float.
  EXPECT_EQ(PcmSamples(16, Converted(source, 16), kHeaderBytes), (Ints{16383, -16383}));
  EXPECT_EQ(PcmSamples(32, Converted(source, 32), kHeaderBytes), (Ints{0x40000080, -1073741760}));
}

TEST_F(BwfConversion, bytesThatAHeaderClaimsForASampleTakeNoTime) {
  // 32 GiB by its header; three samples and a half are there.
  constexpr std::uint16_t kBytes = 8191;
  constexpr std::size_t kFrames = std::size_t{1} << 22;
  std::string data(3 * kBytes + kBytes / 2, '\x11');
  data[2 * kBytes - 1] = '\x40';
  const std::string source = WaveBytes()
                                 .Format({.bits = kBytes * 8, .blockAlign = 1})
                                 .Claim("data", kFrames, data)
                                 .Bytes();
  Watchdog watchdog;
  const std::string made = Converted(source, 16);
  ASSERT_EQ(made.size(), kHeaderBytes + kFrames * 2);
  EXPECT_EQ(PcmSamples(16, made.substr(0, kHeaderBytes + 8), kHeaderBytes),
            (Ints{0x1110, 0x4010, 0x1110, 0}));
  EXPECT_EQ(made.find_first_not_of('\0', kHeaderBytes + 8), std::string::npos);
}

struct BlockRow {
  std::uint16_t channels;
  std::uint32_t frames;
};

TEST_F(BwfConversion, blocksLeaveNoSeam) {
  std::mt19937 random(5);
  for (const BlockRow& row :
       {BlockRow{1, 19999}, BlockRow{1, 20000}, BlockRow{1, 20001}, BlockRow{2, 10000},
        BlockRow{3, 6667}, BlockRow{3, 13333}, BlockRow{1, 39999}, BlockRow{1, 40000},
        BlockRow{7, 20003}, BlockRow{1, 1}}) {
    SCOPED_TRACE(testing::Message() << row.channels << " channels, " << row.frames << " frames");
    Ints samples(row.channels * row.frames);
    for (std::int32_t& sample : samples) {
      sample = static_cast<std::int32_t>(random() & 0xFFFFFF) - 0x800000;
    }
    const WaveFormat format{.channels = row.channels, .bits = 24};
    Ints expected;
    for (const std::int32_t sample : samples) expected.push_back(Requantised(sample, 24, 16));
    const std::string converted = Converted(PlainWave(format, samples), 16);
    EXPECT_TRUE(converted ==
                WrittenHeader(48000, row.channels, 16, static_cast<std::int32_t>(row.frames)) +
                    PcmBytes(16, expected));
  }
}

TEST_F(BwfConversion, gainOfTwoWrapsAround) {
  EXPECT_EQ(Samples(16, {20000, -20000, 10000}, 16, true, 2.0), (Ints{-25538, 25538, 19999}));
}

TEST_F(BwfConversion, gainOfOneStillTakesTheFloatRoad) {
  EXPECT_EQ(Samples(16, {32767, -32768, 1}, 16, true, 1.0), (Ints{32766, -32767, 0}));
}

TEST_F(BwfConversion, gainIsNotUsedWithoutTheFlag) {
  EXPECT_EQ(Samples(16, {32767, -32768}, 24, false, 0.0), (Ints{8388351, -8388607}));
  EXPECT_EQ(Samples(16, {32767, -32768}, 24, false, std::nan("")), (Ints{8388351, -8388607}));
}

TEST_F(BwfConversion, gainOfZeroAndNegativeGain) {
  EXPECT_EQ(Samples(16, {32767, -32768}, 16, true, 0.0), (Ints{0, 0}));
  EXPECT_EQ(Samples(16, {16384, -16384}, 16, true, -1.0), (Ints{-16383, 16383}));
}

TEST_F(BwfConversion, gainIsAppliedInDoubles) {
  // With the gain as a float the first two would be 3209794 and 3715321.
  EXPECT_EQ(Samples(24, {6404384, 7413043, 4342220}, 24, true, 0.5011872336272722),
            (Ints{3209795, 3715322, 2176265}));
}

TEST_F(BwfConversion, productBeyond32BitsIsTheMostNegative) {
  EXPECT_EQ(Samples(16, {32767, -32768, 0}, 32, true, 2.0),
            (Ints{kMostNegative, kMostNegative, 0}));
  EXPECT_EQ(Samples(16, {32767, -32767, 0}, 16, true, 1e10), (Ints{0, 0, 0}));
  EXPECT_EQ(Samples(16, {32767, 0}, 32, true, std::numeric_limits<double>::infinity()),
            (Ints{kMostNegative, kMostNegative}));
  EXPECT_EQ(Samples(16, {1}, 32, true, std::nan("")), (Ints{kMostNegative}));
  // 1.5 times 2147483648 wraps nowhere: out of range is out of range.
  EXPECT_EQ(Samples(16, {24576}, 32, true, 2.0), (Ints{kMostNegative}));
}

TEST_F(BwfConversion, sourceBelowEightBitsIsSilenceWhateverTheGain) {
  for (const std::uint16_t bits : {std::uint16_t{0}, std::uint16_t{1}, std::uint16_t{7}}) {
    const std::string source = WaveBytes()
                                   .Format({.bits = bits, .blockAlign = 1})
                                   .Data(std::string(20003, '\x55'))
                                   .Bytes();
    for (const double gain : {0.0, 1e30, std::nan("")}) {
      EXPECT_TRUE(Converted(source, 16, true, gain) ==
                  WrittenHeader(48000, 1, 16, 20003) + std::string(40006, '\0'));
    }
  }
}

TEST_F(BwfConversion, formatTagOfFloatIsSilence) {
  const std::string source = WaveBytes()
                                 .Format({.channels = 2, .bits = 32, .formatTag = 3})
                                 .Data(std::string(24, '\x40'))
                                 .Bytes();
  EXPECT_EQ(Converted(source, 24), WrittenHeader(48000, 2, 24, 3) + std::string(18, '\0'));
}

TEST_F(BwfConversion, targetBelowEightBitsTakesNoBytes) {
  EXPECT_EQ(Converted(PlainWave({}, {1, 2, 3}), 4), WrittenHeader(48000, 1, 4, 3));
  EXPECT_EQ(Converted(PlainWave({}, {1, 2, 3}), 0), WrittenHeader(48000, 1, 0, 3));
}

TEST_F(BwfConversion, startsWhereBothStreamsStand) {
  const std::string source = PlainWave({}, {0x1000, 0x2000, 0x4000});
  AES31BWF file(folder.Write("source.wav", source).c_str());
  AES31BWF target(targetPath.c_str(), 48000, 1, 16, 4);
  file.OpenAtData();
  file.ReadSample();
  target.WriteSample(1.0F);
  EXPECT_EQ(file.ConvertInto(&target, false, 0.0), 0);
  target.CloseFile();
  EXPECT_EQ(PcmSamples(16, TemporaryFolder::Read(targetPath), kHeaderBytes),
            (Ints{32767, 8191, 16383, 0}))
      << "what lies past the file's end is silence";
}

TEST_F(BwfConversion, bytesAfterTheDataChunkAreReadOn) {
  const std::string source =
      WaveBytes().Format({}).Claim("data", 8, PcmBytes(16, {0x4000})).Raw("\x34\x12\x78").Bytes();
  EXPECT_EQ(PcmSamples(24, Converted(source, 24), kHeaderBytes),
            (Ints{0x3FFFFF, 0x1233FF, 0x77FF, 0}))
      << "the missing half of a sample is zero, and so is the last one";
}

TEST_F(BwfConversion, shortSourceGivesTheDeclaredAmount) {
  // The missing part begins in the first, in a later and in the last block: an old block's samples
  // must not come again.
  for (const std::size_t there : {std::size_t{0}, std::size_t{5}, std::size_t{20000},
                                  std::size_t{20001}, std::size_t{45000}}) {
    SCOPED_TRACE(there);
    const std::string source = WaveBytes()
                                   .Format({})
                                   .Claim("data", 90006, PcmBytes(16, Ints(there, 0x4000)))
                                   .RiffSize(36 + 90006)
                                   .Bytes();
    Ints expected(there, 16383);
    expected.resize(45003, 0);
    EXPECT_TRUE(Converted(source, 16) ==
                WrittenHeader(48000, 1, 16, 45003) + PcmBytes(16, expected));
  }
}

TEST_F(BwfConversion, everyDepthComesToAnEnd) {
  for (const int from : {0, 1, 7, 8, 9, 12, 20, 31, 33, 40, 48, 64, 255}) {
    for (const std::int32_t to : {0, 1, 7, 9, 12, 20, 31, 33, 40, 64, 255}) {
      AES31BWF source(
          folder
              .Write("source.wav",
                     WaveBytes()
                         .Format({.bits = static_cast<std::uint16_t>(from), .blockAlign = 4})
                         .Data(std::string(40, '\x5A'))
                         .Bytes())
              .c_str());
      AES31BWF target(targetPath.c_str(), 48000, 1, to, 10);
      source.OpenAtData();
      source.ConvertInto(&target, true, 1.5);
    }
  }
}

TEST_F(BwfConversion, streamThatIsNotOpenGivesTwo) {
  const std::string path = folder.Write("source.wav", PlainWave({}, {1, 2}));
  AES31BWF source(path.c_str());
  AES31BWF target(targetPath.c_str(), 48000, 1, 16, 2);
  EXPECT_EQ(source.ConvertInto(&target, false, 0.0), 2) << "the source";
  source.OpenAtData();
  target.CloseFile();
  EXPECT_EQ(source.ConvertInto(&target, false, 0.0), 2) << "the target";
  AES31BWF nowhere(folder.Path("missing/x.wav").c_str(), 48000, 1, 16, 2);
  EXPECT_EQ(source.ConvertInto(&nowhere, false, 0.0), 2) << "a target that could not be created";
}

TEST_F(BwfConversion, sourceThatCannotBeReadGivesTwo) {
  AES31BWF source(folder.Path("writing.wav").c_str(), 48000, 1, 16, 2);  // open for writing only
  AES31BWF target(targetPath.c_str(), 48000, 1, 16, 2);
  EXPECT_EQ(source.ConvertInto(&target, false, 0.0), 2);
}

}  // namespace
}  // namespace velmora::test
