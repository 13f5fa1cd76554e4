#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace velmora::dawproject {

/// Names of audio files inside a DAWproject: "audio/NAME.wav". Files of one name get numbers, in
/// the order in which they are asked for: "audio/NAME-2.wav".
///
/// A name holds nothing that any common system forbids, and no two differ in the case of ASCII
/// letters alone, so that the ZIP file unpacks everywhere.
class MediaNames {
 public:
  /// The name of the file at `path`, the same each time.
  [[nodiscard]] const std::string& Of(const std::string& path);

  struct Entry {
    std::string path;
    std::string name;
  };
  /// In the order in which they were first asked for.
  [[nodiscard]] const std::vector<Entry>& Entries() const { return entries_; }

 private:
  [[nodiscard]] std::string FreeName(std::string_view fileName);

  std::unordered_map<std::string, std::size_t> byPath_;  ///< index into entries_
  std::unordered_map<std::string, int> lastNumber_;      ///< by name in lower case
  std::unordered_set<std::string> taken_;                ///< in lower case
  std::vector<Entry> entries_;
};

}  // namespace velmora::dawproject
