#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace velmora::media {

/// What a file is, as people call it.
enum class FileKind { Pcm, Extensible, Float, Rf64, Other };

/// The kind's name in JSON: "pcm", "extensible", "float", "rf64", "other".
[[nodiscard]] const char* NameOf(FileKind kind);

/// What libsndfile tells of an audio file, with what the header says beside it.
struct AudioFacts {
  FileKind kind = FileKind::Other;
  std::string format;           ///< for people: "24-bit WAVE (extensible)", "FLAC, 16 bits"
  std::int32_t sampleRate = 0;  ///< Hz
  std::int32_t channels = 0;
  std::int32_t bitsPerSample = 0;  ///< of a sample as it is meant, not of its container
  std::int64_t frames = 0;
  std::optional<std::int64_t> timeReference;  ///< bext, samples since midnight; none without bext
  std::string originatorReference;            ///< bext, up to its first NUL; empty without

  [[nodiscard]] bool IsWaveOf8Bits() const {
    return (kind == FileKind::Pcm || kind == FileKind::Extensible || kind == FileKind::Rf64) &&
           bitsPerSample == 8;
  }
};

struct FactsOrTrouble {
  std::optional<AudioFacts> facts;
  std::string trouble;  ///< why there are none, in plain words
};

/// Reads the header of a regular file. Never blocks: FIFOs and devices are not opened.
[[nodiscard]] FactsOrTrouble ReadFacts(const std::string& path);

/// What stands between a file and the system's own reader.
enum class Obstacle {
  None,    ///< the system reads it as libsndfile does
  Kind,    ///< a format that the system does not read, or reads otherwise (media-kind)
  Chunks,  ///< format, frames or first sample differ between the two readers (media-chunks)
  Broken,  ///< nothing reads it (media-broken)
};

/// Holds the system's reading of a file against libsndfile's. `facts` are of the same file.
[[nodiscard]] Obstacle CompareReaders(const std::string& path, const AudioFacts& facts);

}  // namespace velmora::media
