// Plain PCM wave files out of everything that libsndfile reads.

#include "Media/Conversion.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <numeric>
#include <span>
#include <utility>

#include "Media/Resampling.h"
#include "Media/SampleBlocks.h"
#include "Media/SoundFile.h"
#include "Media/WaveHeader.h"
#include "Media/WaveWriter.h"

namespace velmora::media {
namespace {

constexpr std::int64_t kBlockBytes = 1 << 20;
constexpr std::int64_t kMostAudioBytes = (std::int64_t{1} << 31) - 1;
constexpr std::int64_t kMostBextBytes = 16 << 20;  // a coding history has some hundred
constexpr std::int32_t kAllChannels = -1;
constexpr std::int32_t kRoundedBits = 24;  // of floats and of resampled audio

/// Bits of the new samples, or 0 for encodings that libsndfile decodes as floats.
std::int32_t IntegerBitsOf(int encoding) {
  switch (encoding) {
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_ALAC_20:
    case SF_FORMAT_ALAC_24:
    case SF_FORMAT_DWVW_24:
      return 24;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_ALAC_32:
      return 32;
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE:
    case SF_FORMAT_VORBIS:
    case SF_FORMAT_OPUS:
    case SF_FORMAT_MPEG_LAYER_I:
    case SF_FORMAT_MPEG_LAYER_II:
    case SF_FORMAT_MPEG_LAYER_III:
      return 0;
    default:
      return 16;  // 8 and 16 bits, and codecs made for 16
  }
}

/// What a conversion reads and what it writes.
struct Plan {
  std::int32_t sourceRate = 0;
  std::int32_t rate = 0;
  std::int64_t firstFrame = 0;
  std::int64_t sourceFrames = 0;
  std::int64_t frames = 0;
  std::int32_t bits = 0;
  bool rounds = false;  ///< the samples go through doubles

  [[nodiscard]] bool Resamples() const { return rate != sourceRate; }
};

Plan PlanOf(const SoundFile& sound, const ConversionJob& job) {
  Plan plan;
  plan.sourceRate = sound.Info().samplerate;
  plan.rate = job.sampleRate.value_or(plan.sourceRate);
  plan.firstFrame = std::clamp<std::int64_t>(job.firstFrame, 0, sound.Info().frames);
  const std::int64_t left = sound.Info().frames - plan.firstFrame;
  plan.sourceFrames = std::clamp<std::int64_t>(job.frameCount.value_or(left), 0, left);
  plan.frames = FramesAtRate(plan.sourceFrames, plan.sourceRate, plan.rate);
  plan.bits = IntegerBitsOf(sound.Encoding());
  plan.rounds = plan.bits == 0 || plan.Resamples();
  if (plan.rounds) plan.bits = kRoundedBits;
  return plan;
}

WaveShape ShapeOf(const Plan& plan, std::int32_t channels) {
  return {plan.rate, channels, plan.bits, plan.frames};
}

bool IsTooLong(const Plan& plan, std::int32_t channels) {
  return plan.frames > kMostAudioBytes / ShapeOf(plan, channels).FrameBytes();
}

/// The source's bext chunk for the new file: its time reference is that of the new first frame.
std::vector<std::uint8_t> BextFor(const Plan& plan, std::FILE* source) {
  constexpr std::size_t kTimePlace = 338;  // EBU Tech 3285
  const std::optional<WaveHeader> header = ReadWaveHeader(source);
  if (!header || !header->bext) return {};
  std::vector<std::uint8_t> bext = ReadBext(source, *header->bext, kMostBextBytes);
  if (bext.size() < kTimePlace + 8) return {};
  const std::int64_t most = std::numeric_limits<std::int64_t>::max() - plan.firstFrame;
  const std::int64_t time = std::min(header->bext->timeReference, most) + plan.firstFrame;
  auto atNewRate = static_cast<std::uint64_t>(FramesAtRate(time, plan.sourceRate, plan.rate));
  for (std::size_t i = 0; i < 8; ++i, atNewRate >>= 8) {
    bext[kTimePlace + i] = static_cast<std::uint8_t>(atNewRate & 0xFF);
  }
  return bext;
}

/// The new files, filled side by side with frames at the left end of 32 bits.
class Outputs {
 public:
  Outputs(const std::string& source, const std::vector<ConversionTarget>& targets, const Plan& plan,
          const ConversionProgress& progress)
      : source_(source), targets_(targets), plan_(plan), progress_(progress) {}

  bool Create(const std::vector<std::uint8_t>& bext, std::int32_t channels) {
    for (const ConversionTarget& target : targets_) {
      const std::int32_t written = target.channel ? 1 : channels;
      files_.push_back(std::make_unique<NewFile>(target.to));
      NewFile& file = *files_.back();
      if (!file.IsOpen() || !file.Write(WaveFileHead(ShapeOf(plan_, written), bext))) {
        result_.trouble = file.Trouble();
        return false;
      }
    }
    return true;
  }

  /// @param place each target's channel among those of `frames`; kAllChannels: all
  bool Write(std::span<const std::int32_t> frames, std::int32_t channels,
             const std::vector<std::int32_t>& places) {
    for (std::size_t i = 0; i < files_.size(); ++i) {
      PackSamples(frames, channels, places[i], plan_.bits, bytes_);
      if (!files_[i]->Write(bytes_)) {
        result_.trouble = files_[i]->Trouble();
        return false;
      }
      bytesDone_ += static_cast<std::int64_t>(bytes_.size());
    }
    result_.cancelled = progress_ && !progress_(bytesDone_);
    return !result_.cancelled;
  }

  /// All files stay, or none.
  void Finish(std::int32_t channels) {
    for (std::size_t i = 0; i < files_.size(); ++i) {
      const std::int32_t written = targets_[i].channel ? 1 : channels;
      if (!files_[i]->Write(WaveFileTail(ShapeOf(plan_, written))) || !files_[i]->Close()) {
        result_.trouble = files_[i]->Trouble();
        return;
      }
    }
    for (const auto& file : files_) file->Keep();
    result_.done = true;
    result_.frames = plan_.frames;
  }

  ConversionResult& Result() { return result_; }

  /// Notes what is wrong with the source, and answers false.
  bool Blame(const std::string& why) {
    result_.trouble = source_ + ": " + why;
    return false;
  }

 private:
  const std::string& source_;
  const std::vector<ConversionTarget>& targets_;
  const Plan& plan_;
  const ConversionProgress& progress_;
  std::vector<std::unique_ptr<NewFile>> files_;
  std::vector<std::uint8_t> bytes_;
  std::int64_t bytesDone_ = 0;
  ConversionResult result_;
};

constexpr const char* kEndsEarly = "the audio ends earlier than its header says, or is damaged";

/// Integers as they are.
bool CopyIntegers(const SoundFile& sound, const Plan& plan,
                  const std::vector<ConversionTarget>& targets, Outputs& outputs) {
  const std::int32_t channels = sound.Info().channels;
  std::vector<std::int32_t> places;
  for (const ConversionTarget& target : targets) {
    places.push_back(target.channel.value_or(kAllChannels));
  }
  const std::int64_t most = std::max<std::int64_t>(kBlockBytes / (4 * channels), 1);
  std::vector<std::int32_t> block(static_cast<std::size_t>(most * channels));
  for (std::int64_t done = 0; done < plan.sourceFrames;) {
    const std::int64_t count = std::min(most, plan.sourceFrames - done);
    if (sf_readf_int(sound.Handle(), block.data(), count) != count) {
      return outputs.Blame(kEndsEarly);
    }
    const auto samples = static_cast<std::size_t>(count * channels);
    if (!outputs.Write(std::span(block).first(samples), channels, places)) return false;
    done += count;
  }
  return true;
}

/// Doubles of those channels that are written, rounded to 24 bits, resampled before if need be.
class RoundingCopy {
 public:
  RoundingCopy(const SoundFile& sound, const Plan& plan,
               const std::vector<ConversionTarget>& targets, Outputs& outputs)
      : sound_(sound), plan_(plan), outputs_(outputs) {
    ChooseChannels(targets);
    most_ = std::max<std::int64_t>(kBlockBytes / (8 * sound.Info().channels), 1);
  }

  bool Run() {
    const bool copied = plan_.Resamples() ? Resample() : CopyAtOneRate();
    outputs_.Result().peak = rounding_.peak;
    outputs_.Result().clipped = rounding_.clipped;
    return copied;
  }

 private:
  void ChooseChannels(const std::vector<ConversionTarget>& targets) {
    const bool all = std::any_of(targets.begin(), targets.end(),
                                 [](const auto& target) { return !target.channel; });
    if (all) {
      channels_.resize(static_cast<std::size_t>(sound_.Info().channels));
      std::iota(channels_.begin(), channels_.end(), 0);
    } else {
      for (const ConversionTarget& target : targets) channels_.push_back(*target.channel);
      std::sort(channels_.begin(), channels_.end());
      channels_.erase(std::unique(channels_.begin(), channels_.end()), channels_.end());
    }
    for (const ConversionTarget& target : targets) {
      if (!target.channel) {
        places_.push_back(kAllChannels);
        continue;
      }
      const auto at = std::lower_bound(channels_.begin(), channels_.end(), *target.channel);
      places_.push_back(static_cast<std::int32_t>(at - channels_.begin()));
    }
  }

  [[nodiscard]] std::int64_t Width() const { return static_cast<std::int64_t>(channels_.size()); }

  /// The next frames, of the chosen channels alone.
  bool Read(std::int64_t count) {
    const std::int64_t all = sound_.Info().channels;
    read_.resize(static_cast<std::size_t>(count * all));
    if (sf_readf_double(sound_.Handle(), read_.data(), count) != count) {
      return outputs_.Blame(kEndsEarly);
    }
    chosen_.resize(static_cast<std::size_t>(count * Width()));
    if (Width() == all) {
      chosen_.swap(read_);
      return true;
    }
    auto to = chosen_.begin();
    for (std::int64_t frame = 0; frame < count; ++frame) {
      for (const std::int32_t channel : channels_) {
        *to++ = read_[static_cast<std::size_t>(frame * all + channel)];
      }
    }
    return true;
  }

  bool Write(std::span<const double> samples) {
    RoundTo24Bits(samples, rounded_, rounding_);
    return outputs_.Write(rounded_, static_cast<std::int32_t>(Width()), places_);
  }

  bool CopyAtOneRate() {
    for (std::int64_t done = 0; done < plan_.sourceFrames;) {
      const std::int64_t count = std::min(most_, plan_.sourceFrames - done);
      if (!Read(count) || !Write(chosen_)) return false;
      done += count;
    }
    return true;
  }

  bool Resample();
  bool TakeResampled(std::span<const double> made);

  const SoundFile& sound_;
  const Plan& plan_;
  Outputs& outputs_;
  std::int64_t most_ = 0;               ///< frames read at once
  std::vector<std::int32_t> channels_;  ///< of the source that are written, rising
  std::vector<std::int32_t> places_;    ///< of each target's channel among these
  std::vector<double> read_;
  std::vector<double> chosen_;
  std::vector<std::int32_t> rounded_;
  RoundingFacts rounding_;
  std::int64_t toDrop_ = 0;   ///< resampled frames before the first one that is wanted
  std::int64_t toWrite_ = 0;  ///< resampled frames that are still wanted
};

/// Frames before and after the range are resampled with it, so that its ends sound as they did in
/// their surroundings:
///
///     source   ....[before][ sourceFrames ][after]....
///     result          dropped [  frames  ] dropped
bool RoundingCopy::Resample() {
  constexpr std::int64_t kSurroundings = 16384;  // more than the filter is long
  // So many frames last a whole number of frames at the new rate.
  const std::int64_t step = plan_.sourceRate / std::gcd(plan_.sourceRate, plan_.rate);
  const std::int64_t steps =
      std::min(std::max<std::int64_t>(kSurroundings / step, 1), plan_.firstFrame / step);
  const std::int64_t before = steps * step;
  const std::int64_t end = plan_.firstFrame + plan_.sourceFrames;
  const std::int64_t after = std::min(kSurroundings, sound_.Info().frames - end);
  toDrop_ = FramesAtRate(before, plan_.sourceRate, plan_.rate);
  toWrite_ = plan_.frames;
  const auto resampler = Resampler::Create(
      plan_.sourceRate, plan_.rate, static_cast<std::int32_t>(Width()), outputs_.Result().trouble);
  if (resampler == nullptr) return false;
  const std::int64_t first = plan_.firstFrame - before;
  if (sf_seek(sound_.Handle(), first, SEEK_SET) != first) {
    return outputs_.Blame(kEndsEarly);
  }
  std::vector<double> made;
  for (std::int64_t left = before + plan_.sourceFrames + after; toWrite_ > 0;) {
    const std::int64_t count = std::min(most_, left);
    if (count > 0 && !Read(count)) return false;
    if (count == 0) chosen_.clear();
    if (!resampler->Process(chosen_, made)) {
      return outputs_.Blame("resampling failed");
    }
    left -= count;
    // What rounding of the length adds at the end is silence.
    if (count == 0 && made.empty()) made.resize(static_cast<std::size_t>(Width()));
    if (!TakeResampled(made)) return false;
  }
  return true;
}

bool RoundingCopy::TakeResampled(std::span<const double> made) {
  const std::int64_t dropped = std::min(toDrop_, static_cast<std::int64_t>(made.size()) / Width());
  toDrop_ -= dropped;
  made = made.subspan(static_cast<std::size_t>(dropped * Width()));
  const std::int64_t taken = std::min(toWrite_, static_cast<std::int64_t>(made.size()) / Width());
  toWrite_ -= taken;
  return taken == 0 || Write(made.first(static_cast<std::size_t>(taken * Width())));
}

/// Why it cannot be done, or nothing.
std::string Refusal(const SoundFile& sound, const Plan& plan,
                    const std::vector<ConversionTarget>& targets) {
  if (plan.rate <= 0) return "there is no such sample rate";
  for (const ConversionTarget& target : targets) {
    if (target.channel && (*target.channel < 0 || *target.channel >= sound.Info().channels)) {
      return "it has no channel " + std::to_string(*target.channel + 1);
    }
    if (IsTooLong(plan, target.channel ? 1 : sound.Info().channels)) {
      return "it would become a file of 2 GiB of audio or more, which is not supported";
    }
  }
  if (sf_seek(sound.Handle(), plan.firstFrame, SEEK_SET) != plan.firstFrame) return kEndsEarly;
  return {};
}

}  // namespace

ConversionResult ConvertInto(const std::vector<ConversionTarget>& targets, const ConversionJob& job,
                             const ConversionProgress& progress) {
  Plan plan;
  Outputs outputs(job.from, targets, plan, progress);
  std::string trouble;
  const std::unique_ptr<SoundFile> sound = SoundFile::Open(job.from, trouble);
  if (sound != nullptr) {
    plan = PlanOf(*sound, job);
    trouble = Refusal(*sound, plan, targets);
  }
  if (!trouble.empty()) {
    outputs.Blame(trouble);
    return outputs.Result();
  }
  const std::int32_t channels = sound->Info().channels;
  if (!outputs.Create(BextFor(plan, sound->Stream()), channels)) return outputs.Result();
  const bool copied = plan.rounds ? RoundingCopy(*sound, plan, targets, outputs).Run()
                                  : CopyIntegers(*sound, plan, targets, outputs);
  if (copied) outputs.Finish(channels);
  return outputs.Result();
}

ConversionResult Convert(const ConversionJob& job, const ConversionProgress& progress) {
  return ConvertInto({{job.to, job.channel}}, job, progress);
}

std::optional<std::int64_t> AudioBytesOf(const ConversionJob& job) {
  std::string trouble;
  const std::unique_ptr<SoundFile> sound = SoundFile::Open(job.from, trouble);
  if (sound == nullptr) return std::nullopt;
  const Plan plan = PlanOf(*sound, job);
  const std::int64_t frameBytes =
      ShapeOf(plan, job.channel ? 1 : sound->Info().channels).FrameBytes();
  if (plan.frames > std::numeric_limits<std::int64_t>::max() / frameBytes) return std::nullopt;
  return plan.frames * frameBytes;
}

}  // namespace velmora::media
