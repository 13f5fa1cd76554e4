#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace velmora::field {

/// What is known of a source's audio file when file starts are decided. Rates are the file's own.
struct SourceAudio {
  double sampleRate = 0;
  std::int64_t frames = 0;
  std::optional<std::int64_t> timeReference;  ///< bext, in samples since midnight
};

/// One source's file, in samples at the project's rate.
struct FileSpan {
  std::int64_t frames = 0;
  std::optional<std::int64_t> timeReference;
};

[[nodiscard]] FileSpan SpanOf(const SourceAudio& audio, double projectRate);

/// Cuts of one source, and how many of them lie inside its file under each start that it may have.
struct StartTally {
  std::size_t cuts = 0;
  std::size_t underGiven = 0;
  std::size_t underReference = 0;
  std::size_t underZero = 0;

  /// Counts a cut of so many samples that begins at `sourceIn` of the source's own time.
  void Count(std::int64_t sourceIn, std::int64_t length, std::optional<std::int64_t> givenStart,
             const FileSpan& file);
};

enum class FileStart { Given, Reference, Zero };

/// Which of its starts holds for a source; see DecideFileStarts for the rule. A tally without cuts
/// stands for a source without any, or without a file.
[[nodiscard]] FileStart DecideFileStart(const StartTally& tally, bool isGiven);

}  // namespace velmora::field
