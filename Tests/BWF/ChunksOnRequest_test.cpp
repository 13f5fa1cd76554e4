#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Support/TemporaryFolder.h"
#include "Support/WaveBytes.h"

namespace velmora::test {
namespace {

struct Chunk {
  std::uint32_t identifier = 0;
  std::string body;

  bool operator==(const Chunk&) const = default;
};

void PrintTo(const Chunk& chunk, std::ostream* out) {
  *out << std::hex << chunk.identifier << std::dec << " of " << chunk.body.size() << " bytes";
}

std::uint32_t U32At(std::string_view bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const bool there = at + i < bytes.size();  // beyond the end all bytes are ones
    const auto byte = there ? static_cast<unsigned char>(bytes[at + i]) : 0xFFU;
    value |= static_cast<std::uint32_t>(byte) << (8 * i);
  }
  return value;
}

/// The chunks that a reader keeps, by a walk over the bytes of the whole file.
std::vector<Chunk> WalkedChunks(std::string_view file) {
  const std::uint64_t end = static_cast<std::uint64_t>(
      static_cast<std::int64_t>(static_cast<std::int32_t>(U32At(file, 4))) + 8);
  std::vector<Chunk> kept;
  for (std::uint64_t at = 12; at + 8 <= file.size();) {
    const std::string_view rest = file.substr(static_cast<std::size_t>(at));
    const std::uint32_t identifier = U32At(rest, 0);
    const std::uint32_t size = U32At(rest, 4);
    at += 8;
    if (size > 0x7FFFFFFF || at >= end) break;
    const std::string_view name = rest.substr(0, 4);
    if (name != "fmt " && name != "data" && name != "bext") {
      kept.push_back({identifier, std::string(rest.substr(8, size))});
    }
    at += size;  // no pad byte after an odd one
  }
  return kept;
}

Chunk Shown(const BwfChunk* chunk) {
  if (chunk == nullptr) return {.identifier = 0xDEAD, .body = "no chunk"};
  EXPECT_EQ(chunk->size, chunk->data.size());
  return {chunk->identifier, {chunk->data.begin(), chunk->data.end()}};
}

/// A wave file with chunks of many kinds and odd sizes, now and then with fields that lie.
std::string RandomFile(std::mt19937& random) {
  const auto below = [&](std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
  };
  WaveBytes wave;
  const std::size_t chunks = below(30);
  const std::size_t format = below(chunks + 1), data = below(chunks + 1);
  for (std::size_t i = 0; i <= chunks; ++i) {
    if (i == format) wave.Format({.channels = 2, .bits = 24});
    if (i == data) wave.Data(std::string(below(100), 'd'));
    std::string body;
    for (std::size_t length = below(3) ? below(50) : 0; body.size() < length;) {
      body += static_cast<char>(below(256));
    }
    const std::string identifier = below(2) ? "LIST" : std::string{"ABCD"}.substr(0, 3) + body[0];
    if (below(40) == 0) {
      wave.Claim(identifier, static_cast<std::uint32_t>(below(4000)), body);
    } else {
      wave.Chunk(identifier.substr(0, 4), body);
    }
    if (below(60) == 0) wave.Raw("\0");
  }
  std::string bytes = wave.Bytes();
  if (below(6) == 0) bytes.resize(12 + below(bytes.size() - 12));
  if (below(6) == 0) {
    bytes.replace(4, 4, LittleEndian().U32(static_cast<std::uint32_t>(below(2000))).bytes);
  }
  return bytes;
}

// In order, backwards and here and there, each chunk is the one that a plain walk finds. A file
// that is refused keeps what was read of it.
TEST(ChunksOnRequest, AreThoseOfAPlainWalk) {
  const TemporaryFolder folder;
  std::mt19937 random(7);
  std::size_t compared = 0;
  for (int trial = 0; trial < 300; ++trial) {
    const std::string bytes = RandomFile(random);
    const std::string path = folder.Write(std::to_string(trial), bytes);
    const std::vector<Chunk> kept = WalkedChunks(bytes);
    AES31BWF wave(path.c_str());
    if (!wave.IsValid()) continue;
    ASSERT_EQ(wave.GetChunkCount(), kept.size()) << trial;
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < kept.size(); ++i) order.push_back(i);
    for (int round = 0; round < 3; ++round) {
      for (const std::size_t i : order) {
        ASSERT_EQ(Shown(wave.GetChunk(static_cast<std::int32_t>(i))), kept[i])
            << trial << " chunk " << i << " round " << round;
        ++compared;
      }
      if (round == 0) std::reverse(order.begin(), order.end());
      if (round == 1) std::shuffle(order.begin(), order.end(), random);
    }
  }
  EXPECT_GT(compared, 3000U);
}

// What a caller was given stays as it is while other chunks are asked for.
TEST(ChunksOnRequest, StayWhileOthersAreRead) {
  const TemporaryFolder folder;
  WaveBytes wave;
  for (int i = 0; i < 500; ++i) wave.Chunk("note", "body " + std::to_string(i));
  const std::string path =
      folder.Write("take.wav", wave.Format({}).Data(PcmBytes(16, {1, 2})).Bytes());
  AES31BWF file(path.c_str());
  std::vector<BwfChunk*> chunks;
  for (std::int32_t i = 0; i < 500; ++i) chunks.push_back(file.GetChunk(499 - i));
  for (std::int32_t i = 0; i < 500; ++i) {
    EXPECT_EQ(Shown(chunks[static_cast<std::size_t>(499 - i)]).body, "body " + std::to_string(i));
    EXPECT_EQ(file.GetChunk(i), chunks[static_cast<std::size_t>(499 - i)]);
  }
}

// Reading chunks between samples does not move the samples.
TEST(ChunksOnRequest, DoNotDisturbTheSamples) {
  const TemporaryFolder folder;
  WaveBytes bytes;
  bytes.Format({}).Data(PcmBytes(16, {100, 200, 300, 400})).Chunk("void", "").Chunk("note", "abc");
  AES31BWF file(folder.Write("take.wav", bytes.Bytes()).c_str());
  ASSERT_TRUE(file.IsValid());
  file.OpenAtData();
  EXPECT_EQ(file.GetSampleAt(0, 0), 100 / 32768.0F);
  EXPECT_EQ(Shown(file.GetChunk(1)).body, "abc");
  EXPECT_EQ(file.GetSampleAt(1, 0), 200 / 32768.0F);
  EXPECT_EQ(Shown(file.GetChunk(0)).body, "");
  EXPECT_EQ(file.ReadSample(), 300 / 32768.0F);
  EXPECT_EQ(file.ReadSample(), 400 / 32768.0F);
}

TEST(ChunksOnRequest, OutOfRangeAreNone) {
  const TemporaryFolder folder;
  AES31BWF file(
      folder
          .Write("take.wav",
                 WaveBytes().Chunk("note", "abc").Format({}).Data(PcmBytes(16, {1})).Bytes())
          .c_str());
  EXPECT_EQ(file.GetChunkCount(), 1U);
  for (const std::int32_t index : {-1, 1, 2147483647, static_cast<std::int32_t>(-2147483647 - 1)}) {
    EXPECT_EQ(file.GetChunk(index), nullptr) << index;
  }
}

// Also for files that are gone or shorter by then: nothing, or what there is.
TEST(ChunksOnRequest, AreReadFromWhatTheFileHoldsThen) {
  const TemporaryFolder folder;
  const std::string bytes = WaveBytes()
                                .Chunk("one ", "first")
                                .Format({})
                                .Data(PcmBytes(16, {1}))
                                .Chunk("two ", "second")
                                .Bytes();
  const std::string path = folder.Write("take.wav", bytes);
  AES31BWF gone(path.c_str());
  ASSERT_EQ(gone.GetChunkCount(), 2U);
  std::filesystem::remove(path);
  EXPECT_EQ(gone.GetChunkCount(), 2U);
  const BwfChunk* chunk = gone.GetChunk(1);
  if (chunk != nullptr) {
    EXPECT_EQ(chunk->size, chunk->data.size());
  }
  EXPECT_TRUE(gone.IsValid());
}

// What the sanitizers hold for themselves would count as held by the instances.
#if defined(__SANITIZE_ADDRESS__)
#define VELMORA_MEMORY_IS_OURS 0
#elif defined(__has_feature)
#define VELMORA_MEMORY_IS_OURS !__has_feature(address_sanitizer)
#else
#define VELMORA_MEMORY_IS_OURS 1
#endif

#if VELMORA_MEMORY_IS_OURS

/// The most memory that this process held since this object was made, beyond what it held then.
class MemoryPeak {
 public:
  MemoryPeak() {
    std::ofstream("/proc/self/clear_refs") << 5;  // the peak begins anew
    before_ = PeakBytes();
  }
  std::int64_t Bytes() const { return PeakBytes() - before_; }

 private:
  static std::int64_t PeakBytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("VmHWM:")) return std::stoll(line.substr(6)) * 1024;
    }
    ADD_FAILURE() << "the system does not tell the peak";
    return 0;
  }

  std::int64_t before_ = 0;
};

/// A file that is nearly all hole: after fmt and data, chunks of no name and no size, 8 bytes each.
std::string SparseFile(const TemporaryFolder& folder, std::uint32_t bytes) {
  const std::string path = folder.Write(
      "sparse.wav", WaveBytes().Format({}).Data(PcmBytes(16, {1, 2})).RiffSize(bytes - 8).Bytes());
  std::filesystem::resize_file(path, bytes);
  return path;
}

constexpr std::uint32_t kSparseBytes = 64U << 20;
constexpr std::size_t kSparseChunks = (kSparseBytes - 48) / 8 - 1;  // the last has no room after it

TEST(ChunksOnRequest, MillionsCostNoMemory) {
  const TemporaryFolder folder;
  const std::string path = SparseFile(folder, kSparseBytes);
  const MemoryPeak peak;
  AES31BWF wave(path.c_str());
  ASSERT_TRUE(wave.IsValid());
  EXPECT_NEAR(static_cast<double>(wave.GetChunkCount()), static_cast<double>(kSparseChunks), 1.0);
  ASSERT_NE(wave.GetChunk(static_cast<std::int32_t>(kSparseChunks / 2)), nullptr);
  EXPECT_EQ(wave.GetChunk(5)->size, 0U);
  EXPECT_LT(peak.Bytes(), 16 << 20);
}

TEST(ChunksOnRequest, OfManyInstancesOnOneFileCostNoMemory) {
  const TemporaryFolder folder;
  WaveBytes bytes;
  bytes.Format({}).Data(PcmBytes(16, {1, 2})).Chunk("big ", std::string(1 << 20, 'b'));
  const std::string path = folder.Write("take.wav", bytes.Bytes());
  const MemoryPeak peak;
  std::vector<std::unique_ptr<AES31BWF>> instances;
  for (int i = 0; i < 500; ++i) {
    instances.push_back(std::make_unique<AES31BWF>(path.c_str()));
    ASSERT_EQ(instances.back()->GetChunkCount(), 1U);
  }
  EXPECT_LT(peak.Bytes(), 32 << 20);
  EXPECT_EQ(instances[250]->GetChunk(0)->data.size(), 1U << 20);
}

// To walk the file anew for each would take hours.
TEST(ChunksOnRequest, AreFoundInAnyOrder) {
  const TemporaryFolder folder;
  constexpr int kChunks = 200'000;
  WaveBytes bytes;
  for (int i = 0; i < kChunks; ++i) bytes.Chunk("note", "abc");
  const std::string path =
      folder.Write("take.wav", bytes.Format({}).Data(PcmBytes(16, {1, 2})).Bytes());
  AES31BWF wave(path.c_str());
  for (int i = 0; i < kChunks; ++i) ASSERT_NE(wave.GetChunk(i), nullptr);
  for (int i = kChunks; i-- > 0;) ASSERT_NE(wave.GetChunk(i), nullptr);
}

// A bext chunk is 602 bytes long whatever its size field says, so that many can lie on each other.
TEST(ChunksOnRequest, ManyBextChunksAreTaken) {
  const TemporaryFolder folder;
  WaveBytes bytes = WaveBytes().Format({}).Data(PcmBytes(16, {1, 2}));
  for (int i = 0; i < 200000; ++i) bytes.Chunk("bext", "");
  EXPECT_TRUE(AES31BWF(folder.Write("take.wav", bytes.Bytes()).c_str()).IsValid());
}

#endif

}  // namespace
}  // namespace velmora::test
