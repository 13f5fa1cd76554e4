#include "Media/AudioFacts.h"

#include <array>
#include <optional>
#include <utility>

#include "Base/FileAccess.h"
#include "Media/FactsOfSound.h"
#include "Media/SoundFile.h"
#include "Media/WaveHeader.h"

namespace velmora::media {
namespace {

struct ContainerName {
  int container;
  const char* name;
};
constexpr auto kContainers = std::to_array<ContainerName>({
    {SF_FORMAT_WAV, "WAVE"},
    {SF_FORMAT_WAVEX, "WAVE"},
    {SF_FORMAT_RF64, "RF64"},
    {SF_FORMAT_W64, "W64"},
    {SF_FORMAT_AIFF, "AIFF"},
    {SF_FORMAT_FLAC, "FLAC"},
    {SF_FORMAT_CAF, "CAF"},
    {SF_FORMAT_AU, "AU"},
    {SF_FORMAT_OGG, "Ogg"},
    {SF_FORMAT_MPEG, "MPEG audio"},
});

const char* NameOfContainer(int container) {
  for (const ContainerName& row : kContainers) {
    if (row.container == container) return row.name;
  }
  return "sound file of a rare kind";
}

/// Bits that a sample of this encoding needs once it is decoded.
std::int32_t BitsOf(int encoding) {
  switch (encoding) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_DPCM_8:
      return 8;
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_DWVW_24:
    case SF_FORMAT_ALAC_24:
      return 24;
    case SF_FORMAT_ALAC_20:
      return 20;
    case SF_FORMAT_DWVW_12:
      return 12;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_ALAC_32:
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_VORBIS:
    case SF_FORMAT_OPUS:
    case SF_FORMAT_MPEG_LAYER_I:
    case SF_FORMAT_MPEG_LAYER_II:
    case SF_FORMAT_MPEG_LAYER_III:
      return 32;
    case SF_FORMAT_DOUBLE:
      return 64;
    default:
      return 16;  // 16-bit integers, and codecs made for them: A-law, ADPCM, GSM
  }
}

bool IsPlain(int encoding) {
  return encoding >= SF_FORMAT_PCM_S8 && encoding <= SF_FORMAT_DOUBLE;
}

bool IsFloat(int encoding) {
  return encoding == SF_FORMAT_FLOAT || encoding == SF_FORMAT_DOUBLE;
}

/// libsndfile finds wave files after other things too: tags at their beginning, say.
FileKind KindWithoutHeader(const SoundFile& sound) {
  const bool littleEndian = (sound.Info().format & SF_FORMAT_ENDMASK) != SF_ENDIAN_BIG;
  if (sound.Container() == SF_FORMAT_RF64) return FileKind::Rf64;
  if (sound.Container() == SF_FORMAT_WAVEX && littleEndian) return FileKind::Extensible;
  if (sound.Container() != SF_FORMAT_WAV || !littleEndian || !IsPlain(sound.Encoding())) {
    return FileKind::Other;
  }
  return IsFloat(sound.Encoding()) ? FileKind::Float : FileKind::Pcm;
}

FileKind KindOf(const SoundFile& sound, const std::optional<WaveHeader>& wave) {
  if (!wave) return KindWithoutHeader(sound);
  if (wave->longForm) return FileKind::Rf64;
  // Tools write floats in plain and in extensible headers. What counts for people is the float.
  if (IsFloat(sound.Encoding())) return FileKind::Float;
  if (wave->extensible) return FileKind::Extensible;
  return wave->formatTag == kTagPcm ? FileKind::Pcm : FileKind::Other;
}

std::string FormatText(const SoundFile& sound, const AudioFacts& facts) {
  const std::string container = NameOfContainer(sound.Container());
  if (!IsPlain(sound.Encoding())) return container + ", " + sound.EncodingName();
  std::string text = std::to_string(facts.bitsPerSample) + "-bit ";
  if (IsFloat(sound.Encoding())) text += "float ";
  text += container;
  if (facts.kind == FileKind::Extensible) text += " (extensible)";
  return text;
}

}  // namespace

AudioFacts FactsOf(const SoundFile& sound, const std::optional<WaveHeader>& wave) {
  AudioFacts facts;
  facts.kind = KindOf(sound, wave);
  facts.sampleRate = sound.Info().samplerate;
  facts.channels = sound.Info().channels;
  facts.frames = sound.Info().frames;
  facts.bitsPerSample = BitsOf(sound.Encoding());
  if (!wave) {
    facts.format = FormatText(sound, facts);
    return facts;
  }
  // libsndfile tells the container: 20 bits in 3 bytes are 24 to it.
  const bool narrower = wave->bits > 0 && wave->bits < facts.bitsPerSample;
  if (narrower && wave->hasFormat && IsPlain(sound.Encoding())) facts.bitsPerSample = wave->bits;
  if (wave->bext) {
    facts.timeReference = wave->bext->timeReference;
    facts.originatorReference = wave->bext->originatorReference;
  }
  facts.format = FormatText(sound, facts);
  return facts;
}

const char* NameOf(FileKind kind) {
  constexpr std::array kNames = {"pcm", "extensible", "float", "rf64", "other"};
  return kNames[static_cast<std::size_t>(kind)];
}

FactsOrTrouble ReadFacts(const std::string& path) {
  FactsOrTrouble result;
  const std::unique_ptr<SoundFile> sound = SoundFile::OpenPatiently(path, result.trouble);
  if (sound != nullptr) result.facts = FactsOf(*sound, ReadWaveHeader(sound->Stream()));
  return result;
}

}  // namespace velmora::media
