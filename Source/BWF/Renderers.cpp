#include "BWF/Renderers.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "BWF/FrameRun.h"

namespace velmora {
namespace {

bool IsWave(AES31BWF* file) {
  return file != nullptr && file->IsValid();
}

/// Closes a file that is read on every way out of a renderer.
class ClosingSource {
 public:
  /// @param kept where its stream may stay; null for nowhere
  explicit ClosingSource(AES31BWF& file, KeptStreams* kept = nullptr) : file_(file), kept_(kept) {}
  ~ClosingSource() {
    if (kept_ != nullptr) {
      kept_->Close(file_);
    } else {
      file_.CloseFile();
    }
  }
  ClosingSource(const ClosingSource&) = delete;
  ClosingSource& operator=(const ClosingSource&) = delete;

  /// False if frames are wanted and the file has gone since the project was loaded. An open one
  /// keeps its position.
  bool OpenFor(std::int64_t frames) {
    if (file_.stream == nullptr && frames > 0) Open();
    return file_.stream != nullptr || frames <= 0;
  }

 private:
  void Open() {
    if (kept_ != nullptr) {
      kept_->Open(file_);
    } else {
      file_.OpenAtData();
    }
  }

  AES31BWF& file_;
  KeptStreams* kept_;
};

/// A new file in the format of `model`; null if it cannot be created, or if a length from the
/// project is too long for a wave file that can be read back: it would fill a disk with silence.
std::unique_ptr<AES31BWF> CreateLike(AES31BWF& model, OutputFile& file, std::int64_t frames) {
  constexpr std::int64_t kLargestDataBytes = std::numeric_limits<std::int32_t>::max();
  // A sample is written in whole bytes. At least one is counted even where a depth of 0 writes
  // none, or such a file could have any length, and the loop over its frames take as long.
  const std::int64_t sampleBytes = std::max((model.GetBitsPerSample() + 7) / 8, 1U);
  const std::int64_t frameBytes = sampleBytes * std::max(model.GetChannels(), 1U);
  if (frames > kLargestDataBytes / frameBytes) return nullptr;
  auto target = std::make_unique<AES31BWF>(file, model.GetSampleRate(), model.GetChannels(),
                                           static_cast<std::int32_t>(model.GetBitsPerSample()),
                                           static_cast<std::int32_t>(frames));
  if (!target->IsValid()) return nullptr;
  file.Keep();
  return target;
}

/// A piece is rendered in blocks of so many frames.
std::int64_t BlockFrames(std::int64_t length, std::uint32_t channels) {
  constexpr std::int64_t kBlockSamples = 32768;
  const std::int64_t most = std::max<std::int64_t>(kBlockSamples / std::max(channels, 1U), 1);
  return std::clamp<std::int64_t>(length, 0, most);
}

std::vector<float> Block(std::int64_t frames, std::uint32_t channels) {
  return std::vector<float>(static_cast<std::size_t>(frames) * channels);
}

/// Closes what was written; null if there is nothing, or if any of it is missing on disk.
std::unique_ptr<AES31BWF> Finish(std::unique_ptr<AES31BWF> target) {
  if (target == nullptr) return nullptr;
  target->CloseFile();
  if (target->WriteFailed()) return nullptr;
  return target;
}

/// Multiplies frames by factors along a straight line: frame i by (`first` + i * `direction`) *
/// step. All of these numbers but the step are whole ones that doubles hold exactly. A count of
/// channels known when compiling (or 0: taken from the argument) lets the compiler do several
/// frames at once, in a third of the time.
template <std::uint32_t Known>
void MultiplyByLine(float* values, std::uint32_t given, std::int64_t frames, double first,
                    double direction, double step) {
  const std::uint32_t channels = Known != 0 ? Known : given;
  const auto count = static_cast<std::int32_t>(frames);
  for (std::int32_t i = 0; i < count; ++i) {
    const double factor = (first + direction * static_cast<double>(i)) * step;
    for (std::uint32_t c = 0; c < channels; ++c) {
      float& value = values[static_cast<std::size_t>(i) * channels + c];
      value = static_cast<float>(value * factor);
    }
  }
}

std::unique_ptr<AES31BWF> WriteFade(OutputFile& file, AES31BWF& source, std::int64_t length,
                                    bool rising, std::int64_t first, KeptStreams* kept) {
  ClosingSource closing(source, kept);
  if (!closing.OpenFor(length)) return nullptr;
  const std::uint32_t channels = source.GetChannels();
  const std::int64_t blockFrames = BlockFrames(length, channels);
  std::vector<float> values = Block(blockFrames, channels);
  FrameRun run(source, first, channels);
  std::unique_ptr<AES31BWF> target = CreateLike(source, file, length);
  if (target == nullptr) return nullptr;
  const double step = 1.0 / static_cast<double>(length);
  const auto multiply = channels == 1   ? MultiplyByLine<1>
                        : channels == 2 ? MultiplyByLine<2>
                                        : MultiplyByLine<0>;
  for (std::int64_t begin = 0; begin < length && !target->WriteFailed(); begin += blockFrames) {
    const std::int64_t frames = std::min(blockFrames, length - begin);
    run.Read(begin, frames, values.data());
    const auto origin = static_cast<double>(rising ? begin : length - begin);
    multiply(values.data(), channels, frames, origin, rising ? 1.0 : -1.0, step);
    target->WriteSamples(values.data(), static_cast<std::size_t>(frames) * channels);
  }
  return target;
}

std::unique_ptr<AES31BWF> WriteCrossfade(OutputFile& file, AES31BWF& outgoing, AES31BWF& incoming,
                                         std::int64_t firstOutgoing, std::int64_t firstIncoming,
                                         std::int64_t length, KeptStreams* kept) {
  ClosingSource closingIncoming(incoming, kept);  // closed last
  ClosingSource closingOutgoing(outgoing, kept);
  if (!closingOutgoing.OpenFor(length) || !closingIncoming.OpenFor(length)) return nullptr;
  const std::uint32_t channels = outgoing.GetChannels();
  const std::int64_t blockFrames = BlockFrames(length, channels);
  std::vector<float> outValues = Block(blockFrames, channels);
  std::vector<float> inValues = Block(blockFrames, channels);
  FrameRun out(outgoing, firstOutgoing, channels);
  FrameRun in(incoming, firstIncoming, channels);
  std::unique_ptr<AES31BWF> target = CreateLike(outgoing, file, length);
  if (target == nullptr) return nullptr;
  const double step = 1.0 / static_cast<double>(length);
  for (std::int64_t begin = 0; begin < length && !target->WriteFailed(); begin += blockFrames) {
    const std::int64_t frames = std::min(blockFrames, length - begin);
    out.ReadWith(in, begin, frames, outValues.data(), inValues.data());
    std::size_t at = 0;
    for (std::int64_t i = begin; i < begin + frames; ++i) {
      const double outgoingFactor = static_cast<double>(length - i) * step;
      const double incomingFactor = static_cast<double>(i) * step;
      for (std::uint32_t c = 0; c < channels; ++c, ++at) {
        outValues[at] =
            static_cast<float>(outValues[at] * outgoingFactor + inValues[at] * incomingFactor);
      }
    }
    target->WriteSamples(outValues.data(), at);
  }
  return target;
}

}  // namespace

std::unique_ptr<AES31BWF> RenderScaledInto(OutputFile& file, AES31BWF* source, double factor) {
  if (!IsWave(source)) return nullptr;
  const ClosingSource closing(*source);
  source->OpenAtData();
  if (source->stream == nullptr) return nullptr;
  std::unique_ptr<AES31BWF> target = CreateLike(*source, file, source->GetFrames());
  if (target == nullptr) return nullptr;
  target->DisableCache();
  source->DisableCache();
  const std::int32_t status = source->ConvertInto(target.get(), true, factor);
  target = Finish(std::move(target));
  return status == 0 ? std::move(target) : nullptr;
}

std::unique_ptr<AES31BWF> RenderScaledFile(const char* path, AES31BWF* source, double factor) {
  NamedFile file(path);
  return RenderScaledInto(file, source, factor);
}

std::unique_ptr<AES31BWF> RenderFadeInto(OutputFile& file, AES31BWF* source, std::int64_t length,
                                         bool rising, std::int64_t first, KeptStreams* kept) {
  if (!IsWave(source)) return nullptr;
  return Finish(WriteFade(file, *source, length, rising, first, kept));
}

std::unique_ptr<AES31BWF> RenderFadeFile(const char* path, AES31BWF* source, std::int64_t length,
                                         bool rising, std::int64_t first) {
  NamedFile file(path);
  return RenderFadeInto(file, source, length, rising, first, nullptr);
}

std::unique_ptr<AES31BWF> RenderCrossfadeInto(OutputFile& file, AES31BWF* outgoing,
                                              AES31BWF* incoming, std::int64_t firstOutgoing,
                                              std::int64_t firstIncoming, std::int64_t length,
                                              KeptStreams* kept) {
  if (!IsWave(outgoing) || !IsWave(incoming)) return nullptr;
  return Finish(
      WriteCrossfade(file, *outgoing, *incoming, firstOutgoing, firstIncoming, length, kept));
}

std::unique_ptr<AES31BWF> RenderCrossfadeFile(const char* path, AES31BWF* outgoing,
                                              AES31BWF* incoming, std::int64_t firstOutgoing,
                                              std::int64_t firstIncoming, std::int64_t length) {
  NamedFile file(path);
  return RenderCrossfadeInto(file, outgoing, incoming, firstOutgoing, firstIncoming, length,
                             nullptr);
}

}  // namespace velmora
