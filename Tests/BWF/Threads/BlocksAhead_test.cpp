// Two threads at one file: what comes out must be what one thread makes.

#include "BWF/BlocksAhead.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "BWF/AES31BWF.h"
#include "BWF/SampleConversion.h"
#include "Support/BwfReference.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

constexpr std::size_t kHeld = 3;

class BlocksAheadTest : public testing::Test {
 protected:
  void SetUp() override {
    if (std::thread::hardware_concurrency() < 2) GTEST_SKIP() << "needs a second processor";
  }

  /// Blocks that hold their number, up to one that cannot be made.
  std::unique_ptr<BlocksAhead> Start(std::size_t blocks, std::size_t bad) {
    return BlocksAhead::Start(blocks, sizeof(std::size_t),
                              [this, bad](std::size_t number, std::uint8_t* block) {
                                if (number > taken + kHeld) tooEarly = true;
                                ++calls;
                                std::memcpy(block, &number, sizeof number);
                                return number != bad;
                              });
  }
  std::size_t Take(BlocksAhead& ahead) {
    std::size_t number = 0;
    const std::uint8_t* const block = ahead.Next();
    if (block == nullptr) return kNone;
    std::memcpy(&number, block, sizeof number);
    ++taken;
    return number;
  }

  static constexpr std::size_t kNone = ~std::size_t{0};
  std::atomic<std::size_t> calls = 0;
  std::atomic<std::size_t> taken = 0;
  std::atomic<bool> tooEarly = false;
};

TEST_F(BlocksAheadTest, blocksComeInOrderAndNotManyAhead) {
  constexpr std::size_t kBlocks = 2000;
  const std::unique_ptr<BlocksAhead> ahead = Start(kBlocks, kNone);
  ASSERT_NE(ahead, nullptr);
  for (std::size_t i = 0; i < kBlocks; ++i) ASSERT_EQ(Take(*ahead), i);
  EXPECT_EQ(calls, kBlocks);
  EXPECT_FALSE(tooEarly);
}

TEST_F(BlocksAheadTest, blockThatCannotBeMadeIsTheLast) {
  const std::unique_ptr<BlocksAhead> ahead = Start(20, 7);
  ASSERT_NE(ahead, nullptr);
  for (std::size_t i = 0; i < 7; ++i) ASSERT_EQ(Take(*ahead), i);
  EXPECT_EQ(Take(*ahead), kNone);
  EXPECT_EQ(calls, 8U);
}

TEST_F(BlocksAheadTest, threadEndsWithItAtAnyTime) {
  for (std::size_t wanted = 0; wanted < 10; ++wanted) {
    {
      const std::unique_ptr<BlocksAhead> ahead = Start(1000, kNone);
      ASSERT_NE(ahead, nullptr);
      for (std::size_t i = 0; i < wanted; ++i) ASSERT_EQ(Take(*ahead), i);
    }
    const std::size_t made = calls;
    EXPECT_LE(made, wanted + kHeld);
    calls = taken = 0;
  }
}

TEST_F(BlocksAheadTest, fewBlocksAreMadeWithoutAThread) {
  EXPECT_EQ(Start(0, kNone), nullptr);
  EXPECT_EQ(Start(1, kNone), nullptr);
  EXPECT_EQ(calls, 0U);
}

/// A file long enough for two threads.
class LongConversion : public testing::Test {
 protected:
  static constexpr std::int32_t kFrames = 1'500'007;

  TemporaryFolder folder;
  std::string samples = [] {
    std::minstd_rand random(5);
    std::string bytes(std::size_t{kFrames} * 3, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random() >> 8);
    return bytes;
  }();
  std::string source = folder.Write("source.wav", WrittenHeader(48000, 1, 24, kFrames) + samples);
};

TEST_F(LongConversion, isThatOfTheSamplesAtOnce) {
  for (const double gain : {0.0, 0.7, 3.0}) {  // none, one that keeps in range, one that wraps
    for (const std::int32_t bits : {8, 16, 24, 32}) {
      if (gain == 0.0 && bits == 24) continue;
      const SampleConversion conversion(24, static_cast<std::uint32_t>(bits),
                                        gain == 0.0 ? nullptr : &gain);
      std::string expected(std::size_t{kFrames} * conversion.TargetBytes(), '\0');
      conversion.Convert(reinterpret_cast<const std::uint8_t*>(samples.data()),
                         reinterpret_cast<std::uint8_t*>(expected.data()), kFrames);
      AES31BWF file(source.c_str());
      AES31BWF target(folder.Path("target.wav").c_str(), 48000, 1, bits, kFrames);
      file.OpenAtData();
      ASSERT_EQ(file.ConvertInto(&target, gain != 0.0, gain), 0);
      target.CloseFile();
      EXPECT_TRUE(TemporaryFolder::Read(folder.Path("target.wav")) ==
                  WrittenHeader(48000, 1, bits, kFrames) + expected)
          << bits << ' ' << gain;
    }
  }
}

TEST_F(LongConversion, ofAShortSourceIsFilledWithZeros) {
  const std::string half = WrittenHeader(48000, 1, 24, kFrames) + samples.substr(0, 2'000'000);
  AES31BWF file(folder.Write("half.wav", half).c_str());
  EXPECT_EQ(file.CopyTo(folder.Path("target.wav").c_str(), 16), CopyDone);
  const std::string made = TemporaryFolder::Read(folder.Path("target.wav"));
  ASSERT_EQ(made.size(), kHeaderBytes + std::size_t{kFrames} * 2);
  EXPECT_EQ(made.find_first_not_of('\0', kHeaderBytes + 2'000'002 / 3 * 2), std::string::npos);
}

TEST_F(LongConversion, thatFindsNoRoomEndsAndTellsIt) {
  LogCapture log;
  {
    const FileSizeLimit limit(1'000'000);
    AES31BWF file(source.c_str());
    EXPECT_EQ(file.CopyTo(folder.Path("target.wav").c_str(), 16), CopyFailed);
    EXPECT_EQ(file.stream, nullptr);
  }
  EXPECT_EQ(std::filesystem::file_size(folder.Path("target.wav")), 1'000'000U);
  EXPECT_EQ(log.lines.size(), 1U);
}

}  // namespace
}  // namespace velmora::test
