#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

// What an instance looks like whose file is no wave file. It still knows its path.
void ExpectInvalid(const std::string& path) {
  Watchdog watchdog;
  AES31BWF file(path.c_str());
  EXPECT_FALSE(file.IsValid());
  EXPECT_FALSE(file.hasBext);
  EXPECT_FALSE(file.hasFormat);
  EXPECT_FALSE(file.hasData);
  EXPECT_EQ(file.stream, nullptr);
  EXPECT_EQ(file.GetPath(), path);
  EXPECT_EQ(file.GetBext(), nullptr);
  EXPECT_EQ(file.GetSampleAt(0, 0), 0.0F);
}

struct InvalidRow {
  const char* rule;
  std::string bytes;
};
void PrintTo(const InvalidRow& row, std::ostream* out) {
  *out << row.rule;
}

class BwfInvalidFile : public testing::TestWithParam<InvalidRow> {
 protected:
  TemporaryFolder folder;
};

TEST_P(BwfInvalidFile, isRefused) {
  ExpectInvalid(folder.Write("file.wav", GetParam().bytes));
}

std::string Replaced(std::string bytes, std::size_t at, std::string_view by) {
  return bytes.replace(at, by.size(), by);
}

const WaveBytes kFormat = WaveBytes().Format({});
const std::string kGood = PlainWave({}, {1, 2});
const std::string kSamples = PcmBytes(16, {1, 2});

INSTANTIATE_TEST_SUITE_P(
    Rows, BwfInvalidFile,
    testing::Values(
        InvalidRow{"emptyFile", ""}, InvalidRow{"threeBytes", "RIF"},
        InvalidRow{"riffAlone", "RIFF"}, InvalidRow{"riffAndSizeAlone", kGood.substr(0, 8)},
        InvalidRow{"formWithoutChunks", kGood.substr(0, 12)},
        InvalidRow{"bigEndianForm", Replaced(kGood, 0, "RIFX")},
        InvalidRow{"swappedRiff", Replaced(kGood, 0, "FFIR")},
        InvalidRow{"lowerCaseRiff", Replaced(kGood, 0, "riff")},
        InvalidRow{"swappedWave", Replaced(kGood, 8, "EVAW")},
        InvalidRow{"otherForm", Replaced(kGood, 8, "AVI ")},
        InvalidRow{"wide64BitForm", Replaced(kGood, 0, "RF64")},
        InvalidRow{"swappedFormatIdentifier", Replaced(kGood, 12, " tmf")},
        InvalidRow{"upperCaseData", Replaced(kGood, 36, "DATA")},
        InvalidRow{"riffSizeZero", WaveBytes(kFormat).Data(kSamples).RiffSize(0).Bytes()},
        InvalidRow{"formatAlone", kFormat.Bytes()},
        InvalidRow{"dataAlone", WaveBytes().Data(kSamples).Bytes()},
        InvalidRow{"bextAndDataAlone", WaveBytes().Bext({.history = "h"}).Data(kSamples).Bytes()},
        InvalidRow{"formatAndBextAlone", WaveBytes(kFormat).Bext({.history = "h"}).Bytes()},
        InvalidRow{"noChannels",
                   WaveBytes().Format({.channels = 0, .blockAlign = 2}).Data(kSamples).Bytes()},
        InvalidRow{"noBlockAlign", WaveBytes().Format({.blockAlign = 0}).Data(kSamples).Bytes()},
        InvalidRow{"noChannelsNorBlockAlign",
                   WaveBytes().Format({.channels = 0, .blockAlign = 0}).Data(kSamples).Bytes()},
        InvalidRow{"noChannelsAfterData",
                   WaveBytes().Data(kSamples).Format({.channels = 0, .blockAlign = 2}).Bytes()},
        InvalidRow{"noBlockAlignInTheLastFormat",
                   WaveBytes(kFormat).Data(kSamples).Format({.blockAlign = 0}).Bytes()},
        InvalidRow{
            "noChannelsInTheLastFormat",
            WaveBytes(kFormat).Data(kSamples).Format({.channels = 0, .blockAlign = 2}).Bytes()},
        InvalidRow{"text", "(ADL)(VERSION)\r\n\t(ID)\t1234\r\n(/ADL)\r\n"},
        InvalidRow{"allOnes", std::string(4096, '\xFF')},
        InvalidRow{"allZero", std::string(4096, '\0')}),
    [](const auto& row) { return std::string(row.param.rule); });

TEST(BwfBadInput, anyCutOfAFileIsValidOnceTheDataHeaderIsWhole) {
  TemporaryFolder folder;
  const std::string whole = WaveBytes()
                                .Format({})
                                .Data(kSamples)
                                .Chunk("LIST", "some text")
                                .Bext({.history = "history"})
                                .Bytes();
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    SCOPED_TRACE(size);
    AES31BWF file(folder.Write("cut.wav", whole.substr(0, size)).c_str());
    std::filesystem::remove(folder.Path("cut.wav"));
    ASSERT_EQ(file.IsValid(), size >= kPlainDataOffset);
    if (!file.IsValid()) continue;
    ASSERT_EQ(file.GetFrames(), 2);
    ASSERT_EQ(file.GetChunkCount(), size >= 56 ? 1U : 0U) << "from the end of its size field on";
    ASSERT_EQ(file.hasBext, size >= 73) << "from the end of its size field on";
  }
}

TEST(BwfBadInput, missingHeaderBytesAreAllOnes) {
  TemporaryFolder folder;
  const std::string whole = WaveBytes().Data(kSamples).Format({.channels = 2}).Bytes();
  AES31BWF noBits(folder.Write("a.wav", whole.substr(0, whole.size() - 2)).c_str());
  EXPECT_TRUE(noBits.IsValid());
  EXPECT_EQ(noBits.GetBitsPerSample(), 0xFFFFU);
  EXPECT_EQ(noBits.format.blockAlign, 4);
  AES31BWF tagAlone(folder.Write("b.wav", whole.substr(0, whole.size() - 13)).c_str());
  EXPECT_TRUE(tagAlone.IsValid());
  EXPECT_EQ(tagAlone.GetChannels(), 0xFF02U) << "its low byte is there";
  EXPECT_EQ(tagAlone.GetSampleRate(), 0xFFFFFFFFU);
  EXPECT_EQ(tagAlone.format.blockAlign, 0xFFFF);
  EXPECT_EQ(tagAlone.bytesPerSample, 1);
  EXPECT_EQ(tagAlone.GetFrames(), 0);
}

TEST(BwfBadInput, missingNumbersOfABextChunkAreAllOnes) {
  TemporaryFolder folder;
  const std::string whole =
      WaveBytes().Format({}).Data(kSamples).Bext({.originator = "here"}).Bytes();
  AES31BWF file(folder.Write("a.wav", whole.substr(0, whole.size() - 602 + 340)).c_str());
  EXPECT_TRUE(file.IsValid());
  ASSERT_NE(file.GetBext(), nullptr);
  EXPECT_EQ(std::string(file.bext.originator.data()), "here");
  EXPECT_EQ(file.bext.timeReferenceLow, 0xFFFF0000U) << "its low half is there";
  EXPECT_EQ(file.bext.timeReferenceHigh, 0xFFFFFFFFU);
  EXPECT_EQ(file.bext.version, 0xFFFF);
  EXPECT_EQ(file.bext.codingHistory, nullptr);
}

TEST(BwfBadInput, pathsThatAreNoRegularFileAreInvalid) {
  TemporaryFolder folder;
  ExpectInvalid(folder.Path());
  ExpectInvalid(folder.Path("missing.wav"));
  ExpectInvalid(folder.Write("plain", "x") + "/below.wav");
  ExpectInvalid("");
  ExpectInvalid("/dev/zero");
  ExpectInvalid("/dev/null");
  ExpectInvalid(std::string(5000, 'a'));
  std::filesystem::create_symlink("loop", folder.Path("loop"));
  ExpectInvalid(folder.Path("loop"));
}

TEST(BwfBadInput, fifoDoesNotBlock) {
  TemporaryFolder folder;
  ExpectInvalid(Fifo(folder, "fifo.wav"));
}

TEST(BwfBadInput, fileWithoutReadingRightsIsInvalid) {
  TemporaryFolder folder;
  const std::string path = folder.Write("locked.wav", kGood);
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
  OrdinaryRights rights;
  ExpectInvalid(path);
}

TEST(BwfBadInput, symbolicLinkToAWaveFileIsRead) {
  TemporaryFolder folder;
  std::filesystem::create_symlink(folder.Write("file.wav", kGood), folder.Path("link.wav"));
  EXPECT_TRUE(AES31BWF(folder.Path("link.wav").c_str()).IsValid());
}

TEST(BwfBadInput, failuresSayNothing) {
  TemporaryFolder folder;
  LogCapture log;
  testing::internal::CaptureStderr();
  for (const std::string& path :
       {folder.Path("missing.wav"), folder.Path(), folder.Write("text.wav", "text")}) {
    AES31BWF file(path.c_str());
    file.OpenAtData();
    file.GetSampleAt(0, 0);
    EXPECT_EQ(file.CopyTo(folder.Path("copy.wav").c_str(), 16), 3);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(log.lines, std::vector<std::string>{});
}

TEST(BwfBadInput, aHundredThousandEmptyChunksAreKept) {
  TemporaryFolder folder;
  WaveBytes wave;
  for (int i = 0; i < 100000; ++i) wave.Chunk("none", "");
  AES31BWF file(folder.Write("many.wav", wave.Format({}).Data(kSamples).Bytes()).c_str());
  EXPECT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetChunkCount(), 100000U);
}

// Whatever a header says, each operation comes to an end and stays inside its memory.
void UseEverything(const std::string& path, const TemporaryFolder& folder) {
  AES31BWF file(path.c_str());
  for (const std::int32_t frame : {0, 1, -1, 2147483647, -2147483647 - 1}) {
    file.GetSampleAt(frame, 0);
    file.GetSampleAt(frame, 0xFFFFFFFF);
  }
  file.CloseFile();
  for (std::int32_t i = 0; i < static_cast<std::int32_t>(file.GetChunkCount()); ++i) {
    EXPECT_EQ(file.GetChunk(i)->size, file.GetChunk(i)->data.size());
  }
  // Long files of silence are not the point here.
  if (file.frames * file.GetChannels() > 100000) return;
  // A file that is not there yet is made much faster than one that is emptied.
  for (const std::int32_t depth : {-1, 16}) {
    file.CopyTo(folder.Path("copy.wav").c_str(), depth);
    std::filesystem::remove(folder.Path("copy.wav"));
  }
}

TEST(BwfBadInput, damagedHeadersNeverFault) {
  TemporaryFolder folder;
  const std::string good = WaveBytes()
                               .Bext({.originator = "o", .history = "history"})
                               .Format({.channels = 2, .bits = 24})
                               .Chunk("LIST", "text")
                               .Data(PcmBytes(24, {1, 2, 3, 4, 5, 6}))
                               .Bytes();
  std::mt19937 random(31);
  const auto below = [&random](std::size_t limit) { return random() % limit; };
  for (int round = 0; round < 1500; ++round) {
    std::string bytes = good;
    for (std::size_t hits = 1 + below(4); hits > 0; --hits) {
      // The header's numbers stand at the file's begin and after the 614 bytes of the bext body.
      const std::size_t at = below(2) == 0 ? below(24) : 620 + below(bytes.size() - 620);
      constexpr unsigned char kEdges[] = {0x00, 0x01, 0x7F, 0x80, 0xFF};
      bytes[at] = static_cast<char>(below(2) == 0 ? kEdges[below(5)] : below(256));
    }
    if (below(4) == 0) bytes.resize(below(bytes.size()));
    UseEverything(folder.Write("damaged.wav", bytes), folder);
    std::filesystem::remove(folder.Path("damaged.wav"));
  }
}

}  // namespace
}  // namespace velmora::test
