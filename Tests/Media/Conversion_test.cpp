// Conversions by bytes worked out by hand, and read back by both readers.

#include "Media/Conversion.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Media/AudioFacts.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::media {
namespace {

using test::LittleEndian;
using test::TemporaryFolder;
using Ints = std::vector<std::int32_t>;

std::string Floats(const std::vector<float>& values) {
  LittleEndian bytes;
  for (const float value : values) bytes.U32(std::bit_cast<std::uint32_t>(value));
  return bytes.bytes;
}

std::string Doubles(const std::vector<double>& values) {
  LittleEndian bytes;
  for (const double value : values) bytes.Number(std::bit_cast<std::uint64_t>(value), 8);
  return bytes.bytes;
}

std::string FloatWave(std::uint16_t channels, const std::vector<float>& values) {
  return test::WaveBytes()
      .Format({.channels = channels, .bits = 32, .formatTag = 3})
      .Data(Floats(values))
      .Bytes();
}

class ConversionTest : public testing::Test {
 protected:
  ConversionJob JobFor(const std::string& bytes) {
    ConversionJob job;
    job.from = folder_.Write("in.wav", bytes);
    job.to = folder_.Path("out.wav");
    return job;
  }

  /// The new file's samples. Both readers must agree about them, and nothing may be in their way.
  Ints SamplesOf(const std::string& path, std::int32_t bits) {
    const FactsOrTrouble read = ReadFacts(path);
    if (!read.facts) {
      ADD_FAILURE() << read.trouble;
      return {};
    }
    EXPECT_EQ(CompareReaders(path, *read.facts), Obstacle::None);
    EXPECT_EQ(read.facts->kind, FileKind::Pcm);
    EXPECT_EQ(read.facts->bitsPerSample, bits);
    AES31BWF system(path.c_str());
    const std::string bytes = TemporaryFolder::Read(path);
    const std::size_t count = system.frames * static_cast<std::size_t>(system.format.blockAlign);
    return test::PcmSamples(
        bits,
        std::string_view(bytes).substr(0, static_cast<std::size_t>(system.dataOffset) + count),
        static_cast<std::size_t>(system.dataOffset));
  }

  Ints Converted(const ConversionJob& job, std::int32_t bits) {
    last_ = Convert(job, {});
    EXPECT_TRUE(last_.done) << last_.trouble;
    return last_.done ? SamplesOf(job.to, bits) : Ints{};
  }

  TemporaryFolder folder_;
  ConversionResult last_;
};

TEST_F(ConversionTest, plainSamplesStayAsTheyAre) {
  for (const std::uint16_t bits : std::initializer_list<std::uint16_t>{16, 24, 32}) {
    const std::int32_t most = static_cast<std::int32_t>((std::int64_t{1} << (bits - 1)) - 1);
    const Ints samples = {0, 1, -1, most, -most - 1, 12345};
    const ConversionJob job = JobFor(test::PlainWave({.channels = 2, .bits = bits}, samples));
    EXPECT_EQ(Converted(job, bits), samples) << bits;
    EXPECT_EQ(last_.frames, 3);
    EXPECT_EQ(last_.clipped, 0);
    std::filesystem::remove(job.to);
  }
}

TEST_F(ConversionTest, wholeFileByteForByte) {
  ConversionJob job = JobFor(test::WaveBytes()
                                 .Chunk("odd ", "abc")
                                 .Raw(std::string(1, '\0'))
                                 .Format({.channels = 1, .bits = 24})
                                 .Data(test::PcmBytes(24, {1, -2, 3}))
                                 .Bytes());
  ASSERT_TRUE(Convert(job, {}).done);
  const std::string expected = LittleEndian()
                                   .Text("RIFF")
                                   .U32(4 + 8 + 16 + 8 + 9 + 1)
                                   .Text("WAVE")
                                   .Text("fmt ")
                                   .U32(16)
                                   .U16(1)          // format tag: integers
                                   .U16(1)          // channels
                                   .U32(48000)      // frames a second
                                   .U32(48000 * 3)  // bytes a second
                                   .U16(3)          // bytes of a frame
                                   .U16(24)         // bits of a sample
                                   .Text("data")
                                   .U32(9)
                                   .Text(std::string_view("\x01\0\0\xFE\xFF\xFF\x03\0\0", 9))
                                   .U8(0)  // pad
                                   .bytes;
  EXPECT_EQ(TemporaryFolder::Read(job.to), expected);
}

TEST_F(ConversionTest, eightBitsWithoutASignBecomeSixteen) {
  const std::string bytes =
      test::WaveBytes().Format({.bits = 8}).Data(std::string_view("\x00\x80\x81\xFF", 4)).Bytes();
  EXPECT_EQ(Converted(JobFor(bytes), 16), (Ints{-32768, 0, 256, 32512}));
}

TEST_F(ConversionTest, twentyBitsInThreeBytesBecomeTwentyFour) {
  const std::string bytes = test::WaveBytes()
                                .Format({.bits = 20, .blockAlign = 3, .bytesPerSecond = 144000})
                                .Data(test::PcmBytes(24, {0x7FFFF0, -0x800000, 0x10}))
                                .Bytes();
  EXPECT_EQ(Converted(JobFor(bytes), 24), (Ints{0x7FFFF0, -0x800000, 0x10}));
}

TEST_F(ConversionTest, floatsAreRoundedToNearestTiesToEven) {
  constexpr double kStep = 0x1p-23;
  const std::vector<double> values = {0.5 * kStep,  1.5 * kStep,  2.5 * kStep, -0.5 * kStep,
                                      -1.5 * kStep, 0.51 * kStep, 0.0,         -0.0};
  const std::string bytes =
      test::WaveBytes().Format({.bits = 64, .formatTag = 3}).Data(Doubles(values)).Bytes();
  EXPECT_EQ(Converted(JobFor(bytes), 24), (Ints{0, 2, 2, 0, -2, 1, 0, 0}));
}

TEST_F(ConversionTest, floatsBeyondFullScaleAreClippedAndCounted) {
  const float infinity = std::numeric_limits<float>::infinity();
  const std::vector<float> values = {1.0F,  -1.0F,    1.5F,      -2.0F,
                                     0.25F, infinity, -infinity, std::nanf("")};
  const ConversionJob job = JobFor(FloatWave(2, values));
  EXPECT_EQ(Converted(job, 24),
            (Ints{8388607, -8388608, 8388607, -8388608, 2097152, 8388607, -8388608, 0}));
  EXPECT_EQ(last_.peak, 2.0);
  EXPECT_EQ(last_.clipped, 4);
}

TEST_F(ConversionTest, aPeakOfFullScaleClipsNothing) {
  const ConversionJob job = JobFor(FloatWave(1, {1.0F, -1.0F}));
  Converted(job, 24);
  EXPECT_EQ(last_.peak, 1.0);
  EXPECT_EQ(last_.clipped, 0);
}

TEST_F(ConversionTest, oneChannel) {
  ConversionJob job = JobFor(test::PlainWave({.channels = 3}, {1, 2, 3, 4, 5, 6}));
  job.channel = 1;
  EXPECT_EQ(Converted(job, 16), (Ints{2, 5}));
  job = JobFor(FloatWave(2, {0.5F, 0.25F, 0.5F, -0.25F}));
  job.channel = 1;
  job.to = folder_.Path("second.wav");
  EXPECT_EQ(Converted(job, 24), (Ints{2097152, -2097152}));
}

TEST_F(ConversionTest, aChannelThatTheFileLacks) {
  ConversionJob job = JobFor(test::PlainWave({.channels = 2}, {1, 2}));
  job.channel = 2;
  const ConversionResult result = Convert(job, {});
  EXPECT_FALSE(result.done);
  EXPECT_EQ(result.trouble, job.from + ": it has no channel 3");
  EXPECT_FALSE(std::filesystem::exists(job.to));
}

TEST_F(ConversionTest, severalFilesInOnePass) {
  const ConversionJob job = JobFor(test::PlainWave({.channels = 2}, {1, 2, 3, 4}));
  const std::string left = folder_.Path("l.wav");
  const std::string right = folder_.Path("r.wav");
  const std::string both = folder_.Path("both.wav");
  ASSERT_TRUE(ConvertInto({{left, 0}, {right, 1}, {both, {}}}, job, {}).done);
  EXPECT_EQ(SamplesOf(left, 16), (Ints{1, 3}));
  EXPECT_EQ(SamplesOf(right, 16), (Ints{2, 4}));
  EXPECT_EQ(SamplesOf(both, 16), (Ints{1, 2, 3, 4}));
}

TEST_F(ConversionTest, severalFilesComeToBeOrNone) {
  const ConversionJob job = JobFor(FloatWave(2, {1, 2, 3, 4}));
  const std::string left = folder_.Path("l.wav");
  const std::string right = folder_.Write("r.wav", "it is there");
  const ConversionResult result = ConvertInto({{left, 1}, {right, 0}}, job, {});
  EXPECT_FALSE(result.done);
  EXPECT_NE(result.trouble.find(right), std::string::npos) << result.trouble;
  EXPECT_FALSE(std::filesystem::exists(left));
  EXPECT_EQ(TemporaryFolder::Read(right), "it is there");
}

TEST_F(ConversionTest, aRangeOfFrames) {
  ConversionJob job = JobFor(test::WaveBytes()
                                 .Format({})
                                 .Bext({.timeLow = 1000})
                                 .Data(test::PcmBytes(16, {1, 2, 3, 4, 5}))
                                 .Bytes());
  job.firstFrame = 1;
  job.frameCount = 3;
  EXPECT_EQ(Converted(job, 16), (Ints{2, 3, 4}));
  EXPECT_EQ(ReadFacts(job.to).facts->timeReference, 1001);
  EXPECT_EQ(AudioBytesOf(job), 6);
  std::filesystem::remove(job.to);
  job.firstFrame = 3;
  job.frameCount = 99;
  EXPECT_EQ(Converted(job, 16), (Ints{4, 5})) << "as far as the file goes";
}

TEST_F(ConversionTest, bextIsKeptToTheByte) {
  const test::BextText bext{.description = "Scene 12",
                            .originator = "Recorder",
                            .reference = "REF1",
                            .date = "2026-01-02",
                            .time = "10:11:12",
                            .timeLow = 0x89ABCDEF,
                            .timeHigh = 1,
                            .version = 2,
                            .umidAndReserved = "umid",
                            .history = "A=PCM,F=48000,W=24,M=mono,T=x\r\nA=ANALOGUE\r\n"};
  const ConversionJob job = JobFor(test::WaveBytes()
                                       .Format({.bits = 32, .formatTag = 3})
                                       .Data(Floats({0.5F}))
                                       .Bext(bext)
                                       .Bytes());
  ASSERT_TRUE(Convert(job, {}).done);
  AES31BWF system(job.to.c_str());
  ASSERT_NE(system.GetBext(), nullptr);
  EXPECT_STREQ(system.GetBext()->codingHistory, bext.history.c_str());
  const std::string made = TemporaryFolder::Read(job.to);
  EXPECT_NE(made.find(test::BextBody(bext)), std::string::npos);
}

TEST_F(ConversionTest, oddAndShortBextChunksBecomeEvenAndWhole) {
  for (const std::size_t size : {346U, 603U, 605U}) {
    std::string body = test::BextBody({.reference = "REF1", .timeLow = 77, .history = "abc"});
    body.resize(size);
    const ConversionJob job = JobFor(test::WaveBytes()
                                         .Chunk("bext", body)
                                         .Raw(std::string(size % 2, '\0'))
                                         .Format({})
                                         .Data(test::PcmBytes(16, {1, 2}))
                                         .Bytes());
    EXPECT_EQ(Converted(job, 16), (Ints{1, 2}));
    EXPECT_EQ(ReadFacts(job.to).facts->timeReference, 77) << size;
    EXPECT_EQ(ReadFacts(job.to).facts->originatorReference, "REF1") << size;
    std::filesystem::remove(job.to);
  }
}

TEST_F(ConversionTest, noAudioAtAllIsStillAFile) {
  EXPECT_EQ(Converted(JobFor(FloatWave(1, {})), 24), Ints{});
  AES31BWF system(folder_.Path("out.wav").c_str());
  EXPECT_TRUE(system.IsValid());
}

TEST_F(ConversionTest, whatIsThereIsNeverWrittenOver) {
  const ConversionJob job = JobFor(test::PlainWave({}, {1}));
  folder_.Write("out.wav", "somebody's");
  EXPECT_FALSE(Convert(job, {}).done);
  EXPECT_FALSE(CopyWhole(job.from, job.to, {}).done);
  EXPECT_EQ(TemporaryFolder::Read(job.to), "somebody's");
}

TEST_F(ConversionTest, aLinkThatLeadsNowhereIsThereToo) {
  const ConversionJob job = JobFor(test::PlainWave({}, {1}));
  std::filesystem::create_symlink(folder_.Path("elsewhere"), job.to);
  EXPECT_FALSE(Convert(job, {}).done);
  EXPECT_FALSE(std::filesystem::exists(folder_.Path("elsewhere")));
}

TEST_F(ConversionTest, whatIsCancelledLeavesNothing) {
  for (const bool resample : {false, true}) {
    ConversionJob job = JobFor(test::PlainWave({}, Ints(1000000, 5)));
    if (resample) job.sampleRate = 44100;
    int asked = 0;
    const ConversionResult result = Convert(job, [&asked](std::int64_t) { return ++asked < 2; });
    EXPECT_TRUE(result.cancelled);
    EXPECT_FALSE(result.done);
    EXPECT_EQ(asked, 2);
    EXPECT_FALSE(std::filesystem::exists(job.to));
  }
  const std::string from = folder_.Path("in.wav");
  const std::string to = folder_.Path("copy.wav");
  EXPECT_TRUE(CopyWhole(from, to, [](std::int64_t) { return false; }).cancelled);
  EXPECT_FALSE(std::filesystem::exists(to));
}

TEST_F(ConversionTest, aFullDiskLeavesNothing) {
  const ConversionJob job = JobFor(test::PlainWave({}, Ints(1000000, 5)));
  const test::FileSizeLimit limit(100000);
  const ConversionResult result = Convert(job, {});
  EXPECT_FALSE(result.done);
  EXPECT_FALSE(result.cancelled);
  EXPECT_EQ(result.trouble, job.to + ": File too large");
  EXPECT_FALSE(std::filesystem::exists(job.to));
  EXPECT_EQ(CopyWhole(job.from, job.to, {}).trouble, job.to + ": File too large");
  EXPECT_FALSE(std::filesystem::exists(job.to));
}

TEST_F(ConversionTest, sourcesThatAreNoSound) {
  const test::Watchdog watchdog;
  ConversionJob job;
  job.to = folder_.Path("out.wav");
  for (const std::string& from :
       {folder_.Path(), folder_.Path("none.wav"), test::Fifo(folder_, "fifo.wav"),
        std::string("/dev/zero"), folder_.Write("text.wav", "RIFF and so on"),
        folder_.Write("empty.wav", "")}) {
    job.from = from;
    const ConversionResult result = Convert(job, {});
    EXPECT_FALSE(result.done);
    EXPECT_TRUE(result.trouble.starts_with(from + ": ")) << result.trouble;
    EXPECT_FALSE(std::filesystem::exists(job.to));
  }
}

/// A file of 2 GiB that takes no room.
TEST_F(ConversionTest, twoGibibytesOfAudioAreRefused) {
  constexpr std::uint32_t kTooMany = 0x80000000U;
  const std::string head =
      test::WaveBytes().Format({.channels = 2}).Claim("data", kTooMany).Bytes();
  const std::string from = folder_.Write("long.wav", head);
  std::filesystem::resize_file(from, head.size() + kTooMany);
  ConversionJob job{.from = from, .to = folder_.Path("out.wav")};
  const ConversionResult result = Convert(job, {});
  EXPECT_FALSE(result.done);
  EXPECT_EQ(result.trouble,
            from + ": it would become a file of 2 GiB of audio or more, which is not supported");
  EXPECT_FALSE(std::filesystem::exists(job.to));
  EXPECT_EQ(AudioBytesOf(job), std::int64_t{kTooMany});
  job.firstFrame = 10;
  job.frameCount = 5;
  EXPECT_EQ(Converted(job, 16), Ints(10, 0));
}

TEST_F(ConversionTest, resampledLengthsAreRoundedToNearest) {
  struct Row {
    std::int32_t from, to;
    std::size_t frames;
    std::int64_t expected;
  };
  for (const Row& row :
       {Row{44100, 48000, 44100, 48000}, Row{44100, 48000, 1, 1}, Row{48000, 44100, 1000, 919},
        Row{96000, 48000, 5, 3}, Row{48000, 96000, 7, 14}, Row{48000, 47952, 4000, 3996},
        Row{44100, 48000, 0, 0}}) {
    ConversionJob job = JobFor(test::PlainWave({.sampleRate = static_cast<std::uint32_t>(row.from)},
                                               Ints(row.frames, 100)));
    job.sampleRate = row.to;
    Converted(job, 24);
    EXPECT_EQ(last_.frames, row.expected) << row.from << " to " << row.to;
    EXPECT_EQ(ReadFacts(job.to).facts->sampleRate, row.to);
    EXPECT_EQ(ReadFacts(job.to).facts->frames, row.expected);
    std::filesystem::remove(job.to);
  }
}

TEST_F(ConversionTest, theTimeReferenceIsResampledToo) {
  ConversionJob job = JobFor(test::WaveBytes()
                                 .Format({.sampleRate = 44100})
                                 .Bext({.timeLow = 44100 * 3600 + 1})
                                 .Data(test::PcmBytes(16, Ints(44100, 1)))
                                 .Bytes());
  job.sampleRate = 48000;
  ASSERT_TRUE(Convert(job, {}).done);
  EXPECT_EQ(ReadFacts(job.to).facts->timeReference, 48000 * 3600 + 1);
}

/// A range is resampled as it lies in its surroundings: the same samples as of the whole file.
TEST_F(ConversionTest, aResampledRangeIsAPieceOfTheWhole) {
  Ints samples;
  for (int i = 0; i < 200000; ++i) {
    samples.push_back(static_cast<std::int32_t>(std::lround(20000 * std::sin(i * 0.05))));
  }
  ConversionJob job = JobFor(test::PlainWave({.sampleRate = 44100}, samples));
  job.sampleRate = 48000;
  const Ints whole = Converted(job, 24);
  job.to = folder_.Path("range.wav");
  job.firstFrame = 147 * 500;  // 160 * 500 at the new rate
  job.frameCount = 147 * 100;
  const Ints range = Converted(job, 24);
  ASSERT_EQ(range.size(), 16000U);
  for (std::size_t i = 0; i < range.size(); ++i) ASSERT_NEAR(range[i], whole[80000 + i], 1) << i;
}

TEST_F(ConversionTest, copiesAreWholeAndKeepTheirTime) {
  const std::string bytes(3000001, 'x');
  const std::string from = folder_.Write("a.wav", bytes);
  const auto changed = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1000);
  std::filesystem::last_write_time(from, changed);
  std::int64_t told = 0;
  const std::string to = folder_.Path("b.wav");
  const ConversionResult result = CopyWhole(from, to, [&told](std::int64_t done) {
    told = done;
    return true;
  });
  EXPECT_TRUE(result.done) << result.trouble;
  EXPECT_EQ(told, 3000001);
  EXPECT_EQ(TemporaryFolder::Read(to), bytes);
  EXPECT_EQ(std::filesystem::last_write_time(to), changed);
  EXPECT_TRUE(CopyWhole(folder_.Write("empty", ""), folder_.Path("c"), {}).done);
}

}  // namespace
}  // namespace velmora::media
