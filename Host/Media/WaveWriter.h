#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Base/FileAccess.h"

namespace velmora::media {

/// What a new wave file holds.
struct WaveShape {
  std::int32_t sampleRate = 0;  ///< Hz
  std::int32_t channels = 0;
  std::int32_t bits = 0;  ///< a multiple of 8
  std::int64_t frames = 0;
  std::uint16_t formatTag = 1;  ///< RIFF WAVE: integers

  [[nodiscard]] std::int64_t FrameBytes() const { return std::int64_t{channels} * (bits / 8); }
  [[nodiscard]] std::int64_t AudioBytes() const { return frames * FrameBytes(); }
};

/// A new file that is gone again unless it is kept.
class NewFile {
 public:
  /// Created under a name that nothing holds. IsOpen tells whether that went well; if not, Trouble.
  explicit NewFile(const std::string& path);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  [[nodiscard]] bool IsOpen() const { return stream_ != nullptr; }
  [[nodiscard]] int Descriptor() const;
  [[nodiscard]] bool Write(std::span<const std::uint8_t> bytes);
  /// False if a write failed and only this shows it.
  [[nodiscard]] bool Close();
  void Keep() { created_ = false; }
  /// Path and cause of what failed last.
  [[nodiscard]] const std::string& Trouble() const { return trouble_; }
  void NoteError(int error);

 private:
  std::string path_;
  FileStream stream_;
  bool created_ = false;
  std::string trouble_;
};

/// The header of a plain wave file (RIFF WAVE) up to its first sample: a fmt chunk of 16 bytes,
/// the bext chunk if there is one, and the head of the data chunk. All chunks before the audio have
/// even sizes, so that readers with and without pad bytes agree.
/// @param bext the chunk's body; empty for none. It is filled up to 602 bytes and an even size.
[[nodiscard]] std::vector<std::uint8_t> WaveFileHead(const WaveShape& shape,
                                                     std::vector<std::uint8_t> bext);

/// What has to follow the audio: a pad byte after an odd number of bytes, and after no audio at all
/// a chunk of filling, without which the system does not see the data chunk.
[[nodiscard]] std::vector<std::uint8_t> WaveFileTail(const WaveShape& shape);

}  // namespace velmora::media
