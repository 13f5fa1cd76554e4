#include "Media/RoundingCopy.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <span>
#include <string>

#include "Media/Resampling.h"
#include "Media/SampleBlocks.h"

namespace velmora::media {
namespace {

constexpr std::int64_t kBlockBytes = 1 << 20;

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
    if (sound_.ReadFractions(read_.data(), count) != count) {
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
  std::string trouble;
  const auto resampler =
      Resampler::Create(plan_.sourceRate, plan_.rate, static_cast<std::int32_t>(Width()), trouble);
  if (resampler == nullptr) return outputs_.Blame(trouble);
  const std::int64_t first = plan_.firstFrame - before;
  if (!sound_.Seek(first)) return outputs_.Blame(kEndsEarly);
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

}  // namespace

bool CopyRounded(const SoundFile& sound, const Plan& plan,
                 const std::vector<ConversionTarget>& targets, Outputs& outputs) {
  return RoundingCopy(sound, plan, targets, outputs).Run();
}

}  // namespace velmora::media
