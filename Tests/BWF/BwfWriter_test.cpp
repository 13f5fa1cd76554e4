#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Support/BwfReference.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"

namespace velmora::test {
namespace {

class BwfWriter : public testing::Test {
 protected:
  // The bytes after the header that the values leave in a file of one channel.
  std::string SampleBytes(std::int32_t bits, const std::vector<float>& values) {
    {
      AES31BWF file(path.c_str(), 48000, 1, bits, static_cast<std::int32_t>(values.size()));
      for (const float value : values) file.WriteSample(value);
    }
    const std::string bytes = TemporaryFolder::Read(path);
    EXPECT_GE(bytes.size(), kHeaderBytes);
    return bytes.substr(kHeaderBytes);
  }
  std::vector<std::int32_t> Samples(std::int32_t bits, const std::vector<float>& values) {
    return PcmSamples(bits, SampleBytes(bits, values));
  }

  TemporaryFolder folder;
  const std::string path = folder.Path("written.wav");
};

TEST_F(BwfWriter, headerOf668BytesOn64Bits) {
  // Spelled out once as plain numbers; the other tests take them from the reference.
  if constexpr (sizeof(void*) == 8) {
    ASSERT_EQ(kHeaderBytes, 668U);
    ASSERT_EQ(kBextBytes, 616U);
    ASSERT_EQ(kRiffSizeBeyondData, 660U);
  } else {
    ASSERT_EQ(kHeaderBytes, 660U);
    ASSERT_EQ(kBextBytes, 608U);
    ASSERT_EQ(kRiffSizeBeyondData, 652U);
  }
  { AES31BWF file(path.c_str(), 44100, 2, 24, 3); }
  EXPECT_EQ(TemporaryFolder::Read(path), LittleEndian()
                                             .Text("RIFF")
                                             .U32(kRiffSizeBeyondData + 18)
                                             .Text("WAVEbext")
                                             .U32(kBextBytes)
                                             .Zeros(kBextBytes)
                                             .Text("fmt ")
                                             .U32(16)
                                             .U16(1)
                                             .U16(2)
                                             .U32(44100)
                                             .U32(264600)
                                             .U16(6)
                                             .U16(24)
                                             .Text("data")
                                             .U32(18)
                                             .bytes);
}

struct HeaderRow {
  std::uint32_t rate;
  std::uint32_t channels;
  std::int32_t bits;
  std::int32_t frames;
};

constexpr HeaderRow kHeaderRows[] = {{48000, 1, 16, 10},  {44100, 2, 24, 3},  {96000, 3, 32, 1},
                                     {8000, 1, 8, 5},     {192000, 8, 24, 7}, {48000, 2, 16, 0},
                                     {48000, 1, 12, 4},   {48000, 1, 20, 4},  {4294967295, 1, 8, 1},
                                     {1, 1, 16, 20000000}};

TEST_F(BwfWriter, headerIsFinalAtOnceAndNotPatchedOnClosing) {
  for (const HeaderRow& row : kHeaderRows) {
    SCOPED_TRACE(testing::Message() << row.rate << " Hz, " << row.channels << " channels, "
                                    << row.bits << " bits, " << row.frames << " frames");
    AES31BWF file(path.c_str(), row.rate, row.channels, row.bits, row.frames);
    ASSERT_NE(file.stream, nullptr);
    EXPECT_EQ(std::ftell(file.stream.get()), static_cast<long>(kHeaderBytes));
    file.CloseFile();
    EXPECT_EQ(TemporaryFolder::Read(path),
              WrittenHeader(row.rate, row.channels, row.bits, row.frames));
  }
}

TEST_F(BwfWriter, instanceIsValidAtOnceWithItsArguments) {
  for (const HeaderRow& row : kHeaderRows) {
    AES31BWF file(path.c_str(), row.rate, row.channels, row.bits, row.frames);
    EXPECT_TRUE(file.IsValid());
    EXPECT_TRUE(file.hasBext);
    EXPECT_TRUE(file.hasFormat);
    EXPECT_TRUE(file.hasData);
    EXPECT_EQ(file.GetPath(), path);
    EXPECT_EQ(file.frames, static_cast<std::uint64_t>(row.frames));
    EXPECT_EQ(file.GetFrames(), row.frames);
    EXPECT_EQ(file.bytesPerSample, row.bits / 8);
    EXPECT_EQ(file.format.formatTag, 1);
    EXPECT_EQ(file.GetChannels(), row.channels);
    EXPECT_EQ(file.GetSampleRate(), row.rate);
    EXPECT_EQ(file.GetBitsPerSample(), static_cast<std::uint32_t>(row.bits));
    const std::uint32_t frameBytes = static_cast<std::uint32_t>(row.bits / 8) * row.channels;
    EXPECT_EQ(file.format.blockAlign, frameBytes);
    EXPECT_EQ(file.format.avgBytesPerSec, row.rate * frameBytes);
    EXPECT_EQ(file.dataOffset, kHeaderBytes);
    EXPECT_EQ(file.GetChunkCount(), 0U);
    EXPECT_FALSE(file.WriteFailed());
    const BwfBext* bext = file.GetBext();
    ASSERT_NE(bext, nullptr);
    EXPECT_EQ(bext->codingHistory, nullptr);
    EXPECT_EQ(bext->timeReferenceLow, 0U);
    EXPECT_EQ(std::string(bext->description.data(), 256), std::string(256, '\0'));
  }
}

TEST_F(BwfWriter, existingFileIsEmptiedFirst) {
  folder.Write("written.wav", std::string(5000, 'x'));
  { AES31BWF file(path.c_str(), 48000, 1, 16, 0); }
  EXPECT_EQ(TemporaryFolder::Read(path), WrittenHeader(48000, 1, 16, 0));
}

TEST_F(BwfWriter, fileOfNoFramesIsValidToItsWriterAlone) {
  AES31BWF file(path.c_str(), 48000, 1, 16, 0);
  file.CloseFile();
  EXPECT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetFrames(), 0);
  EXPECT_EQ(file.GetSampleAt(0, 0), 0.0F);
  EXPECT_EQ(TemporaryFolder::Read(path).size(), kHeaderBytes);
  EXPECT_FALSE(AES31BWF(path.c_str()).IsValid()) << "its data would begin at the form's end";
}

TEST_F(BwfWriter, writtenFileReadsBack) {
  AES31BWF written(path.c_str(), 48000, 2, 16, 2);
  for (const float value : {0.0F, 1.0F, -1.0F, 0.5F}) written.WriteSample(value);
  written.CloseFile();
  AES31BWF read(path.c_str());
  ASSERT_TRUE(read.IsValid());
  EXPECT_EQ(read.dataOffset, kHeaderBytes);
  EXPECT_EQ(read.riffEnd, static_cast<std::int64_t>(kHeaderBytes) + 8);
  EXPECT_EQ(read.GetFrames(), 2);
  EXPECT_EQ(read.GetChunkCount(), 0U);
  ASSERT_NE(read.GetBext(), nullptr);
  EXPECT_STREQ(read.GetBext()->codingHistory, "");
  for (AES31BWF* file : {&written, &read}) {
    EXPECT_EQ(file->GetSampleAt(0, 0), 0.0F);
    EXPECT_EQ(file->GetSampleAt(0, 1), 32767.0F / 32768.0F);
    EXPECT_EQ(file->GetSampleAt(1, 0), -32767.0F / 32768.0F);
    EXPECT_EQ(file->GetSampleAt(1, 1), 16383.0F / 32768.0F);
    EXPECT_EQ(file->GetSampleAt(2, 0), 0.0F);
  }
}

TEST_F(BwfWriter, reopeningSetsThePosition) {
  AES31BWF file(path.c_str(), 48000, 1, 16, 2);
  file.WriteSample(0.5F);
  file.WriteSample(1.0F);
  file.CloseFile();
  file.OpenAtData();
  ASSERT_NE(file.stream, nullptr);
  EXPECT_EQ(file.position, kHeaderBytes);
  EXPECT_EQ(file.ReadSample(), 16383.0F / 32768.0F);
}

TEST_F(BwfWriter, sixteenBitFullScaleIsOneBelow) {
  EXPECT_EQ(Samples(16, {1.0F, -1.0F, 0.0F, -0.0F}),
            (std::vector<std::int32_t>{32767, -32767, 0, 0}));
}

TEST_F(BwfWriter, truncatesTowardZero) {
  EXPECT_EQ(Samples(16, {0.5F, -0.5F, 0.25F, -0.25F}),
            (std::vector<std::int32_t>{16383, -16383, 8191, -8191}));
  EXPECT_EQ(Samples(16, {0.00003F, -0.00003F}), (std::vector<std::int32_t>{0, 0}));
  EXPECT_EQ(Samples(24, {0.5F, -0.5F}), (std::vector<std::int32_t>{4194303, -4194303}));
}

TEST_F(BwfWriter, multipliesInFloats) {
  // Each is a float just below n / 32767: its exact product lies below n, the float product is n.
  EXPECT_EQ(Samples(16, {0x1.0002p-15F, 0x1.8003p-14F, 0x1.ff7ffep-1F}),
            (std::vector<std::int32_t>{1, 3, 32735}));
}

TEST_F(BwfWriter, lowByteStandsFirstAtEveryDepth) {
  EXPECT_EQ(SampleBytes(8, {1.0F, -1.0F}), "\x7F\x81") << "signed";
  EXPECT_EQ(SampleBytes(16, {1.0F, -1.0F}), std::string("\xFF\x7F\x01\x80", 4));
  EXPECT_EQ(SampleBytes(24, {1.0F, -1.0F}), std::string("\xFF\xFF\x7F\x01\x00\x80", 6));
  EXPECT_EQ(SampleBytes(32, {0.5F, -0.5F}), std::string("\x00\x00\x00\x40\x00\x00\x00\xC0", 8));
}

TEST_F(BwfWriter, thirtyTwoBitFullScaleTurnsNegative) {
  // The scale 2147483647 is 2147483648 as a float, so that 1.0 does not fit.
  EXPECT_EQ(Samples(32, {1.0F, -1.0F, 0x0.FFFFFFp0F}),
            (std::vector<std::int32_t>{std::numeric_limits<std::int32_t>::min(),
                                       std::numeric_limits<std::int32_t>::min(), 0x7FFFFF80}));
}

TEST_F(BwfWriter, overloadWrapsAndIsNotClipped) {
  EXPECT_EQ(Samples(16, {1.5F, 2.0F, -1.5F, 4.0F}),
            (std::vector<std::int32_t>{49150 - 65536, -2, 65536 - 49150, 131068 - 131072}));
  EXPECT_EQ(Samples(24, {1.5F}), (std::vector<std::int32_t>{12582910 - 16777216}));
  EXPECT_EQ(Samples(8, {1.5F}), (std::vector<std::int32_t>{190 - 256}));
  // 65537 * 32767 is 2147450880 as a float, still inside 32 bits.
  EXPECT_EQ(Samples(16, {65537.0F}), (std::vector<std::int32_t>{-32768}));
}

TEST_F(BwfWriter, beyond32BitsBecomesTheMostNegative) {
  const float infinity = std::numeric_limits<float>::infinity();
  for (const float value : {65539.0F, 1e30F, -1e30F, infinity, -infinity, std::nanf("")}) {
    SCOPED_TRACE(value);
    EXPECT_EQ(Samples(16, {value}), std::vector<std::int32_t>{0});
    EXPECT_EQ(Samples(32, {value}),
              std::vector<std::int32_t>{std::numeric_limits<std::int32_t>::min()});
  }
}

TEST_F(BwfWriter, depthsBetweenBytesTakeWholeBytes) {
  EXPECT_EQ(SampleBytes(12, {1.0F, -1.0F}), std::string("\xFF\x07\x01\xF8", 4));
  EXPECT_EQ(SampleBytes(20, {1.0F}), std::string("\xFF\xFF\x07", 3));
  EXPECT_EQ(SampleBytes(9, {1.0F}), std::string("\xFF\x00", 2));
  EXPECT_EQ(SampleBytes(4, {1.0F}), "\x07");
  EXPECT_EQ(SampleBytes(1, {1.0F}), std::string(1, '\0'));
}

TEST_F(BwfWriter, depthOfZeroWritesNoSample) {
  EXPECT_EQ(SampleBytes(0, {1.0F, 0.5F}), "");
}

TEST_F(BwfWriter, writerOfFewerSamplesLeavesItsPromise) {
  {
    AES31BWF file(path.c_str(), 48000, 1, 16, 1000);
    file.WriteSample(1.0F);
  }
  EXPECT_EQ(TemporaryFolder::Read(path),
            WrittenHeader(48000, 1, 16, 1000) + std::string("\xFF\x7F", 2));
}

TEST_F(BwfWriter, destroyingKeepsTheFile) {
  { AES31BWF file(path.c_str(), 48000, 1, 16, 0); }
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(BwfWriter, depthsAndCountsBeyondReasonNeverFault) {
  for (const std::int32_t bits :
       {-2147483647 - 1, -8, -1, 31, 33, 40, 64, 255, 65535, 2147483647}) {
    for (const std::int32_t frames : {-1, 0, 2147483647, -2147483647 - 1}) {
      for (const std::uint32_t channels : {0U, 1U, 65535U, 65536U, 4294967295U}) {
        AES31BWF file(path.c_str(), 4294967295U, channels, bits, frames);
        file.WriteSample(1.0F);
        file.WriteSample(-1.0F);
        file.CloseFile();
        file.GetSampleAt(0, 0);
        file.GetSampleAt(1, 0);
      }
    }
  }
}

TEST_F(BwfWriter, targetThatCannotBeCreatedIsNotValidAndTakesNothing) {
  std::filesystem::create_symlink("loop", folder.Path("loop"));
  for (const std::string& target : {folder.Path("missing/written.wav"), folder.Path(),
                                    folder.Path("loop"), std::string(), std::string(5000, 'a')}) {
    SCOPED_TRACE(target);
    AES31BWF file(target.c_str(), 48000, 2, 16, 4);
    EXPECT_FALSE(file.IsValid());
    EXPECT_EQ(file.stream, nullptr);
    EXPECT_EQ(file.GetPath(), target);
    file.WriteSample(1.0F);
    file.DisableCache();
    file.CloseFile();
    EXPECT_EQ(file.GetSampleAt(0, 0), 0.0F);
    EXPECT_FALSE(file.IsValid());
  }
}

TEST_F(BwfWriter, targetWithoutWritingRightsIsNotValid) {
  ASSERT_EQ(chmod(folder.Path().c_str(), 0555), 0);
  OrdinaryRights rights;
  EXPECT_FALSE(AES31BWF(path.c_str(), 48000, 2, 16, 4).IsValid());
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(BwfWriter, writeSampleToAClosedFileDoesNothing) {
  AES31BWF file(path.c_str(), 48000, 1, 16, 1);
  file.CloseFile();
  file.WriteSample(1.0F);
  EXPECT_EQ(TemporaryFolder::Read(path).size(), kHeaderBytes);
}

}  // namespace
}  // namespace velmora::test
