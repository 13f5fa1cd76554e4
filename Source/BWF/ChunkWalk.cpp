#include "BWF/ChunkWalk.h"

#include <algorithm>
#include <cerrno>

namespace velmora {
namespace {

constexpr std::size_t kFirstBlockBytes = 4096;  // all that common headers need
constexpr std::size_t kNextBlockBytes = 16384;  // for whoever goes on without a gap

}  // namespace

std::uint8_t HeaderReader::Byte() {
  if (!Holds(1)) ReadBlock();
  const std::int64_t inBlock = place_++ - blockBegin_;
  return inBlock < blockBytes_ ? block_[static_cast<std::size_t>(inBlock)] : 0xFF;
}

std::FILE* HeaderReader::Stream(FileStream& opened) const {
  if (stream_ != nullptr) return stream_;
  opened = OpenRegularFile(path_.c_str());
  return opened.get();
}

void HeaderReader::ReadBlock() {
  FileStream opened;
  std::FILE* const stream = Stream(opened);
  const bool goesOn = blockBytes_ > 0 && place_ == blockBegin_ + blockBytes_;
  block_.resize(goesOn ? kNextBlockBytes : kFirstBlockBytes);
  blockBegin_ = place_;
  blockBytes_ = 0;
  if (stream == nullptr) return;
  // A block that comes out short is taken as it is: what is missing is read when it is asked for.
  blockBytes_ = static_cast<std::int64_t>(ReadSomeAt(stream, place_, block_.data(), block_.size()));
  failed_ = failed_ || (blockBytes_ == 0 && errno != 0);
}

std::vector<std::uint8_t> HeaderReader::Bytes(std::int64_t count) {
  if (Holds(count)) {
    const std::uint8_t* const begin = block_.data() + (place_ - blockBegin_);
    place_ += count;
    return {begin, begin + count};
  }
  FileStream opened;
  std::FILE* const stream = Stream(opened);
  if (stream == nullptr) return {};
  const std::int64_t held = std::clamp<std::int64_t>(FileSize(stream) - place_, 0, count);
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(held));
  bytes.resize(ReadAt(stream, place_, bytes.data(), bytes.size()));
  place_ += static_cast<std::int64_t>(bytes.size());
  return bytes;
}

bool ChunkWalk::Next(HeaderReader& reader, ChunkPlace& chunk) {
  constexpr std::int64_t kHeadBytes = 8;
  chunk.body = next_ + kHeadBytes;
  if (static_cast<std::uint64_t>(chunk.body) >= riffEnd_) return false;
  reader.GoTo(next_);
  chunk.identifier = reader.LittleEndian<std::uint32_t>();
  chunk.size = reader.LittleEndian<std::int32_t>();
  // The end of the file reads as a negative size too.
  if (chunk.size < 0) return false;
  next_ = chunk.body + chunk.size;
  return true;
}

}  // namespace velmora
