#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmora::fuzz {

/// A folder of this process alone, in memory where the system has such a place, for the files that
/// an input becomes. It goes when the program ends well; a campaign takes away what a crash left.
class WorkFolder {
 public:
  WorkFolder();
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  /// The folder's own path without a name.
  [[nodiscard]] std::string Path(std::string_view name = {}) const;
  /// Writes a file whole, in place of one that is there, and answers its path. Folders in the name
  /// are made.
  std::string Write(std::string_view name, std::string_view bytes) const;
  [[nodiscard]] std::string Read(std::string_view name) const;
  void Remove(std::string_view name) const;
  /// Makes a folder empty.
  void Clear(std::string_view name) const;

 private:
  std::string root_;
};

/// Bytes that a file may come to have: what an input declares beyond that is a write error, as on a
/// full disk. Without it one line of a header could ask for 2 GiB. Holds for the whole process.
void LimitFiles(unsigned bytes);

/// Two short sounds, mono and stereo, that projects may name: "one.wav", "two.wav", "wide.wav", and
/// one of each odd kind.
void WriteSounds(const WorkFolder& folder);

}  // namespace velmora::fuzz
