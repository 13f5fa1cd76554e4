#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "Base/FileAccess.h"

namespace velmora {

/// The bytes of a wave file's header, in little-endian order, from any place on. It holds one block
/// of the file, so that going through millions of tiny chunks costs one read for thousands of them.
/// A byte past the end of the file is all ones.
class HeaderReader {
 public:
  /// Reads from an open stream, which must outlive it.
  explicit HeaderReader(std::FILE* stream) : stream_(stream) {}
  /// Opens the file for each block that is needed, and closes it again.
  explicit HeaderReader(std::string path) : path_(std::move(path)) {}

  /// Goes to a place in the file, in bytes from its beginning.
  void GoTo(std::int64_t place) { place_ = place; }

  [[nodiscard]] std::uint8_t Byte();

  template <class Number>
  [[nodiscard]] Number LittleEndian() {
    constexpr auto kBytes = static_cast<std::int64_t>(sizeof(Number));
    std::uint32_t value = 0;
    if (Holds(kBytes)) {
      const std::uint8_t* const bytes = block_.data() + (place_ - blockBegin_);
      for (std::int64_t i = 0; i < kBytes; ++i) value |= std::uint32_t{bytes[i]} << (8 * i);
      place_ += kBytes;
    } else {
      for (std::int64_t i = 0; i < kBytes; ++i) value |= std::uint32_t{Byte()} << (8 * i);
    }
    return static_cast<Number>(value);
  }

  template <class Container>
  void Fill(Container& bytes) {
    static_assert(sizeof(typename Container::value_type) == 1);
    if (Holds(static_cast<std::int64_t>(bytes.size()))) {
      std::memcpy(bytes.data(), block_.data() + (place_ - blockBegin_), bytes.size());
      place_ += static_cast<std::int64_t>(bytes.size());
      return;
    }
    for (auto& byte : bytes) byte = static_cast<typename Container::value_type>(Byte());
  }

  /// Whether something could not be read, which then counts as past the end of the file.
  [[nodiscard]] bool Failed() const { return failed_; }

  /// The next `count` bytes, or as many of them as the file holds.
  [[nodiscard]] std::vector<std::uint8_t> Bytes(std::int64_t count);

 private:
  /// True if the block holds the next `count` bytes.
  [[nodiscard]] bool Holds(std::int64_t count) const {
    return place_ >= blockBegin_ && place_ + count <= blockBegin_ + blockBytes_;
  }
  /// The open stream, or the file opened anew, which `opened` then owns; null if that fails.
  std::FILE* Stream(FileStream& opened) const;
  void ReadBlock();

  std::FILE* stream_ = nullptr;
  std::string path_;
  std::int64_t place_ = 0;
  std::vector<std::uint8_t> block_;
  std::int64_t blockBegin_ = 0;  ///< place of the block's first byte
  std::int64_t blockBytes_ = 0;
  bool failed_ = false;
};

/// One chunk's place in a file.
struct ChunkPlace {
  std::uint32_t identifier = 0;  ///< the four bytes as a little-endian number
  std::int32_t size = 0;         ///< the size field
  std::int64_t body = 0;         ///< where the body begins
};

/// Goes from chunk to chunk by the sizes alone. No pad byte is skipped after an odd size: files
/// with one are not supported, and the writer makes none.
class ChunkWalk {
 public:
  /// @param riffEnd where the form ends; a negative end counts as far away
  explicit ChunkWalk(std::int64_t riffEnd) : riffEnd_(static_cast<std::uint64_t>(riffEnd)) {}

  /// Goes to the next chunk and leaves the reader at its body. False at the end of the form or of
  /// the file, and at a size with its top bit set.
  [[nodiscard]] bool Next(HeaderReader& reader, ChunkPlace& chunk);

  /// Where the next chunk begins.
  [[nodiscard]] std::int64_t Place() const { return next_; }
  /// Goes on from a place that an earlier walk over this file had reached.
  void GoOnFrom(std::int64_t place) { next_ = place; }

 private:
  static constexpr std::int64_t kFirstChunk = 12;  // after "RIFF", the size and "WAVE"

  std::uint64_t riffEnd_;
  std::int64_t next_ = kFirstChunk;
};

// Chunk identifiers as little-endian numbers (RIFF).
inline constexpr std::uint32_t kRiffId = 0x46464952;
inline constexpr std::uint32_t kWaveId = 0x45564157;
inline constexpr std::uint32_t kFmtId = 0x20746D66;
inline constexpr std::uint32_t kDataId = 0x61746164;
inline constexpr std::uint32_t kBextId = 0x74786562;

/// True for a chunk that AES31BWF does not understand and keeps for whoever asks.
constexpr bool IsKeptChunk(std::uint32_t identifier) {
  return identifier != kFmtId && identifier != kDataId && identifier != kBextId;
}

}  // namespace velmora
