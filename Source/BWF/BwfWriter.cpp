// The writing side of AES31BWF: the new file with its fixed header, and single samples.

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <new>
#include <string>
#include <string_view>

#include "BWF/AES31BWF.h"
#include "BWF/ChunkWalk.h"
#include "BWF/OutputFile.h"
#include "BWF/SampleCodec.h"
#include "BWF/SampleKernels.h"
#include "Base/Wrapping.h"

namespace velmora {
namespace {

/// The body of the bext chunk is the cleared record as this machine lays it out, so it is longer
/// than the published 602 bytes. Readers take the bytes after those for an empty coding history.
constexpr std::uint32_t kBextBodyBytes = sizeof(BwfBext);
static_assert(kBextBodyBytes == (sizeof(void*) == 8 ? 616 : 608));

constexpr std::uint32_t kFmtBodyBytes = 16;
constexpr std::uint32_t kChunkHeadBytes = 8;
/// What the RIFF size counts beside the samples: the form type and three chunks.
constexpr std::uint32_t kRiffOverhead =
    4 + kChunkHeadBytes + kBextBodyBytes + kChunkHeadBytes + kFmtBodyBytes + kChunkHeadBytes;

class HeaderBytes {
 public:
  explicit HeaderBytes(std::size_t count) { bytes_.reserve(count); }
  void Code(std::string_view fourCharacters) { bytes_ += fourCharacters; }
  void Zeros(std::size_t count) { bytes_.append(count, '\0'); }
  void U16(std::uint32_t value) { Number(value, 2); }
  void U32(std::uint32_t value) { Number(value, 4); }
  const std::string& Bytes() const { return bytes_; }

 private:
  void Number(std::uint32_t value, int byteCount) {
    for (int i = 0; i < byteCount; ++i) {
      bytes_ += static_cast<char>(value >> (8 * i) & 0xFF);
    }
  }
  std::string bytes_;
};

/// All sizes are final: they come from the declared frames, and closing the file patches nothing.
std::string HeaderOf(const BwfFormat& format, std::uint32_t dataSize) {
  HeaderBytes header(kRiffOverhead + kChunkHeadBytes);
  header.Code("RIFF");
  header.U32(dataSize + kRiffOverhead);
  header.Code("WAVE");
  header.Code("bext");
  header.U32(kBextBodyBytes);
  header.Zeros(kBextBodyBytes);
  header.Code("fmt ");
  header.U32(kFmtBodyBytes);
  header.U16(format.formatTag);
  header.U16(format.channels);
  header.U32(format.samplesPerSec);
  header.U32(format.avgBytesPerSec);
  header.U16(format.blockAlign);
  header.U16(format.bitsPerSample);
  header.Code("data");
  header.U32(dataSize);
  return header.Bytes();
}

}  // namespace

AES31BWF::AES31BWF(const char* filePath, std::uint32_t sampleRate, std::uint32_t channels,
                   std::int32_t bitDepth, std::int32_t frameCount)
    : path(filePath) {
  DeclareFrames(sampleRate, channels, bitDepth, frameCount);
  NamedFile file(filePath);
  CreateIn(file);
}

AES31BWF::AES31BWF(OutputFile& file, std::uint32_t sampleRate, std::uint32_t channels,
                   std::int32_t bitDepth, std::int32_t frameCount) {
  DeclareFrames(sampleRate, channels, bitDepth, frameCount);
  CreateIn(file);
}

void AES31BWF::DeclareFrames(std::uint32_t sampleRate, std::uint32_t channels,
                             std::int32_t bitDepth, std::int32_t frameCount) {
  bytesPerSample = bitDepth / 8;
  const std::uint32_t frameBytes = static_cast<std::uint32_t>(bytesPerSample) * channels;
  frames = static_cast<std::uint64_t>(frameCount);
  format.formatTag = kIntegerPcm;
  format.channels = static_cast<std::uint16_t>(channels);
  format.samplesPerSec = sampleRate;
  format.avgBytesPerSec = sampleRate * frameBytes;
  format.blockAlign = static_cast<std::uint16_t>(frameBytes);
  format.bitsPerSample = static_cast<std::uint16_t>(bitDepth);
  dataSize_ = static_cast<std::uint32_t>(frameCount) * frameBytes;
}

void AES31BWF::CreateIn(OutputFile& file) {
  const std::string header = HeaderOf(format, dataSize_);
  stream = file.Create();
  path = file.Path();
  if (stream == nullptr) return;
  writes_ = true;
  CollectIfSmall(header.size() + dataSize_);
  hasBext = hasFormat = hasData = true;
  dataOffset = static_cast<std::int64_t>(header.size());
  WriteBytes(header.data(), header.size());
}

void AES31BWF::CollectIfSmall(std::size_t bytes) {
  constexpr std::size_t kSmallBytes = std::size_t{64} << 10;
  if (bytes > kSmallBytes) return;
  collected_.reset(new (std::nothrow) char[bytes]);
  if (collected_ != nullptr) std::setvbuf(stream.get(), collected_.get(), _IOFBF, bytes);
}

bool AES31BWF::WriteBytes(const void* bytes, std::size_t count) {
  if (writeFailed_ || stream == nullptr) return false;
  if (std::fwrite(bytes, 1, count, stream.get()) == count) return true;
  NoteWriteError();
  return false;
}

bool AES31BWF::Flush() {
  if (!writeFailed_ && stream != nullptr && std::fflush(stream.get()) != 0) NoteWriteError();
  return !writeFailed_;
}

/// Once for each instance: a full disk refuses every sample.
void AES31BWF::NoteWriteError() {
  if (writeFailed_) return;
  writeFailed_ = true;
  LogWriteError(path.c_str(), errno);
}

void AES31BWF::CloseFile() {
  if (stream == nullptr) return;
  // What was read is there, whatever comes of closing.
  if (std::fclose(stream.release()) != 0 && writes_) NoteWriteError();
  writes_ = false;
  collected_.reset();
}

void AES31BWF::WriteSample(float value) {
  if (format.bitsPerSample == 0) return;
  const std::size_t count = (format.bitsPerSample - 1U) / 8 + 1;
  const float scaled = value * FullScale(format.bitsPerSample);
  std::uint8_t bytes[8] = {};
  EncodeSample(Truncate<std::int32_t>(scaled), bytes, sizeof bytes);
  const std::size_t atOnce = std::min(count, sizeof bytes);
  WriteBytes(bytes, atOnce);
  for (std::size_t i = atOnce; i < count; ++i) WriteBytes(&bytes[sizeof bytes - 1], 1);
}

void AES31BWF::WriteSamples(const float* values, std::size_t count) {
  const std::size_t sampleBytes = format.bitsPerSample / 8U;
  std::array<std::uint8_t, std::size_t{3} << 15> bytes;
  if (format.bitsPerSample % 8 != 0 || sampleBytes == 0 || sampleBytes > sizeof(float)) {
    for (std::size_t i = 0; i < count; ++i) WriteSample(values[i]);
    return;
  }
  const std::size_t most = bytes.size() / sampleBytes;
  while (count > 0) {
    const std::size_t n = std::min(count, most);
    FastestKernels().encode(values, FullScale(format.bitsPerSample), bytes.data(), sampleBytes, n);
    if (!WriteBytes(bytes.data(), n * sampleBytes)) return;
    values += n;
    count -= n;
  }
}

}  // namespace velmora
