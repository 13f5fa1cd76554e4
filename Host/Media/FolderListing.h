#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "Media/Once.h"
#include "Media/UnreadFolder.h"

namespace velmora::media {

/// The name by which references are compared: without blanks at its ends, at most the 32 characters
/// that a bext chunk holds. Empty for one that is missing or broken, which fits and contradicts
/// nothing.
[[nodiscard]] std::string ReferenceKey(std::string_view reference);

/// Numbers from `first` to `last`, none if last is the smaller one.
struct Span {
  std::int64_t first = 0;
  std::int64_t last = -1;
  [[nodiscard]] bool Holds(std::int64_t number) const { return number >= first && number <= last; }
};

/// The samples at `otherRate` that come to `samples` at `rate`, to the nearest, halves up.
[[nodiscard]] Span AtOtherRate(std::int64_t samples, double rate, double otherRate);

/// Every regular file below a folder, links to files included, listed once. Links to folders are
/// followed, no folder is listed twice; the kernel's own file systems are passed over. What cannot
/// be read is passed over too, and told by Unread. Callable from many threads.
///
/// It holds for each file its name and 64 bytes, for each Broadcast Wave, once ByHeader was asked,
/// another 64 and its reference of up to 32.
class FolderListing {
 public:
  using File = std::uint32_t;
  using Cancelled = std::function<bool()>;

  /// Null if it was cancelled.
  [[nodiscard]] static std::shared_ptr<FolderListing> Read(const std::string& folder,
                                                           const Cancelled& cancelled);

  [[nodiscard]] std::size_t FileCount() const { return files_.size(); }
  [[nodiscard]] std::string PathOf(File file) const;
  /// True for a file that stands in the listed folder itself.
  [[nodiscard]] bool IsBeside(File file) const { return files_[file].folder == 0; }

  /// What could not be read, the first five of it: none if all files are listed. The folders that a
  /// file system keeps for itself, such as lost+found, do not count.
  [[nodiscard]] const std::vector<UnreadFolder>& Unread() const { return unread_; }

  // Files by name. Results are sorted: those nearest to the listed folder first, then by path.

  enum class NameRule { Exact, IgnoringCase, Stem };
  /// Those that have any of these names.
  [[nodiscard]] std::vector<File> ByName(NameRule rule,
                                         const std::vector<std::string>& names) const;

  // Files by what their bext chunk says. The first call reads the header of every file.

  [[nodiscard]] std::vector<File> ByReference(const std::string& key,
                                              const Cancelled& cancelled) const;
  /// Both in samples at `sampleRate`, or at the file's own.
  [[nodiscard]] std::vector<File> ByLengthAndTime(std::int64_t length, std::int64_t time,
                                                  double sampleRate,
                                                  const Cancelled& cancelled) const;

 private:
  struct Folder {
    std::uint32_t parent;  ///< its own number for the first
    std::uint32_t depth;
    std::string name;  ///< of the first: its path
  };
  struct Row {
    std::size_t nameBegin;
    std::uint32_t nameLength;
    std::uint32_t folder;
  };
  struct Hashed {
    std::size_t hash;
    File file;
    bool operator<(const Hashed& other) const {
      return hash != other.hash ? hash < other.hash : file < other.file;
    }
  };
  struct NameIndex {
    Once built;
    std::vector<Hashed> rows;
  };
  struct Broadcast {
    File file;
    std::int32_t sampleRate;
    std::int64_t frames;
    std::int64_t timeReference;
    std::string reference;
  };
  using TimeOrder = std::tuple<std::int32_t, std::int64_t, std::int64_t>;
  [[nodiscard]] static TimeOrder TimeKey(const Broadcast& file) {
    return {file.sampleRate, file.timeReference, file.frames};
  }
  class Lister;

  [[nodiscard]] std::string_view NameOf(File file) const;
  [[nodiscard]] std::string PathOfFolder(std::uint32_t folder) const;
  /// Leaves each file once.
  void SortByPlace(std::vector<File>& files) const;
  bool ReadHeaders(const Cancelled& cancelled) const;
  void TakeByTime(std::int32_t rate, std::int64_t time, Span frames,
                  std::vector<File>& files) const;

  std::vector<Folder> folders_;
  std::vector<Row> files_;
  std::string names_;
  std::vector<UnreadFolder> unread_;
  mutable NameIndex indexes_[3];  ///< by NameRule

  mutable std::mutex headerMutex_;
  mutable bool headersRead_ = false;
  mutable std::vector<Broadcast> broadcasts_;  ///< by reference
  mutable std::vector<std::uint32_t> byTime_;  ///< places in broadcasts_, by TimeKey
  mutable std::vector<std::int32_t> sampleRates_;
};

}  // namespace velmora::media
