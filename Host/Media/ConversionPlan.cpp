#include "Media/ConversionPlan.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "Media/Resampling.h"
#include "Media/WaveHeader.h"

namespace velmora::media {
namespace {

constexpr std::int64_t kMostAudioBytes = (std::int64_t{1} << 31) - 1;
constexpr std::int64_t kMostBextBytes = 16 << 20;  // a coding history has some hundred
constexpr std::int32_t kRoundedBits = 24;          // of floats and of resampled audio

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

}  // namespace

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

std::optional<std::vector<std::uint8_t>> BextFor(const Plan& plan, std::FILE* source) {
  constexpr std::size_t kTimePlace = 338;  // EBU Tech 3285
  const std::vector<std::uint8_t> none;
  const auto [header, readFailed] = TryReadWaveHeader(source);
  if (readFailed) return std::nullopt;
  if (!header || !header->bext) return none;
  std::optional<std::vector<std::uint8_t>> held = ReadBext(source, *header->bext, kMostBextBytes);
  if (!held) return std::nullopt;
  std::vector<std::uint8_t>& bext = *held;
  if (bext.size() < kTimePlace + 8) return none;
  const std::int64_t most = std::numeric_limits<std::int64_t>::max() - plan.firstFrame;
  const std::int64_t time = std::min(header->bext->timeReference, most) + plan.firstFrame;
  auto atNewRate = static_cast<std::uint64_t>(FramesAtRate(time, plan.sourceRate, plan.rate));
  for (std::size_t i = 0; i < 8; ++i, atNewRate >>= 8) {
    bext[kTimePlace + i] = static_cast<std::uint8_t>(atNewRate & 0xFF);
  }
  return held;
}

}  // namespace velmora::media
