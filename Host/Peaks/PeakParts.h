#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "Peaks/Peak.h"
#include "Peaks/Pyramid.h"

namespace velmora::peaks {

/// What tells one state of a file from another. A file that is none, or no ordinary one, has the
/// stamp of nothing.
struct FileStamp {
  bool exists = false;
  std::uint64_t device = 0;
  std::uint64_t number = 0;  ///< inode
  std::int64_t bytes = 0;
  std::int64_t seconds = 0;  ///< of the last change
  std::int64_t nanoseconds = 0;

  bool operator==(const FileStamp&) const = default;
};

/// A part of what can be known of a file: its pyramid, or a page of finer peaks.
struct PartName {
  std::string path;
  std::int64_t stretch = 0;  ///< frames of one peak of a page; 0 for the pyramid
  std::int64_t page = 0;

  auto operator<=>(const PartName&) const = default;
};

/// A part as it was read. Without audio it has neither pyramid nor page.
struct ReadPart {
  FileStamp stamp;
  bool isUnchanged = false;  ///< the stamp is the known one, and nothing was read
  std::shared_ptr<const Pyramid> pyramid;
  std::vector<Peak> page;
};

/// Reads a part. Never opens what is no ordinary file.
/// @param known of the part that is there, none if null
[[nodiscard]] ReadPart ReadPartOf(const PartName& name, const FileStamp* known,
                                  const Stopped& stopped);

/// Parts of files in bounded memory. Not synchronised.
class PeakParts {
 public:
  static constexpr std::int64_t kPagePeaks = 16384;  ///< 64 KiB

  explicit PeakParts(std::size_t mostBytes) : mostBytes_(mostBytes) {}

  /// Names the parts that show frames at a zoom.
  ///
  ///     frames per column   below 64   below the pyramid's finest   above
  ///     parts               pages of 1          pages of 16         the pyramid
  void AddNames(const std::string& path, const ColumnGrid& grid, std::int64_t first,
                std::int64_t count, std::set<PartName>& names) const;

  /// Begins a new view: what is not marked from here on may go when room is needed.
  void NewView() { ++view_; }
  enum class State { Missing, Old, Fresh };
  /// Marks a part as one of the view, and tells whether it is there.
  [[nodiscard]] State Mark(const PartName& name, std::chrono::steady_clock::time_point oldest);
  /// True for a part that was turned away for want of room, and would find it now.
  [[nodiscard]] bool WouldFit(const PartName& name) const;

  [[nodiscard]] const FileStamp* StampOf(const PartName& name) const;

  /// Takes a part in, in place of what was there. Those that were not on view for longest make
  /// room; if that is not enough, the part is turned away and known only by name.
  void Put(const PartName& name, ReadPart part, std::chrono::steady_clock::time_point now);
  /// The part that is there is still true.
  void Confirm(const PartName& name, std::chrono::steady_clock::time_point now);

  void AddColumns(const std::string& path, const ColumnGrid& grid, std::int64_t first,
                  std::span<Peak> columns) const;

  [[nodiscard]] std::size_t Bytes() const { return bytes_; }

 private:
  struct Part {
    ReadPart read;
    std::size_t bytes = 0;
    std::size_t turnedAway = 0;  ///< the bytes for which there was no room, 0 if there was
    std::uint64_t view = 0;      ///< in which it was marked last
    std::chrono::steady_clock::time_point known;  ///< when it was last known to be true
  };
  using FileParts = std::map<std::pair<std::int64_t, std::int64_t>, Part>;

  [[nodiscard]] const Part* Find(const PartName& name) const;
  [[nodiscard]] std::size_t BytesOnView() const;
  void MakeRoomFor(std::size_t bytes);
  static void AddColumn(const FileParts& parts, std::int64_t stretch, std::int64_t from,
                        std::int64_t to, Peak& column, bool& isWhole);

  std::size_t mostBytes_;
  std::size_t bytes_ = 0;
  std::uint64_t view_ = 0;
  std::map<std::string, FileParts> files_;
};

}  // namespace velmora::peaks
