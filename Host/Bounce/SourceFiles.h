#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "Media/SoundFile.h"
#include "Session/SessionTarget.h"

namespace velmora::bounce {

/// What a bounce asks of a wave file before it reads it.
struct SourceFacts {
  std::string trouble;  ///< empty, or why it cannot be opened; then the rest says nothing
  std::int32_t sampleRate = 0;
  std::size_t channels = 1;
  std::int64_t frames = 0;
  bool isFloat = false;  ///< its samples are fractions, not integers
  bool isWaveOf8Bits = false;
  /// The depth of a bounce into which its bytes go as they are, if there is one.
  std::optional<host::BounceDepth> sameBytesAs;
};

/// The wave files of a session, read as libsndfile reads them. However many there are, few are open
/// at once. What is read must lie inside the file, by its facts.
class SourceFiles {
 public:
  /// @param mostOpen files at once, at least 1
  explicit SourceFiles(std::size_t mostOpen = FittingNumber()) : mostOpen_(mostOpen) {}

  [[nodiscard]] std::size_t MostOpen() const { return mostOpen_; }

  /// Opens a file for a look at it, unless that was done before. Returns its number.
  std::size_t Add(const std::string& path);
  [[nodiscard]] const SourceFacts& Facts(std::size_t file) const { return files_[file].facts; }
  [[nodiscard]] const std::string& PathOf(std::size_t file) const { return files_[file].path; }

  // Each reads `count` frames from `frame` on, all channels interleaved. False if the file does not
  // give them all: Trouble says which and why.

  /// The bytes as they lie in the file; only for one whose facts have sameBytesAs.
  [[nodiscard]] bool ReadBytes(std::size_t file, std::int64_t frame, std::int64_t count,
                               std::uint8_t* samples);
  /// Each at the left end of 32 bits; not for floats.
  [[nodiscard]] bool ReadIntegers(std::size_t file, std::int64_t frame, std::int64_t count,
                                  std::int32_t* samples);
  /// As fractions of full scale; of any file.
  [[nodiscard]] bool ReadFractions(std::size_t file, std::int64_t frame, std::int64_t count,
                                   double* samples);

  [[nodiscard]] const std::string& Trouble() const { return trouble_; }

 private:
  /// A part of what the system lets this process have open, since it is not alone here.
  [[nodiscard]] static std::size_t FittingNumber();

  struct File {
    std::string path;
    SourceFacts facts;
    std::unique_ptr<media::SoundFile> sound;  ///< null while it is closed
    std::int64_t place = 0;                   ///< the frame at which `sound` stands
    std::list<std::size_t>::iterator used;    ///< in open_, while it is open
  };

  template <typename Read>
  bool ReadFrames(std::size_t file, std::int64_t frame, std::int64_t count, Read read);
  [[nodiscard]] bool Open(File& file, std::size_t number);
  [[nodiscard]] bool Fail(const File& file, std::int64_t frame, const std::string& cause);
  void Keep(std::size_t number, std::unique_ptr<media::SoundFile> sound);

  std::size_t mostOpen_;
  std::vector<File> files_;
  std::unordered_map<std::string, std::size_t> byPath_;
  std::list<std::size_t> open_;  ///< the one used last stands first
  std::string trouble_;
};

}  // namespace velmora::bounce
