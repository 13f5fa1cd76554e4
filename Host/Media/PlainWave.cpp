#include "Media/PlainWave.h"

#include <array>
#include <string>

#include "Base/FileAccess.h"
#include "Media/WaveHeader.h"

namespace velmora::media {
namespace {

constexpr std::int64_t kTooManyBytes = std::int64_t{1} << 31;  // for the system's reader
constexpr std::uint32_t kHighestRate = 384000;                 // Hz
constexpr std::uint16_t kMostChannels = 64;

bool IsPlain(const WaveHeader& wave) {
  if (!wave.isRegular || wave.formatTag != kTagPcm || !wave.hasData) return false;
  if (wave.channels == 0 || wave.channels > kMostChannels) return false;
  if (wave.bits != 16 && wave.bits != 24 && wave.bits != 32) return false;
  if (wave.blockAlign != wave.channels * wave.bits / 8) return false;
  if (wave.sampleRate == 0 || wave.sampleRate > kHighestRate) return false;
  return wave.dataBytes > 0 && wave.dataBytes < kTooManyBytes &&
         wave.dataBytes % wave.blockAlign == 0;
}

}  // namespace

std::optional<AudioFacts> FactsOfPlainWave(std::FILE* stream) {
  const std::optional<WaveHeader> wave = ReadWaveHeader(stream);
  if (!wave || !IsPlain(*wave)) return std::nullopt;
  AudioFacts facts;
  facts.kind = FileKind::Pcm;
  facts.format = std::to_string(wave->bits) + "-bit WAVE";
  facts.sampleRate = static_cast<std::int32_t>(wave->sampleRate);
  facts.channels = wave->channels;
  facts.bitsPerSample = wave->bits;
  facts.frames = wave->Frames();
  if (wave->bext) {
    facts.timeReference = wave->bext->timeReference;
    facts.originatorReference = wave->bext->originatorReference;
  }
  return facts;
}

}  // namespace velmora::media
