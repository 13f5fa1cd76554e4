// Lengths of which no file should be made: each is refused before it is begun, and told.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "BWF/OutputPaths.h"
#include "BWF/Renderers.h"
#include "Support/SystemConditions.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

constexpr std::int64_t kMiB = 1 << 20;

class LongPieces : public testing::Test {
 protected:
  std::string Source(std::size_t frames, WaveFormat format = {}) {
    return folder.Write("source.wav", PlainWave(format, std::vector<std::int32_t>(frames, 9)));
  }
  /// A wave file of 16 bits with so many bytes of silence that the disk does not hold.
  std::string SparseSource(std::uint32_t dataBytes) {
    const std::string path = folder.Write(
        "sparse.wav",
        WaveBytes().Format({.bits = 16}).Claim("data", dataBytes).RiffSize(dataBytes + 36).Bytes());
    std::filesystem::resize_file(path, 44 + std::uint64_t{dataBytes});
    return path;
  }
  bool Fades(AES31BWF& source, std::int64_t length) {
    const Watchdog watchdog;
    return RenderFadeFile(target.c_str(), &source, length, false, 0) != nullptr;
  }
  void ExpectRefusal(std::int64_t length) {
    EXPECT_FALSE(std::filesystem::exists(target));
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_NE(log.lines[0].find(target + ": not made"), std::string::npos) << log.lines[0];
    EXPECT_NE(log.lines[0].find(std::to_string(length)), std::string::npos) << log.lines[0];
    log.lines.clear();
  }

  TemporaryFolder folder;
  LogCapture log;
  const std::string target = folder.Path("target.wav");
};

TEST_F(LongPieces, fadeMayBeLongerThanItsFileBy64MiB) {
  AES31BWF source(Source(100).c_str());
  const std::int64_t most = 100 + 64 * kMiB / 2;
  ASSERT_TRUE(Fades(source, most));
  EXPECT_EQ(AES31BWF(target.c_str()).GetFrames(), most);
  std::filesystem::remove(target);
  for (const std::int64_t length : {most + 1, std::int64_t{1} << 30, std::int64_t{1} << 62}) {
    EXPECT_FALSE(Fades(source, length)) << length;
    ExpectRefusal(length);
  }
}

TEST_F(LongPieces, crossfadeIsMeasuredByTheLongerFile) {
  AES31BWF shortOne(Source(100).c_str());
  AES31BWF longOne(SparseSource(100 * kMiB).c_str());
  const std::int64_t length = 40 * kMiB;  // 80 MiB
  EXPECT_NE(RenderCrossfadeFile(target.c_str(), &shortOne, &longOne, 0, 0, length), nullptr);
  std::filesystem::remove(target);
  EXPECT_EQ(RenderCrossfadeFile(target.c_str(), &shortOne, &shortOne, 0, 0, length), nullptr);
  ExpectRefusal(length);
}

TEST_F(LongPieces, manyChannelsMakeThemShorter) {
  AES31BWF source(Source(1000 * 2, {.channels = 1000}).c_str());
  const std::int64_t most = 2 + 64 * kMiB / 2000;
  EXPECT_FALSE(Fades(source, most + 1));
  ExpectRefusal(most + 1);
  EXPECT_TRUE(Fades(source, most));
}

/// Sources that are no PCM have a depth of 0, so that every length has a file of the same size.
TEST_F(LongPieces, sourceThatIsNoPcmCostsNoTime) {
  AES31BWF source(Source(100, {.bits = 32, .formatTag = 3}).c_str());
  ASSERT_TRUE(source.IsValid());
  EXPECT_TRUE(Fades(source, 64 * kMiB));
  EXPECT_LT(std::filesystem::file_size(target), 1000U);
  std::filesystem::remove(target);
  const std::int64_t length = (std::int64_t{1} << 31) - 1;
  EXPECT_FALSE(Fades(source, length));
  ExpectRefusal(length);
}

TEST_F(LongPieces, depthChangeBeyond2GiBIsNotBegun) {
  constexpr std::uint32_t kMostBytes = 0x7FFFFFFF / 3 * 2;  // as 24 bits they just fit
  {
    AES31BWF source(SparseSource(kMostBytes + 2).c_str());
    ASSERT_TRUE(source.IsValid());
    EXPECT_EQ(source.CopyTo(target.c_str(), 24), CopyFailed);
    EXPECT_FALSE(std::filesystem::exists(target));
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_NE(log.lines[0].find(target + ": not made"), std::string::npos) << log.lines[0];
    EXPECT_NE(log.lines[0].find("2 GiB"), std::string::npos) << log.lines[0];
  }
  // What still fits is begun: the limit for files ends it at once.
  AES31BWF source(SparseSource(kMostBytes).c_str());
  const FileSizeLimit limit(4096);
  EXPECT_EQ(source.CopyTo(target.c_str(), 24), CopyFailed);
  EXPECT_TRUE(std::filesystem::exists(target));
  EXPECT_EQ(log.lines.size(), 2U);
}

/// A frame has at most 65,535 bytes: more would be written, and no reader would find them again.
TEST_F(LongPieces, framesThatNoHeaderCanSayAreNotBegun) {
  const struct {
    std::uint16_t channels;
    std::int32_t depth;  ///< of the copy
    bool isMade;
  } kRows[] = {{21845, 24, true}, {21846, 24, false}};
  for (const auto& row : kRows) {
    AES31BWF source(Source(row.channels, {.channels = row.channels}).c_str());
    ASSERT_TRUE(source.IsValid());
    EXPECT_EQ(source.CopyTo(target.c_str(), row.depth) == CopyDone, row.isMade) << row.channels;
    EXPECT_EQ(std::filesystem::exists(target), row.isMade) << row.channels;
    EXPECT_EQ(log.lines.empty(), row.isMade) << row.channels;
    std::filesystem::remove(target);
    log.lines.clear();
  }
  // The frames of such a source overlap by its own header.
  AES31BWF source(Source(32768, {.channels = 32768, .blockAlign = 2}).c_str());
  ASSERT_TRUE(source.IsValid());
  EXPECT_FALSE(Fades(source, 1));
  EXPECT_EQ(RenderCrossfadeFile(target.c_str(), &source, &source, 0, 0, 1), nullptr);
  EXPECT_EQ(RenderScaledFile(target.c_str(), &source, 0.5), nullptr);
  EXPECT_FALSE(std::filesystem::exists(target));
  ASSERT_EQ(log.lines.size(), 3U);
  for (const std::string& line : log.lines) {
    EXPECT_NE(line.find(target + ": not made, for its frames"), std::string::npos) << line;
  }
}

TEST_F(LongPieces, stopIsAskedForInTheMiddleAndDiscardsTheFile) {
  AES31BWF source(SparseSource(64 * kMiB).c_str());
  OutputNames names;
  int asked = 0;
  int stopsAt = 0;
  const RenderAids aids = {.isStopped = [&] { return ++asked == stopsAt; }};
  const auto fade = [&](std::int64_t length) {
    NewFile file = names.New(source.path, nullptr, "_FadeIn");
    return RenderFadeInto(file, &source, length, true, 0, aids) != nullptr;
  };
  EXPECT_TRUE(fade(10 * 48000));
  EXPECT_EQ(asked, 0) << "a piece of ten seconds is made in the meantime";
  EXPECT_TRUE(fade(32 * kMiB));
  EXPECT_EQ(asked, 64);
  asked = 0;
  stopsAt = 3;
  EXPECT_FALSE(fade(32 * kMiB));
  EXPECT_EQ(asked, 3);
  EXPECT_TRUE(std::filesystem::exists(folder.Path("sparse_FadeIn.1.wav")));
  EXPECT_FALSE(std::filesystem::exists(folder.Path("sparse_FadeIn.2.wav")));
  EXPECT_EQ(source.stream, nullptr);
}

TEST_F(LongPieces, crossfadeStopsToo) {
  AES31BWF source(SparseSource(64 * kMiB).c_str());
  OutputNames names;
  {
    NewFile file = names.New(source.path, nullptr, "_XFade");
    const RenderAids aids = {.isStopped = [] { return true; }};
    EXPECT_EQ(RenderCrossfadeInto(file, &source, &source, 0, 9, 8 * kMiB, aids), nullptr);
  }
  EXPECT_FALSE(std::filesystem::exists(folder.Path("sparse_XFade.wav")));
}

}  // namespace
}  // namespace velmora::test
