// Reading that fails in the middle: a piece made of it would be of other samples, so none is made.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "BWF/KeptStreams.h"
#include "BWF/Renderers.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

constexpr std::int32_t kFrames = 2000;

/// A file that opens and moves like any other, and gives EIO wherever it is read: at its low
/// addresses a process has no memory.
constexpr const char* kUnreadable = "/proc/self/mem";

struct Fault {
  const char* name;
  void (*arm)(AES31BWF& file);
  int error;
};

const Fault kFaults[] = {
    {"readThatFails", [](AES31BWF& file) { file.path = kUnreadable; }, EIO},
    {"seekThatFails", [](AES31BWF& file) { file.dataOffset = -100'000'000; }, EINVAL},
    {"openThatFails", [](AES31BWF& file) { file.path += ".gone"; }, ENOENT},
};

/// Each makes one file at `target` of two sources, of which the first is faulty, and says whether
/// that failed as it should.
struct Operation {
  const char* name;
  bool (*failed)(AES31BWF& source, AES31BWF& other, const std::string& target);
};

const Operation kOperations[] = {
    {"fade",
     [](AES31BWF& source, AES31BWF& /*other*/, const std::string& target) {
       return RenderFadeFile(target.c_str(), &source, 1000, true, 0) == nullptr;
     }},
    {"fadeFromTheMiddle",
     [](AES31BWF& source, AES31BWF& /*other*/, const std::string& target) {
       return RenderFadeFile(target.c_str(), &source, 1000, false, 700) == nullptr;
     }},
    {"crossfadeOutOfIt",
     [](AES31BWF& source, AES31BWF& other, const std::string& target) {
       return RenderCrossfadeFile(target.c_str(), &source, &other, 10, 20, 1000) == nullptr;
     }},
    {"crossfadeIntoIt",
     [](AES31BWF& source, AES31BWF& other, const std::string& target) {
       return RenderCrossfadeFile(target.c_str(), &other, &source, 10, 20, 1000) == nullptr;
     }},
    {"crossfadeInsideIt",
     [](AES31BWF& source, AES31BWF& /*other*/, const std::string& target) {
       return RenderCrossfadeFile(target.c_str(), &source, &source, 900, 0, 1000) == nullptr;
     }},
    {"gain",
     [](AES31BWF& source, AES31BWF& /*other*/, const std::string& target) {
       return RenderScaledFile(target.c_str(), &source, 0.5) == nullptr;
     }},
    {"depth",
     [](AES31BWF& source, AES31BWF& /*other*/, const std::string& target) {
       return source.CopyTo(target.c_str(), 24) == CopyFailed;
     }},
};

class BwfReadErrors : public testing::Test {
 protected:
  std::string Write(const char* name, std::uint16_t bits, std::uint16_t channels = 1) {
    std::vector<std::int32_t> samples;
    for (std::int32_t i = 0; i < kFrames * channels; ++i) samples.push_back(i % 8000 + 1);
    return folder.Write(name, PlainWave({.channels = channels, .bits = bits}, samples));
  }

  TemporaryFolder folder;
  LogCapture log;
};

TEST_F(BwfReadErrors, noPieceIsMadeOfWhatCouldNotBeRead) {
  const std::string path = Write("source.wav", 16);
  AES31BWF other(Write("other.wav", 16).c_str());
  for (const Fault& fault : kFaults) {
    for (const Operation& operation : kOperations) {
      SCOPED_TRACE(testing::Message() << operation.name << ", " << fault.name);
      AES31BWF source(path.c_str());
      fault.arm(source);
      log.lines.clear();
      EXPECT_TRUE(operation.failed(source, other, folder.Path("target.wav")));
      ASSERT_EQ(log.lines.size(), 1U);
      EXPECT_NE(log.lines[0].find(source.path), std::string::npos) << log.lines[0];
      EXPECT_NE(log.lines[0].find(std::strerror(fault.error)), std::string::npos) << log.lines[0];
      EXPECT_EQ(source.stream, nullptr);
      EXPECT_EQ(other.stream, nullptr);
    }
  }
}

/// Files with gaps between their samples are read one sample at a time.
TEST_F(BwfReadErrors, sampleBySampleToo) {
  std::vector<std::int32_t> samples(kFrames, 77);
  const std::string path = folder.Write(
      "source.wav",
      WaveBytes().Format({.bits = 16, .blockAlign = 4}).Data(PcmBytes(32, samples)).Bytes());
  for (const Fault& fault : kFaults) {
    SCOPED_TRACE(fault.name);
    AES31BWF source(path.c_str());
    EXPECT_NE(RenderFadeFile(folder.Path("good.wav").c_str(), &source, 1000, true, 10), nullptr);
    fault.arm(source);
    EXPECT_EQ(RenderFadeFile(folder.Path("bad.wav").c_str(), &source, 1000, true, 10), nullptr);
  }
}

TEST_F(BwfReadErrors, oneThatIsPastDoesNotSpoilTheNextPiece) {
  const std::string path = Write("source.wav", 24);
  AES31BWF source(path.c_str());
  KeptStreams kept;
  const std::string target = folder.Path("target.wav");
  const auto fade = [&] {
    NamedFile file(target.c_str());
    return RenderFadeInto(file, &source, 1000, true, 500, {.kept = &kept});
  };
  ASSERT_NE(fade(), nullptr);
  const std::string undisturbed = TemporaryFolder::Read(target);
  for (const Fault& fault : kFaults) {
    SCOPED_TRACE(fault.name);
    const std::int64_t dataOffset = source.dataOffset;
    fault.arm(source);
    EXPECT_EQ(fade(), nullptr);
    source.path = path;
    source.dataOffset = dataOffset;
    ASSERT_NE(fade(), nullptr);
    EXPECT_TRUE(TemporaryFolder::Read(target) == undisturbed);
  }
}

TEST_F(BwfReadErrors, theEndOfTheFileIsNone) {
  const std::string path = Write("source.wav", 16);
  AES31BWF source(path.c_str());
  std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1000);
  ASSERT_NE(RenderFadeFile(folder.Path("target.wav").c_str(), &source, kFrames, false, 0), nullptr);
  EXPECT_TRUE(log.lines.empty());
  // Bytes past the end are all ones, as ever: the least sample below zero.
  EXPECT_LT(source.GetSampleAt(kFrames - 1, 0), 0.0F);
  EXPECT_EQ(source.TakeReadError(), 0);
}

TEST_F(BwfReadErrors, areTakenOnce) {
  AES31BWF source(Write("source.wav", 16).c_str());
  source.path = kUnreadable;
  static_cast<void>(source.GetSampleAt(5, 0));
  EXPECT_EQ(source.TakeReadError(), EIO);
  EXPECT_EQ(source.TakeReadError(), 0);
}

TEST_F(BwfReadErrors, closingAFileThatWasReadIsNoFailedWrite) {
  AES31BWF source(Write("source.wav", 16).c_str());
  source.OpenAtData();
  ASSERT_NE(source.stream, nullptr);
  ASSERT_EQ(close(fileno(source.stream.get())), 0);
  source.CloseFile();
  EXPECT_FALSE(source.WriteFailed());
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(BwfReadErrors, headerThatCannotBeReadIsNoWaveFile) {
  EXPECT_FALSE(AES31BWF(kUnreadable).IsValid());
}

}  // namespace
}  // namespace velmora::test
