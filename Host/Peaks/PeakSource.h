#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Media/SoundFile.h"
#include "Peaks/Peak.h"
#include "Peaks/SamplePeaks.h"

namespace velmora::peaks {

/// Whether the work is to stop; asked now and then, perhaps from several threads at once. An empty
/// one never says so.
using Stopped = std::function<bool()>;

/// An audio file to read peaks from: whatever libsndfile opens. Plain wave files of 16, 24 and 32
/// bits are read past libsndfile, several times as fast. All channels count as one.
class PeakSource {
 public:
  /// Null for what is no audio file or cannot be opened. FIFOs and devices are not opened.
  [[nodiscard]] static std::unique_ptr<PeakSource> Open(const std::string& path);

  /// As the header has it; there may be fewer.
  [[nodiscard]] std::int64_t Frames() const { return frames_; }
  [[nodiscard]] std::int32_t Channels() const { return sound_->Info().channels; }
  /// True if Read may be called from several threads at once.
  [[nodiscard]] bool ReadsSideBySide() const { return form_.has_value(); }

  /// Reads the peaks of successive stretches, in bounded memory.
  ///
  ///     first      +stretch    +2 stretch  end
  ///       |-----------|-----------|--------|     three peaks
  ///
  /// @param end exclusive, cut to Frames(); the last stretch may be shorter
  /// @param stretch frames, at least 1
  /// @param peaks room for a peak of each stretch
  /// @return peaks that are whole: fewer where the file ends early or when stopped
  std::int64_t Read(std::int64_t first, std::int64_t end, std::int64_t stretch, Peak* peaks,
                    const Stopped& stopped);

  /// The file as it was when it was opened: what is read belongs to that.
  [[nodiscard]] std::FILE* Stream() const { return sound_->Stream(); }

 private:
  explicit PeakSource(std::unique_ptr<media::SoundFile> sound);

  std::int64_t ReadPlain(std::int64_t first, std::int64_t end, std::int64_t stretch, Peak* peaks,
                         const Stopped& stopped) const;
  std::int64_t ReadBySoundFile(std::int64_t first, std::int64_t end, std::int64_t stretch,
                               Peak* peaks, const Stopped& stopped);

  std::unique_ptr<media::SoundFile> sound_;
  std::optional<SampleForm> form_;  ///< of a plain wave file
  std::int64_t dataPlace_ = 0;      ///< of its first sample, in bytes
  std::int64_t frames_ = 0;
};

}  // namespace velmora::peaks
