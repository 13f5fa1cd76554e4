// Plain PCM wave files out of everything that libsndfile reads.

#include "Media/Conversion.h"

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Media/ConversionOutputs.h"
#include "Media/ConversionPlan.h"
#include "Media/IntegerCopy.h"
#include "Media/RoundingCopy.h"
#include "Media/SoundFile.h"

namespace velmora::media {
namespace {

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
  if (!sound.Seek(plan.firstFrame)) return kEndsEarly;
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
  std::optional<std::vector<std::uint8_t>> bext;
  if (trouble.empty()) bext = BextFor(plan, sound->Stream());
  if (!bext) {
    outputs.Blame(trouble.empty() ? "its header cannot be read" : trouble);
    return outputs.Result();
  }
  const std::int32_t channels = sound->Info().channels;
  if (!outputs.Create(*bext, channels)) return outputs.Result();
  const bool copied = plan.rounds ? CopyRounded(*sound, plan, targets, outputs)
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
