#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::host {

/// What a Mac OS alias record of version 2 tells about a file. The record itself is a fixed part of
/// 150 bytes and tagged items after it, all numbers big-endian:
///
///     0 user type 4 | 4 record size 2 | 6 version 2 | 8 kind 2 | 10 volume name 28 |
///     38 volume date 4 | 42 file system 2 | 44 disk type 2 | 46 folder id 4 | 50 file name 64 |
///     114 file id 4 | 118 file date 4 | 122 creator 4 | 126 type 4 | 130 levels 2+2 |
///     134 volume attributes 4 | 138 file system id 2 | 140 reserved 10
///     150 items: tag 2, length 2, data, a pad byte after an odd length; tag -1 ends the record
struct AliasRecord {
  bool isFolder = false;
  std::string path;            ///< absolute, POSIX, the bytes of the file system
  std::string fileName;        ///< UTF-8
  std::string folderName;      ///< of the folder around the target; "?" for all but ASCII
  std::string volumeName;      ///< UTF-8
  std::uint32_t folderId = 0;  ///< of the folder around the target
  std::uint32_t fileId = 0;
  std::uint32_t fileDate = 0;  ///< seconds since 1904-01-01 00:00 UTC
};

/// Why a record cannot be made or understood.
enum class AliasStatus {
  Ok,
  Truncated,      ///< shorter than the fixed part, or an item runs past the end
  WrongSize,      ///< the size field is not the number of bytes
  WrongVersion,   ///< another than 2
  WrongKind,      ///< neither file nor folder
  BadName,        ///< a name longer than its field
  BadItem,        ///< an item whose data does not fit its tag, or that comes twice
  NoEnd,          ///< no item with tag -1
  TrailingBytes,  ///< something after the item with tag -1
  NoPath,         ///< no POSIX path
  BadPath,        ///< not absolute, empty, with a NUL byte
  PathTooLong,    ///< over kAliasPathLimit
};

inline constexpr std::size_t kAliasPathLimit = 4096;  ///< bytes

/// A status in words, for a log or a test.
[[nodiscard]] const char* AliasStatusText(AliasStatus status);

/// Makes a record of `alias.path` on the volume that is mounted at "/"; the names may be empty,
/// then they are taken from the path. Names that are too long for the fixed part are cut there and
/// stand whole in the items, characters outside ASCII being "?" in the fixed part.
/// @param bytes is left empty unless the answer is Ok
[[nodiscard]] AliasStatus EncodeAlias(const AliasRecord& alias, std::vector<std::uint8_t>& bytes);

/// Reads a record back. Items that are not known are passed over. `alias` is to be used only if the
/// answer is Ok.
[[nodiscard]] AliasStatus DecodeAlias(const std::vector<std::uint8_t>& bytes, AliasRecord& alias);

/// Seconds since 1904 from seconds since 1970, at the nearest end of the 32 bits if outside them.
[[nodiscard]] std::uint32_t MacTime(std::int64_t unixSeconds);

}  // namespace velmora::host
