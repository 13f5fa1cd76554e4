// What wave files make the program allocate. This program counts every operator new, and can make
// the large ones fail.

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "BWF/Renderers.h"
#include "Support/BwfReference.h"
#include "Support/OwnNew.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace {

constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();
std::atomic<std::size_t> allocated{0};        // bytes in all since counting began
std::atomic<std::size_t> failFrom{kNoLimit};  // a request of so many bytes fails

}  // namespace

bool velmora::test::RefusesMemory(std::size_t bytes) noexcept {
  allocated += bytes;
  return bytes >= failFrom;
}

namespace velmora::test {
namespace {

using Ints = std::vector<std::int32_t>;

// The bytes that `work` asks for, given back or not.
template <class Work>
std::size_t BytesFor(Work work) {
  allocated = 0;
  work();
  return allocated;
}

// While it lives, requests of `size` bytes and more fail.
class ScarceMemory {
 public:
  explicit ScarceMemory(std::size_t size) { failFrom = size; }
  ~ScarceMemory() { failFrom = kNoLimit; }
  ScarceMemory(const ScarceMemory&) = delete;
  ScarceMemory& operator=(const ScarceMemory&) = delete;
};

class BwfMemory : public testing::Test {
 protected:
  TemporaryFolder folder;
  const std::string target = folder.Path("target.wav");
  static constexpr std::size_t kSmall = 64 * 1024;
};

TEST_F(BwfMemory, counterCounts) {
  EXPECT_GE(BytesFor([] { std::vector<char> bytes(1000); }), 1000U);
  ScarceMemory scarce(1000);
  EXPECT_THROW(std::vector<char>(1000), std::bad_alloc);
}

struct ClaimRow {
  const char* rule;
  WaveBytes wave;
};

TEST_F(BwfMemory, sizeFieldsAloneAllocateNothing) {
  const std::string samples = PcmBytes(16, {1, 2});
  const WaveBytes good = WaveBytes().Format({}).Data(samples).RiffSize(0x7FFFFFFF);
  for (const ClaimRow& row :
       {ClaimRow{"unknownChunk", WaveBytes(good).Claim("LIST", 0x7FFFFFFF, "text")},
        ClaimRow{"unknownChunkBelowTheForm", WaveBytes(good).Claim("LIST", 0x7FFFFF00, "text")},
        ClaimRow{"history", WaveBytes(good).Claim("bext", 0x7FFFFFFF, BextBody({}) + "text")},
        ClaimRow{"historyOfACutBext", WaveBytes(good).Claim("bext", 0x7FFFFFFF, "text")},
        ClaimRow{"data", WaveBytes().Format({}).Claim("data", 0x7FFFFFFF, samples)},
        ClaimRow{"format", WaveBytes()
                               .Data(samples)
                               .Claim("fmt ", 0x7FFFFFFF, FormatBody({}))
                               .RiffSize(0x7FFFFFFF)},
        ClaimRow{"negativeForm", WaveBytes().Format({}).Data(samples).RiffSize(0x80000000)}}) {
    SCOPED_TRACE(row.rule);
    const std::string path = folder.Write("claims.wav", row.wave.Bytes());
    EXPECT_LT(BytesFor([&] {
                AES31BWF file(path.c_str());
                EXPECT_TRUE(file.IsValid());
                file.GetSampleAt(0, 0);
                file.GetSampleAt(1000000, 0);
              }),
              kSmall);
  }
}

TEST_F(BwfMemory, keptChunksAllocateNothingUntilOneIsAsked) {
  WaveBytes wave = WaveBytes().Format({}).Data("abcd");
  for (int i = 0; i < 50; ++i) wave.Chunk("LIST", std::string(10000, 'x'));
  wave.Claim("LIST", 0x7FFFFFF0, std::string(10000, 'x')).RiffSize(0x7FFFFFFF);
  const std::string path = folder.Write("kept.wav", wave.Bytes());
  EXPECT_LT(BytesFor([&] {
              for (int i = 0; i < 10; ++i) EXPECT_EQ(AES31BWF(path.c_str()).GetChunkCount(), 51U);
            }),
            10 * kSmall);
  AES31BWF file(path.c_str());
  EXPECT_LT(BytesFor([&] { EXPECT_EQ(file.GetChunk(25)->size, 10000U); }), 10000 + kSmall);
  EXPECT_LT(BytesFor([&] {
              for (int i = 0; i < 51; ++i) EXPECT_EQ(file.GetChunk(i)->size, 10000U);
            }),
            510000 + 2 * kSmall);
}

TEST_F(BwfMemory, millionsOfKeptChunksAllocateNoMoreThanAFew) {
  constexpr std::uint32_t kBytes = 8U << 20;  // most of it a hole, where each chunk is 8 zeros
  const std::string path =
      folder.Write("hole.wav", WaveBytes().Format({}).Data("abcd").RiffSize(kBytes - 8).Bytes());
  std::filesystem::resize_file(path, kBytes);
  constexpr std::size_t kBlocks = 4 * kSmall;
  EXPECT_LT(BytesFor([&] { EXPECT_GT(AES31BWF(path.c_str()).GetChunkCount(), 1'000'000U); }),
            kBlocks);
  AES31BWF file(path.c_str());
  EXPECT_LT(BytesFor([&] { EXPECT_NE(file.GetChunk(1'000'000), nullptr); }), kBlocks);
}

TEST_F(BwfMemory, historyOfZerosIsNotHeld) {
  constexpr std::uint32_t kBytes = 256U << 20;
  const std::string path =
      folder.Write("history.wav", WaveBytes()
                                      .Format({})
                                      .Data("abcd")
                                      .Claim("bext", kBytes, BextBody({}) + "A=PCM")
                                      .RiffSize(kBytes)
                                      .Bytes());
  std::filesystem::resize_file(path, kBytes);
  EXPECT_LT(BytesFor([&] {
              AES31BWF file(path.c_str());
              EXPECT_STREQ(file.GetBext()->codingHistory, "A=PCM");
            }),
            kSmall);
}

TEST_F(BwfMemory, copyOfTheSameDepthIsBounded) {
  constexpr std::size_t kAudio = 32U << 20;
  const std::string path =
      folder.Write("large.wav", WaveBytes().Format({}).Data(std::string(kAudio, 'x')).Bytes());
  AES31BWF large(path.c_str());
  EXPECT_LT(BytesFor([&] { EXPECT_EQ(large.CopyTo(target.c_str(), -1), CopyDone); }), 4U << 20);
  EXPECT_EQ(std::filesystem::file_size(target), kAudio + 44);
  const std::string claims =
      folder.Write("claims.wav", WaveBytes().Format({}).Data("abcd").RiffSize(0x7FFFFFFF).Bytes());
  AES31BWF file(claims.c_str());
  EXPECT_LT(BytesFor([&] { EXPECT_EQ(file.CopyTo(target.c_str(), -1), CopyDone); }), 4U << 20);
}

TEST_F(BwfMemory, conversionAndRenderersHoldNoMoreThanTheirBlocks) {
  // Conversions hold five blocks: one as it was read, and four converted ones, so that some can be
  // made ahead.
  AES31BWF source(folder.Write("long.wav", PlainWave({}, Ints(8 << 20, 0x4000))).c_str());
  constexpr std::size_t kBlocks = 4U << 20;
  EXPECT_LT(BytesFor([&] { EXPECT_EQ(source.CopyTo(target.c_str(), 24), CopyDone); }), kBlocks);
  EXPECT_LT(BytesFor([&] { EXPECT_NE(RenderScaledFile(target.c_str(), &source, 0.5), nullptr); }),
            kBlocks);
  EXPECT_LT(BytesFor([&] {
              EXPECT_NE(RenderFadeFile(target.c_str(), &source, 1 << 20, true, 0), nullptr);
            }),
            kBlocks);
}

TEST_F(BwfMemory, writerAllocatesNothingForDeclaredFrames) {
  EXPECT_LT(BytesFor([&] { AES31BWF file(target.c_str(), 48000, 2, 24, 300'000'000); }), kSmall);
}

TEST_F(BwfMemory, conversionWithoutMemoryGivesOneAndLeavesTheHeader) {
  constexpr std::int32_t kSamples = 100'000;  // 200,000 bytes, to become 300,000
  AES31BWF source(folder.Write("source.wav", PlainWave({}, Ints(kSamples, 1))).c_str());
  {
    AES31BWF file(target.c_str(), 48000, 1, 24, kSamples);
    source.OpenAtData();
    ScarceMemory scarce(150'000);
    EXPECT_EQ(source.ConvertInto(&file, false, 0.0), 1);
  }
  EXPECT_EQ(TemporaryFolder::Read(target), WrittenHeader(48000, 1, 24, kSamples));
  {
    ScarceMemory scarce(250'000);  // the first of the two buffers can be had
    EXPECT_EQ(source.CopyTo(target.c_str(), 24), CopyFailed);
  }
  EXPECT_EQ(TemporaryFolder::Read(target), WrittenHeader(48000, 1, 24, kSamples));
  EXPECT_EQ(source.CopyTo(target.c_str(), 24), CopyDone);
}

TEST_F(BwfMemory, scalingRendererWithoutMemoryGivesNullAndLeavesTheHeader) {
  constexpr std::int32_t kSamples = 100'000;
  AES31BWF source(folder.Write("source.wav", PlainWave({}, Ints(kSamples, 1))).c_str());
  {
    ScarceMemory scarce(150'000);
    EXPECT_EQ(RenderScaledFile(target.c_str(), &source, 0.5), nullptr);
  }
  EXPECT_EQ(TemporaryFolder::Read(target), WrittenHeader(48000, 1, 16, kSamples));
}

TEST_F(BwfMemory, copyOfTheSameDepthWithoutMemoryFailsWithAnEmptyTargetOrNeedsNone) {
  const std::string bytes = PlainWave({}, Ints(100000, 7));
  AES31BWF source(folder.Write("source.wav", bytes).c_str());
  std::int32_t status = CopyDone;
  {
    ScarceMemory scarce(4000);
    status = source.CopyTo(target.c_str(), -1);
  }
  EXPECT_TRUE(status == CopyDone || status == CopyFailed) << status;
  EXPECT_TRUE(TemporaryFolder::Read(target) == (status == CopyDone ? bytes : ""));
}

TEST_F(BwfMemory, headerThatCannotBeHeldThrowsNothing) {
  const std::string body(300000, 'x');
  for (const WaveBytes& wave :
       {WaveBytes().Chunk("LIST", body), WaveBytes().Bext({.history = body})}) {
    const std::string path =
        folder.Write("header.wav", WaveBytes(wave).Format({}).Data("abcd").Bytes());
    ScarceMemory scarce(50000);
    EXPECT_NO_THROW({
      AES31BWF file(path.c_str());
      file.GetSampleAt(0, 0);
    });
  }
}

}  // namespace
}  // namespace velmora::test
