#include "Bounce/SourceFiles.h"

#include <sys/resource.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "Bounce/BroadcastHeader.h"

namespace velmora::bounce {
namespace {

using host::BounceDepth;
using media::SoundFile;

bool IsFraction(int encoding) {
  switch (encoding) {
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE:
    case SF_FORMAT_VORBIS:
    case SF_FORMAT_OPUS:
    case SF_FORMAT_MPEG_LAYER_I:
    case SF_FORMAT_MPEG_LAYER_II:
    case SF_FORMAT_MPEG_LAYER_III:
      return true;
    default:
      return false;
  }
}

bool IsWave(int container) {
  return container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX || container == SF_FORMAT_RF64;
}

std::optional<BounceDepth> SameBytes(const SoundFile& sound) {
  if (!IsWave(sound.Container()) && sound.Container() != SF_FORMAT_W64) return {};
  if (sound.HasForeignByteOrder()) return {};
  switch (sound.Encoding()) {
    case SF_FORMAT_PCM_16:
      return BounceDepth::Bits16;
    case SF_FORMAT_PCM_24:
      return BounceDepth::Bits24;
    case SF_FORMAT_FLOAT:
      return BounceDepth::Float32;
    default:
      return {};
  }
}

SourceFacts FactsOf(const SoundFile& sound) {
  SourceFacts facts;
  facts.sampleRate = sound.Info().samplerate;
  facts.channels = static_cast<std::size_t>(sound.Info().channels);
  facts.frames = sound.Info().frames;
  facts.isFloat = IsFraction(sound.Encoding());
  facts.isWaveOf8Bits = IsWave(sound.Container()) && sound.Encoding() == SF_FORMAT_PCM_U8;
  facts.sameBytesAs = SameBytes(sound);
  return facts;
}

}  // namespace

std::size_t SourceFiles::FittingNumber() {
  constexpr std::size_t kMost = 128;
  rlimit allowed{};
  if (::getrlimit(RLIMIT_NOFILE, &allowed) != 0) return 1;
  return std::clamp<std::size_t>(allowed.rlim_cur / 4, 1, kMost);
}

std::size_t SourceFiles::Add(const std::string& path) {
  const auto [known, isNew] = byPath_.try_emplace(path, files_.size());
  if (!isNew) return known->second;
  const std::size_t number = files_.size();
  files_.push_back({path, {}, nullptr, 0, {}});
  std::string trouble;
  std::unique_ptr<SoundFile> sound = SoundFile::Open(path, trouble);
  if (sound == nullptr) {
    files_.back().facts.trouble = trouble;
  } else {
    files_.back().facts = FactsOf(*sound);
    Keep(number, std::move(sound));
  }
  return number;
}

void SourceFiles::Keep(std::size_t number, std::unique_ptr<SoundFile> sound) {
  if (open_.size() >= mostOpen_) {
    files_[open_.back()].sound.reset();
    open_.pop_back();
  }
  open_.push_front(number);
  files_[number].sound = std::move(sound);
  files_[number].used = open_.begin();
  files_[number].place = 0;
}

bool SourceFiles::Open(File& file, std::size_t number) {
  if (file.sound != nullptr) {
    open_.splice(open_.begin(), open_, file.used);
    return true;
  }
  std::string trouble;
  std::unique_ptr<SoundFile> sound = SoundFile::Open(file.path, trouble);
  if (sound == nullptr) {
    trouble_ = file.path + " cannot be read any more: " + trouble;
    return false;
  }
  const SF_INFO& info = sound->Info();
  const SourceFacts now = FactsOf(*sound);
  if (now.channels != file.facts.channels || now.frames != file.facts.frames ||
      now.sampleRate != file.facts.sampleRate || now.sameBytesAs != file.facts.sameBytesAs ||
      now.isFloat != file.facts.isFloat || info.seekable == 0) {
    trouble_ = file.path + " has changed meanwhile";
    return false;
  }
  Keep(number, std::move(sound));
  return true;
}

bool SourceFiles::Fail(const File& file, std::int64_t frame, const std::string& cause) {
  trouble_ = file.path + " cannot be read from sample " + std::to_string(frame) + " on: " + cause;
  return false;
}

template <typename Read>
bool SourceFiles::ReadFrames(std::size_t number, std::int64_t frame, std::int64_t count,
                             Read read) {
  File& file = files_[number];
  if (!Open(file, number)) return false;
  const SoundFile& sound = *file.sound;
  if (file.place != frame && !sound.Seek(frame)) return Fail(file, frame, sound.Last().text);
  const std::int64_t got = read(sound);
  file.place = frame + got;
  if (got == count) return true;
  const int error = sound.ReadError();
  if (error != 0) return Fail(file, frame + got, std::strerror(error));
  const SoundFile::LastCall last = sound.Last();
  return Fail(file, frame + got, last.hasFailed ? last.text : "the file ends there now");
}

bool SourceFiles::ReadBytes(std::size_t number, std::int64_t frame, std::int64_t count,
                            std::uint8_t* samples) {
  const SourceFacts& facts = Facts(number);
  const auto frameBytes =
      static_cast<std::int64_t>(facts.channels * SampleBytes(*facts.sameBytesAs));
  return ReadFrames(number, frame, count, [&](const SoundFile& sound) {
    return sound.ReadBytes(samples, count * frameBytes) / frameBytes;
  });
}

bool SourceFiles::ReadIntegers(std::size_t number, std::int64_t frame, std::int64_t count,
                               std::int32_t* samples) {
  return ReadFrames(number, frame, count,
                    [&](const SoundFile& sound) { return sound.ReadIntegers(samples, count); });
}

bool SourceFiles::ReadFractions(std::size_t number, std::int64_t frame, std::int64_t count,
                                double* samples) {
  return ReadFrames(number, frame, count,
                    [&](const SoundFile& sound) { return sound.ReadFractions(samples, count); });
}

}  // namespace velmora::bounce
