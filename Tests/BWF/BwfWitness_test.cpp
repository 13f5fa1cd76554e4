// What other programs make of our files, and we of theirs. Needs sox, soxi and sndfile-info.

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "BWF/Renderers.h"
#include "Support/BwfReference.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"
#include "Support/Witness.h"

namespace velmora::test {
namespace {

using Ints = std::vector<std::int32_t>;

// The words of a listing, without its columns and colons.
std::string Squeezed(const std::string& listing) {
  std::istringstream words(listing);
  std::string squeezed;
  for (std::string word; words >> word;) {
    if (word != ":") squeezed += word + " ";
  }
  return squeezed;
}

struct Shape {
  std::uint32_t rate;
  std::uint16_t channels;
  std::int32_t bits;
};
constexpr Shape kShapes[] = {{48000, 1, 16},  {44100, 2, 16}, {48000, 3, 16},
                             {48000, 1, 24},  {96000, 2, 24}, {44100, 3, 24},
                             {192000, 1, 32}, {48000, 2, 32}, {8000, 5, 32}};

Ints Noise(std::size_t count, std::int32_t bits) {
  std::mt19937 random(static_cast<unsigned>(bits));
  Ints samples(count);
  for (std::int32_t& sample : samples) {
    sample = static_cast<std::int32_t>(static_cast<std::uint32_t>(random())) >> (32 - bits);
  }
  return samples;
}

class BwfWitness : public testing::Test {
 protected:
  // The programs agree with each other, and with us, on what the file is and holds.
  void ExpectSeen(const std::string& path, const Shape& shape, std::size_t frames,
                  const std::string& samples) {
    const std::string soxi = "soxi ";
    EXPECT_EQ(OutputOf(soxi + "-t " + Quoted(path)), "wav\n");
    EXPECT_EQ(OutputOf(soxi + "-r " + Quoted(path)), std::to_string(shape.rate) + "\n");
    EXPECT_EQ(OutputOf(soxi + "-c " + Quoted(path)), std::to_string(shape.channels) + "\n");
    EXPECT_EQ(OutputOf(soxi + "-b " + Quoted(path)), std::to_string(shape.bits) + "\n");
    EXPECT_EQ(OutputOf(soxi + "-s " + Quoted(path)), std::to_string(frames) + "\n");
    EXPECT_EQ(OutputOf(soxi + "-e " + Quoted(path)), "Signed Integer PCM\n");
    // As raw samples of the same depth, with no dither.
    EXPECT_TRUE(OutputOf("sox -D " + Quoted(path) + " -t raw -e signed -L -b " +
                         std::to_string(shape.bits) + " -") == samples);
    const std::string info = Squeezed(OutputOf("sndfile-info " + Quoted(path)));
    for (const std::string& line :
         {"Sample Rate " + std::to_string(shape.rate) + " ",
          "Frames " + std::to_string(frames) + " ",
          "Channels " + std::to_string(shape.channels) + " ",
          "Bit Width " + std::to_string(shape.bits) + " ",
          "Block Align " + std::to_string(shape.channels * shape.bits / 8) + " ",
          "data " + std::to_string(samples.size()) + " ", std::string("WAVE_FORMAT_PCM ")}) {
      EXPECT_NE(info.find(line), std::string::npos) << line << "in " << info;
    }
  }

  TemporaryFolder folder;
  const std::string target = folder.Path("target.wav");
};

TEST_F(BwfWitness, othersReadWhatWeWrite) {
  for (const Shape& shape : kShapes) {
    SCOPED_TRACE(testing::Message() << shape.channels << " channels, " << shape.bits << " bits");
    constexpr std::size_t kFrames = 3001;
    const Ints noise = Noise(kFrames * shape.channels, shape.bits);
    Ints expected;
    {
      AES31BWF file(target.c_str(), shape.rate, shape.channels, shape.bits,
                    static_cast<std::int32_t>(kFrames));
      for (const std::int32_t sample : noise) {
        file.WriteSample(Decoded(sample, shape.bits));
        expected.push_back(Encoded(Decoded(sample, shape.bits), shape.bits));
      }
    }
    ExpectSeen(target, shape, kFrames, PcmBytes(shape.bits, expected));
  }
}

TEST_F(BwfWitness, othersReadWhatWeConvert) {
  for (const Shape& shape : kShapes) {
    SCOPED_TRACE(testing::Message() << shape.channels << " channels, " << shape.bits << " bits");
    constexpr std::size_t kFrames = 7001;
    const WaveFormat format{.sampleRate = shape.rate,
                            .channels = shape.channels,
                            .bits = static_cast<std::uint16_t>(shape.bits)};
    const Ints noise = Noise(kFrames * shape.channels, shape.bits);
    AES31BWF source(folder.Write("source.wav", PlainWave(format, noise)).c_str());
    const Shape made{shape.rate, shape.channels, shape.bits == 16 ? 24 : 16};
    ASSERT_EQ(source.CopyTo(target.c_str(), made.bits), CopyDone);
    Ints expected;
    for (const std::int32_t sample : noise) {
      expected.push_back(Requantised(sample, shape.bits, made.bits));
    }
    ExpectSeen(target, made, kFrames, PcmBytes(made.bits, expected));
  }
}

TEST_F(BwfWitness, othersReadWhatWeRender) {
  const Shape stereo{48000, 2, 24};
  const Ints noise = Noise(2000, 24);
  AES31BWF source(
      folder.Write("source.wav", PlainWave({.channels = 2, .bits = 24}, noise)).c_str());
  ASSERT_NE(RenderScaledFile(target.c_str(), &source, 0.5), nullptr);
  ExpectSeen(target, stereo, 1000, TemporaryFolder::Read(target).substr(kHeaderBytes));
  ASSERT_NE(RenderFadeFile(target.c_str(), &source, 480, true, 100), nullptr);
  ExpectSeen(target, stereo, 480, TemporaryFolder::Read(target).substr(kHeaderBytes));
  ASSERT_NE(RenderCrossfadeFile(target.c_str(), &source, &source, 0, 300, 480), nullptr);
  ExpectSeen(target, stereo, 480, TemporaryFolder::Read(target).substr(kHeaderBytes));
}

TEST_F(BwfWitness, bextOfOurFilesIsEmptyToOthers) {
  { AES31BWF file(target.c_str(), 48000, 1, 16, 0); }
  const std::string info = Squeezed(OutputOf("sndfile-info --broadcast " + Quoted(target)));
  EXPECT_NE(info.find("Description Originator"), std::string::npos) << info;
  EXPECT_NE(info.find("Time ref 0"), std::string::npos) << info;
}

// Has sox make a wave file of known samples; `type` is sox's name for the form.
std::string MadeBySox(const TemporaryFolder& folder, const Shape& shape, const Ints& samples,
                      const std::string& type) {
  const std::string bits = std::to_string(shape.bits);
  const std::string raw = folder.Write("samples.raw", PcmBytes(shape.bits, samples));
  const std::string path = folder.Path("sox.wav");
  OutputOf("sox -D -t raw -e signed -L -b " + bits + " -r " + std::to_string(shape.rate) + " -c " +
           std::to_string(shape.channels) + " " + Quoted(raw) + " -b " + bits + " -t " + type +
           " " + Quoted(path));
  return path;
}

TEST_F(BwfWitness, weReadThePlainFilesThatOthersWrite) {
  for (const Shape& shape : kShapes) {
    SCOPED_TRACE(testing::Message() << shape.channels << " channels, " << shape.bits << " bits");
    constexpr std::size_t kFrames = 501;
    const Ints noise = Noise(kFrames * shape.channels, shape.bits);
    AES31BWF file(MadeBySox(folder, shape, noise, "wavpcm").c_str());
    ASSERT_TRUE(file.IsValid());
    EXPECT_EQ(file.format.formatTag, 1);
    EXPECT_EQ(file.GetSampleRate(), shape.rate);
    EXPECT_EQ(file.GetChannels(), shape.channels);
    EXPECT_EQ(file.GetBitsPerSample(), static_cast<std::uint32_t>(shape.bits));
    ASSERT_EQ(file.GetFrames(), static_cast<std::int32_t>(kFrames));
    for (std::size_t i = 0; i < noise.size(); ++i) {
      ASSERT_EQ(file.GetSampleAt(static_cast<std::int32_t>(i / shape.channels),
                                 static_cast<std::uint32_t>(i % shape.channels)),
                Decoded(noise[i], shape.bits));
    }
  }
}

TEST_F(BwfWitness, extensibleFilesOfOthersAreValidAndReadAsSilence) {
  for (const Shape& shape : {Shape{48000, 1, 24}, Shape{48000, 2, 32}, Shape{48000, 3, 16}}) {
    SCOPED_TRACE(testing::Message() << shape.channels << " channels, " << shape.bits << " bits");
    const Ints noise = Noise(300U * shape.channels, shape.bits);
    AES31BWF file(MadeBySox(folder, shape, noise, "wav").c_str());
    ASSERT_TRUE(file.IsValid());
    EXPECT_EQ(file.format.formatTag, 0xFFFE);
    EXPECT_EQ(file.GetSampleRate(), shape.rate);
    EXPECT_EQ(file.GetChannels(), shape.channels);
    EXPECT_EQ(file.GetBitsPerSample(), 0U);
    EXPECT_EQ(file.GetFrames(), 300);
    for (std::int32_t frame = 0; frame < 300; ++frame) {
      ASSERT_EQ(file.GetSampleAt(frame, 0), 0.0F);
    }
    // Copied as it stands, it is as good to others as before.
    ASSERT_EQ(file.CopyTo(target.c_str(), -1), CopyDone);
    EXPECT_TRUE(OutputOf("sox -D " + Quoted(target) + " -t raw -e signed -L -b " +
                         std::to_string(shape.bits) + " -") == PcmBytes(shape.bits, noise));
  }
}

TEST_F(BwfWitness, floatFilesOfOthersAreValidAndReadAsSilence) {
  const std::string path = folder.Path("float.wav");
  OutputOf("sox -n -r 48000 -e floating-point -b 32 " + Quoted(path) + " synth 0.01 sine 440");
  AES31BWF file(path.c_str());
  ASSERT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetFrames(), 480);
  for (std::int32_t frame = 0; frame < 480; ++frame) ASSERT_EQ(file.GetSampleAt(frame, 0), 0.0F);
}

}  // namespace
}  // namespace velmora::test
