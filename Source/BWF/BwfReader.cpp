// The reading side of AES31BWF: header, chunks, single samples.

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "BWF/AES31BWF.h"
#include "BWF/SampleCodec.h"

namespace velmora {
namespace {

// Chunk identifiers as little-endian numbers (RIFF).
constexpr std::uint32_t kRiff = 0x46464952;
constexpr std::uint32_t kWave = 0x45564157;
constexpr std::uint32_t kFmt = 0x20746D66;
constexpr std::uint32_t kData = 0x61746164;
constexpr std::uint32_t kBext = 0x74786562;

constexpr std::int32_t kBextFixedBytes = 602;  // EBU Tech 3285

/// A byte of a header; past the end of the file all ones.
std::uint8_t ReadByte(std::FILE* stream) {
  return static_cast<std::uint8_t>(std::getc(stream));
}

template <class Number>
Number ReadNumber(std::FILE* stream) {
  std::uint32_t value = 0;
  for (unsigned i = 0; i < sizeof(Number); ++i) {
    value |= static_cast<std::uint32_t>(ReadByte(stream)) << (8 * i);
  }
  return static_cast<Number>(value);
}

template <class Bytes>
void ReadBytes(std::FILE* stream, Bytes& bytes) {
  for (auto& byte : bytes) byte = static_cast<typename Bytes::value_type>(ReadByte(stream));
}

/// A chunk's body, as much of it as the file holds.
template <class Container>
Container ReadBody(std::FILE* stream, std::int64_t size, std::int64_t bytesLeft) {
  Container body(static_cast<std::size_t>(std::clamp<std::int64_t>(bytesLeft, 0, size)), 0);
  body.resize(std::fread(body.data(), 1, body.size(), stream));
  return body;
}

}  // namespace

AES31BWF::AES31BWF(const char* filePath) : path(filePath) {
  stream = OpenRegularFile(filePath);
  if (stream == nullptr) return;
  bool valid = false;
  try {
    valid = Parse();
  } catch (const std::bad_alloc&) {
    chunks.clear();
  }
  stream.reset();
  if (!valid) hasData = hasFormat = hasBext = false;
}

bool AES31BWF::Parse() {
  if (ReadNumber<std::uint32_t>(stream.get()) != kRiff) return false;
  riffEnd = std::int64_t{ReadNumber<std::int32_t>(stream.get())} + 8;
  if (ReadNumber<std::uint32_t>(stream.get()) != kWave) return false;
  WalkChunks();
  if (!hasData || !hasFormat || format.blockAlign == 0 || format.channels == 0) return false;
  frames = dataSize_ / format.blockAlign;
  return true;
}

/// Goes from chunk to chunk by the sizes alone. No pad byte is skipped behind an odd size: files
/// with one are not supported, and the writer makes none.
void AES31BWF::WalkChunks() {
  const std::int64_t fileSize = FileSize(stream.get());
  for (;;) {
    const auto identifier = ReadNumber<std::uint32_t>(stream.get());
    const auto size = ReadNumber<std::int32_t>(stream.get());
    const std::int64_t body = ftello(stream.get());
    // The end of the file reads as a negative size. A negative riffEnd counts as far away.
    if (size < 0 || static_cast<std::uint64_t>(body) >= static_cast<std::uint64_t>(riffEnd)) return;
    if (identifier == kFmt) {
      ReadFormatChunk();
    } else if (identifier == kData) {
      dataOffset = body;
      dataSize_ = static_cast<std::uint32_t>(size);
      hasData = true;
    } else if (identifier == kBext) {
      ReadBextChunk(size, fileSize - body);
    } else {
      KeepChunk(identifier, size, fileSize - body);
    }
    if (fseeko(stream.get(), body + size, SEEK_SET) != 0) return;
  }
}

void AES31BWF::ReadFormatChunk() {
  format.formatTag = ReadNumber<std::uint16_t>(stream.get());
  format.channels = ReadNumber<std::uint16_t>(stream.get());
  format.samplesPerSec = ReadNumber<std::uint32_t>(stream.get());
  format.avgBytesPerSec = ReadNumber<std::uint32_t>(stream.get());
  format.blockAlign = ReadNumber<std::uint16_t>(stream.get());
  if (format.formatTag == kIntegerPcm) {
    format.bitsPerSample = ReadNumber<std::uint16_t>(stream.get());
  }
  // A later fmt chunk may still mend a channel count of 0, so it is judged when all are read.
  bytesPerSample = format.channels != 0 ? format.blockAlign / format.channels : 0;
  hasFormat = true;
}

void AES31BWF::ReadBextChunk(std::int32_t size, std::int64_t bytesLeft) {
  ReadBytes(stream.get(), bext.description);
  ReadBytes(stream.get(), bext.originator);
  ReadBytes(stream.get(), bext.originatorReference);
  ReadBytes(stream.get(), bext.originationDate);
  ReadBytes(stream.get(), bext.originationTime);
  bext.timeReferenceLow = ReadNumber<std::uint32_t>(stream.get());
  bext.timeReferenceHigh = ReadNumber<std::uint32_t>(stream.get());
  bext.version = ReadNumber<std::uint16_t>(stream.get());
  ReadBytes(stream.get(), bext.umidAndReserved);
  bext.codingHistory = nullptr;
  if (size > kBextFixedBytes) {
    codingHistory_ =
        ReadBody<std::string>(stream.get(), size - kBextFixedBytes, bytesLeft - kBextFixedBytes);
    bext.codingHistory = codingHistory_.c_str();
  }
  hasBext = true;
}

void AES31BWF::KeepChunk(std::uint32_t identifier, std::int32_t size, std::int64_t bytesLeft) {
  BwfChunk chunk;
  chunk.identifier = identifier;
  chunk.data = ReadBody<std::vector<std::uint8_t>>(stream.get(), size, bytesLeft);
  chunk.size = static_cast<std::uint32_t>(chunk.data.size());
  chunks.push_back(std::move(chunk));
}

AES31BWF::~AES31BWF() {
  AES31BWF::CloseFile();
}

void AES31BWF::OpenAtData() {
  if (stream == nullptr) {
    stream = OpenRegularFile(path.c_str());
    if (stream == nullptr) return;
    position = dataOffset;
  }
  fseeko(stream.get(), dataOffset, SEEK_SET);
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
  // to equal the stale position. There the stream is read where it stands, and the files that this
  // has shaped depend on it.
  if (offset != position) fseeko(stream.get(), offset, SEEK_SET);
  const float value = ReadSample();
  position += bytesPerSample;
  return value;
}

float AES31BWF::ReadSample() {
  std::uint32_t leftJustified = 0;
  for (std::uint32_t i = 0; stream != nullptr && i < format.bitsPerSample / 8U; ++i) {
    leftJustified = AddSampleByte(leftJustified, ReadByte(stream.get()));
  }
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
  if (index < 0 || std::cmp_greater_equal(index, chunks.size())) return nullptr;
  return &chunks[static_cast<std::size_t>(index)];
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
