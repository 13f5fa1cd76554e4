#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

namespace velmora {

/// Finds free names for the files of one run. It remembers where each series of numbers stood, so
/// that a run costs time in proportion to the files that it makes.
///
/// Names run take_Gain.wav, take_Gain.1.wav, take_Gain.2.wav and on.
class OutputNames {
 public:
  /// A name for a file made from `source`: `folder`/stem, `suffix`, extension. With a null folder
  /// the file lies beside the source, and the whole name but its extension stands in for the stem.
  std::string Find(const std::string& source, const char* folder, const char* suffix);

 private:
  std::string FreeName(const std::string& base, const std::string& extension);

  std::unordered_map<std::string, std::uint64_t> lastNumber_;  ///< by base, NUL, extension
};

/// The stem: from after the last `/` to before the first `.` that follows. Stem and extension follow
/// different rules on purpose, so a name with two dots loses its middle.
std::string CopyBaseName(const char* path);

/// True for whatever opens for reading, a folder too. Never blocks.
bool FileExists(const char* path);

}  // namespace velmora
