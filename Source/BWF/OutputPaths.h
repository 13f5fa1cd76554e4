#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "ADL/AES31Event.h"

namespace velmora {

/// Finds free names for the files of one run. It remembers where each series of numbers stood, so
/// that a run costs time in proportion to the files that it makes.
class OutputNames {
 public:
  /// `folder`/stem of the event's source, then its extension.
  std::string CopyPath(const AES31Event& event, const char* folder);
  /// As CopyPath with `suffix` behind the stem. With a null folder the file lies beside the source,
  /// and the whole name but its extension stands in for the stem.
  std::string DerivedPath(const AES31Event& event, const char* folder, const char* suffix);

 private:
  std::string FreeName(const std::string& base, const std::string& extension);

  std::unordered_map<std::string, std::uint64_t> lastNumber_;  ///< by base, NUL, extension
};

// The same for a single file. Names run take_Gain.wav, take_Gain.1.wav, take_Gain.2.wav and on; the
// first that does not exist is returned, and not reserved.
std::string BuildCopyPath(const AES31Event& event, const char* folder);
std::string BuildDerivedPath(const AES31Event& event, const char* folder, const char* suffix);

/// The stem: from behind the last `/` to before the first `.` that follows.
std::string CopyBaseName(const char* path);

/// True for whatever opens for reading, a folder too. Never blocks.
bool FileExists(const char* path);

}  // namespace velmora
