#include "Media/WaveHeader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <utility>

#include "BWF/ChunkWalk.h"
#include "Base/FileAccess.h"

namespace velmora::media {
namespace {

// Chunk identifiers as little-endian numbers, beside those of ChunkWalk.h.
constexpr std::uint32_t kRf64Id = 0x34364652;
constexpr std::uint32_t kBw64Id = 0x34365742;
constexpr std::uint32_t kDs64Id = 0x34367364;
constexpr std::uint32_t kIxmlId = 0x4C4D5869;
constexpr std::uint32_t kJunkId = 0x4B4E554A;
constexpr std::uint32_t kSmallJunkId = 0x6B6E756A;

constexpr std::uint16_t kTagExtensible = 0xFFFE;
constexpr std::uint32_t kSizeInDs64 = 0xFFFFFFFF;  // EBU Tech 3306: the true size stands in ds64
constexpr std::int64_t kFirstChunk = 12;
constexpr std::int64_t kHeadBytes = 8;
constexpr int kMostChunks = 4096;  // a file of millions of tiny chunks costs no more than this

struct Chunk {
  std::uint32_t identifier = 0;
  std::int64_t size = 0;
  std::int64_t body = 0;
};

/// Identifiers are four printable ASCII characters (RIFF).
bool IsIdentifier(std::uint32_t identifier) {
  for (int i = 0; i < 4; ++i, identifier >>= 8) {
    if ((identifier & 0xFF) < 0x20 || (identifier & 0xFF) > 0x7E) return false;
  }
  return true;
}

class Walk {
 public:
  explicit Walk(std::FILE* stream)
      : reader_(stream), fileBytes_(FileSize(stream)), sizeFailed_(fileBytes_ < 0) {}

  [[nodiscard]] bool Failed() const { return sizeFailed_ || reader_.Failed(); }

  std::optional<WaveHeader> Read() {
    const auto form = reader_.LittleEndian<std::uint32_t>();
    if (form != kRiffId && form != kRf64Id && form != kBw64Id) return std::nullopt;
    header_.longForm = form != kRiffId;
    const std::int64_t end = kHeadBytes + std::int64_t{reader_.LittleEndian<std::uint32_t>()};
    if (reader_.LittleEndian<std::uint32_t>() != kWaveId) return std::nullopt;
    Chunk chunk;
    std::int64_t place = kFirstChunk;
    for (int i = 0; i < kMostChunks && ChunkAt(place, chunk); ++i) {
      isRegular_ = isRegular_ && IsRegular(chunk);
      Take(chunk);
      place = PlaceAfter(chunk);
    }
    const bool isWhole = header_.hasData && place == end && end == fileBytes_;
    header_.isRegular = isRegular_ && !header_.longForm && isWhole;
    return header_;
  }

 private:
  std::uint32_t IdentifierAt(std::int64_t place) {
    reader_.GoTo(place);
    return reader_.LittleEndian<std::uint32_t>();
  }

  bool ChunkAt(std::int64_t place, Chunk& chunk) {
    if (place > fileBytes_ - kHeadBytes) return false;
    chunk.identifier = IdentifierAt(place);
    const auto size = reader_.LittleEndian<std::uint32_t>();
    chunk.size = size;
    chunk.body = place + kHeadBytes;
    const bool isData = chunk.identifier == kDataId;
    if (isData && header_.longForm && size == kSizeInDs64) chunk.size = dataBytesOfDs64_;
    return IsIdentifier(chunk.identifier);
  }

  /// After an odd size a pad byte belongs (RIFF), which some writers leave out.
  std::int64_t PlaceAfter(const Chunk& chunk) {
    const std::int64_t end =
        chunk.size > fileBytes_ - chunk.body ? fileBytes_ : chunk.body + chunk.size;
    if (chunk.size % 2 == 0) return end;
    const bool padded = end + 1 > fileBytes_ - kHeadBytes || IsIdentifier(IdentifierAt(end + 1));
    return padded || !IsIdentifier(IdentifierAt(end)) ? end + 1 : end;
  }

  /// Whether every reader takes this chunk, after those before it, for the same.
  [[nodiscard]] bool IsRegular(const Chunk& chunk) const {
    constexpr std::int64_t kFormatBytes = 16;
    constexpr std::int64_t kBextBytes = 602;  // EBU Tech 3285, without a history
    if (chunk.size % 2 != 0 || chunk.size > fileBytes_ - chunk.body) return false;
    switch (chunk.identifier) {
      case kFmtId:
        return chunk.size == kFormatBytes && !header_.hasFormat;
      case kDataId:
        return header_.hasFormat && !header_.hasData;
      case kBextId:
        return chunk.size >= kBextBytes && !header_.bext;
      default:
        return chunk.identifier == kIxmlId || chunk.identifier == kJunkId ||
               chunk.identifier == kSmallJunkId;
    }
  }

  void Take(const Chunk& chunk) {
    reader_.GoTo(chunk.body);
    if (chunk.identifier == kFmtId) {
      TakeFormat(chunk);
    } else if (chunk.identifier == kDs64Id && header_.longForm) {
      reader_.GoTo(chunk.body + 8);
      dataBytesOfDs64_ = Number64();
    } else if (chunk.identifier == kBextId) {
      TakeBext(chunk);
    } else if (chunk.identifier == kDataId && !header_.hasData) {
      header_.hasData = true;
      header_.dataPlace = chunk.body;
      header_.claimedDataBytes = chunk.size;
      header_.dataBytes = std::min(chunk.size, fileBytes_ - chunk.body);
    }
  }

  void TakeFormat(const Chunk& chunk) {
    constexpr std::int64_t kShortestBytes = 14;  // without the bits of a sample
    constexpr std::int64_t kExtensibleBytes = 40;
    if (chunk.size < kShortestBytes || header_.hasFormat) return;
    header_.hasFormat = true;
    header_.formatTag = reader_.LittleEndian<std::uint16_t>();
    header_.channels = reader_.LittleEndian<std::uint16_t>();
    header_.sampleRate = reader_.LittleEndian<std::uint32_t>();
    reader_.GoTo(chunk.body + 12);
    header_.blockAlign = reader_.LittleEndian<std::uint16_t>();
    if (chunk.size > kShortestBytes) header_.bits = reader_.LittleEndian<std::uint16_t>();
    if (header_.bits == 0) {
      header_.bits = static_cast<std::uint16_t>(8 * header_.ContainerBytes());
      isRegular_ = false;
    }
    if (header_.formatTag != kTagExtensible) return;
    header_.extensible = true;
    if (chunk.size < kExtensibleBytes) return;
    reader_.GoTo(chunk.body + 18);
    const auto validBits = reader_.LittleEndian<std::uint16_t>();
    if (validBits > 0 && validBits < header_.bits) header_.bits = validBits;
    reader_.GoTo(chunk.body + 24);
    header_.formatTag = reader_.LittleEndian<std::uint16_t>();
  }

  void TakeBext(const Chunk& chunk) {
    constexpr std::int64_t kReferencePlace = 256 + 32;
    constexpr std::int64_t kTimePlace = 256 + 32 + 32 + 10 + 8;
    BextFacts bext;
    bext.place = chunk.body;
    bext.size = std::min(chunk.size, fileBytes_ - chunk.body);
    if (bext.size < kTimePlace + 8) return;
    std::array<char, 32> reference{};
    reader_.GoTo(chunk.body + kReferencePlace);
    reader_.Fill(reference);
    bext.originatorReference.assign(reference.begin(),
                                    std::find(reference.begin(), reference.end(), '\0'));
    reader_.GoTo(chunk.body + kTimePlace);
    bext.timeReference = Number64();
    header_.bext = bext;
  }

  /// What no position can reach counts as the last one.
  std::int64_t Number64() {
    const std::uint64_t low = reader_.LittleEndian<std::uint32_t>();
    const std::uint64_t high = reader_.LittleEndian<std::uint32_t>();
    constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(std::min(low | (high << 32), kMost));
  }

  HeaderReader reader_;
  std::int64_t fileBytes_;
  bool sizeFailed_;
  bool isRegular_ = true;
  std::int64_t dataBytesOfDs64_ = std::numeric_limits<std::int64_t>::max();
  WaveHeader header_;
};

}  // namespace

HeaderOrFailure TryReadWaveHeader(std::FILE* stream) {
  HeaderOrFailure result;
  // A read may fail in passing.
  for (int look = 0; look == 0 || (look == 1 && result.readFailed); ++look) {
    Walk walk(stream);
    result.header = walk.Read();
    result.readFailed = walk.Failed();
  }
  return result;
}

std::optional<WaveHeader> ReadWaveHeader(std::FILE* stream) {
  HeaderOrFailure result = TryReadWaveHeader(stream);
  return result.readFailed ? std::nullopt : std::move(result.header);
}

std::optional<std::vector<std::uint8_t>> ReadBext(std::FILE* stream, const BextFacts& bext,
                                                  std::int64_t limit) {
  std::vector<std::uint8_t> body(static_cast<std::size_t>(std::min(bext.size, limit)));
  const std::size_t got = ReadAt(stream, bext.place, body.data(), body.size());
  if (got < body.size() && errno != 0) return std::nullopt;
  body.resize(got);
  return body;
}

}  // namespace velmora::media
