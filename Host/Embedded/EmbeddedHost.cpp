#include "Embedded/EmbeddedHost.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <limits>
#include <utility>

#include "BWF/AES31BWF.h"
#include "Embedded/AliasRecord.h"

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

MacStatus Stat(const char* path, struct stat& facts) {
  return ::stat(path, &facts) == 0 ? noErr : StatusOfErrno(errno);
}

MacStatus Stat(const std::string& path, struct stat& facts) {
  return Stat(path.c_str(), facts);
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
  std::string absolute;
  if (const MacStatus status = MakeAbsolute(path, absolute); status != noErr) return status;
  struct stat facts {};
  // An empty path is that of nothing, not of the current folder.
  if (const MacStatus status = Stat(absolute, facts); status != noErr) return status;
  if (absolute.find_first_not_of('/') == std::string::npos) return notAFileErr;
  return AliasOf(absolute, facts, files_.find(absolute), alias);
}

/// An alias that is known is used again only while it is sure to come out the same: the facts of
/// the file must be those that it was made of. The folder's number is safe where the file has no
/// other name, since moving it into another folder changes its stamp.
MacStatus EmbeddedHost::AliasOf(std::string_view path, const struct stat& facts,
                                KnownFiles::iterator known, std::vector<std::uint8_t>& alias) {
  const bool isKnown = known != files_.end();
  const FileStamp stamp = StampOf(facts);
  const bool hasOneName = facts.st_nlink == 1;
  if (isKnown && hasOneName && !known->second.alias.empty() && known->second.aliasStamp == stamp) {
    alias = known->second.alias;
    return noErr;
  }
  AliasRecord record;
  record.path = path;
  record.isFolder = S_ISDIR(facts.st_mode);
  record.fileId = FileId(facts);
  record.folderId = FolderId(record.path);
  record.fileDate = MacTime(facts.st_mtime);
  if (EncodeAlias(record, alias) != AliasStatus::Ok) return paramErr;
  if (isKnown && hasOneName && IsSettled(stamp)) {
    known->second.alias = alias;
    known->second.aliasStamp = stamp;
  }
  return noErr;
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
  Land(received, alias.path, files_.find(alias.path));
  return noErr;
}

std::int64_t EmbeddedHost::SteadyNanoseconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

std::int32_t EmbeddedHost::Place(const char* path, const RegionPlacement& placement,
                                 std::string_view name) {
  const std::string_view plain = path != nullptr ? path : "";
  // The alias of any other path leads to it in another form.
  const bool isPlain = plain.size() > 1 && plain.size() <= kAliasPathLimit && plain[0] == '/' &&
                       plain[1] != '/' && plain.back() != '/';
  if (!isPlain) return SessionHost::Place(path, placement, name);
  const std::int64_t now = clock_();
  KnownFiles::iterator known = files_.find(plain);
  const bool holds = known != files_.end() && known->second.seen.has_value() &&
                     now - *known->second.seen < kLookHolds;
  FillRegionMessage(placement, name, message_);
  std::vector<std::uint8_t>& alias = message_.parameters[0].data;
  struct stat facts {};
  if (holds) {
    alias = known->second.alias;
  } else {
    if (const MacStatus status = Stat(path, facts); status != noErr) return status;
    if (const MacStatus status = AliasOf(plain, facts, known, alias); status != noErr) {
      return status;
    }
  }
  ReceivedRegion received;
  const MacStatus refusal = ReadRegionMessage(message_, received);
  if (refusal == noErr && !holds && !S_ISREG(facts.st_mode)) return notAFileErr;
  if (known == files_.end()) known = files_.try_emplace(std::string(plain)).first;
  if (!holds) NoteLook(known->second, facts, now);
  if (refusal == noErr) Land(received, plain, known);
  return refusal;
}

/// A region that is refused comes 80 times in a row, so the look counts for it as well.
void EmbeddedHost::NoteLook(KnownFile& file, const struct stat& facts, std::int64_t now) {
  const bool isKept = !file.alias.empty() && file.aliasStamp == StampOf(facts);
  const bool holds = isKept && facts.st_nlink == 1 && S_ISREG(facts.st_mode);
  file.seen = holds ? std::optional(now) : std::nullopt;
}

/// @param known what is known of the file; the end for nothing
void EmbeddedHost::Land(const ReceivedRegion& received, std::string_view path,
                        KnownFiles::iterator known) {
  SessionRegion region;
  region.track = received.track;
  region.position = received.position;
  region.start = received.start;
  region.stop = received.stop;
  region.stream = received.stream;
  region.path = path;
  region.name = received.name;
  const std::size_t index = session_->Place(std::move(region));
  if (known == files_.end()) known = files_.try_emplace(std::string(path)).first;
  if (!known->second.isProbed) Probe(known->first, known->second);
  RemarkOn(index, known->second);
}

void EmbeddedHost::Probe(const std::string& path, KnownFile& file) {
  AES31BWF wave(path.c_str());
  file.isProbed = true;
  file.isWave = wave.IsValid();
  file.frames = wave.frames;
}

void EmbeddedHost::RemarkOn(std::size_t index, const KnownFile& file) {
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

  if (!file.isWave) {
    remark("its file is not a wave file that can be read");
  } else if (region.stop > 0 && static_cast<std::uint64_t>(region.stop) > file.frames) {
    remark("stops at sample " + number(region.stop) + " of a file of " + number(file.frames) +
           " samples");
  }
}

}  // namespace velmora::host
