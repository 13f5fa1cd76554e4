// The chunks that a wave file holds beside those that are understood: read from the file when
// somebody asks for them.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

std::string BodyOf(const BwfChunk* chunk) {
  return chunk != nullptr ? std::string(chunk->data.begin(), chunk->data.end()) : "no chunk";
}

class KeptChunks : public testing::Test {
 protected:
  std::string Write(const WaveBytes& wave) { return folder.Write("kept.wav", wave.Bytes()); }
  /// A wave file whose rest, up to `bytes`, is one hole: nothing but chunks of size 0.
  std::string WriteHole(std::uint32_t bytes) {
    const WaveBytes wave = WaveBytes().Format({}).Data("abcd").RiffSize(bytes - 8);
    const std::string path = Write(wave);
    std::filesystem::resize_file(path, bytes);
    return path;
  }

  TemporaryFolder folder;
};

TEST_F(KeptChunks, nothingIsHeldUntilOneIsAsked) {
  AES31BWF file(
      Write(WaveBytes().Chunk("1st ", "a").Format({}).Data("abcd").Chunk("2nd ", "b")).c_str());
  EXPECT_EQ(file.GetChunkCount(), 2U);
  EXPECT_EQ(file.chunks.Held(), 0U);
  EXPECT_EQ(BodyOf(file.GetChunk(1)), "b");
  EXPECT_EQ(file.chunks.Held(), 1U);
  EXPECT_EQ(file.stream, nullptr) << "the file is closed again";
}

TEST_F(KeptChunks, readLikeAVector) {
  AES31BWF file(
      Write(WaveBytes().Chunk("1st ", "a").Format({}).Data("abcd").Chunk("2nd ", "b")).c_str());
  ASSERT_EQ(file.chunks.size(), 2U);
  EXPECT_EQ(&file.chunks[1], file.GetChunk(1));
  std::string bodies;
  for (const BwfChunk& chunk : file.chunks) bodies += BodyOf(&chunk);
  EXPECT_EQ(bodies, "ab");
}

TEST_F(KeptChunks, comeFromTheLastToTheFirstInOneWalkToo) {
  constexpr std::int32_t kCount = 20000;
  WaveBytes wave;
  for (std::int32_t i = 0; i < kCount; ++i) wave.Chunk("kept", std::to_string(i));
  AES31BWF file(Write(wave.Format({}).Data("abcd")).c_str());
  for (std::int32_t i = kCount; i-- > 0;) ASSERT_EQ(BodyOf(file.GetChunk(i)), std::to_string(i));
  AES31BWF again(file.GetPath());
  std::mt19937 random(17);
  for (int i = 0; i < 5000; ++i) {
    const auto index = static_cast<std::int32_t>(random() % kCount);
    ASSERT_EQ(BodyOf(again.GetChunk(index)), std::to_string(index));
  }
}

TEST_F(KeptChunks, answersDoNotDependOnTheOrderAndStay) {
  WaveBytes wave;
  for (char letter = 'a'; letter <= 'z'; ++letter) wave.Chunk("kept", std::string(3, letter));
  AES31BWF file(Write(wave.Format({}).Data("abcd")).c_str());
  std::vector<BwfChunk*> asked(26);
  for (const std::int32_t index : {25, 0, 7, 6, 5, 25, 13, 24, 1}) {
    BwfChunk* const chunk = file.GetChunk(index);
    EXPECT_EQ(BodyOf(chunk), std::string(3, static_cast<char>('a' + index)));
    if (asked[static_cast<std::size_t>(index)] != nullptr) {
      EXPECT_EQ(chunk, asked[static_cast<std::size_t>(index)]);
    }
    asked[static_cast<std::size_t>(index)] = chunk;
  }
  for (std::size_t i = 0; i < asked.size(); ++i) {
    if (asked[i] == nullptr) continue;
    EXPECT_EQ(BodyOf(asked[i]), std::string(3, static_cast<char>('a' + i))) << "stays as it was";
  }
}

TEST_F(KeptChunks, anySizesAndPlacesComeWhole) {
  // Heads and bodies that lie across the borders of whatever is read at once.
  std::mt19937 random(31);
  std::vector<std::string> bodies;
  WaveBytes wave;
  for (int i = 0; i < 3000; ++i) {
    const auto longest = i % 50 == 0 ? 70000U : 40U;
    bodies.emplace_back(random() % longest, static_cast<char>('a' + i % 26));
    wave.Chunk("kept", bodies.back());
    if (i == 1500) wave.Format({}).Data("abcd").Bext({});
  }
  AES31BWF file(Write(wave).c_str());
  EXPECT_TRUE(file.IsValid());
  EXPECT_NE(file.GetBext(), nullptr);
  ASSERT_EQ(file.GetChunkCount(), bodies.size());
  for (std::size_t i = 0; i < bodies.size(); ++i) {
    ASSERT_TRUE(BodyOf(file.GetChunk(static_cast<std::int32_t>(i))) == bodies[i]) << i;
  }
}

TEST_F(KeptChunks, chunkThatTheFileHasNoMoreIsNull) {
  const std::string path = Write(WaveBytes().Format({}).Data("abcd").Chunk("kept", "body"));
  AES31BWF removed(path.c_str());
  AES31BWF shortened(path.c_str());
  std::filesystem::resize_file(path, 48);
  EXPECT_EQ(shortened.GetChunk(0), nullptr);
  std::filesystem::remove(path);
  EXPECT_EQ(removed.GetChunk(0), nullptr);
  EXPECT_EQ(removed.GetChunkCount(), 1U) << "an instance is never parsed again";
}

// Beginning anew for each chunk would be two hundred thousand walks.
TEST_F(KeptChunks, allAreThereInOrder) {
  constexpr std::uint32_t kChunks = 200'000;
  AES31BWF file(WriteHole(48 + kChunks * 8).c_str());
  EXPECT_EQ(file.GetChunkCount(), kChunks - 1);
  for (std::uint32_t i = 0; i + 1 < kChunks; ++i) {
    ASSERT_NE(file.GetChunk(static_cast<std::int32_t>(i)), nullptr);
  }
}

TEST_F(KeptChunks, millionsAreCounted) {
  AES31BWF file(WriteHole(64 << 20).c_str());
  EXPECT_TRUE(file.IsValid());
  EXPECT_EQ(file.GetChunkCount(), ((64U << 20) - 48) / 8 - 1);
}

}  // namespace
}  // namespace velmora::test
