#include "Peaks/PeakSource.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <vector>

#include "PeaksMaterial.h"
#include "Support/SystemConditions.h"

namespace velmora::peaks {
namespace {

std::vector<Peak> ReadAll(PeakSource& source, std::int64_t first, std::int64_t end,
                          std::int64_t stretch) {
  const std::int64_t held = std::min(end, source.Frames());
  const std::int64_t most = held > first ? (held - first + stretch - 1) / stretch : 0;
  std::vector<Peak> peaks(static_cast<std::size_t>(most));
  peaks.resize(static_cast<std::size_t>(source.Read(first, end, stretch, peaks.data(), {})));
  return peaks;
}

struct FormatRow {
  const char* name;
  int format;
  bool isPlain;
};

constexpr FormatRow kFormats[] = {
    {"u8.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, false},
    {"16.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, true},
    {"24.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24, true},
    {"32.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_32, true},
    {"float.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, true},
    {"double.wav", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, false},
    {"ulaw.wav", SF_FORMAT_WAV | SF_FORMAT_ULAW, false},
    {"extensible.wav", SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, true},
    {"long.rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_24, true},
    {"big-endian.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16 | SF_ENDIAN_BIG, false},
    {"24.w64", SF_FORMAT_W64 | SF_FORMAT_PCM_24, false},
    {"16.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, false},
    {"32.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_32, false},
    {"float.aiff", SF_FORMAT_AIFF | SF_FORMAT_FLOAT, false},
    {"24.caf", SF_FORMAT_CAF | SF_FORMAT_PCM_24, false},
    {"16.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, false},
    {"24.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, false},
    {"vorbis.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, false},
};

// Every format, channel count and length comes out as sample for sample.
TEST(PeakSource, readsEveryFormatAsTheLiteralWay) {
  const test::TemporaryFolder folder;
  for (const FormatRow& row : kFormats) {
    for (const int channels : {1, 2, 7}) {
      for (const std::size_t frames : {1U, 255U, 256U, 257U, 5003U}) {
        const std::string path = folder.Path(row.name);
        const auto samples = Noise(frames * static_cast<std::size_t>(channels), 3);
        ASSERT_TRUE(WriteSound(path, row.format, channels, samples)) << row.name;
        const std::unique_ptr<PeakSource> source = PeakSource::Open(path);
        ASSERT_NE(source, nullptr) << row.name;
        EXPECT_EQ(source->ReadsSideBySide(), row.isPlain) << row.name;
        const Literal literal(path);
        for (const std::int64_t stretch : {1, 7, 256, 100000}) {
          EXPECT_EQ(ReadAll(*source, 0, 1 << 20, stretch), literal.Stretches(0, 1 << 20, stretch))
              << row.name << ", " << channels << " channels, " << frames << " frames, " << stretch;
        }
        EXPECT_EQ(ReadAll(*source, 3, 250, 8), literal.Stretches(3, 250, 8)) << row.name;
      }
    }
  }
}

// Files of more than one block, at stretches that do not fit into a block.
TEST(PeakSource, isTheSameAcrossBlocks) {
  const test::TemporaryFolder folder;
  for (const FormatRow& row : {kFormats[2], kFormats[4], kFormats[15]}) {
    const std::string path = folder.Path(row.name);
    ASSERT_TRUE(WriteSound(path, row.format, 2, Noise(600000, 5)));
    const std::unique_ptr<PeakSource> source = PeakSource::Open(path);
    ASSERT_NE(source, nullptr);
    const Literal literal(path);
    for (const std::int64_t stretch : {1, 1000, 43691, 299999, 300000}) {
      EXPECT_EQ(ReadAll(*source, 0, 300000, stretch), literal.Stretches(0, 300000, stretch))
          << row.name << ", " << stretch;
    }
  }
}

TEST(PeakSource, chunksAroundTheAudioAreNoAudio) {
  const test::TemporaryFolder folder;
  test::WaveFormat format;
  format.bits = 24;
  const std::vector<std::int32_t> samples = {0x123456, -0x123456, 7, 8, 9};
  const std::string path = folder.Write("chunks.wav", test::WaveBytes()
                                                          .Chunk("JUNK", std::string(30, '\x7F'))
                                                          .Format(format)
                                                          .Bext({})
                                                          .Data(test::PcmBytes(24, samples))
                                                          .Raw(std::string(1, '\0'))
                                                          .Chunk("LIST", std::string(40, '\x7F'))
                                                          .Bytes());
  const std::unique_ptr<PeakSource> source = PeakSource::Open(path);
  ASSERT_NE(source, nullptr);
  EXPECT_TRUE(source->ReadsSideBySide());
  EXPECT_EQ(ReadAll(*source, 0, 100, 100), (std::vector<Peak>{{-0x1235, 0x1234}}));
}

TEST(PeakSource, dataThatClaimsMoreThanTheFileHoldsEndsWithIt) {
  const test::TemporaryFolder folder;
  const std::string path =
      folder.Write("short.wav", test::WaveBytes()
                                    .Format({})
                                    .Claim("data", 4000, test::PcmBytes(16, {100, -100, 50}))
                                    .Bytes());
  const std::unique_ptr<PeakSource> source = PeakSource::Open(path);
  ASSERT_NE(source, nullptr);
  EXPECT_EQ(ReadAll(*source, 0, 100, 2), (std::vector<Peak>{{-100, 100}, {50, 50}}));
}

// Cut off after it was opened: what is whole counts.
TEST(PeakSource, fileThatShrinksEndsThere) {
  const test::TemporaryFolder folder;
  const std::string path = WriteWave(folder, "w.wav", std::vector<std::int32_t>(1000, 5));
  const std::unique_ptr<PeakSource> source = PeakSource::Open(path);
  ASSERT_NE(source, nullptr);
  std::filesystem::resize_file(path, test::kPlainDataOffset + 2 * 250);
  std::vector<Peak> peaks(10);
  EXPECT_EQ(source->Read(0, 1000, 100, peaks.data(), {}), 2);
}

TEST(PeakSource, nothingOutsideTheFile) {
  const test::TemporaryFolder folder;
  const std::string path = WriteWave(folder, "w.wav", {1, 2, 3});
  const std::unique_ptr<PeakSource> source = PeakSource::Open(path);
  ASSERT_NE(source, nullptr);
  Peak peak;
  EXPECT_EQ(source->Read(3, 10, 1, &peak, {}), 0);
  EXPECT_EQ(source->Read(-1, 10, 1, &peak, {}), 0);
  EXPECT_EQ(source->Read(2, 2, 1, &peak, {}), 0);
}

TEST(PeakSource, stopsBetweenBlocks) {
  const test::TemporaryFolder folder;
  for (const FormatRow& row : {kFormats[2], kFormats[15]}) {
    const std::string path = folder.Path(row.name);
    ASSERT_TRUE(WriteSound(path, row.format, 1, Noise(2000000, 9)));
    const std::unique_ptr<PeakSource> source = PeakSource::Open(path);
    ASSERT_NE(source, nullptr);
    std::vector<Peak> peaks(2000000 / 256 + 1);
    int asked = 0;
    const std::int64_t read =
        source->Read(0, 2000000, 256, peaks.data(), [&] { return ++asked > 2; });
    EXPECT_GT(read, 0);
    EXPECT_LT(read, 2000000 / 256 / 2) << row.name;
    EXPECT_EQ(asked, 3);
  }
}

TEST(PeakSource, whatIsNoAudioFileHasNone) {
  const test::Watchdog watchdog;
  const test::TemporaryFolder folder;
  EXPECT_EQ(PeakSource::Open(folder.Path("gone.wav")), nullptr);
  EXPECT_EQ(PeakSource::Open(folder.Path("")), nullptr) << "a folder";
  EXPECT_EQ(PeakSource::Open(test::Fifo(folder, "fifo.wav")), nullptr);
  EXPECT_EQ(PeakSource::Open(folder.Write("empty.wav", "")), nullptr);
  EXPECT_EQ(PeakSource::Open(folder.Write("noise.wav", std::string(5000, 'x'))), nullptr);
  EXPECT_EQ(PeakSource::Open("/dev/zero"), nullptr);
}

}  // namespace
}  // namespace velmora::peaks
