#include "BWF/Renderers.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "BWF/FrameRun.h"
#include "Base/SystemLog.h"

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
    static_cast<void>(file_.TakeReadError());  // of an earlier piece
    if (file_.stream == nullptr && frames > 0) Open();
    if (file_.stream != nullptr || frames <= 0) return true;
    file_.LogTakenReadError();
    return false;
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

/// Bytes of a frame. A sample is written in whole ones. At least one is counted even where a depth
/// of 0 writes none, or such a file could have any length.
std::int64_t FrameBytes(AES31BWF& file) {
  return std::int64_t{std::max((file.GetBitsPerSample() + 7) / 8, 1U)} *
         std::max(file.GetChannels(), 1U);
}

/// A new file in the format of `model`; null if it cannot be created, or if it would be no wave
/// file that can be read back.
std::unique_ptr<AES31BWF> CreateLike(AES31BWF& model, OutputFile& file, std::int64_t frames) {
  if (FrameBytes(model) > kMostFrameBytes) {
    SystemLog(file.Path() + ": not made, for " + kFramesTooLarge + ": " + model.GetPath());
    return nullptr;
  }
  if (frames > kMostAudioBytes / FrameBytes(model)) return nullptr;
  auto target = std::make_unique<AES31BWF>(file, model.GetSampleRate(), model.GetChannels(),
                                           static_cast<std::int32_t>(model.GetBitsPerSample()),
                                           static_cast<std::int32_t>(frames));
  if (!target->IsValid()) return nullptr;
  file.Keep();
  return target;
}

/// The file of a piece of so many frames. A length from the project that goes far beyond its
/// sources, the longest of which has `sourceFrames`, is refused, and the log is told.
std::unique_ptr<AES31BWF> CreatePiece(AES31BWF& model, OutputFile& file, std::int64_t length,
                                      std::int32_t sourceFrames) {
  constexpr std::int64_t kMostSilentBytes = std::int64_t{64} << 20;
  const std::int64_t frameBytes = FrameBytes(model);
  const std::int64_t most = std::int64_t{std::max(sourceFrames, 0)} + kMostSilentBytes / frameBytes;
  if (length > most || length > kMostAudioBytes / frameBytes) {
    SystemLog(file.Path() + ": not made, for " + std::to_string(length) +
              " samples are too long for a fade of " + model.GetPath());
    return nullptr;
  }
  return CreateLike(model, file, length);
}

/// Asks whether to stop, now and then: a piece of common length is made in the meantime.
class StopPoll {
 public:
  explicit StopPoll(const RenderAids& aids) : aids_(aids) {}

  /// True if the piece is to be left, now that so many samples more of it are made.
  [[nodiscard]] bool StopsAfter(std::size_t samples) {
    constexpr std::size_t kSamplesBetween = std::size_t{1} << 19;  // 11 s of one channel
    made_ += samples;
    if (made_ < kSamplesBetween) return false;
    made_ = 0;
    return aids_.isStopped && aids_.isStopped();
  }

 private:
  const RenderAids& aids_;
  std::size_t made_ = 0;
};

/// A depth of 0, which sources that are no PCM have, has no bytes for a sample: the file is its
/// header.
bool WritesNothing(const AES31BWF& target) {
  return target.format.bitsPerSample == 0;
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
                                    bool rising, std::int64_t first, const RenderAids& aids) {
  ClosingSource closing(source, aids.kept);
  if (!closing.OpenFor(length)) return nullptr;
  const std::uint32_t channels = source.GetChannels();
  const std::int64_t blockFrames = BlockFrames(length, channels);
  std::vector<float> values = Block(blockFrames, channels);
  FrameRun run(source, first, channels);
  run.Reserve(blockFrames);
  std::unique_ptr<AES31BWF> target = CreatePiece(source, file, length, source.GetFrames());
  if (target == nullptr || WritesNothing(*target)) return target;
  StopPoll poll(aids);
  const double step = 1.0 / static_cast<double>(length);
  const auto multiply = channels == 1   ? MultiplyByLine<1>
                        : channels == 2 ? MultiplyByLine<2>
                                        : MultiplyByLine<0>;
  for (std::int64_t begin = 0; begin < length && !target->WriteFailed(); begin += blockFrames) {
    const std::int64_t frames = std::min(blockFrames, length - begin);
    run.Read(begin, frames, values.data());
    const auto origin = static_cast<double>(rising ? begin : length - begin);
    multiply(values.data(), channels, frames, origin, rising ? 1.0 : -1.0, step);
    const std::size_t samples = static_cast<std::size_t>(frames) * channels;
    target->WriteSamples(values.data(), samples);
    if (source.LogTakenReadError()) return nullptr;
    if (poll.StopsAfter(samples)) {
      file.Discard();
      return nullptr;
    }
  }
  return target;
}

std::unique_ptr<AES31BWF> WriteCrossfade(OutputFile& file, AES31BWF& outgoing, AES31BWF& incoming,
                                         std::int64_t firstOutgoing, std::int64_t firstIncoming,
                                         std::int64_t length, const RenderAids& aids) {
  ClosingSource closingIncoming(incoming, aids.kept);  // closed last
  ClosingSource closingOutgoing(outgoing, aids.kept);
  if (!closingOutgoing.OpenFor(length) || !closingIncoming.OpenFor(length)) return nullptr;
  const std::uint32_t channels = outgoing.GetChannels();
  const std::int64_t blockFrames = BlockFrames(length, channels);
  std::vector<float> outValues = Block(blockFrames, channels);
  std::vector<float> inValues = Block(blockFrames, channels);
  FrameRun out(outgoing, firstOutgoing, channels);
  FrameRun in(incoming, firstIncoming, channels);
  out.Reserve(blockFrames);
  in.Reserve(blockFrames);
  const std::int32_t longest = std::max(outgoing.GetFrames(), incoming.GetFrames());
  std::unique_ptr<AES31BWF> target = CreatePiece(outgoing, file, length, longest);
  if (target == nullptr || WritesNothing(*target)) return target;
  StopPoll poll(aids);
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
    const bool outFailed = outgoing.LogTakenReadError();
    if (incoming.LogTakenReadError() || outFailed) return nullptr;
    if (poll.StopsAfter(at)) {
      file.Discard();
      return nullptr;
    }
  }
  return target;
}

std::unique_ptr<AES31BWF> WriteScaled(OutputFile& file, AES31BWF& source, double factor) {
  const ClosingSource closing(source);
  source.OpenAtData();
  if (source.stream == nullptr) {
    source.LogTakenReadError();
    return nullptr;
  }
  std::unique_ptr<AES31BWF> target = CreateLike(source, file, source.GetFrames());
  if (target == nullptr) return nullptr;
  target->DisableCache();
  source.DisableCache();
  const std::int32_t status = source.ConvertInto(target.get(), true, factor);
  target = Finish(std::move(target));
  return status == 0 ? std::move(target) : nullptr;
}

/// What `make` gives; null if memory lacks: one piece is lost by that, and not the whole run.
template <class Make>
std::unique_ptr<AES31BWF> NullWithoutMemory(Make make) {
  try {
    return make();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

std::unique_ptr<AES31BWF> RenderScaledInto(OutputFile& file, AES31BWF* source, double factor) {
  if (!IsWave(source)) return nullptr;
  return NullWithoutMemory([&] { return WriteScaled(file, *source, factor); });
}

std::unique_ptr<AES31BWF> RenderScaledFile(const char* path, AES31BWF* source, double factor) {
  NamedFile file(path);
  return RenderScaledInto(file, source, factor);
}

std::unique_ptr<AES31BWF> RenderFadeInto(OutputFile& file, AES31BWF* source, std::int64_t length,
                                         bool rising, std::int64_t first, const RenderAids& aids) {
  if (!IsWave(source)) return nullptr;
  return NullWithoutMemory(
      [&] { return Finish(WriteFade(file, *source, length, rising, first, aids)); });
}

std::unique_ptr<AES31BWF> RenderFadeFile(const char* path, AES31BWF* source, std::int64_t length,
                                         bool rising, std::int64_t first) {
  NamedFile file(path);
  return RenderFadeInto(file, source, length, rising, first, {});
}

std::unique_ptr<AES31BWF> RenderCrossfadeInto(OutputFile& file, AES31BWF* outgoing,
                                              AES31BWF* incoming, std::int64_t firstOutgoing,
                                              std::int64_t firstIncoming, std::int64_t length,
                                              const RenderAids& aids) {
  if (!IsWave(outgoing) || !IsWave(incoming)) return nullptr;
  return NullWithoutMemory([&] {
    return Finish(
        WriteCrossfade(file, *outgoing, *incoming, firstOutgoing, firstIncoming, length, aids));
  });
}

std::unique_ptr<AES31BWF> RenderCrossfadeFile(const char* path, AES31BWF* outgoing,
                                              AES31BWF* incoming, std::int64_t firstOutgoing,
                                              std::int64_t firstIncoming, std::int64_t length) {
  NamedFile file(path);
  return RenderCrossfadeInto(file, outgoing, incoming, firstOutgoing, firstIncoming, length, {});
}

}  // namespace velmora
