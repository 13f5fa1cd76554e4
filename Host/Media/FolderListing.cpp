#include "Media/FolderListing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#if defined(__linux__)
#include <sys/vfs.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <set>
#include <utility>

#include "Base/FileAccess.h"
#include "Media/NameFolding.h"
#include "Media/WaveHeader.h"

namespace velmora::media {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};
using FolderStream = std::unique_ptr<DIR, CloseFolder>;

enum class What { File, Folder, LinkToFolder, Other, Unknown };

/// An error that says that there is nothing: a link into the void or to itself, a name that has
/// gone meanwhile.
bool LeadsNowhere(int error) {
  return error == ENOENT || error == ENOTDIR || error == ELOOP;
}

/// Of what the system refuses to look at; errno tells why.
What WhatIsRefused() {
  return LeadsNowhere(errno) ? What::Other : What::Unknown;
}

What WhatIs(mode_t mode) {
  if (S_ISREG(mode)) return What::File;
  return S_ISDIR(mode) ? What::Folder : What::Other;
}

/// Asks the file system only where the folder itself does not tell. Unknown leaves errno.
What WhatIs(DIR* folder, const dirent& entry) {
  if (entry.d_type == DT_REG) return What::File;
  if (entry.d_type == DT_DIR) return What::Folder;
  if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return What::Other;
  struct stat facts {};
  if (fstatat(dirfd(folder), entry.d_name, &facts, AT_SYMLINK_NOFOLLOW) != 0) {
    return WhatIsRefused();
  }
  if (!S_ISLNK(facts.st_mode)) return WhatIs(facts.st_mode);
  if (fstatat(dirfd(folder), entry.d_name, &facts, 0) != 0) return WhatIsRefused();
  return S_ISDIR(facts.st_mode) ? What::LinkToFolder : WhatIs(facts.st_mode);
}

/// The kernel's own file systems hold no audio, and more names than anybody wants to read.
bool IsKernelFileSystem(int folder) {
#if defined(__linux__)
  constexpr std::array kTypes = {0x9fa0U, 0x62656572U, 0x64626720U, 0x27e0ebU, 0x63677270U};
  struct statfs facts {};
  if (fstatfs(folder, &facts) != 0) return false;
  const auto type = static_cast<unsigned>(facts.f_type);
  return std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end();
#else
  static_cast<void>(folder);
  return false;
#endif
}

/// Folders that file systems and their tools keep at the top of a disk, closed to people. A disk
/// whose every file could be read but for these has been read.
bool IsOfTheFileSystem(std::string_view name) {
  constexpr auto kNames = std::to_array<std::string_view>(
      {"lost+found", "System Volume Information", "$RECYCLE.BIN", ".Spotlight-V100", ".fseventsd",
       ".DocumentRevisions-V100", ".TemporaryItems"});
  constexpr std::string_view kTrash = ".Trash";  // and .Trashes, .Trash-1000
  return name.starts_with(kTrash) || std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

std::string Joined(const std::string& folder, std::string_view name) {
  std::string path = folder;
  if (path.empty() || path.back() != '/') path += '/';
  return path.append(name);
}

bool IsPrintable(char c) {
  return c > 0x20 && c < 0x7F;
}

}  // namespace

Span AtOtherRate(std::int64_t samples, double rate, double otherRate) {
  constexpr Span kNone{0, -1};
  constexpr double kMostPerSample = 1000;  // beyond any two rates that audio has
  constexpr double kMost = 0x1p53;         // numbers that a double holds one by one
  if (!(rate > 0) || !(otherRate > 0) || otherRate / rate > kMostPerSample) return kNone;
  const double low = std::ceil((static_cast<double>(samples) - 0.5) * otherRate / rate);
  const double high = std::ceil((static_cast<double>(samples) + 0.5) * otherRate / rate) - 1;
  if (!(low > -kMost) || !(high < kMost)) return kNone;
  return {static_cast<std::int64_t>(low), static_cast<std::int64_t>(high)};
}

std::string ReferenceKey(std::string_view reference) {
  constexpr std::size_t kLongest = 32;  // EBU Tech 3285
  reference = reference.substr(0, reference.find('\0'));
  reference = reference.substr(0, kLongest);
  while (!reference.empty() && reference.front() == ' ') reference.remove_prefix(1);
  while (!reference.empty() && reference.back() == ' ') reference.remove_suffix(1);
  if (reference == "_") return {};
  const bool broken = std::any_of(reference.begin(), reference.end(),
                                  [](char c) { return c != ' ' && !IsPrintable(c); });
  const bool says = std::any_of(reference.begin(), reference.end(), [](char c) {
    return c != ' ' && c != '0' && c != '?' && c != '-' && c != '_';
  });
  return broken || !says ? std::string() : std::string(reference);
}

/// Lists real folders first and those behind links afterwards, so that a folder which can be
/// reached both ways goes by its real path.
class FolderListing::Lister {
 public:
  Lister(FolderListing& listing, const Cancelled& cancelled)
      : listing_(listing), cancelled_(cancelled) {}

  bool List(const std::string& folder) {
    if (cancelled_ && cancelled_()) return false;
    List({0, folder});
    while (!folders_.empty() || !links_.empty()) {
      if (cancelled_ && cancelled_()) return false;
      if (folders_.empty()) std::swap(folders_, links_);
      std::vector<Found> next;
      std::swap(next, folders_);
      std::sort(next.begin(), next.end());
      for (const Found& found : next) {
        if (cancelled_ && cancelled_()) return false;
        List(found);
      }
    }
    return true;
  }

 private:
  struct Found {
    std::uint32_t parent;
    std::string name;
    bool operator<(const Found& other) const {
      return parent != other.parent ? parent < other.parent : name < other.name;
    }
  };

  void List(const Found& found) {
    const bool isFirst = listing_.folders_.empty();
    const std::string path =
        isFirst ? found.name : Joined(listing_.PathOfFolder(found.parent), found.name);
    const int descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
      const bool isKept = !isFirst && IsOfTheFileSystem(found.name) && errno == EACCES;
      if (!isKept && (isFirst || !LeadsNowhere(errno))) NoteUnread(path, errno);
      return;
    }
    struct stat facts {};
    const bool isKnown = fstat(descriptor, &facts) == 0;
    if (isKnown && (!seen_.insert({facts.st_dev, facts.st_ino}).second ||
                    IsKernel(descriptor, facts.st_dev))) {
      close(descriptor);
      return;
    }
    const FolderStream stream(isKnown ? fdopendir(descriptor) : nullptr);
    if (stream == nullptr) {
      NoteUnread(path, errno);
      close(descriptor);
      return;
    }
    const auto number = static_cast<std::uint32_t>(listing_.folders_.size());
    const std::uint32_t depth = isFirst ? 0 : listing_.folders_[found.parent].depth + 1;
    listing_.folders_.push_back({found.parent, depth, found.name});
    // The end of a folder and an error look alike but for errno.
    for (errno = 0; const dirent* const entry = readdir(stream.get()); errno = 0) {
      Take(stream.get(), *entry, number);
    }
    if (errno != 0) NoteUnread(path, errno);
  }

  void NoteUnread(const std::string& path, int error) {
    constexpr std::size_t kMost = 5;
    if (listing_.unread_.size() < kMost) listing_.unread_.push_back({path, std::strerror(error)});
  }

  bool IsKernel(int descriptor, dev_t device) {
    if (device != lastDevice_) lastIsKernel_ = IsKernelFileSystem(descriptor);
    lastDevice_ = device;
    return lastIsKernel_;
  }

  void Take(DIR* stream, const dirent& entry, std::uint32_t folder) {
    const std::string_view name = entry.d_name;
    if (name == "." || name == "..") return;
    const What what = WhatIs(stream, entry);
    const int error = errno;
    switch (what) {
      case What::Folder:
        folders_.push_back({folder, std::string(name)});
        break;
      case What::LinkToFolder:
        links_.push_back({folder, std::string(name)});
        break;
      case What::File:
        if (listing_.files_.size() == std::numeric_limits<File>::max()) break;
        listing_.files_.push_back(
            {listing_.names_.size(), static_cast<std::uint32_t>(name.size()), folder});
        listing_.names_ += name;
        break;
      case What::Unknown:
        NoteUnread(Joined(listing_.PathOfFolder(folder), name), error);
        break;
      case What::Other:
        break;
    }
  }

  FolderListing& listing_;
  const Cancelled& cancelled_;
  std::vector<Found> folders_;
  std::vector<Found> links_;
  std::set<std::pair<dev_t, ino_t>> seen_;
  dev_t lastDevice_ = std::numeric_limits<dev_t>::max();
  bool lastIsKernel_ = false;
};

std::shared_ptr<FolderListing> FolderListing::Read(const std::string& folder,
                                                   const Cancelled& cancelled) {
  auto listing = std::make_shared<FolderListing>();
  if (!Lister(*listing, cancelled).List(folder)) return nullptr;
  return listing;
}

std::string_view FolderListing::NameOf(File file) const {
  return std::string_view(names_).substr(files_[file].nameBegin, files_[file].nameLength);
}

std::string FolderListing::PathOfFolder(std::uint32_t folder) const {
  if (folder == 0) return folders_[0].name;
  return Joined(PathOfFolder(folders_[folder].parent), folders_[folder].name);
}

std::string FolderListing::PathOf(File file) const {
  return Joined(PathOfFolder(files_[file].folder), NameOf(file));
}

void FolderListing::SortByPlace(std::vector<File>& files) const {
  struct Place {
    std::uint32_t depth;
    std::string path;
    File file;
    bool operator<(const Place& other) const {
      return depth != other.depth ? depth < other.depth : path < other.path;
    }
  };
  std::sort(files.begin(), files.end());
  files.erase(std::unique(files.begin(), files.end()), files.end());
  if (files.size() < 2) return;
  std::vector<Place> places;
  places.reserve(files.size());
  for (const File file : files) {
    places.push_back({folders_[files_[file].folder].depth, PathOf(file), file});
  }
  std::sort(places.begin(), places.end());
  std::transform(places.begin(), places.end(), files.begin(),
                 [](const Place& place) { return place.file; });
}

namespace {

std::string KeyOf(FolderListing::NameRule rule, std::string_view name) {
  switch (rule) {
    case FolderListing::NameRule::Exact:
      return std::string(name);
    case FolderListing::NameRule::IgnoringCase:
      return FoldedName(name);
    case FolderListing::NameRule::Stem:
      return FoldedName(StemOf(name));
  }
  return {};
}

/// What to look for in place of names. A name that does not end as sound files do may lack its
/// extension: then the dot in it belongs to the name.
std::set<std::string> KeysOf(FolderListing::NameRule rule, const std::vector<std::string>& names) {
  std::set<std::string> keys;
  for (const std::string& name : names) {
    keys.insert(KeyOf(rule, name));
    if (rule == FolderListing::NameRule::Stem && !HasSoundExtension(name)) {
      keys.insert(FoldedName(name));
    }
  }
  return keys;
}

}  // namespace

std::vector<FolderListing::File> FolderListing::ByName(
    NameRule rule, const std::vector<std::string>& names) const {
  const std::hash<std::string_view> hash;
  NameIndex& index = indexes_[static_cast<std::size_t>(rule)];
  index.built.Do([&] {
    index.rows.clear();
    index.rows.reserve(files_.size());
    for (File file = 0; file < files_.size(); ++file) {
      index.rows.push_back({hash(KeyOf(rule, NameOf(file))), file});
    }
    std::sort(index.rows.begin(), index.rows.end());
  });
  std::vector<File> files;
  for (const std::string& key : KeysOf(rule, names)) {
    const std::size_t wanted = hash(key);
    auto row = std::lower_bound(index.rows.begin(), index.rows.end(), Hashed{wanted, 0});
    for (; row != index.rows.end() && row->hash == wanted; ++row) {
      if (KeyOf(rule, NameOf(row->file)) == key) files.push_back(row->file);
    }
  }
  SortByPlace(files);
  return files;
}

bool FolderListing::ReadHeaders(const Cancelled& cancelled) const {
  if (headersRead_) return true;
  constexpr File kBetweenQuestions = 256;
  broadcasts_.clear();
  for (File file = 0; file < files_.size(); ++file) {
    if (cancelled && file % kBetweenQuestions == 0 && cancelled()) return false;
    const FileStream stream = OpenRegularFile(PathOf(file).c_str());
    if (stream == nullptr) continue;
    const std::optional<WaveHeader> header = ReadWaveHeader(stream.get());
    if (!header || !header->bext || !header->hasFormat || !header->hasData) continue;
    broadcasts_.push_back({file, static_cast<std::int32_t>(header->sampleRate), header->Frames(),
                           header->bext->timeReference,
                           ReferenceKey(header->bext->originatorReference)});
  }
  std::sort(broadcasts_.begin(), broadcasts_.end(),
            [](const Broadcast& a, const Broadcast& b) { return a.reference < b.reference; });
  byTime_.resize(broadcasts_.size());
  for (std::size_t i = 0; i < byTime_.size(); ++i) byTime_[i] = static_cast<std::uint32_t>(i);
  std::sort(byTime_.begin(), byTime_.end(), [this](std::uint32_t a, std::uint32_t b) {
    return TimeKey(broadcasts_[a]) < TimeKey(broadcasts_[b]);
  });
  for (const std::uint32_t place : byTime_) {
    const std::int32_t rate = broadcasts_[place].sampleRate;
    if (sampleRates_.empty() || sampleRates_.back() != rate) sampleRates_.push_back(rate);
  }
  headersRead_ = true;
  return true;
}

std::vector<FolderListing::File> FolderListing::ByReference(const std::string& key,
                                                            const Cancelled& cancelled) const {
  const std::lock_guard lock(headerMutex_);
  std::vector<File> files;
  if (key.empty() || !ReadHeaders(cancelled)) return files;
  auto row = std::lower_bound(broadcasts_.begin(), broadcasts_.end(), key,
                              [](const Broadcast& broadcast, const std::string& text) {
                                return broadcast.reference < text;
                              });
  for (; row != broadcasts_.end() && row->reference == key; ++row) files.push_back(row->file);
  SortByPlace(files);
  return files;
}

void FolderListing::TakeByTime(std::int32_t rate, std::int64_t time, Span frames,
                               std::vector<File>& files) const {
  const auto before = [this](std::uint32_t place, const TimeOrder& key) {
    return TimeKey(broadcasts_[place]) < key;
  };
  auto place =
      std::lower_bound(byTime_.begin(), byTime_.end(), TimeOrder{rate, time, frames.first}, before);
  for (; place != byTime_.end(); ++place) {
    const Broadcast& found = broadcasts_[*place];
    if (TimeKey(found) > TimeOrder{rate, time, frames.last}) return;
    files.push_back(found.file);
  }
}

std::vector<FolderListing::File> FolderListing::ByLengthAndTime(std::int64_t length,
                                                                std::int64_t time,
                                                                double sampleRate,
                                                                const Cancelled& cancelled) const {
  const std::lock_guard lock(headerMutex_);
  std::vector<File> files;
  if (!ReadHeaders(cancelled)) return files;
  for (const std::int32_t rate : sampleRates_) {
    TakeByTime(rate, time, {length, length}, files);
    const Span times = AtOtherRate(time, sampleRate, rate);
    const Span frames = AtOtherRate(length, sampleRate, rate);
    for (std::int64_t at = times.first; at <= times.last; ++at) TakeByTime(rate, at, frames, files);
  }
  SortByPlace(files);
  return files;
}

}  // namespace velmora::media
