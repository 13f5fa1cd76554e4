// Whole files: copies, depth conversion, gain.

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <utility>

#include "BWF/AES31BWF.h"
#include "BWF/BlocksAhead.h"
#include "BWF/OutputFile.h"
#include "BWF/SampleConversion.h"
#include "BWF/StreamCopy.h"
#include "Base/SystemLog.h"
#include "Base/Wrapping.h"

namespace velmora {
namespace {

constexpr std::size_t kCopyBlockBytes = std::size_t{1} << 20;
/// Large blocks cost fewer calls to the system and let it keep a file in fewer, larger pieces: in
/// processor time a gain took 1.3 times as long with a quarter of this, and no less with more.
constexpr std::size_t kBlockSamples = std::size_t{1} << 18;
/// Depths that no real file has must not make the buffers grow with them.
constexpr std::size_t kLargestBufferBytes = std::size_t{1} << 20;

using Bytes = std::unique_ptr<std::uint8_t[]>;

Bytes Allocate(std::size_t count) {
  return Bytes(new (std::nothrow) std::uint8_t[count]);
}

/// Single samples in one block, of `all`: blocks cut across frames without harm.
std::size_t BlockSamples(std::size_t sourceBytes, std::size_t targetBytes, std::uint64_t all) {
  const std::size_t largest = std::max({sourceBytes, targetBytes, std::size_t{1}});
  const std::size_t most = std::min(kBlockSamples, kLargestBufferBytes / largest);
  return static_cast<std::size_t>(std::min<std::uint64_t>(most, all));
}

/// Blocks from a stream; what the file lacks is 0. A header can claim a million times more than its
/// file has, so bytes that are 0 already are not written again.
class PaddedBlock {
 public:
  explicit PaddedBlock(std::size_t size) : bytes_(Allocate(size)) {}

  /// Null without memory.
  [[nodiscard]] const std::uint8_t* Bytes() const { return bytes_.get(); }
  /// Reads so many bytes, at most the block's. Answers the errno of a read error.
  int Read(std::FILE* stream, std::size_t count) {
    errno = 0;
    const std::size_t got = std::fread(bytes_.get(), 1, count, stream);
    const int error = errno;
    if (got > 0) cleared_ = 0;
    if (cleared_ < count) std::memset(bytes_.get() + got, 0, count - got);
    if (got == 0) cleared_ = std::max(cleared_, count);
    if (std::ferror(stream) == 0) return 0;
    return error != 0 ? error : EIO;
  }

 private:
  const std::unique_ptr<std::uint8_t[]> bytes_;
  std::size_t cleared_ = 0;  ///< so many of the first bytes are 0
};

}  // namespace

std::int32_t AES31BWF::ConvertInto(AES31BWF* target, bool applyGain, double gain) {
  const SampleConversion conversion(format.bitsPerSample, target->format.bitsPerSample,
                                    applyGain ? &gain : nullptr);
  // A declared count below 0 has no samples, and a target without bytes takes none.
  const bool hasSamples = static_cast<std::int64_t>(frames) > 0 && conversion.TargetBytes() > 0;
  const std::uint64_t all = hasSamples ? frames * format.channels : 0;
  const std::size_t blockSamples =
      BlockSamples(conversion.SourceBytes(), conversion.TargetBytes(), all);
  PaddedBlock source(blockSamples * conversion.SourceBytes());
  const Bytes converted = Allocate(blockSamples * conversion.TargetBytes());
  if (source.Bytes() == nullptr || converted == nullptr) return 1;
  if (stream == nullptr || target->stream == nullptr) return 2;

  const auto blocks = static_cast<std::size_t>(all == 0 ? 0 : (all - 1) / blockSamples + 1);
  const auto samplesOf = [&](std::size_t number) {
    const std::uint64_t left = all - std::uint64_t{number} * blockSamples;
    return static_cast<std::size_t>(std::min<std::uint64_t>(blockSamples, left));
  };
  int readError = 0;
  const auto make = [&](std::size_t number, std::uint8_t* block) {
    const std::size_t count = samplesOf(number);
    readError = source.Read(stream.get(), count * conversion.SourceBytes());
    if (readError != 0) return false;
    conversion.Convert(source.Bytes(), block, count);
    return true;
  };
  const std::unique_ptr<BlocksAhead> ahead =
      BlocksAhead::Start(blocks, blockSamples * conversion.TargetBytes(), std::ref(make));
  for (std::size_t number = 0; number < blocks; ++number) {
    const std::uint8_t* const block = ahead != nullptr                ? ahead->Next()
                                      : make(number, converted.get()) ? converted.get()
                                                                      : nullptr;
    if (block == nullptr) {
      LogReadError(path.c_str(), readError);
      return 2;
    }
    if (!target->WriteBytes(block, samplesOf(number) * conversion.TargetBytes())) return 2;
  }
  return target->Flush() ? 0 : 2;
}

std::int32_t AES31BWF::CopyTo(const char* targetPath, std::int32_t bitDepth) {
  if (!IsValid()) return CopyNotValid;
  NamedFile named(targetPath);
  OutputFile& file = handed_ != nullptr ? *handed_ : named;
  const bool sameDepth = bitDepth == -1 || bitDepth == format.bitsPerSample;
  return sameDepth ? CopyBytes(file) : CopyConverted(file, bitDepth);
}

std::int32_t AES31BWF::CopyInto(OutputFile& file, std::int32_t bitDepth) {
  struct Handed {
    OutputFile*& place;
    ~Handed() { place = nullptr; }
  } handed{handed_};
  handed_ = &file;
  return CopyTo(file.Path().c_str(), bitDepth);
}

/// The file as it stands, up to the end of its RIFF form. A form that ends before the file's begin
/// leaves an empty target.
std::int32_t AES31BWF::CopyBytes(OutputFile& file) {
  FileStream target = file.Create();
  if (target == nullptr) return CopyTargetNotCreated;
  OpenAtData();
  const bool copied = stream != nullptr && riffEnd >= 0 &&
                      CopyStream(stream.get(), path.c_str(), std::move(target),
                                 static_cast<std::uint64_t>(riffEnd), file);
  if (stream == nullptr) LogTakenReadError();
  CloseFile();
  return copied ? CopyDone : CopyFailed;
}

/// The audio alone, in a new file of the other depth. A header can claim far more samples than its
/// file has bytes, and a deeper file is longer than its source: what no reader would take is not
/// begun.
std::int32_t AES31BWF::CopyConverted(OutputFile& file, std::int32_t bitDepth) {
  const std::uint64_t frameBytes =
      std::uint64_t{format.channels} * std::max(static_cast<std::uint16_t>(bitDepth) / 8U, 1U);
  const bool tooLong =
      frames > std::uint64_t{kMostAudioBytes} / std::max<std::uint64_t>(frameBytes, 1);
  if (tooLong || frameBytes > kMostFrameBytes) {
    const char* const why = tooLong
                                ? "its audio would not fit into the 2 GiB that a wave file can have"
                                : kFramesTooLarge;
    SystemLog(file.Path() + ": not made, for " + why + ": " + path);
    return CopyFailed;
  }
  OpenAtData();
  if (stream == nullptr) {  // before a file is made in vain
    LogTakenReadError();
    return CopyFailed;
  }
  AES31BWF target(file, GetSampleRate(), GetChannels(), bitDepth, GetFrames());
  if (!target.IsValid()) {
    CloseFile();
    return CopyTargetNotCreated;
  }
  DisableCache();
  target.DisableCache();
  const std::int32_t status = ConvertInto(&target, false, 0.0);
  CloseFile();
  if (target.Flush() || FileSize(target.stream.get()) > 0) file.Keep();
  target.CloseFile();
  return status == 0 && !target.WriteFailed() ? CopyDone : CopyFailed;
}

bool AES31BWF::CopyFrames(AES31BWF* source, std::int64_t firstFrame) {
  if (stream == nullptr) OpenAtData();
  if (source->stream == nullptr) source->OpenAtData();
  if (stream == nullptr || source->stream == nullptr) return false;
  if (source->GetChannels() != GetChannels() || source->GetSampleRate() != GetSampleRate() ||
      source->GetBitsPerSample() != GetBitsPerSample()) {
    return false;
  }
  const std::int64_t offset = WrapAdd(
      WrapMultiply<std::int64_t>(firstFrame, source->format.blockAlign), source->dataOffset);
  if (fseeko(source->stream.get(), offset, SEEK_SET) != 0) return false;
  source->position = offset;

  PaddedBlock block(kCopyBlockBytes);
  if (block.Bytes() == nullptr) return false;
  std::uint64_t left = static_cast<std::int64_t>(frames) > 0 ? frames * format.blockAlign : 0;
  while (left > 0) {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left, kCopyBlockBytes));
    if (const int error = block.Read(source->stream.get(), count); error != 0) {
      LogReadError(source->path.c_str(), error);
      return false;
    }
    if (!WriteBytes(block.Bytes(), count)) return false;
    left -= count;
  }
  return Flush();
}

}  // namespace velmora
