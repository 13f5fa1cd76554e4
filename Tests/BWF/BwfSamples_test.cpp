#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
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

class BwfSamples : public testing::Test {
 protected:
  std::string Write(const std::string& bytes) { return folder.Write("file.wav", bytes); }

  TemporaryFolder folder;
};

long StreamOffset(const AES31BWF& file) {
  return std::ftell(file.stream.get());
}

struct DecodingRow {
  const char* rule;
  std::uint16_t bits;
  std::string bytes;
  float value;
};
void PrintTo(const DecodingRow& row, std::ostream* out) {
  *out << row.rule;
}

class BwfDecoding : public testing::TestWithParam<DecodingRow> {
 protected:
  TemporaryFolder folder;
};

TEST_P(BwfDecoding, bothReadsGiveTheValue) {
  const auto sampleBytes = static_cast<std::uint16_t>(GetParam().bytes.size());
  AES31BWF file(
      folder
          .Write("file.wav", WaveBytes()
                                 .Format({.bits = GetParam().bits, .blockAlign = sampleBytes})
                                 .Data(GetParam().bytes)
                                 .Bytes())
          .c_str());
  ASSERT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetSampleAt(0, 0), GetParam().value);
  file.OpenAtData();
  EXPECT_EQ(file.ReadSample(), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BwfDecoding,
    testing::Values(
        DecodingRow{"sixteenBitLargest", 16, "\xFF\x7F", 32767.0F / 32768.0F},
        DecodingRow{"sixteenBitSmallest", 16, std::string("\x00\x80", 2), -1.0F},
        DecodingRow{"sixteenBitOne", 16, std::string("\x01\x00", 2), 0x1p-15F},
        DecodingRow{"sixteenBitMinusOne", 16, "\xFF\xFF", -0x1p-15F},
        DecodingRow{"sixteenBitLowByteFirst", 16, "\x34\x12", 4660.0F / 32768.0F},
        DecodingRow{"twentyFourBitLargest", 24, "\xFF\xFF\x7F", 8388607.0F / 8388608.0F},
        DecodingRow{"twentyFourBitSmallest", 24, std::string("\x00\x00\x80", 3), -1.0F},
        DecodingRow{"twentyFourBitOne", 24, std::string("\x01\x00\x00", 3), 0x1p-23F},
        DecodingRow{"twentyFourBitLowByteFirst", 24, "\x56\x34\x12", 1193046.0F / 8388608.0F},
        DecodingRow{"thirtyTwoBitLargestIsOne", 32, "\xFF\xFF\xFF\x7F", 1.0F},
        DecodingRow{"thirtyTwoBitLargestBelowOne", 32, "\x80\xFF\xFF\x7F", 0x0.FFFFFFp0F},
        DecodingRow{"thirtyTwoBitSmallest", 32, std::string("\x00\x00\x00\x80", 4), -1.0F},
        DecodingRow{"thirtyTwoBitOne", 32, std::string("\x01\x00\x00\x00", 4), 0x1p-31F},
        DecodingRow{"thirtyTwoBitTieRoundsToEven", 32, std::string("\x01\x00\x00\x01", 4),
                    16777216.0F * 0x1p-31F},
        DecodingRow{"thirtyTwoBitRoundsUp", 32, std::string("\x03\x00\x00\x01", 4),
                    16777220.0F * 0x1p-31F},
        DecodingRow{"eightBitIsSigned", 8, "\x80", -1.0F},
        DecodingRow{"eightBitLargest", 8, "\x7F", 127.0F / 128.0F},
        DecodingRow{"eightBitMinusOne", 8, "\xFF", -1.0F / 128.0F},
        DecodingRow{"twelveBitsAreOneByte", 12, "\x40", 0.5F},
        DecodingRow{"fortyBitsCountTheLastFourBytes", 40, std::string("\x99\x00\x00\x00\x40", 5),
                    0.5F},
        DecodingRow{"sixtyFourBitsCountTheLastFourBytes", 64,
                    std::string("\x11\x22\x33\x44\x00\x00\x00\xC0", 8), -0.5F}),
    [](const auto& row) { return std::string(row.param.rule); });

TEST_F(BwfSamples, everySixteenBitValueDecodesExactly) {
  std::vector<std::int32_t> all;
  for (std::int32_t sample = -32768; sample <= 32767; ++sample) all.push_back(sample);
  AES31BWF file(Write(PlainWave({}, all)).c_str());
  for (std::int32_t i = 0; i < 65536; ++i) {
    ASSERT_EQ(file.GetSampleAt(i, 0), static_cast<float>(i - 32768) / 32768.0F);
  }
}

TEST_F(BwfSamples, lastFrameAndChannelIsThereAndNothingAfterIt) {
  AES31BWF file(
      Write(PlainWave({.channels = 2}, {0x0800, 0x1000, 0x2000, 0x4000}) + std::string(64, 'x'))
          .c_str());
  EXPECT_EQ(file.GetSampleAt(1, 1), 0.5F);
  EXPECT_EQ(file.GetSampleAt(1, 0), 0.25F);
  EXPECT_EQ(file.GetSampleAt(0, 1), 0.125F);
  const long before = StreamOffset(file);
  const std::int64_t position = file.position;
  EXPECT_EQ(file.GetSampleAt(2, 0), 0.0F);
  EXPECT_EQ(file.GetSampleAt(-1, 0), 0.0F);
  EXPECT_EQ(file.GetSampleAt(-2147483647 - 1, 1), 0.0F);
  EXPECT_EQ(file.GetSampleAt(2147483647, 1), 0.0F);
  EXPECT_EQ(file.GetSampleAt(0, 2), 0.0F);
  EXPECT_EQ(file.GetSampleAt(0, 0xFFFFFFFF), 0.0F);
  EXPECT_EQ(StreamOffset(file), before) << "nothing was read";
  EXPECT_EQ(file.position, position);
}

TEST_F(BwfSamples, refusedReadOpensTheStreamAllTheSame) {
  AES31BWF file(Write(PlainWave({}, {1, 2})).c_str());
  EXPECT_EQ(file.GetSampleAt(-1, 0), 0.0F);
  ASSERT_NE(file.stream, nullptr);
  EXPECT_EQ(file.position, 44);
  EXPECT_EQ(StreamOffset(file), 44);
}

TEST_F(BwfSamples, otherFormatTagsReadAsSilenceThoughValid) {
  const std::string loud = std::string(64, '\x40');
  for (const std::uint16_t tag : {std::uint16_t{3}, std::uint16_t{0xFFFE}, std::uint16_t{0}}) {
    // The first fmt chunk leaves a depth that could still be read.
    AES31BWF file(Write(WaveBytes()
                            .Format({.bits = 32})
                            .Format({.bits = 32, .formatTag = tag})
                            .Data(loud)
                            .Bytes())
                      .c_str());
    EXPECT_TRUE(file.IsValid());
    EXPECT_EQ(file.GetBitsPerSample(), 32U);
    for (std::int32_t frame = 0; frame < 16; ++frame) EXPECT_EQ(file.GetSampleAt(frame, 0), 0.0F);
  }
}

TEST_F(BwfSamples, depthBelowEightReadsNothingButMovesThePosition) {
  AES31BWF file(
      Write(WaveBytes().Format({.bits = 7, .blockAlign = 1}).Data("\x40\x41\x42").Bytes()).c_str());
  ASSERT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetSampleAt(0, 0), 0.0F);
  EXPECT_EQ(file.GetSampleAt(1, 0), 0.0F);
  EXPECT_EQ(file.position, 46);
  EXPECT_EQ(StreamOffset(file), 44);
  EXPECT_EQ(file.ReadSample(), 0.0F);
  EXPECT_EQ(StreamOffset(file), 44);
}

TEST_F(BwfSamples, missingSampleBytesAreAllOnes) {
  const std::string cut =
      WaveBytes().Format({}).Claim("data", 8, LittleEndian().U16(0x4000).U8(0x34).bytes).Bytes();
  AES31BWF file(Write(cut).c_str());
  ASSERT_EQ(file.GetFrames(), 4);
  EXPECT_EQ(file.GetSampleAt(0, 0), 0.5F);
  EXPECT_EQ(file.GetSampleAt(1, 0), static_cast<float>(0x34 - 0x100) / 32768.0F);
  EXPECT_EQ(file.GetSampleAt(2, 0), -1.0F / 32768.0F);
  EXPECT_EQ(file.GetSampleAt(3, 0), -1.0F / 32768.0F);
}

TEST_F(BwfSamples, readSampleReadsOnAndLeavesThePosition) {
  AES31BWF file(Write(PlainWave({.channels = 2}, {0x0800, 0x1000, 0x2000, 0x4000})).c_str());
  file.OpenAtData();
  EXPECT_EQ(file.ReadSample(), 0.0625F);
  EXPECT_EQ(file.ReadSample(), 0.125F);
  EXPECT_EQ(file.ReadSample(), 0.25F);
  EXPECT_EQ(file.position, 44);
  EXPECT_EQ(StreamOffset(file), 50);
}

TEST_F(BwfSamples, readSampleGoesOnAfterTheDataChunk) {
  AES31BWF file(Write(PlainWave({}, {1}) + std::string("\x00\x40", 2)).c_str());
  file.OpenAtData();
  file.ReadSample();
  EXPECT_EQ(file.ReadSample(), 0.5F);
}

TEST_F(BwfSamples, closeFileCanBeCalledAtAnyTime) {
  AES31BWF file(Write(PlainWave({}, {0x4000})).c_str());
  file.CloseFile();
  EXPECT_EQ(file.stream, nullptr);
  file.OpenAtData();
  EXPECT_NE(file.stream, nullptr);
  file.DisableCache();
  EXPECT_EQ(file.ReadSample(), 0.5F);
  file.CloseFile();
  file.CloseFile();
  EXPECT_EQ(file.stream, nullptr);
  EXPECT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetSampleAt(0, 0), 0.5F) << "it opens again by itself";
}

TEST_F(BwfSamples, twoInstancesOnOnePathAreIndependent) {
  const std::string path = Write(PlainWave({}, {0x1000, 0x2000, 0x4000}));
  AES31BWF first(path.c_str());
  AES31BWF second(path.c_str());
  EXPECT_EQ(first.GetSampleAt(2, 0), 0.5F);
  EXPECT_EQ(second.GetSampleAt(0, 0), 0.125F);
  first.CloseFile();
  EXPECT_EQ(second.GetSampleAt(1, 0), 0.25F);
}

TEST_F(BwfSamples, vanishedFileReadsAsSilence) {
  const std::string path = Write(PlainWave({}, {0x4000}));
  AES31BWF file(path.c_str());
  std::filesystem::remove(path);
  file.OpenAtData();
  EXPECT_EQ(file.stream, nullptr);
  EXPECT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetSampleAt(0, 0), 0.0F);
}

TEST_F(BwfSamples, fileThatBecameAFifoReadsAsSilenceAndDoesNotBlock) {
  const std::string path = Write(PlainWave({}, {0x4000}));
  AES31BWF file(path.c_str());
  std::filesystem::remove(path);
  Fifo(folder, "file.wav");
  Watchdog watchdog;
  EXPECT_EQ(file.GetSampleAt(0, 0), 0.0F);
}

TEST_F(BwfSamples, offsetOfAFrameIsFormedIn32Bits) {
  AES31BWF file(Write(PlainWave({.channels = 2}, {0x0800, 0x1000, 0x2000, 0x4000})).c_str());
  file.frames = std::uint64_t{1} << 31;
  // 0x40000001 frames of 4 bytes are 4 bytes beyond a full turn: frame 1.
  EXPECT_EQ(file.GetSampleAt(0x40000001, 1), 0.5F);
  file.GetSampleAt(0x20000000, 0);  // a negative offset: any value, but no fault
}

// Frames 0 to 9 hold the sixteenths 0 to 9, so that a value tells where it was read.
class BwfStalePosition : public BwfSamples {
 protected:
  BwfStalePosition() {
    std::vector<std::int32_t> samples;
    for (std::int32_t i = 0; i < 10; ++i) samples.push_back(i * 2048);
    path = Write(PlainWave({}, samples));
  }
  static constexpr std::int64_t kData = 44;
  std::string path;
};

TEST_F(BwfStalePosition, readsInOrderNeverSeek) {
  AES31BWF file(path.c_str());
  for (std::int32_t i = 0; i < 10; ++i) {
    EXPECT_EQ(file.GetSampleAt(i, 0), static_cast<float>(i) / 16.0F);
    EXPECT_EQ(file.position, kData + 2 * (i + 1));
    EXPECT_EQ(StreamOffset(file), file.position);
  }
}

TEST_F(BwfStalePosition, seekDoesNotStoreItsOffset) {
  AES31BWF file(path.c_str());
  EXPECT_EQ(file.GetSampleAt(5, 0), 5.0F / 16.0F);
  EXPECT_EQ(file.position, kData + 2) << "grown by one sample, not moved";
  EXPECT_EQ(StreamOffset(file), kData + 12);
  EXPECT_EQ(file.GetSampleAt(6, 0), 6.0F / 16.0F) << "it seeks once more";
  EXPECT_EQ(file.position, kData + 4);
}

TEST_F(BwfStalePosition, offsetEqualToItIsReadFromWhereTheStreamStands) {
  AES31BWF file(path.c_str());
  EXPECT_EQ(file.GetSampleAt(0, 0), 0.0F / 16.0F);  // position frame 1, stream frame 1
  EXPECT_EQ(file.GetSampleAt(5, 0), 5.0F / 16.0F);  // position frame 2, stream frame 6
  EXPECT_EQ(file.GetSampleAt(2, 0), 6.0F / 16.0F);  // position frame 3, stream frame 7
  EXPECT_EQ(file.GetSampleAt(3, 0), 7.0F / 16.0F);  // position frame 4, stream frame 8
  EXPECT_EQ(file.GetSampleAt(1, 0), 1.0F / 16.0F);  // position frame 5, stream frame 2
  EXPECT_EQ(file.GetSampleAt(5, 0), 2.0F / 16.0F);
  EXPECT_EQ(file.position, kData + 12);
}

TEST_F(BwfStalePosition, openAtDataOfAnOpenStreamLeavesIt) {
  AES31BWF file(path.c_str());
  file.GetSampleAt(0, 0);
  file.GetSampleAt(1, 0);
  file.OpenAtData();
  EXPECT_EQ(StreamOffset(file), kData);
  EXPECT_EQ(file.position, kData + 4);
  EXPECT_EQ(file.GetSampleAt(2, 0), 0.0F / 16.0F) << "read from the first sample";
  EXPECT_EQ(file.GetSampleAt(3, 0), 1.0F / 16.0F);
}

TEST_F(BwfStalePosition, readSampleMakesItStale) {
  AES31BWF file(path.c_str());
  file.OpenAtData();
  file.ReadSample();
  file.ReadSample();
  EXPECT_EQ(file.GetSampleAt(0, 0), 2.0F / 16.0F);
}

TEST_F(BwfStalePosition, closingAndOpeningSetsItRight) {
  AES31BWF file(path.c_str());
  file.GetSampleAt(0, 0);
  file.GetSampleAt(5, 0);
  file.CloseFile();
  EXPECT_EQ(file.GetSampleAt(2, 0), 2.0F / 16.0F);
  EXPECT_EQ(file.position, kData + 2);
}

TEST_F(BwfStalePosition, positionSetByHandIsBelieved) {
  AES31BWF file(path.c_str());
  file.OpenAtData();
  file.position = kData + 2 * 8;
  EXPECT_EQ(file.GetSampleAt(8, 0), 0.0F / 16.0F);
  EXPECT_EQ(file.GetSampleAt(8, 0), 8.0F / 16.0F);
}

TEST_F(BwfStalePosition, refusedReadsDoNotMoveIt) {
  AES31BWF file(path.c_str());
  EXPECT_EQ(file.GetSampleAt(3, 0), 3.0F / 16.0F);
  EXPECT_EQ(file.GetSampleAt(10, 0), 0.0F);
  EXPECT_EQ(file.GetSampleAt(1, 0), 4.0F / 16.0F);
}

TEST_F(BwfSamples, anyOrderOfReadsFollowsStreamAndPosition) {
  std::mt19937 random(7);
  for (const WaveFormat& format :
       {WaveFormat{.channels = 1, .bits = 16}, WaveFormat{.channels = 2, .bits = 24},
        WaveFormat{.channels = 3, .bits = 8}, WaveFormat{.channels = 2, .bits = 32}}) {
    constexpr std::uint32_t kFrames = 12;
    std::vector<std::int32_t> samples(kFrames * format.channels);
    for (std::int32_t& sample : samples) sample = static_cast<std::int32_t>(random());
    const std::string bytes = PlainWave(format, samples) + "LISTsome bytes after";
    AES31BWF file(Write(bytes).c_str());
    StreamModel model(bytes, format, kPlainDataOffset, kFrames);
    int stale = 0;
    for (int i = 0; i < 5000; ++i) {
      if (i % 97 == 0) {
        file.CloseFile();
        model.Close();
      }
      if (i % 41 == 0) {
        file.OpenAtData();
        model.OpenAtData();
      }
      // Near the tracked position, so that its coincidences come up often.
      const auto frame = static_cast<std::uint32_t>(random() % (kFrames + 2));
      const auto channel = static_cast<std::uint32_t>(random() % (format.channels + 1U));
      const float expected = model.SampleAt(static_cast<std::int32_t>(frame) - 1, channel);
      ASSERT_EQ(file.GetSampleAt(static_cast<std::int32_t>(frame) - 1, channel), expected)
          << "read " << i << ", frame " << frame << " - 1, channel " << channel;
      ASSERT_EQ(file.position, model.Position());
      if (frame >= 1 && frame <= kFrames && channel < format.channels) {
        const std::size_t at = (frame - 1) * format.channels + channel;
        stale +=
            expected != Decoded(PcmSamples(format.bits, bytes, kPlainDataOffset)[at], format.bits);
      }
    }
    EXPECT_GT(stale, 10) << "the rule came up";
  }
}

}  // namespace
}  // namespace velmora::test
