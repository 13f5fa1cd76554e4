#include "Media/IntegerCopy.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

#include "Base/FileAccess.h"
#include "Media/SampleBlocks.h"
#include "Media/WaveHeader.h"

namespace velmora::media {
namespace {

constexpr std::int64_t kBlockBytes = 1 << 20;

/// Where a plain wave file has the frames, if its bytes are those of the new files.
struct PlainAudio {
  std::int64_t place = 0;  ///< of the first wanted frame in the file, in bytes
  std::size_t sampleBytes = 0;
  std::size_t frameBytes = 0;
};

std::size_t SampleBytesOf(int encoding) {
  switch (encoding) {
    case SF_FORMAT_PCM_16:
      return 2;
    case SF_FORMAT_PCM_24:
      return 3;
    case SF_FORMAT_PCM_32:
      return 4;
    default:
      return 0;
  }
}

/// libsndfile's decoding of the frame at which it stands, which stays the next one to be read.
bool BeginsWith(const SoundFile& sound, const Plan& plan, const PlainAudio& plain) {
  std::vector<int> decoded(static_cast<std::size_t>(sound.Info().channels));
  std::vector<std::uint8_t> packed;
  std::vector<std::uint8_t> read(plain.frameBytes);
  const bool known = sound.ReadIntegers(decoded.data(), 1) == 1 && sound.Seek(plan.firstFrame) &&
                     ReadAt(sound.Stream(), plain.place, read.data(), read.size()) == read.size();
  PackSamples(decoded, 1, kAllChannels, plan.bits, packed);
  return known && packed == read;
}

/// None if libsndfile has to decode the file.
std::optional<PlainAudio> PlainAudioOf(const SoundFile& sound, const Plan& plan) {
  const std::optional<WaveHeader> wave = ReadWaveHeader(sound.Stream());
  PlainAudio plain;
  plain.sampleBytes = SampleBytesOf(sound.Encoding());
  plain.frameBytes = plain.sampleBytes * static_cast<std::size_t>(sound.Info().channels);
  if (!wave || !wave->hasData || plain.sampleBytes == 0 || wave->formatTag != kTagPcm ||
      wave->blockAlign != plain.frameBytes || wave->channels != sound.Info().channels ||
      wave->Frames() != sound.Info().frames || plan.sourceFrames == 0) {
    return std::nullopt;
  }
  plain.place = wave->dataPlace + plan.firstFrame * wave->blockAlign;
  if (!BeginsWith(sound, plan, plain)) return std::nullopt;
  return plain;
}

template <std::size_t kBytes>
void Pick(const std::uint8_t* from, std::size_t step, std::vector<std::uint8_t>& picked) {
  for (std::size_t to = 0; to < picked.size(); to += kBytes, from += step) {
    std::memcpy(&picked[to], from, kBytes);
  }
}

/// One channel's samples out of whole frames.
void PickChannel(std::span<const std::uint8_t> frames, const PlainAudio& plain,
                 std::int32_t channel, std::vector<std::uint8_t>& picked) {
  const std::uint8_t* const from =
      frames.data() + static_cast<std::size_t>(channel) * plain.sampleBytes;
  picked.resize(frames.size() / plain.frameBytes * plain.sampleBytes);
  if (plain.sampleBytes == 2) {
    Pick<2>(from, plain.frameBytes, picked);
  } else if (plain.sampleBytes == 3) {
    Pick<3>(from, plain.frameBytes, picked);
  } else {
    Pick<4>(from, plain.frameBytes, picked);
  }
}

bool CopyPlain(const SoundFile& sound, const PlainAudio& plain, const Plan& plan,
               const std::vector<ConversionTarget>& targets, Outputs& outputs) {
  const auto frameBytes = static_cast<std::int64_t>(plain.frameBytes);
  const std::int64_t most = std::max<std::int64_t>(kBlockBytes / frameBytes, 1);
  std::vector<std::uint8_t> block;
  std::vector<std::uint8_t> picked;
  for (std::int64_t done = 0; done < plan.sourceFrames;) {
    const std::int64_t count = std::min(most, plan.sourceFrames - done);
    block.resize(static_cast<std::size_t>(count * frameBytes));
    if (ReadAt(sound.Stream(), plain.place + done * frameBytes, block.data(), block.size()) !=
        block.size()) {
      return outputs.Blame(kEndsEarly);
    }
    for (std::size_t i = 0; i < targets.size(); ++i) {
      if (targets[i].channel) PickChannel(block, plain, *targets[i].channel, picked);
      if (!outputs.WriteBytes(i, targets[i].channel ? picked : block)) return false;
    }
    if (!outputs.GoesOn()) return false;
    done += count;
  }
  return true;
}

bool CopyDecoded(const SoundFile& sound, const Plan& plan,
                 const std::vector<ConversionTarget>& targets, Outputs& outputs) {
  const std::int32_t channels = sound.Info().channels;
  std::vector<std::int32_t> places;
  places.reserve(targets.size());
  for (const ConversionTarget& target : targets) {
    places.push_back(target.channel.value_or(kAllChannels));
  }
  const std::int64_t most = std::max<std::int64_t>(kBlockBytes / (4 * channels), 1);
  std::vector<std::int32_t> block(static_cast<std::size_t>(most * channels));
  for (std::int64_t done = 0; done < plan.sourceFrames;) {
    const std::int64_t count = std::min(most, plan.sourceFrames - done);
    if (sound.ReadIntegers(block.data(), count) != count) {
      return outputs.Blame(kEndsEarly);
    }
    const auto samples = static_cast<std::size_t>(count * channels);
    if (!outputs.Write(std::span(block).first(samples), channels, places)) return false;
    done += count;
  }
  return true;
}

}  // namespace

bool CopyIntegers(const SoundFile& sound, const Plan& plan,
                  const std::vector<ConversionTarget>& targets, Outputs& outputs) {
  const std::optional<PlainAudio> plain = PlainAudioOf(sound, plan);
  return plain ? CopyPlain(sound, *plain, plan, targets, outputs)
               : CopyDecoded(sound, plan, targets, outputs);
}

}  // namespace velmora::media
