// What files are, and what the system's reader makes of them, by bytes written by hand.

#include "Media/AudioFacts.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "Media/Conversion.h"
#include "Media/FactsOfSound.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::media {
namespace {

using test::LittleEndian;
using test::TemporaryFolder;
using test::WaveBytes;

const char* NameOf(Obstacle obstacle) {
  constexpr const char* kNames[] = {"none", "kind", "chunks", "broken"};
  return kNames[static_cast<std::size_t>(obstacle)];
}

std::string Words(const FactsOrTrouble& read, Obstacle obstacle) {
  if (!read.facts) return "broken: " + read.trouble;
  const AudioFacts& facts = *read.facts;
  return std::string(NameOf(facts.kind)) + ' ' + std::to_string(facts.sampleRate) + " Hz " +
         std::to_string(facts.channels) + " ch " + std::to_string(facts.bitsPerSample) + " bits " +
         std::to_string(facts.frames) + " frames: " + NameOf(obstacle);
}

/// "pcm 48000 Hz 1 ch 16 bits 4 frames: none", or "broken: " and why. Facts and comparison tell the
/// same together as apart, and whoever opens the file.
std::string Told(const std::string& path) {
  const FactsOrTrouble read = ReadFacts(path);
  const Obstacle obstacle = read.facts ? CompareReaders(path, *read.facts) : Obstacle::Broken;
  const std::string words = Words(read, obstacle);
  const ComparedFacts alone = ReadAndCompare(path, nullptr);
  EXPECT_EQ(Words(alone.read, alone.obstacle), words);
  const ComparedFacts given = ReadAndCompare(path, OpenRegularFile(path.c_str()));
  EXPECT_EQ(Words(given.read, given.obstacle), words);
  return words;
}

const std::string kFour = test::PcmBytes(16, {0x1111, 0x2222, 0x3333, 0x4444});
constexpr std::string_view kPad("\0", 1);

/// The body of a fmt chunk of 40 bytes (RIFF WAVE, WAVE_FORMAT_EXTENSIBLE).
std::string Extensible(std::uint16_t bits, std::uint16_t validBits, std::uint16_t subformat,
                       std::uint16_t channels = 1) {
  return LittleEndian()
      .Text(test::FormatBody({.channels = channels, .bits = bits, .formatTag = 0xFFFE}))
      .U16(22)  // bytes that follow
      .U16(validBits)
      .U32(4)  // speakers: front centre
      .U16(subformat)
      .Text(std::string_view("\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71", 14))
      .bytes;
}

/// RF64 and BW64 (EBU Tech 3306, ITU-R BS.2088): true sizes stand in ds64.
std::string LongForm(std::string_view name, std::string_view format, std::string_view data) {
  const std::string ds64 = LittleEndian()
                               .Number(4 + 8 + 28 + 8 + format.size() + 8 + data.size(), 8)
                               .Number(data.size(), 8)
                               .Number(data.size() / 2, 8)
                               .U32(0)
                               .bytes;
  std::string bytes = WaveBytes()
                          .RiffSize(0xFFFFFFFF)
                          .Chunk("ds64", ds64)
                          .Chunk("fmt ", format)
                          .Claim("data", 0xFFFFFFFF, data)
                          .Bytes();
  return bytes.replace(0, 4, name);
}

struct FileCase {
  const char* name;
  std::string bytes;
  const char* expected;
};

class Files : public testing::TestWithParam<FileCase> {};

TEST_P(Files, areTold) {
  const test::Watchdog watchdog;
  const TemporaryFolder folder;
  EXPECT_EQ(Told(folder.Write("x.wav", GetParam().bytes)), GetParam().expected);
}

constexpr const char* kNoSound = "broken: this is no sound file, or a damaged one";

std::vector<FileCase> Kinds() {
  const std::string plain24 = test::PcmBytes(24, {1, 2, 3, 4});
  return {
      {"plain16", test::PlainWave({}, {1, 2, 3, 4}), "pcm 48000 Hz 1 ch 16 bits 4 frames: none"},
      {"plain24Stereo", test::PlainWave({.sampleRate = 96000, .channels = 2, .bits = 24}, {1, -2}),
       "pcm 96000 Hz 2 ch 24 bits 1 frames: none"},
      {"plain32", test::PlainWave({.bits = 32}, {0x12345678, -1}),
       "pcm 48000 Hz 1 ch 32 bits 2 frames: none"},
      {"eightBitsWithoutASign", test::PlainWave({.bits = 8}, {1, 2}),
       "pcm 48000 Hz 1 ch 8 bits 2 frames: kind"},
      {"twentyBitsInThreeBytes",
       WaveBytes().Format({.bits = 20, .blockAlign = 3}).Data(plain24).Bytes(),
       "pcm 48000 Hz 1 ch 20 bits 4 frames: kind"},
      {"twelveBitsInTwoBytes",
       WaveBytes().Format({.bits = 12, .blockAlign = 2}).Data(kFour).Bytes(),
       "pcm 48000 Hz 1 ch 12 bits 4 frames: kind"},
      {"extensible24", WaveBytes().Chunk("fmt ", Extensible(24, 24, 1)).Data(plain24).Bytes(),
       "extensible 48000 Hz 1 ch 24 bits 4 frames: kind"},
      {"extensible20In24", WaveBytes().Chunk("fmt ", Extensible(24, 20, 1)).Data(plain24).Bytes(),
       "extensible 48000 Hz 1 ch 20 bits 4 frames: kind"},
      {"float32",
       WaveBytes().Format({.bits = 32, .formatTag = 3}).Data(std::string(8, '\0')).Bytes(),
       "float 48000 Hz 1 ch 32 bits 2 frames: kind"},
      {"float64",
       WaveBytes().Format({.bits = 64, .formatTag = 3}).Data(std::string(16, '\0')).Bytes(),
       "float 48000 Hz 1 ch 64 bits 2 frames: kind"},
      {"floatInAnExtensibleHeader",
       WaveBytes().Chunk("fmt ", Extensible(32, 32, 3)).Data(std::string(8, '\0')).Bytes(),
       "float 48000 Hz 1 ch 32 bits 2 frames: kind"},
      {"rf64", LongForm("RF64", test::FormatBody({}), kFour),
       "rf64 48000 Hz 1 ch 16 bits 4 frames: kind"},
      {"bw64", LongForm("BW64", test::FormatBody({}), kFour),
       "rf64 48000 Hz 1 ch 16 bits 4 frames: kind"},
      {"rf64OfFloats",
       LongForm("RF64", test::FormatBody({.bits = 32, .formatTag = 3}), std::string(8, '\0')),
       "rf64 48000 Hz 1 ch 32 bits 2 frames: kind"},
      {"aLaw", WaveBytes().Format({.bits = 8, .formatTag = 6}).Data("abcd").Bytes(),
       "other 48000 Hz 1 ch 16 bits 4 frames: kind"},
      {"bigEndian",
       std::string("RIFX\0\0\0\x34WAVEfmt \0\0\0\x10\0\1\0\1\0\0\xBB\x80\0\1\x77\0\0\2\0\x10"
                   "data\0\0\0\x10\x11\x11\x22\x22\x33\x33\x44\x44\1\1\2\2\3\3\4\4",
                   60),
       "other 48000 Hz 1 ch 16 bits 8 frames: kind"},
  };
}

std::vector<FileCase> Chunks() {
  const char* const kGood = "pcm 48000 Hz 1 ch 16 bits 4 frames: none";
  const char* const kMisled = "pcm 48000 Hz 1 ch 16 bits 4 frames: chunks";
  return {
      {"oddChunkBeforeTheAudioWithPad",
       WaveBytes().Chunk("LIST", "abc").Raw(kPad).Format({}).Data(kFour).Bytes(), kMisled},
      {"oddChunkBeforeTheAudioWithoutPad",
       WaveBytes().Chunk("LIST", "abc").Format({}).Data(kFour).Bytes(), kMisled},
      {"evenChunkBeforeTheAudio", WaveBytes().Chunk("LIST", "abcd").Format({}).Data(kFour).Bytes(),
       kGood},
      {"oddChunkAfterTheAudio",
       WaveBytes().Format({}).Data(kFour).Chunk("LIST", "abc").Raw(kPad).Bytes(), kGood},
      {"oddAudioAndAChunkAfterIt",
       WaveBytes()
           .Format({.bits = 24})
           .Data(test::PcmBytes(24, {1, 2, 3}))
           .Raw(kPad)
           .Bext({})
           .Bytes(),
       "pcm 48000 Hz 1 ch 24 bits 3 frames: none"},
      {"oddFormatChunk",
       WaveBytes()
           .Chunk("fmt ", test::FormatBody({}) + std::string("\0\0x", 3))
           .Raw(kPad)
           .Data(kFour)
           .Bytes(),
       kMisled},
      {"formatChunkOf18",
       WaveBytes().Chunk("fmt ", test::FormatBody({}) + std::string(2, '\0')).Data(kFour).Bytes(),
       kGood},
      {"dataLongerThanTheFile", WaveBytes().Format({}).Claim("data", 1000, kFour).Bytes(), kMisled},
      {"dataOfAStream",
       WaveBytes().RiffSize(0xFFFFFFFF).Format({}).Claim("data", 0xFFFFFFFF, kFour).Bytes(),
       kMisled},
      {"dataThatEndsInsideAFrame", WaveBytes().Format({}).Data(kFour + "x").Bytes(), kGood},
      {"formSizeOfZero", WaveBytes().RiffSize(0).Format({}).Data(kFour).Bytes(), kMisled},
      {"formSizeTooShort", WaveBytes().RiffSize(20).Format({}).Data(kFour).Bytes(), kMisled},
      {"formSizeTooLong", WaveBytes().RiffSize(99999).Format({}).Data(kFour).Bytes(), kGood},
      {"frameOfNoBytes", WaveBytes().Format({.blockAlign = 0}).Data(kFour).Bytes(), kMisled},
      {"audioBeforeItsFormat", WaveBytes().Data(kFour).Format({}).Bytes(), kMisled},
      {"twoFormats", WaveBytes().Format({}).Format({.sampleRate = 44100}).Data(kFour).Bytes(),
       kMisled},
      {"somethingBeforeTheHeader",
       std::string("ID3\4\0\0\0\0\0\12", 10) + std::string(10, '\0') +
           test::PlainWave({}, {1, 2, 3, 4}),
       kMisled},
      {"noAudio", WaveBytes().Format({}).Data("").Bytes(),
       "pcm 48000 Hz 1 ch 16 bits 0 frames: none"},
  };
}

std::vector<FileCase> NoSound() {
  return {
      {"empty", "", "broken: the file is empty"},
      {"text", "<ADL>\r\n<VERSION>\r\n", kNoSound},
      {"riffAlone", "RIFF", kNoSound},
      {"noAudioChunk", WaveBytes().Format({}).Bytes(), kNoSound},
      {"noFormatChunk", WaveBytes().Data(kFour).Bytes(), kNoSound},
      {"noChannels", WaveBytes().Format({.channels = 0, .blockAlign = 2}).Data(kFour).Bytes(),
       kNoSound},
      {"noRate", WaveBytes().Format({.sampleRate = 0}).Data(kFour).Bytes(), kNoSound},
      {"sixtyFourBitIntegers", WaveBytes().Format({.bits = 64}).Data(std::string(64, '\0')).Bytes(),
       kNoSound},
      {"noiseLikeMpegAudio", "\xFF\xFB\x90" + std::string(4000, '\x55'), kNoSound},
      {"utf16Text", std::string("\xFF\xFE<\0A\0D\0L\0>\0", 12), kNoSound},
      {"manyChunks",
       [] {
         WaveBytes bytes;
         for (int i = 0; i < 200000; ++i) bytes.Chunk("JUNK", "");
         return bytes.Format({}).Data(kFour).Bytes();
       }(),
       kNoSound},
  };
}

std::string NameOfRow(const testing::TestParamInfo<FileCase>& row) {
  return row.param.name;
}
INSTANTIATE_TEST_SUITE_P(Kinds, Files, testing::ValuesIn(Kinds()), NameOfRow);
INSTANTIATE_TEST_SUITE_P(Chunks, Files, testing::ValuesIn(Chunks()), NameOfRow);
INSTANTIATE_TEST_SUITE_P(NoSound, Files, testing::ValuesIn(NoSound()), NameOfRow);

/// Whatever is in the system's way is gone after a conversion, and nothing else has changed.
TEST_P(Files, areCleanOnceConverted) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("x.wav", GetParam().bytes);
  const FactsOrTrouble before = ReadFacts(path);
  ConversionJob job;
  job.from = path;
  job.to = folder.Path("new.wav");
  const ConversionResult result = Convert(job, {});
  EXPECT_EQ(result.done, before.facts.has_value()) << result.trouble;
  if (!result.done) return;
  const FactsOrTrouble after = ReadFacts(job.to);
  ASSERT_TRUE(after.facts) << after.trouble;
  EXPECT_EQ(CompareReaders(job.to, *after.facts), Obstacle::None);
  EXPECT_EQ(after.facts->kind, FileKind::Pcm);
  EXPECT_EQ(after.facts->frames, before.facts->frames);
  EXPECT_EQ(after.facts->channels, before.facts->channels);
  EXPECT_EQ(after.facts->sampleRate, before.facts->sampleRate);
}

TEST(AudioFacts, broadcastFields) {
  const TemporaryFolder folder;
  const std::string path =
      folder.Write("x.wav", WaveBytes()
                                .Chunk("odd ", "abc")
                                .Raw(kPad)
                                .Bext({.reference = "REF 1", .timeLow = 5, .timeHigh = 1})
                                .Format({})
                                .Data(kFour)
                                .Bytes());
  const FactsOrTrouble read = ReadFacts(path);
  ASSERT_TRUE(read.facts);
  EXPECT_EQ(read.facts->timeReference, (std::int64_t{1} << 32) + 5);
  EXPECT_EQ(read.facts->originatorReference, "REF 1");
  EXPECT_EQ(read.facts->format, "16-bit WAVE");
}

TEST(AudioFacts, broadcastFieldsOfLongCodingHistories) {
  const TemporaryFolder folder;
  const std::string history(100000, 'h');
  const std::string path = folder.Write(
      "x.wav", WaveBytes().Bext({.timeLow = 7, .history = history}).Format({}).Data(kFour).Bytes());
  const FactsOrTrouble read = ReadFacts(path);
  ASSERT_TRUE(read.facts);
  EXPECT_EQ(read.facts->timeReference, 7);
  ConversionJob job;
  job.from = path;
  job.to = folder.Path("new.wav");
  ASSERT_TRUE(Convert(job, {}).done);
  EXPECT_NE(TemporaryFolder::Read(job.to).find(history), std::string::npos);
  EXPECT_EQ(ReadFacts(job.to).facts->timeReference, 7);
}

TEST(AudioFacts, withoutBextThereIsNoTimeReference) {
  const TemporaryFolder folder;
  const FactsOrTrouble read = ReadFacts(folder.Write("x.wav", test::PlainWave({}, {1})));
  ASSERT_TRUE(read.facts);
  EXPECT_FALSE(read.facts->timeReference);
  EXPECT_EQ(read.facts->originatorReference, "");
}

/// The bytes after a chunk that is too short are another's, and a text without an end has its
/// field's.
TEST(AudioFacts, broadcastFieldsEndWithTheirChunkAndWithThemselves) {
  const TemporaryFolder folder;
  const std::string body =
      test::BextBody({.reference = std::string(40, 'R'), .timeLow = 7, .history = ""});
  constexpr std::size_t kThroughTheTime = 346;
  for (const std::size_t size : {std::size_t{0}, std::size_t{2}, std::size_t{288}, std::size_t{320},
                                 kThroughTheTime - 2, kThroughTheTime}) {
    SCOPED_TRACE(size);
    const std::string bytes = WaveBytes()
                                  .Chunk("bext", body.substr(0, size))
                                  .Chunk("junk", std::string(700, 'J'))
                                  .Format({})
                                  .Data(kFour)
                                  .Bytes();
    const FactsOrTrouble read = ReadFacts(folder.Write("x.wav", bytes));
    ASSERT_TRUE(read.facts);
    const bool whole = size == kThroughTheTime;
    EXPECT_EQ(read.facts->originatorReference, whole ? std::string(32, 'R') : "");
    EXPECT_EQ(read.facts->timeReference.has_value(), whole);
  }
}

TEST(AudioFacts, aTimeReferenceThatNothingReachesIsTheLastOne) {
  const TemporaryFolder folder;
  const FactsOrTrouble read =
      ReadFacts(folder.Write("x.wav", WaveBytes()
                                          .Bext({.timeLow = 0xFFFFFFFF, .timeHigh = 0xFFFFFFFF})
                                          .Format({})
                                          .Data(kFour)
                                          .Bytes()));
  ASSERT_TRUE(read.facts);
  EXPECT_EQ(read.facts->timeReference, std::numeric_limits<std::int64_t>::max());
}

/// A stretch of silence at the beginning must not hide that the system reads another place.
TEST(AudioFacts, aShiftedStartShowsAfterSilence) {
  const TemporaryFolder folder;
  std::vector<std::int32_t> samples(20, 0);
  samples.push_back(1000);
  const std::string audio = test::PcmBytes(16, samples);
  const std::string path = folder.Write(
      "x.wav", WaveBytes().Chunk("LIST", "abc").Raw(kPad).Format({}).Data(audio).Bytes());
  EXPECT_EQ(CompareReaders(path, *ReadFacts(path).facts), Obstacle::Chunks);
}

TEST(AudioFacts, twoGibibytesOfPlainAudioAreAKind) {
  const TemporaryFolder folder;
  constexpr std::uint32_t kTooMany = 0x80000000U;
  const std::string head = WaveBytes().Format({.channels = 2}).Claim("data", kTooMany).Bytes();
  const std::string path = folder.Write("x.wav", head);
  std::filesystem::resize_file(path, head.size() + kTooMany);
  EXPECT_EQ(Told(path), "pcm 48000 Hz 2 ch 16 bits 536870912 frames: kind");
  const std::string less = WaveBytes()
                               .RiffSize(kTooMany + 32)
                               .Format({.channels = 2})
                               .Claim("data", kTooMany - 4)
                               .Bytes();
  const std::string below = folder.Write("y.wav", less);
  std::filesystem::resize_file(below, less.size() + kTooMany - 4);
  EXPECT_EQ(Told(below), "pcm 48000 Hz 2 ch 16 bits 536870911 frames: none");
}

TEST(AudioFacts, whatIsNoFileIsNotOpened) {
  const test::Watchdog watchdog;
  const TemporaryFolder folder;
  EXPECT_EQ(Told(folder.Path()), "broken: this is a folder");
  EXPECT_EQ(Told(folder.Path("none.wav")), "broken: No such file or directory");
  EXPECT_EQ(Told(test::Fifo(folder, "fifo.wav")), "broken: this is no ordinary file");
  EXPECT_EQ(Told("/dev/zero"), "broken: this is no ordinary file");
}

/// Headers that are damaged at random neither crash nor hang, and what opens converts or says why.
TEST(AudioFacts, damagedHeadersAreSurvived) {
  const test::LogCapture log;
  const TemporaryFolder folder;
  std::mt19937 random(7);
  std::vector<FileCase> seeds = Kinds();
  for (FileCase& row : Chunks()) seeds.push_back(std::move(row));
  for (int round = 0; round < 600; ++round) {
    std::string bytes = seeds[random() % seeds.size()].bytes;
    const std::size_t changes = 1 + random() % 4;
    for (std::size_t i = 0; i < changes && !bytes.empty(); ++i) {
      bytes[random() % std::min<std::size_t>(bytes.size(), 80)] = static_cast<char>(random());
    }
    const std::string path = folder.Write("x.wav", bytes);
    const FactsOrTrouble read = ReadFacts(path);
    if (!read.facts) continue;
    static_cast<void>(CompareReaders(path, *read.facts));
    ConversionJob job;
    job.from = path;
    job.to = folder.Path("new.wav");
    const ConversionResult result = Convert(job, {});
    EXPECT_NE(result.done, !result.trouble.empty());
    EXPECT_EQ(result.done, std::filesystem::exists(job.to));
    if (result.done) {
      const FactsOrTrouble after = ReadFacts(job.to);
      ASSERT_TRUE(after.facts) << after.trouble;
      EXPECT_EQ(CompareReaders(job.to, *after.facts), Obstacle::None);
    }
    std::filesystem::remove(job.to);
  }
}

TEST(FileKind, names) {
  EXPECT_STREQ(media::NameOf(FileKind::Pcm), "pcm");
  EXPECT_STREQ(media::NameOf(FileKind::Other), "other");
}

}  // namespace
}  // namespace velmora::media
