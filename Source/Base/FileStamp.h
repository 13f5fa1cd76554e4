#pragma once

#include <sys/types.h>

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

struct stat;

namespace velmora {

/// What tells a file from another one, and from itself once it was changed.
struct FileStamp {
  dev_t device = 0;
  ino_t number = 0;
  std::int64_t size = 0;
  std::int64_t contentsChanged = 0;  ///< in nanoseconds of the system's clock
  std::int64_t factsChanged = 0;     ///< the same; nobody can set this one back

  bool operator==(const FileStamp&) const = default;
};

/// Whether nobody has written to the file between the two. Rights, names and times may have
/// changed.
[[nodiscard]] inline bool HasContentsOf(const FileStamp& a, const FileStamp& b) {
  return a.device == b.device && a.number == b.number && a.size == b.size &&
         a.contentsChanged == b.contentsChanged;
}

/// A stamp that every later change will make another one of. The clock that stamps are made by
/// stands still for some milliseconds at a time, and a change in the same moment would leave the
/// stamp as it is: so this waits for the next moment, 30 ms at most, if the file changed just now.
/// @return none if the file cannot be looked at, or if it or the system keeps no such times
[[nodiscard]] std::optional<FileStamp> SettledStamp(const std::string& path);

/// Whether every later change will make the stamp another one, without waiting for it.
[[nodiscard]] bool IsSettled(const FileStamp& stamp);

/// The stamp that the file has now; none if it cannot be looked at.
[[nodiscard]] std::optional<FileStamp> CurrentStamp(const std::string& path);
[[nodiscard]] std::optional<FileStamp> CurrentStamp(std::FILE* stream);

/// The stamp among the facts of a file. Never settled where the system keeps no such times.
[[nodiscard]] FileStamp StampOf(const struct stat& facts);

}  // namespace velmora
