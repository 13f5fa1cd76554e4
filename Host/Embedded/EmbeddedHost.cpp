#include "Embedded/EmbeddedHost.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <limits>
#include <utility>

#include "BWF/AES31BWF.h"
#include "Embedded/AliasRecord.h"
#include "Embedded/MacStatus.h"
#include "Embedded/RegionMessageReader.h"

namespace velmora::host {
namespace {

MacStatus StatusOfErrno(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return fnfErr;
    case ENAMETOOLONG:
      return bdNamErr;
    case EACCES:
    case EPERM:
      return permErr;
    case ENOMEM:
      return memFullErr;
    default:
      return ioErr;
  }
}

MacStatus Stat(const std::string& path, struct stat& facts) {
  return ::stat(path.c_str(), &facts) == 0 ? noErr : StatusOfErrno(errno);
}

MacStatus MakeAbsolute(const char* path, std::string& absolute) {
  if (path[0] != '/' && path[0] != '\0') {
    std::array<char, kAliasPathLimit + 1> folder{};
    if (::getcwd(folder.data(), folder.size()) == nullptr) {
      return errno == ERANGE ? bdNamErr : StatusOfErrno(errno);
    }
    absolute = folder.data();
    absolute += '/';
  }
  absolute += path;
  return absolute.size() <= kAliasPathLimit ? noErr : bdNamErr;
}

/// The id that an inode gives; the record has room for its low 32 bits.
std::uint32_t FileId(const struct stat& facts) {
  return static_cast<std::uint32_t>(facts.st_ino);
}

/// The id of the folder around a path; 0 if it cannot be had, which the record allows.
std::uint32_t FolderId(const std::string& path) {
  const std::size_t name = path.find_last_not_of('/');
  const std::size_t slash = path.find_last_of('/', name);
  struct stat facts {};
  return Stat(path.substr(0, slash + 1), facts) == noErr ? FileId(facts) : 0;
}

}  // namespace

std::int32_t EmbeddedHost::MakeAlias(const char* path, std::vector<std::uint8_t>& alias) {
  alias.clear();
  if (path == nullptr) return paramErr;
  AliasRecord record;
  if (const MacStatus status = MakeAbsolute(path, record.path); status != noErr) return status;
  struct stat facts {};
  // An empty path is that of nothing, not of the current folder.
  if (const MacStatus status = Stat(record.path, facts); status != noErr) return status;
  if (record.path.find_first_not_of('/') == std::string::npos) return notAFileErr;

  record.isFolder = S_ISDIR(facts.st_mode);
  record.fileId = FileId(facts);
  record.folderId = FolderId(record.path);
  record.fileDate = MacTime(facts.st_mtime);
  return EncodeAlias(record, alias) == AliasStatus::Ok ? noErr : paramErr;
}

std::int32_t EmbeddedHost::Send(const RegionMessage& message) {
  ReceivedRegion received;
  if (const MacStatus status = ReadRegionMessage(message, received); status != noErr) {
    return status;
  }
  AliasRecord alias;
  if (DecodeAlias(*received.alias, alias) != AliasStatus::Ok) return paramErr;
  struct stat facts {};
  if (const MacStatus status = Stat(alias.path, facts); status != noErr) return status;
  if (!S_ISREG(facts.st_mode)) return notAFileErr;

  SessionRegion region;
  region.track = received.track;
  region.position = received.position;
  region.start = received.start;
  region.stop = received.stop;
  region.stream = received.stream;
  region.path = std::move(alias.path);
  region.name = received.name;
  RemarkOn(session_->Place(std::move(region)));
  return noErr;
}

EmbeddedHost::WaveFacts EmbeddedHost::Probe(const std::string& path) {
  const auto [entry, isNew] = waves_.try_emplace(path);
  if (isNew) {
    AES31BWF wave(path.c_str());
    entry->second.valid = wave.IsValid();
    entry->second.frames = wave.frames;
  }
  return entry->second;
}

void EmbeddedHost::RemarkOn(std::size_t index) {
  const SessionRegion& region = session_->Regions()[index];
  const auto remark = [&](std::string text) { remarks_.push_back({index, std::move(text)}); };
  const auto number = [](auto value) { return std::to_string(value); };

  if (region.position < 0) {
    remark("begins before the timeline, at sample " + number(region.position));
  }
  if (region.start < 0) remark("starts at sample " + number(region.start) + " of its file");
  if (region.Length() <= 0) {
    remark("stops at sample " + number(region.stop) + " of its file, where it starts or before (" +
           number(region.start) + "): nothing is heard");
  }
  if (region.Length() == 1) remark("is one sample long");
  if (region.End() == std::numeric_limits<std::int64_t>::max()) {
    remark("ends beyond the last sample that a timeline can have");
  }
  if (region.stream != 1) remark("asks for stream " + number(region.stream));
  if (region.name.empty()) remark("has no name");

  const WaveFacts wave = Probe(region.path);
  if (!wave.valid) {
    remark("its file is not a wave file that can be read");
  } else if (region.stop > 0 && static_cast<std::uint64_t>(region.stop) > wave.frames) {
    remark("stops at sample " + number(region.stop) + " of a file of " + number(wave.frames) +
           " samples");
  }
}

}  // namespace velmora::host
