// The system's reader of wave files held against libsndfile.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "BWF/AES31BWF.h"
#include "Base/DuplicateStream.h"
#include "Media/AudioFacts.h"
#include "Media/FactsOfSound.h"
#include "Media/SoundFile.h"
#include "Media/WaveHeader.h"

namespace velmora::media {
namespace {

// The system's reader takes sizes and places in the audio as signed 32-bit numbers.
constexpr std::int64_t kTooManyBytes = std::int64_t{1} << 31;
// A shifted start shows in the first sample that is not silence: so a few more are compared.
constexpr std::int64_t kComparedSamples = 64;

/// True for a format that the system reads as silence or as noise, however good the file is.
bool IsForeign(const AudioFacts& facts, const WaveHeader& wave) {
  const std::int32_t containerBits = 8 * wave.ContainerBytes();
  if (facts.kind != FileKind::Pcm || facts.bitsPerSample % 8 != 0) return true;
  if (facts.bitsPerSample <= 8 || facts.bitsPerSample > 32) return true;
  if (containerBits > facts.bitsPerSample) return true;
  return facts.frames >= kTooManyBytes / (std::int64_t{facts.channels} * facts.bitsPerSample / 8);
}

/// Compares `count` frames from `first` on, as fractions of full scale, which is what both readers
/// make of integers of up to 32 bits.
bool SameSamples(AES31BWF& system, const SoundFile& sound, std::int64_t first, std::int64_t count) {
  const auto channels = static_cast<std::size_t>(sound.Info().channels);
  std::vector<int> frames(channels * static_cast<std::size_t>(count));
  if (!sound.Seek(first) || sound.ReadIntegers(frames.data(), count) != count) return false;
  std::size_t at = 0;
  for (std::int64_t frame = first; frame < first + count; ++frame) {
    for (std::uint32_t channel = 0; channel < channels; ++channel, ++at) {
      const float meant = static_cast<float>(frames[at]) * 0x1p-31F;
      if (system.GetSampleAt(static_cast<std::int32_t>(frame), channel) != meant) return false;
    }
  }
  return true;
}

bool SameAudio(AES31BWF& system, const AudioFacts& facts, const SoundFile& sound) {
  const std::int64_t count =
      std::min(facts.frames, std::max<std::int64_t>(kComparedSamples / facts.channels, 1));
  return SameSamples(system, sound, 0, count) && SameSamples(system, sound, facts.frames - 1, 1);
}

bool SameFormat(AES31BWF& system, const AudioFacts& facts) {
  const BwfFormat& format = *system.GetFormat();
  return system.IsValid() && format.formatTag == kIntegerPcm && format.channels == facts.channels &&
         std::int64_t{format.samplesPerSec} == facts.sampleRate &&
         format.bitsPerSample == facts.bitsPerSample &&
         system.bytesPerSample * 8 == facts.bitsPerSample &&
         static_cast<std::int64_t>(system.frames) == facts.frames;
}

/// Goes on with the file that is open: whatever libsndfile reads of it is read past the stream, so
/// that the two do not get into each other's way.
bool SystemReadsTheSame(const std::string& path, const AudioFacts& facts, const SoundFile& sound) {
  AES31BWF system(path.c_str());
  if (!SameFormat(system, facts)) return false;
  system.stream = DuplicateStream(sound.Stream());
  if (system.stream == nullptr) return false;
  system.OpenAtData();
  system.position = system.dataOffset;
  return SameAudio(system, facts, sound);
}

Obstacle Compare(const std::string& path, const AudioFacts& facts, const SoundFile& sound,
                 const std::optional<WaveHeader>& wave) {
  if (IsForeign(facts, wave.value_or(WaveHeader()))) return Obstacle::Kind;
  // Whatever the system makes of it, other programs refuse it as it is.
  if (!wave || sound.IsMended()) return Obstacle::Chunks;
  // The system does not see an empty data chunk at a file's end. Nothing is lost by that.
  if (facts.frames == 0) return Obstacle::None;
  // A read that fails in passing looks like another reading, and would have the file written anew:
  // so a difference counts when it is there twice.
  bool isSame = false;
  for (int look = 0; look < 2 && !isSame; ++look) {
    isSame = SystemReadsTheSame(path, facts, sound);
  }
  return isSame ? Obstacle::None : Obstacle::Chunks;
}

}  // namespace

Obstacle CompareReaders(const std::string& path, const AudioFacts& facts) {
  std::string trouble;
  const std::unique_ptr<SoundFile> sound = SoundFile::OpenPatiently(path, trouble);
  if (sound == nullptr) return Obstacle::Broken;
  return Compare(path, facts, *sound, ReadWaveHeader(sound->Stream()));
}

ComparedFacts ReadAndCompare(const std::string& path, FileStream stream) {
  ComparedFacts result;
  std::string& trouble = result.read.trouble;
  std::unique_ptr<SoundFile> sound;
  if (stream != nullptr) sound = SoundFile::Open(std::move(stream), trouble);
  if (sound == nullptr) sound = SoundFile::OpenPatiently(path, trouble);
  if (sound == nullptr) return result;
  std::optional<WaveHeader> wave = ReadWaveHeader(sound->Stream());
  if (!wave) wave = ReadWaveHeader(sound->Stream());  // the read may have failed in passing
  result.read.facts = FactsOf(*sound, wave);
  result.obstacle = Compare(path, *result.read.facts, *sound, wave);
  return result;
}

}  // namespace velmora::media
