// The reading side of AES31BWF: header, chunks, single samples.

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>
#include <utility>

#include "BWF/AES31BWF.h"
#include "BWF/ChunkWalk.h"
#include "BWF/SampleCodec.h"

namespace velmora {
namespace {

constexpr std::int32_t kBextFixedBytes = 602;  // EBU Tech 3285

/// The text at the reader's place, up to its first NUL or to the end of its `size` bytes. Whoever
/// reads the text sees no more of it, and a chunk may claim gigabytes. It is read in blocks: zeros
/// that fill up a chunk of common size all stay.
std::string TextAt(HeaderReader& reader, std::int64_t size) {
  constexpr std::int64_t kBlockBytes = 4096;
  std::string text;
  while (size > 0) {
    const std::vector<std::uint8_t> block = reader.Bytes(std::min(size, kBlockBytes));
    text.append(block.begin(), block.end());
    if (block.empty() || std::find(block.begin(), block.end(), 0) != block.end()) break;
    size -= kBlockBytes;
  }
  return text;
}

}  // namespace

AES31BWF::AES31BWF(const char* filePath) : AES31BWF(filePath, OpenRegularFile(filePath)) {}

AES31BWF::AES31BWF(std::string filePath, FileStream open) : path(std::move(filePath)) {
  stream = std::move(open);
  if (stream == nullptr) return;
  bool valid = false;
  try {
    valid = Parse();
  } catch (const std::bad_alloc&) {
    bext.codingHistory = nullptr;
  }
  stream.reset();
  if (!valid) hasData = hasFormat = hasBext = false;
}

bool AES31BWF::Parse() {
  HeaderReader reader(stream.get());
  if (reader.LittleEndian<std::uint32_t>() != kRiffId) return false;
  riffEnd = std::int64_t{reader.LittleEndian<std::int32_t>()} + 8;
  if (reader.LittleEndian<std::uint32_t>() != kWaveId) return false;
  WalkChunks(reader);
  // What a read error left of the header may be of any format.
  if (reader.Failed()) return false;
  if (!hasData || !hasFormat || format.blockAlign == 0 || format.channels == 0) return false;
  frames = dataSize_ / format.blockAlign;
  return true;
}

void AES31BWF::WalkChunks(HeaderReader& reader) {
  ChunkWalk walk(riffEnd);
  ChunkPlace chunk;
  ChunkPlace lastBext;
  std::size_t kept = 0;
  while (walk.Next(reader, chunk)) {
    if (chunk.identifier == kFmtId) {
      ReadFormatChunk(reader);
    } else if (chunk.identifier == kDataId) {
      dataOffset = chunk.body;
      dataSize_ = static_cast<std::uint32_t>(chunk.size);
      hasData = true;
    } else if (chunk.identifier == kBextId) {
      hasBext = true;
      lastBext = chunk;
    } else {
      ++kept;
    }
  }
  chunks.Reset(path, riffEnd, kept);
  // Only the last one counts. Each takes far more bytes than its size field may say, so a file of
  // many would cost a hundred times its length if all were read.
  if (hasBext) ReadBextChunk(reader, lastBext);
}

void AES31BWF::ReadFormatChunk(HeaderReader& reader) {
  format.formatTag = reader.LittleEndian<std::uint16_t>();
  format.channels = reader.LittleEndian<std::uint16_t>();
  format.samplesPerSec = reader.LittleEndian<std::uint32_t>();
  format.avgBytesPerSec = reader.LittleEndian<std::uint32_t>();
  format.blockAlign = reader.LittleEndian<std::uint16_t>();
  if (format.formatTag == kIntegerPcm) format.bitsPerSample = reader.LittleEndian<std::uint16_t>();
  // A later fmt chunk may still mend a channel count of 0, so it is judged when all are read.
  bytesPerSample = format.channels != 0 ? format.blockAlign / format.channels : 0;
  hasFormat = true;
}

void AES31BWF::ReadBextChunk(HeaderReader& reader, const ChunkPlace& chunk) {
  reader.GoTo(chunk.body);
  reader.Fill(bext.description);
  reader.Fill(bext.originator);
  reader.Fill(bext.originatorReference);
  reader.Fill(bext.originationDate);
  reader.Fill(bext.originationTime);
  bext.timeReferenceLow = reader.LittleEndian<std::uint32_t>();
  bext.timeReferenceHigh = reader.LittleEndian<std::uint32_t>();
  bext.version = reader.LittleEndian<std::uint16_t>();
  reader.Fill(bext.umidAndReserved);
  if (chunk.size > kBextFixedBytes) {
    codingHistory_ = TextAt(reader, chunk.size - kBextFixedBytes);
    bext.codingHistory = codingHistory_.c_str();
  }
}

AES31BWF::~AES31BWF() {
  AES31BWF::CloseFile();
}

void AES31BWF::OpenAtData() {
  if (stream == nullptr) {
    stream = OpenRegularFile(path.c_str());
    if (stream == nullptr) {
      readError_ = errno;
      return;
    }
    position = dataOffset;
  }
  if (!SeekTo(dataOffset)) CloseFile();
}

bool AES31BWF::SeekTo(std::int64_t place) {
  if (fseeko(stream.get(), place, SEEK_SET) == 0) return true;
  readError_ = errno;
  return false;
}

int AES31BWF::TakeReadError() {
  return std::exchange(readError_, 0);
}

bool AES31BWF::LogTakenReadError() {
  const int error = TakeReadError();
  if (error != 0) LogReadError(path.c_str(), error);
  return error != 0;
}

void AES31BWF::DisableCache() {
  DisableFileCache(stream.get());
}

float AES31BWF::GetSampleAt(std::int32_t frame, std::uint32_t channel) {
  if (stream == nullptr) OpenAtData();
  if (stream == nullptr || !IsValid() || format.formatTag != kIntegerPcm || frame < 0 ||
      channel >= format.channels || static_cast<std::uint64_t>(frame) >= frames) {
    return 0.0F;
  }
  const auto frameOffset = static_cast<std::int32_t>(static_cast<std::uint32_t>(frame) *
                                                     std::uint32_t{format.blockAlign});
  const std::int64_t offset = dataOffset + frameOffset + std::int64_t{channel} * bytesPerSample;
  // The seek leaves `position` as it was, on purpose: reads in order from the first sample run
  // without seeks, and after one seek every later read seeks again, except where its offset happens
  // to equal the stale position. There the stream is read where it stands. Fades and crossfades
  // made so far came out that way, and must come out the same again.
  const float value = offset == position || SeekTo(offset) ? ReadSample() : 0.0F;
  position += bytesPerSample;
  return value;
}

float AES31BWF::ReadSample() {
  std::uint32_t leftJustified = 0;
  bool isWhole = true;
  for (std::uint32_t i = 0; stream != nullptr && i < format.bitsPerSample / 8U; ++i) {
    const int byte = std::getc(stream.get());
    isWhole = isWhole && byte != EOF;
    // A byte past the end of the file is all ones.
    leftJustified = AddSampleByte(leftJustified, static_cast<std::uint8_t>(byte));
  }
  if (!isWhole && std::ferror(stream.get()) != 0) readError_ = errno != 0 ? errno : EIO;
  return SampleFromLeftJustified(leftJustified);
}

std::uint32_t AES31BWF::GetChannels() {
  return format.channels;
}

std::int32_t AES31BWF::GetFrames() {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(frames));
}

std::uint32_t AES31BWF::GetSampleRate() {
  return format.samplesPerSec;
}

std::uint32_t AES31BWF::GetBitsPerSample() {
  return format.bitsPerSample;
}

const char* AES31BWF::GetPath() {
  return path.c_str();
}

BwfChunk* AES31BWF::GetChunk(std::int32_t index) {
  return chunks.At(index);
}

std::size_t AES31BWF::GetChunkCount() {
  return chunks.size();
}

BwfFormat* AES31BWF::GetFormat() {
  return &format;
}

BwfBext* AES31BWF::GetBext() {
  return hasBext ? &bext : nullptr;
}

bool AES31BWF::IsValid() {
  return hasData && hasFormat;
}

}  // namespace velmora
