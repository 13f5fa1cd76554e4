#include "Embedded/AliasRecord.h"

#include <algorithm>
#include <limits>

#include "Base/Utf8.h"

namespace velmora::host {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kFixedBytes = 150;
constexpr std::uint16_t kVersion = 2;
constexpr std::string_view kVolumeName = "Velmora";
constexpr std::uint16_t kHfsPlus = 0x482B;    // 'H+'
constexpr std::uint16_t kNoLevels = 0xFFFF;   // -1: the record holds no relative path
constexpr std::size_t kVolumeNameField = 28;  // Pascal strings, their length byte included
constexpr std::size_t kFileNameField = 64;

// Offsets inside the fixed part.
constexpr std::size_t kAtSize = 4;
constexpr std::size_t kAtVersion = 6;
constexpr std::size_t kAtKind = 8;
constexpr std::size_t kAtVolumeName = 10;
constexpr std::size_t kAtFolderId = 46;
constexpr std::size_t kAtFileName = 50;
constexpr std::size_t kAtFileId = 114;
constexpr std::size_t kAtFileDate = 118;

enum Tag : std::uint16_t {
  kFolderName = 0,
  kUnicodeFileName = 14,
  kUnicodeVolumeName = 15,
  kPosixPath = 18,
  kMountPoint = 19,
  kEnd = 0xFFFF,
};

void Put16(Bytes& bytes, std::uint32_t value) {
  bytes.push_back(static_cast<std::uint8_t>(value >> 8));
  bytes.push_back(static_cast<std::uint8_t>(value));
}

void Put32(Bytes& bytes, std::uint32_t value) {
  Put16(bytes, value >> 16);
  Put16(bytes, value & 0xFFFF);
}

std::uint16_t Get16(const Bytes& bytes, std::size_t at) {
  return static_cast<std::uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

std::uint32_t Get32(const Bytes& bytes, std::size_t at) {
  return static_cast<std::uint32_t>(Get16(bytes, at)) << 16 | Get16(bytes, at + 2);
}

/// A name in the old form: one byte for each character. ":" parts the folders of a path there, so
/// that names have "/" where POSIX has ":"; the items in Unicode do the same.
std::string OldName(std::string_view name, std::size_t limit) {
  std::string old;
  for (std::size_t at = 0; at < name.size() && old.size() < limit;) {
    const char32_t character = NextCharacter(name, at);
    old.push_back(character == ':' ? '/' : character >= 0x80 ? '?' : static_cast<char>(character));
  }
  return old;
}

void PutPascal(Bytes& bytes, std::string_view name, std::size_t field) {
  const std::string old = OldName(name, field - 1);
  bytes.push_back(static_cast<std::uint8_t>(old.size()));
  bytes.insert(bytes.end(), old.begin(), old.end());
  bytes.insert(bytes.end(), field - 1 - old.size(), 0);
}

void PutItem(Bytes& bytes, Tag tag, std::string_view data) {
  Put16(bytes, tag);
  Put16(bytes, static_cast<std::uint32_t>(data.size()));
  bytes.insert(bytes.end(), data.begin(), data.end());
  if (data.size() % 2 != 0) bytes.push_back(0);
}

/// The number of UTF-16 units, then the units.
void PutUnicodeItem(Bytes& bytes, Tag tag, std::string_view name) {
  const std::u16string units = Utf16FromUtf8(name);
  Put16(bytes, tag);
  Put16(bytes, static_cast<std::uint32_t>(2 + 2 * units.size()));
  Put16(bytes, static_cast<std::uint32_t>(units.size()));
  for (const char16_t unit : units) Put16(bytes, unit == u':' ? u'/' : unit);
}

void PutFixedPart(Bytes& bytes, const AliasRecord& alias, std::string_view volume,
                  std::string_view file) {
  Put32(bytes, 0);  // user type: none
  Put16(bytes, 0);  // record size, known at the end
  Put16(bytes, kVersion);
  Put16(bytes, alias.isFolder ? 1 : 0);
  PutPascal(bytes, volume, kVolumeNameField);
  Put32(bytes, 0);  // volume date
  Put16(bytes, kHfsPlus);
  Put16(bytes, 0);  // a fixed disk
  Put32(bytes, alias.folderId);
  PutPascal(bytes, file, kFileNameField);
  Put32(bytes, alias.fileId);
  Put32(bytes, alias.fileDate);
  Put32(bytes, 0);  // creator
  Put32(bytes, 0);  // type
  Put16(bytes, kNoLevels);
  Put16(bytes, kNoLevels);
  Put32(bytes, 0);  // volume attributes
  Put16(bytes, 0);  // file system id
  bytes.insert(bytes.end(), 10, 0);
}

std::string_view WithoutSlashesAtEnd(std::string_view path) {
  while (!path.empty() && path.back() == '/') path.remove_suffix(1);
  return path;
}

/// The last part of a path; empty for the root.
std::string_view LastPart(std::string_view path) {
  path = WithoutSlashesAtEnd(path);
  return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

std::string_view FolderOf(std::string_view path) {
  path = WithoutSlashesAtEnd(path);
  return path.substr(0, path.rfind('/') + 1);
}

AliasStatus CheckPath(std::string_view path) {
  if (path.size() > kAliasPathLimit) return AliasStatus::PathTooLong;
  const bool good = !path.empty() && path.front() == '/' && path.find('\0') == path.npos;
  return good ? AliasStatus::Ok : AliasStatus::BadPath;
}

bool GetPascal(const Bytes& bytes, std::size_t at, std::size_t field, std::string& name) {
  const std::size_t length = bytes[at];
  if (length >= field) return false;
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at) + 1;
  name.assign(first, first + static_cast<std::ptrdiff_t>(length));
  return true;
}

bool GetUnicode(const Bytes& bytes, std::size_t at, std::size_t length, std::string& name) {
  if (length < 2 || length != 2u + 2u * Get16(bytes, at)) return false;
  std::u16string units;
  units.reserve(length / 2);
  for (std::size_t i = 2; i < length; i += 2) {
    const char16_t unit = Get16(bytes, at + i);
    units.push_back(unit == u'/' ? u':' : unit);
  }
  name = Utf8FromUtf16(units);
  return true;
}

/// The walk over the items: what they hold, and which have been seen.
class ItemReader {
 public:
  ItemReader(const Bytes& bytes, AliasRecord& alias) : bytes_(bytes), alias_(alias) {}

  AliasStatus Read() {
    std::size_t at = kFixedBytes;
    while (at < bytes_.size()) {
      if (bytes_.size() - at < 4) return AliasStatus::Truncated;
      const std::uint16_t tag = Get16(bytes_, at);
      const std::size_t length = Get16(bytes_, at + 2);
      at += 4;
      if (tag == kEnd) return CheckEnd(at, length);
      const std::size_t padded = length + length % 2;
      if (padded > bytes_.size() - at) return AliasStatus::Truncated;
      if (!ReadItem(tag, at, length)) return AliasStatus::BadItem;
      at += padded;
    }
    return AliasStatus::NoEnd;
  }

 private:
  AliasStatus CheckEnd(std::size_t at, std::size_t length) const {
    if (length != 0) return AliasStatus::BadItem;
    return at == bytes_.size() ? JoinPath() : AliasStatus::TrailingBytes;
  }

  bool ReadItem(std::uint16_t tag, std::size_t at, std::size_t length) {
    switch (tag) {
      case kFolderName:
        return First(tag) && (alias_.folderName = Text(at, length), true);
      case kUnicodeFileName:
        return First(tag) && GetUnicode(bytes_, at, length, alias_.fileName);
      case kUnicodeVolumeName:
        return First(tag) && GetUnicode(bytes_, at, length, alias_.volumeName);
      case kPosixPath:
        return First(tag) && (path_ = Text(at, length), true);
      case kMountPoint:
        return First(tag) && (mountPoint_ = Text(at, length), true);
      default:
        return true;
    }
  }

  bool First(std::uint16_t tag) {
    const bool first = (seen_ >> tag & 1u) == 0;
    seen_ |= 1u << tag;
    return first;
  }

  std::string Text(std::size_t at, std::size_t length) const {
    const auto first = bytes_.begin() + static_cast<std::ptrdiff_t>(at);
    return {first, first + static_cast<std::ptrdiff_t>(length)};
  }

  /// The path is relative to the volume's mount point, with or without a slash at its front.
  AliasStatus JoinPath() const {
    if ((seen_ >> kPosixPath & 1u) == 0) return AliasStatus::NoPath;
    const std::size_t name = path_.find_first_not_of('/');
    if (name == std::string::npos) return AliasStatus::BadPath;
    alias_.path = WithoutSlashesAtEnd(mountPoint_);
    alias_.path += '/';
    alias_.path.append(path_, name);
    return mountPoint_.empty() ? AliasStatus::BadPath : CheckPath(alias_.path);
  }

  const Bytes& bytes_;
  AliasRecord& alias_;
  std::string path_;
  std::string mountPoint_ = "/";
  std::uint32_t seen_ = 0;  // one bit for each known tag
};

}  // namespace

const char* AliasStatusText(AliasStatus status) {
  switch (status) {
    case AliasStatus::Ok:
      return "well formed";
    case AliasStatus::Truncated:
      return "cut short";
    case AliasStatus::WrongSize:
      return "its size field is not its size";
    case AliasStatus::WrongVersion:
      return "of another version than 2";
    case AliasStatus::WrongKind:
      return "neither of a file nor of a folder";
    case AliasStatus::BadName:
      return "a name is longer than its field";
    case AliasStatus::BadItem:
      return "an item does not hold what its tag says, or comes twice";
    case AliasStatus::NoEnd:
      return "without an end";
    case AliasStatus::TrailingBytes:
      return "something stands after its end";
    case AliasStatus::NoPath:
      return "without a POSIX path";
    case AliasStatus::BadPath:
      return "the path is empty, not absolute or has a NUL byte";
    case AliasStatus::PathTooLong:
      return "the path is too long";
  }
  return "";
}

AliasStatus EncodeAlias(const AliasRecord& alias, Bytes& bytes) {
  bytes.clear();
  const AliasStatus status = CheckPath(alias.path);
  if (status != AliasStatus::Ok) return status;
  const std::string_view path = alias.path;
  const std::string_view file = alias.fileName.empty() ? LastPart(path) : alias.fileName;
  const std::string_view folder =
      alias.folderName.empty() ? LastPart(FolderOf(path)) : alias.folderName;
  const std::string_view volume = alias.volumeName.empty() ? kVolumeName : alias.volumeName;
  const std::string_view relative = path.substr(std::min(path.find_first_not_of('/'), path.size()));
  if (relative.empty()) return AliasStatus::BadPath;
  if (std::max({file.size(), folder.size(), volume.size()}) > kAliasPathLimit) {
    return AliasStatus::BadName;
  }

  bytes.reserve(kFixedBytes + 3 * file.size() + path.size() + folder.size() + 64);
  PutFixedPart(bytes, alias, volume, file);
  PutItem(bytes, kFolderName, folder.empty() ? OldName(volume, 255) : OldName(folder, 255));
  PutUnicodeItem(bytes, kUnicodeFileName, file);
  PutUnicodeItem(bytes, kUnicodeVolumeName, volume);
  PutItem(bytes, kPosixPath, relative);
  PutItem(bytes, kMountPoint, "/");
  Put16(bytes, kEnd);
  Put16(bytes, 0);
  // At most some 21,000 bytes: the size field has room for them.
  bytes[kAtSize] = static_cast<std::uint8_t>(bytes.size() >> 8);
  bytes[kAtSize + 1] = static_cast<std::uint8_t>(bytes.size());
  return AliasStatus::Ok;
}

AliasStatus DecodeAlias(const Bytes& bytes, AliasRecord& alias) {
  if (bytes.size() < kFixedBytes) return AliasStatus::Truncated;
  if (Get16(bytes, kAtSize) != bytes.size()) return AliasStatus::WrongSize;
  if (Get16(bytes, kAtVersion) != kVersion) return AliasStatus::WrongVersion;
  const std::uint16_t kind = Get16(bytes, kAtKind);
  if (kind > 1) return AliasStatus::WrongKind;
  alias = {};
  alias.isFolder = kind == 1;
  if (!GetPascal(bytes, kAtVolumeName, kVolumeNameField, alias.volumeName) ||
      !GetPascal(bytes, kAtFileName, kFileNameField, alias.fileName)) {
    return AliasStatus::BadName;
  }
  alias.folderId = Get32(bytes, kAtFolderId);
  alias.fileId = Get32(bytes, kAtFileId);
  alias.fileDate = Get32(bytes, kAtFileDate);
  return ItemReader(bytes, alias).Read();
}

std::uint32_t MacTime(std::int64_t unixSeconds) {
  constexpr std::int64_t kFrom1904To1970 = 2'082'844'800;  // 66 years, 17 of them leap years
  constexpr std::int64_t kLast = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(
      std::clamp(unixSeconds, -kFrom1904To1970, kLast - kFrom1904To1970) + kFrom1904To1970);
}

}  // namespace velmora::host
