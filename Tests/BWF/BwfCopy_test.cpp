#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Support/BwfReference.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

using Ints = std::vector<std::int32_t>;

class BwfCopy : public testing::Test {
 protected:
  std::string Source(const std::string& bytes) { return folder.Write("source.wav", bytes); }
  std::string TargetBytes() const { return TemporaryFolder::Read(target); }

  TemporaryFolder folder;
  const std::string target = folder.Path("target.wav");
  // Every kind of chunk, with 24-bit audio.
  const std::string rich = WaveBytes()
                               .Bext({.description = "take", .timeLow = 7, .history = "A=PCM"})
                               .Chunk("iXML", "<x/>")
                               .Format({.channels = 2, .bits = 24})
                               .Data(PcmBytes(24, {8388607, -8388608, 256, 512}))
                               .Chunk("LIST", "text")
                               .Bytes();
};

TEST_F(BwfCopy, sameDepthCopiesByteForByte) {
  for (const std::int32_t depth : {-1, 24}) {
    SCOPED_TRACE(depth);
    AES31BWF source(Source(rich).c_str());
    EXPECT_EQ(source.CopyTo(target.c_str(), depth), CopyDone);
    EXPECT_EQ(source.stream, nullptr);
    EXPECT_EQ(TargetBytes(), rich);
    std::filesystem::remove(target);
  }
}

TEST_F(BwfCopy, sameDepthStartsAtTheFilesBeginWhereverTheStreamStands) {
  AES31BWF source(Source(rich).c_str());
  source.GetSampleAt(1, 1);
  EXPECT_EQ(source.CopyTo(target.c_str(), -1), CopyDone);
  EXPECT_EQ(TargetBytes(), rich);
}

TEST_F(BwfCopy, sameDepthDropsWhatLiesAfterTheForm) {
  AES31BWF source(Source(rich + std::string(100000, 'x')).c_str());
  EXPECT_EQ(source.CopyTo(target.c_str(), -1), CopyDone);
  EXPECT_EQ(TargetBytes(), rich);
}

TEST_F(BwfCopy, formThatEndsInsideTheAudioCutsTheCopy) {
  const std::string bytes = WaveBytes().Format({}).Data(std::string(100, 'x')).RiffSize(52).Bytes();
  AES31BWF source(Source(bytes).c_str());
  EXPECT_EQ(source.CopyTo(target.c_str(), -1), CopyDone);
  EXPECT_EQ(TargetBytes(), bytes.substr(0, 60));
}

TEST_F(BwfCopy, formLongerThanTheFileCopiesWhatThereIs) {
  for (const std::uint32_t size : {1000U, 0x7FFFFFFFU}) {
    const std::string bytes = WaveBytes().Format({}).Data("abcd").RiffSize(size).Bytes();
    AES31BWF source(Source(bytes).c_str());
    EXPECT_EQ(source.CopyTo(target.c_str(), 16), CopyDone);
    EXPECT_EQ(TargetBytes(), bytes);
  }
}

TEST_F(BwfCopy, largeFileComesWhole) {
  Ints samples(1000003);
  std::iota(samples.begin(), samples.end(), -500000);
  const std::string bytes = PlainWave({.bits = 24}, samples);
  AES31BWF source(Source(bytes).c_str());
  EXPECT_EQ(source.CopyTo(target.c_str(), -1), CopyDone);
  EXPECT_TRUE(TargetBytes() == bytes);
}

TEST_F(BwfCopy, negativeFormEndFailsWithAnEmptyTarget) {
  AES31BWF source(Source(WaveBytes().Format({}).Data("abcd").RiffSize(0x80000000).Bytes()).c_str());
  ASSERT_TRUE(source.IsValid());
  EXPECT_EQ(source.CopyTo(target.c_str(), -1), CopyFailed);
  EXPECT_TRUE(std::filesystem::exists(target));
  EXPECT_EQ(TargetBytes(), "");
  EXPECT_EQ(source.CopyTo(target.c_str(), 24), CopyDone) << "a depth change does not look at it";
}

TEST_F(BwfCopy, existingTargetIsReplaced) {
  folder.Write("target.wav", std::string(100000, 'x'));
  AES31BWF source(Source(rich).c_str());
  EXPECT_EQ(source.CopyTo(target.c_str(), -1), CopyDone);
  EXPECT_EQ(TargetBytes(), rich);
  folder.Write("target.wav", std::string(100000, 'x'));
  EXPECT_EQ(source.CopyTo(target.c_str(), 16), CopyDone);
  EXPECT_EQ(TargetBytes().size(), kHeaderBytes + 8);
}

TEST_F(BwfCopy, otherDepthLeavesEverythingButTheAudioBehind) {
  AES31BWF source(Source(rich).c_str());
  ASSERT_NE(source.GetBext(), nullptr);
  EXPECT_EQ(source.CopyTo(target.c_str(), 16), CopyDone);
  EXPECT_EQ(source.stream, nullptr);
  EXPECT_EQ(TargetBytes(), WrittenHeader(48000, 2, 16, 2) + PcmBytes(16, {32766, -32767, 0, 1}));
}

TEST_F(BwfCopy, otherDepthStartsAtTheFirstSampleWhereverTheStreamStands) {
  AES31BWF source(Source(PlainWave({}, {32767, -32768, 1, -1})).c_str());
  source.GetSampleAt(2, 0);
  EXPECT_EQ(source.CopyTo(target.c_str(), 24), CopyDone);
  EXPECT_EQ(TargetBytes(),
            WrittenHeader(48000, 1, 24, 4) + PcmBytes(24, {8388351, -8388607, 255, -255}));
}

TEST_F(BwfCopy, otherDepthIgnoresBytesAfterTheAudio) {
  AES31BWF source(Source(PlainWave({}, {32767}) + std::string(50, 'x')).c_str());
  EXPECT_EQ(source.CopyTo(target.c_str(), 24), CopyDone);
  EXPECT_EQ(TargetBytes(), WrittenHeader(48000, 1, 24, 1) + PcmBytes(24, {8388351}));
}

TEST_F(BwfCopy, shortSourceIsFilledUpWithSilence) {
  AES31BWF source(
      Source(WaveBytes().Format({}).Claim("data", 8, PcmBytes(16, {32767})).Bytes()).c_str());
  EXPECT_EQ(source.CopyTo(target.c_str(), 24), CopyDone);
  EXPECT_EQ(TargetBytes(), WrittenHeader(48000, 1, 24, 4) + PcmBytes(24, {8388351, 0, 0, 0}));
}

TEST_F(BwfCopy, fileWithoutFramesConvertsToAHeader) {
  AES31BWF source(Source(WaveBytes().Format({}).Data("").Chunk("tail", "").Bytes()).c_str());
  EXPECT_EQ(source.CopyTo(target.c_str(), 24), CopyDone);
  EXPECT_EQ(TargetBytes(), WrittenHeader(48000, 1, 24, 0));
}

TEST_F(BwfCopy, writtenFileCanBeConvertedByItsWriter) {
  AES31BWF written(folder.Path("written.wav").c_str(), 44100, 1, 16, 2);
  written.WriteSample(1.0F);
  written.WriteSample(-1.0F);
  written.CloseFile();
  EXPECT_EQ(written.CopyTo(target.c_str(), 24), CopyDone);
  EXPECT_EQ(TargetBytes(), WrittenHeader(44100, 1, 24, 2) + PcmBytes(24, {8388351, -8388351}));
}

TEST_F(BwfCopy, otherFormatTagConvertsToSilence) {
  AES31BWF source(
      Source(WaveBytes().Format({.bits = 32, .formatTag = 3}).Data(std::string(12, '\x3F')).Bytes())
          .c_str());
  EXPECT_EQ(source.CopyTo(target.c_str(), 16), CopyDone);
  EXPECT_EQ(TargetBytes(), WrittenHeader(48000, 1, 16, 3) + std::string(6, '\0'));
}

TEST_F(BwfCopy, invalidInstanceGivesThreeAndMakesNoFile) {
  AES31BWF text(Source("text").c_str());
  AES31BWF missing(folder.Path("missing.wav").c_str());
  for (const std::int32_t depth : {-1, 0, 16, 24}) {
    EXPECT_EQ(text.CopyTo(target.c_str(), depth), CopyNotValid);
    EXPECT_EQ(missing.CopyTo(target.c_str(), depth), CopyNotValid);
  }
  EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(BwfCopy, targetThatCannotBeCreatedGivesOneAtAnyDepth) {
  AES31BWF source(Source(rich).c_str());
  for (const std::int32_t depth : {-1, 24, 16, 32}) {
    SCOPED_TRACE(depth);
    EXPECT_EQ(source.CopyTo(folder.Path("missing/x.wav").c_str(), depth), CopyTargetNotCreated);
    EXPECT_EQ(source.CopyTo(folder.Path().c_str(), depth), CopyTargetNotCreated);
    EXPECT_EQ(source.CopyTo("", depth), CopyTargetNotCreated);
  }
  EXPECT_TRUE(source.IsValid());
  EXPECT_EQ(source.CopyTo(target.c_str(), -1), CopyDone) << "the source is still usable";
}

TEST_F(BwfCopy, sourceThatVanishedGivesTwo) {
  const std::string path = Source(rich);
  AES31BWF source(path.c_str());
  std::filesystem::remove(path);
  for (const std::int32_t depth : {-1, 16}) {
    EXPECT_EQ(source.CopyTo(target.c_str(), depth), CopyFailed);
  }
}

TEST_F(BwfCopy, depthsBeyondReasonComeToAnEnd) {
  AES31BWF source(Source(rich).c_str());
  for (const std::int32_t depth : {-2147483647 - 1, -2, 0, 1, 7, 9, 31, 33, 64, 2147483647}) {
    source.CopyTo(target.c_str(), depth);
    EXPECT_TRUE(source.IsValid());
  }
}

class BwfCopyFrames : public BwfCopy {
 protected:
  // The samples that arrive in a target of `frames` frames of the source's format.
  Ints Copied(AES31BWF& source, std::int32_t frames, std::int64_t first) {
    const auto bits = static_cast<std::int32_t>(source.GetBitsPerSample());
    AES31BWF copy(target.c_str(), source.GetSampleRate(), source.GetChannels(), bits, frames);
    EXPECT_TRUE(copy.CopyFrames(&source, first));
    copy.CloseFile();
    EXPECT_EQ(TargetBytes().substr(0, kHeaderBytes),
              WrittenHeader(source.GetSampleRate(), source.GetChannels(), bits, frames));
    return PcmSamples(bits, TargetBytes(), kHeaderBytes);
  }
};

TEST_F(BwfCopyFrames, takesTheStretchUnchanged) {
  AES31BWF source(Source(PlainWave({.channels = 2}, {1, -1, 2, -2, 3, -3, 4, -4})).c_str());
  EXPECT_EQ(Copied(source, 2, 1), (Ints{2, -2, 3, -3}));
  EXPECT_EQ(source.position, 44 + 4) << "the offset of the first frame";
  EXPECT_NE(source.stream, nullptr);
  EXPECT_EQ(Copied(source, 4, 0), (Ints{1, -1, 2, -2, 3, -3, 4, -4}));
  EXPECT_EQ(Copied(source, 0, 3), Ints{});
}

TEST_F(BwfCopyFrames, worksAtEveryDepth) {
  for (const std::uint16_t bits : {std::uint16_t{8}, std::uint16_t{24}, std::uint16_t{32}}) {
    AES31BWF source(Source(PlainWave({.bits = bits}, {-100, 99, 98, -97})).c_str());
    EXPECT_EQ(Copied(source, 3, 1), (Ints{99, 98, -97}));
  }
}

TEST_F(BwfCopyFrames, partThatTheSourceLacksIsZero) {
  AES31BWF source(Source(PlainWave({}, {1, 2, 3})).c_str());
  EXPECT_EQ(Copied(source, 4, 1), (Ints{2, 3, 0, 0}));
  EXPECT_EQ(Copied(source, 2, 100), (Ints{0, 0}));
}

TEST_F(BwfCopyFrames, otherFormatIsRefused) {
  AES31BWF source(Source(PlainWave({.sampleRate = 48000, .channels = 2}, {1, 2})).c_str());
  struct Row {
    std::uint32_t rate;
    std::uint32_t channels;
    std::int32_t bits;
  };
  for (const Row& row : {Row{44100, 2, 16}, Row{48000, 1, 16}, Row{48000, 2, 24}}) {
    AES31BWF copy(target.c_str(), row.rate, row.channels, row.bits, 1);
    EXPECT_FALSE(copy.CopyFrames(&source, 0));
    copy.CloseFile();
    EXPECT_EQ(TargetBytes().size(), kHeaderBytes);
  }
}

TEST_F(BwfCopyFrames, filesThatCannotBeUsedAreRefused) {
  const std::string path = Source(PlainWave({}, {1, 2}));
  AES31BWF source(path.c_str());
  AES31BWF nowhere(folder.Path("missing/x.wav").c_str(), 48000, 1, 16, 1);
  EXPECT_FALSE(nowhere.CopyFrames(&source, 0)) << "no target";
  AES31BWF closed(target.c_str(), 48000, 1, 16, 1);
  closed.CloseFile();
  {
    LogCapture log;
    EXPECT_FALSE(closed.CopyFrames(&source, 0)) << "it opens again, but for reading";
    EXPECT_EQ(log.lines.size(), 1U);
  }
  source.CloseFile();
  std::filesystem::remove(path);
  AES31BWF copy(folder.Path("other.wav").c_str(), 48000, 1, 16, 1);
  EXPECT_FALSE(copy.CopyFrames(&source, 0)) << "no source";
}

TEST_F(BwfCopyFrames, firstFramesBeyondReasonNeverFault) {
  AES31BWF source(Source(PlainWave({.channels = 2}, {1, 2})).c_str());
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  for (const std::int64_t first :
       {-kMost - 1, -kMost, std::int64_t{-12}, std::int64_t{-1}, kMost}) {
    AES31BWF copy(target.c_str(), 48000, 2, 16, 1);
    copy.CopyFrames(&source, first);
  }
}

}  // namespace
}  // namespace velmora::test
