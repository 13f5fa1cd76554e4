#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ADL/ProjectConstants.h"

namespace velmora::host {

/// Something of a ticked cut that did not arrive, and where it would have been.
struct LeftOutPart {
  std::int32_t event = 0;     ///< position in the project's list
  std::int32_t entry = 0;     ///< number of the (Entry)
  std::int64_t track = 0;     ///< from 0, the session's first track
  std::int64_t position = 0;  ///< on the session's timeline, in samples
  std::string text;           ///< UTF-8, one line: what is missing, and why
};

/// What is known of a spot beside the session that it filled: what a target may want to write
/// along. Texts are UTF-8.
struct SpotRecord {
  std::string projectPath;  ///< absolute; empty if only the session is known
  std::string title;        ///< of the sequence, else of the project, else the ADL's file name
  /// By id, without the quotation marks of the file; none for what the file does not give.
  std::array<std::optional<std::string>, kProjectConstants.size()> constants;
  std::int32_t firstTrackNumber = 1;  ///< the project's number of the session's track 0
  std::vector<LeftOutPart> leftOut;

  /// The project's number of a session's track, by which targets name it.
  [[nodiscard]] std::int64_t TrackNumber(std::int64_t track) const {
    return track + firstTrackNumber;
  }
};

}  // namespace velmora::host
