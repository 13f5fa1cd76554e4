#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "BWF/Renderers.h"
#include "Support/BwfReference.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

using Ints = std::vector<std::int32_t>;

struct Side {
  WaveFormat format;
  Ints samples;
  std::int64_t first;

  std::string Bytes() const { return PlainWave(format, samples); }
  StreamModel Model() const {
    return {Bytes(), format, kPlainDataOffset, samples.size() / format.channels};
  }
};

// The frame that is read for a 64-bit place: its low 32 bits.
std::int32_t FrameAt(std::int64_t first, std::int64_t i) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(first) +
                                                              static_cast<std::uint64_t>(i)));
}

// The samples of a crossfade, read through `outgoing` and `incoming`, which may be the same model.
Ints Crossfaded(StreamModel& outgoing, StreamModel& incoming, const Side& out, const Side& in,
                std::int64_t length) {
  Ints samples;
  const double step = 1.0 / static_cast<double>(length);
  for (std::int64_t i = 0; i < length; ++i) {
    const double outFactor = static_cast<double>(length - i) * step;
    const double inFactor = static_cast<double>(i) * step;
    for (std::uint32_t c = 0; c < out.format.channels; ++c) {
      const double fromOut = static_cast<double>(outgoing.SampleAt(FrameAt(out.first, i), c));
      const double fromIn = static_cast<double>(incoming.SampleAt(FrameAt(in.first, i), c));
      const double sum = fromOut * outFactor + fromIn * inFactor;
      samples.push_back(Encoded(static_cast<float>(sum), out.format.bits));
    }
  }
  return samples;
}

class CrossfadeRenderer : public testing::Test {
 protected:
  // Renders two files and checks them against two streams read side by side.
  void ExpectCrossfade(const Side& out, const Side& in, std::int64_t length) {
    AES31BWF outgoing(folder.Write("out.wav", out.Bytes()).c_str());
    AES31BWF incoming(folder.Write("in.wav", in.Bytes()).c_str());
    StreamModel outModel = out.Model();
    StreamModel inModel = in.Model();
    Check(Crossfaded(outModel, inModel, out, in, length), outgoing, incoming, out, in, length);
  }
  // The same with one instance as both files, so that the reads alternate on one stream.
  void ExpectSelfCrossfade(const Side& side, std::int64_t incomingFirst, std::int64_t length) {
    std::filesystem::remove(target);  // making a file is much faster than emptying one
    const std::string path = folder.Path("both.wav");
    if (TemporaryFolder::Read(path) != side.Bytes()) folder.Write("both.wav", side.Bytes());
    AES31BWF file(path.c_str());
    StreamModel model = side.Model();
    const Side in{side.format, side.samples, incomingFirst};
    Check(Crossfaded(model, model, side, in, length), file, file, side, in, length);
  }
  Ints Samples(std::int32_t bits) const {
    return PcmSamples(bits, TemporaryFolder::Read(target), kHeaderBytes);
  }

  TemporaryFolder folder;
  const std::string target = folder.Path("target.wav");

 private:
  void Check(const Ints& expected, AES31BWF& outgoing, AES31BWF& incoming, const Side& out,
             const Side& in, std::int64_t length) {
    const std::unique_ptr<AES31BWF> made =
        RenderCrossfadeFile(target.c_str(), &outgoing, &incoming, out.first, in.first, length);
    ASSERT_NE(made, nullptr);
    EXPECT_TRUE(made->IsValid());
    EXPECT_EQ(made->stream, nullptr);
    EXPECT_EQ(outgoing.stream, nullptr);
    EXPECT_EQ(incoming.stream, nullptr);
    EXPECT_EQ(TemporaryFolder::Read(target).substr(0, kHeaderBytes),
              WrittenHeader(out.format.sampleRate, out.format.channels, out.format.bits,
                            static_cast<std::int32_t>(length)));
    EXPECT_EQ(Samples(out.format.bits), expected);
  }
};

// Values in sixteenths of full scale, in 32 bits.
Ints Sixteenths(const Ints& values) {
  Ints samples;
  for (const std::int32_t value : values) samples.push_back(value * (1 << 27));
  return samples;
}
constexpr WaveFormat kMono32{.channels = 1, .bits = 32};
constexpr WaveFormat kStereo32{.channels = 2, .bits = 32};

TEST_F(CrossfadeRenderer, oppositeRampsAddUpToOne) {
  const Ints half = Sixteenths({8, 8, 8, 8});
  const Ints none = Sixteenths({0, 0, 0, 0});
  ExpectCrossfade({kMono32, half, 0}, {kMono32, half, 0}, 4);
  EXPECT_EQ(Samples(32), half);
  ExpectCrossfade({kMono32, half, 0}, {kMono32, none, 0}, 4);
  EXPECT_EQ(Samples(32), Sixteenths({8, 6, 4, 2}));
  ExpectCrossfade({kMono32, none, 0}, {kMono32, half, 0}, 4);
  EXPECT_EQ(Samples(32), Sixteenths({0, 2, 4, 6}));
}

TEST_F(CrossfadeRenderer, eachFileHasItsOwnFirstFrame) {
  ExpectCrossfade({kMono32, Sixteenths({1, 8, 4}), 1}, {kMono32, Sixteenths({1, 1, 2, 6}), 2}, 2);
  EXPECT_EQ(Samples(32), Sixteenths({8, 5}));
}

TEST_F(CrossfadeRenderer, monoOutgoingTakesTheFirstIncomingChannel) {
  ExpectCrossfade({kMono32, Sixteenths({4, 4}), 0}, {kStereo32, Sixteenths({8, 1, 8, 1}), 0}, 2);
  EXPECT_EQ(Samples(32), Sixteenths({4, 6}));
}

TEST_F(CrossfadeRenderer, missingIncomingChannelsAreSilent) {
  ExpectCrossfade({kStereo32, Sixteenths({4, 2, 4, 2}), 0}, {kMono32, Sixteenths({8, 8}), 0}, 2);
  EXPECT_EQ(Samples(32), Sixteenths({4, 2, 6, 1}));
}

TEST_F(CrossfadeRenderer, incomingOfAnotherRateAndDepthIsUsedAsItIs) {
  const WaveFormat out{.sampleRate = 44100, .channels = 1, .bits = 32};
  const WaveFormat in{.sampleRate = 96000, .channels = 1, .bits = 16};
  ExpectCrossfade({out, Sixteenths({4, 4}), 0}, {in, {0x4000, 0x4000}, 0}, 2);
  EXPECT_EQ(Samples(32), Sixteenths({4, 6}));
}

TEST_F(CrossfadeRenderer, silenceOutsideEitherFile) {
  ExpectCrossfade({kMono32, Sixteenths({8, 8}), 0}, {kMono32, Sixteenths({8, 8}), -2}, 4);
  EXPECT_EQ(Samples(32), Sixteenths({8, 6, 4, 6}));
}

TEST_F(CrossfadeRenderer, sumIsMadeInDoubles) {
  std::mt19937 random(13);
  const auto noise = [&random](std::size_t count) {
    Ints samples(count);
    for (std::int32_t& sample : samples) sample = static_cast<std::int32_t>(random());
    return samples;
  };
  for (const std::int64_t length : {1, 3, 7, 10, 49, 196, 1000}) {
    SCOPED_TRACE(length);
    ExpectCrossfade({kStereo32, noise(2100), 3}, {kStereo32, noise(2100), 50}, length);
  }
  // Here sums of two floats would differ in places.
  const Side out{kMono32, noise(1000), 0};
  const Side in{kMono32, noise(1000), 0};
  ExpectCrossfade(out, in, 1000);
  int differing = 0;
  const Ints made = Samples(32);
  for (std::size_t i = 0; i < 1000; ++i) {
    const double step = 1.0 / 1000;
    const auto a = static_cast<float>(static_cast<double>(Decoded(out.samples[i], 32)) *
                                      (static_cast<double>(1000 - i) * step));
    const auto b = static_cast<float>(static_cast<double>(Decoded(in.samples[i], 32)) *
                                      (static_cast<double>(i) * step));
    differing += Encoded(a + b, 32) != made[i];
  }
  EXPECT_GT(differing, 0);
}

TEST_F(CrossfadeRenderer, sumOfTwoPeaksIsOnePeak) {
  ExpectCrossfade({{}, {-32768, -32768}, 0}, {{}, {-32768, -32768}, 0}, 2);
  EXPECT_EQ(Samples(16), (Ints{-32767, -32767}));
  // A sum of 1.0 turns negative in 32 bits as any 1.0 does.
  const Ints ones(2, 0x7FFFFFFF);
  ExpectCrossfade({kMono32, ones, 0}, {kMono32, ones, 0}, 2);
  EXPECT_EQ(Samples(32), Ints(2, std::numeric_limits<std::int32_t>::min()));
}

TEST_F(CrossfadeRenderer, oneInstanceAsBothFilesReadsByItsStalePosition) {
  // Value of frame k: k sixteenths. Outgoing from frame 1, incoming from frame 3.
  //
  //   read        tracked  stream  wanted  read at
  //   outgoing 0     0        0       1       1
  //   incoming 0     1        2       3       3
  //   outgoing 1     2        4       2       4     equal to the tracked one: no seek
  //   incoming 1     3        5       4       4
  //   outgoing 2     4        5       3       3
  //   incoming 2     5        4       5       4     equal again
  //   outgoing 3     6        5       4       4
  //   incoming 3     7        5       6       6
  const Side side{kMono32, Sixteenths({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}), 1};
  ExpectSelfCrossfade(side, 3, 4);
  constexpr std::int32_t kHalfSixteenth = 1 << 26;
  EXPECT_EQ(Samples(32), (Ints{2 * kHalfSixteenth, 8 * kHalfSixteenth, 7 * kHalfSixteenth,
                               11 * kHalfSixteenth}));
}

TEST_F(CrossfadeRenderer, oneInstanceAsBothFilesAtAnyTwoPlaces) {
  std::mt19937 random(17);
  for (const WaveFormat& format : {WaveFormat{.channels = 1, .bits = 16}, kMono32, kStereo32,
                                   WaveFormat{.channels = 3, .bits = 24}}) {
    constexpr std::int64_t kFrames = 60;
    Ints samples(kFrames * format.channels);
    for (std::int32_t& sample : samples) {
      sample = static_cast<std::int32_t>(random()) >> (32 - format.bits);
    }
    int stale = 0;
    for (std::int64_t out = -3; out < 20; out += 4) {
      for (std::int64_t in = -5; in < 40; in += 5) {
        for (const std::int64_t length : {24, 33}) {
          SCOPED_TRACE(testing::Message() << format.channels << " channels, " << out << " and "
                                          << in << ", " << length << " frames");
          const Side outSide{format, samples, out};
          const Side inSide{format, samples, in};
          ExpectSelfCrossfade(outSide, in, length);
          StreamModel one = outSide.Model();
          StreamModel other = inSide.Model();
          stale += Crossfaded(one, other, outSide, inSide, length) != Samples(format.bits);
        }
      }
    }
    EXPECT_GT(stale, 10) << "the stream's place mattered";
  }
}

TEST_F(CrossfadeRenderer, openFilesAreReadFromWhereTheyStand) {
  const Side side{kMono32, Sixteenths({0, 1, 2, 3, 4, 5, 6, 7}), 2};
  AES31BWF outgoing(folder.Write("out.wav", side.Bytes()).c_str());
  AES31BWF incoming(folder.Write("in.wav", side.Bytes()).c_str());
  outgoing.GetSampleAt(0, 0);
  outgoing.GetSampleAt(5, 0);  // tracked: frame 2; the stream: frame 6
  ASSERT_NE(RenderCrossfadeFile(target.c_str(), &outgoing, &incoming, 2, 0, 2), nullptr);
  EXPECT_EQ(Samples(32), (Ints{6 << 27, 8 << 26})) << "(7 + 1) / 2 in the second frame";
}

TEST_F(CrossfadeRenderer, lengthOfZeroMakesAnEmptyFileAndReadsNothing) {
  const std::string path = folder.Write("out.wav", PlainWave({.channels = 2, .bits = 24}, {1, 2}));
  AES31BWF file(path.c_str());
  std::filesystem::remove(path);
  const auto made = RenderCrossfadeFile(target.c_str(), &file, &file, 0, 0, 0);
  ASSERT_NE(made, nullptr);
  EXPECT_TRUE(made->IsValid());
  EXPECT_EQ(made->GetFrames(), 0);
  EXPECT_EQ(TemporaryFolder::Read(target), WrittenHeader(48000, 2, 24, 0));
}

TEST_F(CrossfadeRenderer, placesWrapAt64BitsAndCountAsTheirLow32) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  const Ints values = Sixteenths({8, 4, 2, 6});
  ExpectCrossfade({kMono32, values, (std::int64_t{1} << 32) + 1}, {kMono32, values, kMost}, 2);
  EXPECT_EQ(Samples(32), Sixteenths({4, 5})) << "then half of 2 and half of the first 8";
}

TEST_F(CrossfadeRenderer, missingOrInvalidFilesGiveNullAndNoFile) {
  AES31BWF good(folder.Write("good.wav", PlainWave({}, {1, 2})).c_str());
  AES31BWF bad(folder.Write("bad.wav", "text").c_str());
  for (AES31BWF* other : {static_cast<AES31BWF*>(nullptr), &bad}) {
    EXPECT_EQ(RenderCrossfadeFile(target.c_str(), other, &good, 0, 0, 2), nullptr);
    EXPECT_EQ(RenderCrossfadeFile(target.c_str(), &good, other, 0, 0, 2), nullptr);
    EXPECT_EQ(RenderCrossfadeFile(target.c_str(), other, other, 0, 0, 2), nullptr);
  }
  EXPECT_FALSE(std::filesystem::exists(target));
}

}  // namespace
}  // namespace velmora::test
