// Runs of frames against the same frames read one sample at a time: the same values, from wherever
// the file stands.

#include "BWF/FrameRun.h"

#include <gtest/gtest.h>

#include <bit>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

using Values = std::vector<float>;

/// One file, opened twice: for the run, and for what it has to equal.
struct Twins {
  explicit Twins(const std::string& path) : tested(path.c_str()), plain(path.c_str()) {
    for (AES31BWF* const file : {&tested, &plain}) file->OpenAtData();
  }
  /// Leaves both where so many reads leave them.
  void Read(std::int32_t frame, int times) {
    for (AES31BWF* const file : {&tested, &plain}) {
      for (int i = 0; i < times; ++i) file->GetSampleAt(frame + i, 0);
    }
  }
  AES31BWF tested;
  AES31BWF plain;
};

std::int32_t FrameAt(std::int64_t first, std::int64_t i) {
  return static_cast<std::int32_t>(static_cast<std::uint64_t>(first) +
                                   static_cast<std::uint64_t>(i));
}

void ExpectSame(const Values& made, const Values& expected) {
  ASSERT_EQ(made.size(), expected.size());
  for (std::size_t i = 0; i < made.size(); ++i) {
    ASSERT_EQ(std::bit_cast<std::uint32_t>(made[i]), std::bit_cast<std::uint32_t>(expected[i]))
        << "value " << i << ": " << made[i] << ", not " << expected[i];
  }
}

class FrameRunTest : public testing::Test {
 protected:
  std::string Noise(const WaveFormat& format, std::size_t samples) {
    std::mt19937 random(29);
    std::vector<std::int32_t> values(samples);
    for (std::int32_t& value : values) {
      value = static_cast<std::int32_t>(random()) >> (32 - format.bits);
    }
    return folder.Write("noise.wav", PlainWave(format, values));
  }
  /// Reads a run in blocks of some frames, and the same samples one by one.
  static void ExpectRun(Twins& twins, std::int64_t first, std::int64_t length,
                        std::uint32_t channels, std::int64_t block) {
    FrameRun run(twins.tested, first, channels);
    Values made(static_cast<std::size_t>(length) * channels);
    for (std::int64_t i = 0; i < length; i += block) {
      run.Read(i, std::min(block, length - i), made.data() + i * channels);
    }
    Values expected;
    for (std::int64_t i = 0; i < length; ++i) {
      for (std::uint32_t c = 0; c < channels; ++c) {
        expected.push_back(twins.plain.GetSampleAt(FrameAt(first, i), c));
      }
    }
    ExpectSame(made, expected);
    EXPECT_EQ(twins.tested.position, twins.plain.position);
  }
  /// The same for two runs on one file.
  static void ExpectTurns(Twins& twins, std::int64_t first, std::int64_t second,
                          std::int64_t length, std::uint32_t channels, std::int64_t block) {
    FrameRun run(twins.tested, first, channels);
    FrameRun other(twins.tested, second, channels);
    Values made(static_cast<std::size_t>(length) * channels);
    Values madeOther = made;
    for (std::int64_t i = 0; i < length; i += block) {
      run.ReadWith(other, i, std::min(block, length - i), made.data() + i * channels,
                   madeOther.data() + i * channels);
    }
    Values expected;
    Values expectedOther;
    for (std::int64_t i = 0; i < length; ++i) {
      for (std::uint32_t c = 0; c < channels; ++c) {
        expected.push_back(twins.plain.GetSampleAt(FrameAt(first, i), c));
        expectedOther.push_back(twins.plain.GetSampleAt(FrameAt(second, i), c));
      }
    }
    ExpectSame(made, expected);
    ExpectSame(madeOther, expectedOther);
    EXPECT_EQ(twins.tested.position, twins.plain.position);
  }

  TemporaryFolder folder;
};

constexpr std::int64_t kFrames = 50;

const WaveFormat kFormats[] = {{.channels = 1, .bits = 8},
                               {.channels = 1, .bits = 16},
                               {.channels = 2, .bits = 24},
                               {.channels = 3, .bits = 24},
                               {.channels = 2, .bits = 32}};

std::string Describe(const WaveFormat& format) {
  return std::to_string(format.channels) + " channels of " + std::to_string(format.bits) + " bits";
}

TEST_F(FrameRunTest, everyPlaceAndLength) {
  for (const WaveFormat& format : kFormats) {
    SCOPED_TRACE(Describe(format));
    const std::string path = Noise(format, kFrames * format.channels);
    for (std::int64_t first = -7; first < kFrames + 7; first += 3) {
      for (const std::int64_t length : {1, 9, 64}) {
        for (const std::int64_t block : {1, 8, 100}) {
          SCOPED_TRACE(testing::Message() << first << ", " << length << " in blocks of " << block);
          Twins twins(path);
          ExpectRun(twins, first, length, format.channels, block);
        }
      }
    }
  }
}

TEST_F(FrameRunTest, filesThatStandAnywhere) {
  for (const WaveFormat& format : kFormats) {
    SCOPED_TRACE(Describe(format));
    const std::string path = Noise(format, kFrames * format.channels);
    for (std::int32_t stands = 0; stands < 12; stands += 2) {
      for (std::int64_t first = 0; first < 12; ++first) {
        SCOPED_TRACE(testing::Message() << "from " << stands << ", reads " << first);
        Twins twins(path);
        twins.Read(stands, 3);
        ExpectRun(twins, first, 20, format.channels, 7);
      }
    }
  }
}

TEST_F(FrameRunTest, twoRunsOnOneFile) {
  std::mt19937 random(31);
  const auto between = [&random](std::int64_t low, std::int64_t high) {
    return low + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(high - low + 1));
  };
  for (const WaveFormat& format : kFormats) {
    SCOPED_TRACE(Describe(format));
    const std::string path = Noise(format, kFrames * format.channels);
    for (int i = 0; i < 1500; ++i) {
      const std::int64_t first = between(-30, kFrames + 5);
      const std::int64_t second = between(-30, kFrames + 5);
      const std::int64_t length = between(1, 70);
      const std::int64_t block = between(1, 40);
      SCOPED_TRACE(testing::Message()
                   << first << " and " << second << ", " << length << " in blocks of " << block);
      Twins twins(path);
      if (i % 3 == 0) twins.Read(static_cast<std::int32_t>(between(0, 20)), 2);
      ExpectTurns(twins, first, second, length, format.channels, block);
      if (HasFatalFailure()) return;
    }
  }
}

TEST_F(FrameRunTest, numbersOfFramesWrapAround) {
  const std::string path = Noise(kFormats[2], kFrames * 2);
  for (const std::int64_t first :
       {std::int64_t{1} << 32, (std::int64_t{1} << 32) - 5, (std::int64_t{1} << 31) - 5,
        std::numeric_limits<std::int64_t>::max() - 3, std::numeric_limits<std::int64_t>::min()}) {
    SCOPED_TRACE(first);
    Twins twins(path);
    ExpectRun(twins, first, 20, 2, 6);
    Twins others(path);
    ExpectTurns(others, first, 3, 20, 2, 6);
  }
}

/// The header promises more than there is: what is missing reads as ones, sample by sample.
TEST_F(FrameRunTest, fileThatEndsEarly) {
  for (const std::size_t there : {std::size_t{0}, std::size_t{1}, std::size_t{31}, std::size_t{32},
                                  std::size_t{33}, std::size_t{35}}) {
    SCOPED_TRACE(there);
    const std::string path =
        folder.Write("short.wav", WaveBytes()
                                      .Format({.channels = 2, .bits = 24})
                                      .Claim("data", 120, std::string(there, '\x34'))
                                      .RiffSize(36 + 120)
                                      .Bytes());
    for (std::int64_t first = -2; first < 22; first += 2) {
      Twins twins(path);
      ExpectRun(twins, first, 24, 2, 5);
      Twins others(path);
      ExpectTurns(others, first, 3, 24, 2, 5);
    }
  }
}

/// Depths between bytes, gaps, other formats, other numbers of channels: read one by one.
TEST_F(FrameRunTest, filesThatAreNotForBlocks) {
  const WaveFormat formats[] = {{.bits = 20, .blockAlign = 3},
                                {.bits = 12, .blockAlign = 2},
                                {.channels = 2, .bits = 16, .blockAlign = 6},
                                {.bits = 40, .blockAlign = 5},
                                {.bits = 4, .blockAlign = 1},
                                {.bits = 32, .formatTag = 3}};
  for (const WaveFormat& format : formats) {
    SCOPED_TRACE(Describe(format));
    std::string audio;
    for (int i = 0; i < 240; ++i) audio += static_cast<char>(i * 37);
    const std::string path =
        folder.Write("odd.wav", WaveBytes().Format(format).Data(audio).Bytes());
    for (const std::uint32_t channels : {1U, 2U, 3U}) {
      for (std::int64_t first = -2; first < 30; first += 4) {
        Twins twins(path);
        ExpectRun(twins, first, 20, channels, 6);
        Twins others(path);
        ExpectTurns(others, first, 2, 20, channels, 6);
      }
    }
  }
}

/// Gives an answer of its own for each sample.
class Humming : public AES31BWF {
 public:
  using AES31BWF::AES31BWF;
  float GetSampleAt(std::int32_t frame, std::uint32_t channel) override {
    return static_cast<float>(frame) + static_cast<float>(channel) / 16;
  }
};

TEST_F(FrameRunTest, derivedClassIsAskedForEachSample) {
  Humming file(Noise(kFormats[2], kFrames * 2).c_str());
  file.OpenAtData();
  FrameRun run(file, 10, 2);
  Values made(6);
  run.Read(1, 3, made.data());
  ExpectSame(made, {11, 11.0625F, 12, 12.0625F, 13, 13.0625F});
}

/// The turns of two files in which each sample is asked for, as a crossfade mixes them.
TEST_F(FrameRunTest, derivedClassesAreAskedInTurns) {
  static std::string asked;
  class Telling : public AES31BWF {
   public:
    Telling(const std::string& at, char who) : AES31BWF(at.c_str()), who_(who) {}
    float GetSampleAt(std::int32_t, std::uint32_t) override {
      asked += who_;
      return 0;
    }

   private:
    char who_;
  };
  const std::string noise = Noise(kFormats[2], kFrames * 2);
  Telling outgoing(noise, 'o');
  Telling incoming(noise, 'i');
  FrameRun run(outgoing, 0, 1);
  FrameRun other(incoming, 0, 1);
  Values values(3);
  Values otherValues(3);
  run.ReadWith(other, 0, 3, values.data(), otherValues.data());
  EXPECT_EQ(asked, "oioioi");
}

/// A file that is written may have no channels at all.
TEST_F(FrameRunTest, noChannelsMakeNoSamples) {
  AES31BWF file(folder.Path("none.wav").c_str(), 48000, 0, 16, 10);
  file.CloseFile();
  FrameRun run(file, 0, 0);
  run.Read(0, 5, nullptr);
}

/// Read errors go the slow way, which takes each byte that cannot be read as ones.
TEST_F(FrameRunTest, readErrors) {
  const std::string path = Noise(kFormats[2], kFrames * 2);
  for (const bool turns : {false, true}) {
    Twins twins(path);
    for (AES31BWF* const file : {&twins.tested, &twins.plain}) {
      // Open for writing alone: every read fails.
      file->stream.reset(std::fopen(path.c_str(), "ab"));
    }
    if (turns) {
      ExpectTurns(twins, 2, 9, 20, 2, 6);
    } else {
      ExpectRun(twins, 2, 20, 2, 6);
    }
  }
}

}  // namespace
}  // namespace velmora::test
