// Files that other programs make, and what other programs read in ours. Needs sox, ffmpeg and
// sndfile-convert.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "Media/AudioFacts.h"
#include "Media/Conversion.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"
#include "Support/Witness.h"

namespace velmora::media {
namespace {

using test::OutputOf;
using test::Quoted;
using Ints = std::vector<std::int32_t>;

/// Noise in 24 bits, two channels, at 48 kHz, whose largest samples stand at its beginning.
std::string Noise24(std::size_t frames) {
  std::mt19937 random(3);
  Ints samples = {8388607, -8388608, 0, 1, -1, -8388608};
  while (samples.size() < 2 * frames) {
    samples.push_back(static_cast<std::int32_t>(random()) >> 8);
  }
  return test::PlainWave({.channels = 2, .bits = 24}, samples);
}

class MediaWitnessTest : public testing::Test {
 protected:
  void SetUp() override { source_ = folder_.Write("source.wav", Noise24(5000)); }

  /// All samples as sox reads them, at the left end of 32 bits.
  static Ints BySox(const std::string& path) {
    return test::PcmSamples(32, OutputOf("sox -D " + Quoted(path) + " -t s32 -"));
  }
  static Ints ByFfmpeg(const std::string& path) {
    return test::PcmSamples(
        32, OutputOf("ffmpeg -v error -i " + Quoted(path) + " -f s32le -c:a pcm_s32le -"));
  }

  std::string Converted(const std::string& from) {
    ConversionJob job;
    job.from = from;
    job.to = folder_.Path("new" + std::to_string(count_++) + ".wav");
    last_ = Convert(job, {});
    EXPECT_TRUE(last_.done) << last_.trouble;
    return job.to;
  }

  test::TemporaryFolder folder_;
  std::string source_;
  ConversionResult last_;
  int count_ = 0;
};

struct MadeFile {
  const char* name;
  const char* command;  ///< $I and $O stand for the files
  const char* facts;    ///< kind, bits, format, obstacle
  bool lossless = true;
};

constexpr auto kMade = std::to_array<MadeFile>({
    {"x.wav", "sox -D $I -b 16 $O", "pcm 16 '16-bit WAVE' none"},
    {"x.wav", "sox -D $I -b 24 $O", "extensible 24 '24-bit WAVE (extensible)' kind"},
    {"x.wav", "sox -D $I -t wavpcm -b 24 $O", "pcm 24 '24-bit WAVE' none"},
    {"x.wav", "sox -D $I -b 8 $O", "pcm 8 '8-bit WAVE' kind"},
    {"x.wav", "sox -D $I -e floating-point -b 32 $O", "float 32 '32-bit float WAVE' kind"},
    {"x.wav", "ffmpeg -v error -i $I -c:a pcm_s16le $O", "pcm 16 '16-bit WAVE' none", false},
    {"x.wav", "ffmpeg -v error -i $I -c:a pcm_s24le $O",
     "extensible 24 '24-bit WAVE (extensible)' kind"},
    {"x.wav", "ffmpeg -v error -i $I -c:a pcm_s32le $O",
     "extensible 32 '32-bit WAVE (extensible)' kind"},
    {"x.wav", "ffmpeg -v error -i $I -c:a pcm_f32le $O", "float 32 '32-bit float WAVE' kind"},
    {"x.wav", "ffmpeg -v error -i $I -c:a pcm_f64le $O", "float 64 '64-bit float WAVE' kind"},
    {"x.wav", "ffmpeg -v error -i $I -rf64 always -c:a pcm_s24le $O", "rf64 24 '24-bit RF64' kind"},
    {"x.wav", "ffmpeg -v error -i $I -c:a pcm_s16le -f wav - > $O", "pcm 16 '16-bit WAVE' chunks",
     false},
    {"x.w64", "ffmpeg -v error -i $I -c:a pcm_s24le $O", "other 24 '24-bit W64' kind"},
    {"x.aiff", "sox -D $I -b 24 $O", "other 24 '24-bit AIFF' kind"},
    {"x.aiff", "sox -D $I -b 8 $O", "other 8 '8-bit AIFF' kind"},
    {"x.flac", "sox -D $I -b 24 $O", "other 24 '24-bit FLAC' kind"},
    {"x.flac", "sox -D $I -b 16 $O", "other 16 '16-bit FLAC' kind"},
    {"x.flac", "ffmpeg -v error -i $I -c:a flac -f flac - > $O", "other 24 '24-bit FLAC' kind"},
    {"x.caf", "sndfile-convert -pcm24 $I $O >/dev/null", "other 24 '24-bit CAF' kind"},
    {"x.wav", "sndfile-convert -float32 $I $O >/dev/null", "float 32 '32-bit float WAVE' kind"},
    {"x.wav", "sndfile-convert -ulaw $I $O >/dev/null", "other 16 'WAVE, U-Law' kind", false},
});

TEST_F(MediaWitnessTest, filesOfOtherProgramsConvertToTheSameSamples) {
  for (const MadeFile& made : kMade) {
    SCOPED_TRACE(made.command);
    const std::string path = folder_.Path(made.name);
    std::filesystem::remove(path);
    OutputOf("I=" + Quoted(source_) + " O=" + Quoted(path) + "; " + made.command);
    const FactsOrTrouble read = ReadFacts(path);
    ASSERT_TRUE(read.facts) << read.trouble;
    constexpr std::array kObstacles = {"none", "kind", "chunks", "broken"};
    const std::string told =
        std::string(NameOf(read.facts->kind)) + ' ' + std::to_string(read.facts->bitsPerSample) +
        " '" + read.facts->format + "' " +
        kObstacles[static_cast<std::size_t>(CompareReaders(path, *read.facts))];
    EXPECT_EQ(told, made.facts);
    EXPECT_EQ(read.facts->frames, 5000);
    const std::string converted = Converted(path);
    // ffmpeg is asked where sox reads less: 24 bits of a float, say.
    EXPECT_EQ(ByFfmpeg(converted), ByFfmpeg(path));
    if (made.lossless) {
      EXPECT_EQ(BySox(converted), BySox(path));
    }
    const FactsOrTrouble after = ReadFacts(converted);
    ASSERT_TRUE(after.facts);
    EXPECT_EQ(CompareReaders(converted, *after.facts), Obstacle::None);
    std::filesystem::remove(path);
  }
}

TEST_F(MediaWitnessTest, sndfileReadsOurFilesAlike) {
  const std::string converted = Converted(source_);
  const std::string again = folder_.Path("again.wav");
  OutputOf("sndfile-convert -pcm24 " + Quoted(converted) + ' ' + Quoted(again) + " >/dev/null");
  EXPECT_EQ(BySox(again), BySox(source_));
  EXPECT_EQ(test::TemporaryFolder::Read(converted), test::TemporaryFolder::Read(source_));
}

TEST_F(MediaWitnessTest, aSplitIsWhatSoxMakesOfEachChannel) {
  const std::string flac = folder_.Path("x.flac");
  OutputOf("sox -D " + Quoted(source_) + " -b 24 " + Quoted(flac));
  for (std::int32_t channel = 0; channel < 2; ++channel) {
    ConversionJob job;
    job.from = flac;
    job.to = folder_.Path("channel" + std::to_string(channel) + ".wav");
    job.channel = channel;
    ASSERT_TRUE(Convert(job, {}).done);
    const std::string remixed = folder_.Path("remixed" + std::to_string(channel) + ".wav");
    OutputOf("sox -D " + Quoted(source_) + ' ' + Quoted(remixed) + " remix " +
             std::to_string(channel + 1));
    EXPECT_EQ(BySox(job.to), BySox(remixed));
  }
}

/// A filter is free in its choices; two good ones agree to far below what is heard.
TEST_F(MediaWitnessTest, resampledAudioAgreesWithSox) {
  const std::string tone = folder_.Path("tone.wav");
  OutputOf("sox -D -n -r 44100 -c 2 -b 24 -t wavpcm " + Quoted(tone) +
           " synth 1 sine 997 sine 3000 gain -6");
  ConversionJob job;
  job.from = tone;
  job.to = folder_.Path("ours.wav");
  job.sampleRate = 48000;
  ASSERT_TRUE(Convert(job, {}).done);
  const std::string theirs = folder_.Path("theirs.wav");
  OutputOf("sox -D " + Quoted(tone) + " -t wavpcm " + Quoted(theirs) + " rate -v 48000");
  const Ints a = BySox(job.to);
  const Ints b = BySox(theirs);
  ASSERT_EQ(a.size(), b.size());
  std::int32_t worst = 0;
  constexpr std::size_t kEdge = 2000;  // of the tone's sudden beginning and end
  for (std::size_t i = kEdge; i + kEdge < a.size(); ++i) {
    worst = std::max(worst, std::abs(a[i] / 256 - b[i] / 256));
  }
  EXPECT_LE(worst, 4) << "steps of 24 bits";
}

TEST_F(MediaWitnessTest, lossyFilesAreReadToo) {
  for (const char* const name : {"x.mp3", "x.ogg"}) {
    const std::string path = folder_.Path(name);
    OutputOf("ffmpeg -v error -i " + Quoted(source_) + ' ' + Quoted(path));
    const FactsOrTrouble read = ReadFacts(path);
    ASSERT_TRUE(read.facts) << name << ": " << read.trouble;
    EXPECT_EQ(read.facts->kind, FileKind::Other);
    EXPECT_EQ(CompareReaders(path, *read.facts), Obstacle::Kind);
    Converted(path);
    EXPECT_EQ(last_.frames, read.facts->frames);
  }
}

}  // namespace
}  // namespace velmora::media
