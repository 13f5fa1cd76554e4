#include "Media/MediaSearch.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include "ADL/ShiftJis.h"
#include "ADL/SourceSearch.h"
#include "Media/Locations.h"
#include "Media/SameContents.h"
#include "Media/SearchRules.h"

namespace velmora::media {
namespace {

bool IsRegularFile(const std::string& path) {
  struct stat facts {};
  return stat(path.c_str(), &facts) == 0 && S_ISREG(facts.st_mode);
}

std::string Below(const std::string& folder, const std::string& tail) {
  return folder == "/" ? folder + tail : folder + '/' + tail;
}

/// The value's text without its quotation marks, as bytes.
std::string_view Unquoted(std::string_view raw) {
  if (!raw.empty() && raw.front() == '"') raw.remove_prefix(1);
  if (!raw.empty() && raw.back() == '"') raw.remove_suffix(1);
  return raw;
}

/// Calls `visit` with each place below `folder` where the system looks for a text, the nearest
/// first, until it answers true. As the system does it: ends of the text that begin at a slash,
/// which must not be its first character. What is too long for a path is not looked for.
template <class Visit>
bool AnyPlace(const std::string& folder, const std::string& text, const Visit& visit) {
  constexpr std::size_t kLongest = 4096;
  for (std::size_t slash = text.rfind('/'); slash != std::string::npos && slash > 0;
       slash = text.rfind('/', slash - 1)) {
    if (text.size() - slash > kLongest) return false;
    if (visit(Below(folder, text.substr(slash + 1)))) return true;
  }
  return false;
}

}  // namespace

const char* NameOf(Found found) {
  constexpr std::array kNames = {"location",  "path", "beside",    "name",
                                 "name-case", "stem", "reference", "length"};
  return kNames[static_cast<std::size_t>(found)];
}

struct FolderListings::Impl {
  ContentComparison contents;

  enum class Keep { ForGood, WhileThereIsRoom };

  /// Null if it was cancelled. Who comes while another thread lists the same folder waits for it.
  std::shared_ptr<SearchedFolder> Get(const std::string& folder, Keep keep,
                                      const FolderListing::Cancelled& cancelled) {
    const std::shared_ptr<Slot> slot = SlotOf(folder, keep);
    const std::lock_guard lock(slot->mutex);
    if (slot->searched != nullptr) return slot->searched;
    std::shared_ptr<FolderListing> listing = FolderListing::Read(folder, cancelled);
    if (listing == nullptr) return nullptr;
    slot->searched = std::make_shared<SearchedFolder>(std::move(listing), contents);
    if (keep == Keep::WhileThereIsRoom) MakeRoom(folder, slot->searched->FileCount());
    return slot->searched;
  }

 private:
  struct Slot {
    std::mutex mutex;
    std::shared_ptr<SearchedFolder> searched;
    bool forGood = false;
  };
  struct Passing {
    std::string folder;
    std::size_t files;
  };
  static constexpr std::size_t kMostFiles = 1000000;

  std::shared_ptr<Slot> SlotOf(const std::string& folder, Keep keep) {
    const std::lock_guard lock(mutex_);
    std::shared_ptr<Slot>& slot = slots_[folder];
    if (slot == nullptr) slot = std::make_shared<Slot>();
    if (keep == Keep::ForGood) slot->forGood = true;
    return slot;
  }

  /// Forgets the oldest projects' folders. Searches that use one keep it.
  void MakeRoom(const std::string& folder, std::size_t files) {
    const std::lock_guard lock(mutex_);
    passing_.push_back({folder, files});
    passingFiles_ += files;
    while (passingFiles_ > kMostFiles && passing_.size() > 1) {
      const auto slot = slots_.find(passing_.front().folder);
      if (slot != slots_.end() && !slot->second->forGood) slots_.erase(slot);
      passingFiles_ -= passing_.front().files;
      passing_.pop_front();
    }
  }

  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<Slot>> slots_;
  std::deque<Passing> passing_;
  std::size_t passingFiles_ = 0;
};

FolderListings::FolderListings() : impl_(std::make_unique<Impl>()) {}
FolderListings::~FolderListings() = default;

struct MediaSearch::Impl {
  FolderListings::Impl& listings;
  std::string projectFolder;
  std::vector<std::string> mediaFolders;
  FolderListing::Cancelled cancelled;
  std::vector<std::shared_ptr<SearchedFolder>> searched;  ///< the project's first; null until used

  SearchedFolder* Folder(std::size_t number) {
    using Keep = FolderListings::Impl::Keep;
    if (searched[number] == nullptr) {
      searched[number] = number == 0
                             ? listings.Get(projectFolder, Keep::WhileThereIsRoom, cancelled)
                             : listings.Get(mediaFolders[number - 1], Keep::ForGood, cancelled);
    }
    return searched[number].get();
  }

  /// The decoded path as it is written, from the project's folder on if it is a relative one.
  [[nodiscard]] std::string AsWritten(const Location& location) const {
    for (const std::string& path : location.paths) {
      std::string whole = path.front() == '/' ? path : Below(projectFolder, path);
      if (IsRegularFile(whole)) return whole;
    }
    return {};
  }

  Located ByRules(const Wanted& wanted, const Location& location);
  [[nodiscard]] std::vector<UnreadFolder> UnreadUpTo(std::size_t number) const;
  static void DropGuess(const Wanted& wanted, Located& located);
  void NoteWhatHides(const Wanted& wanted, const Location& location, Located& located) const;
};

/// What could not be read of the folders up to the one with this number.
std::vector<UnreadFolder> MediaSearch::Impl::UnreadUpTo(std::size_t number) const {
  std::vector<UnreadFolder> all;
  for (std::size_t i = 0; i <= number; ++i) {
    // One folder may stand below another.
    for (const UnreadFolder& unread : searched[i]->Unread()) {
      const bool isNew = std::none_of(all.begin(), all.end(), [&](const UnreadFolder& known) {
        return known.path == unread.path;
      });
      if (isNew) all.push_back(unread);
    }
  }
  return all;
}

/// Where not all was read a lone candidate is no certain find, for it may have a twin. It stays if
/// its reference is the one that is told, or if the location leads to its very place.
void MediaSearch::Impl::DropGuess(const Wanted& wanted, Located& located) {
  const bool isExact =
      located.hiddenByForm || located.hiddenByEncoding || located.found == Found::Location;
  if (located.unread.empty()) return;
  if (isExact || located.found == Found::Reference ||
      HasReference(located.path, ReferenceKey(wanted.reference))) {
    located.unread.clear();
    return;
  }
  Located doubtful;
  doubtful.result = SearchResult::Ambiguous;
  doubtful.candidates.push_back(std::move(located.path));
  doubtful.unread = std::move(located.unread);
  located = std::move(doubtful);
}

Located MediaSearch::Impl::ByRules(const Wanted& wanted, const Location& location) {
  constexpr std::array kRules = {Found::Name, Found::NameCase, Found::Stem, Found::Reference,
                                 Found::Length};
  const Evidence evidence{ReferenceKey(wanted.reference), wanted.length, wanted.sampleRate};
  for (const Found rule : kRules) {
    for (std::size_t number = 0; number < searched.size(); ++number) {
      SearchedFolder* const folder = Folder(number);
      if (folder == nullptr) return {};  // cancelled
      StepOutcome step = folder->Step(rule, location.names, wanted, evidence, cancelled);
      if (step.result == StepResult::Nothing) continue;
      Located located;
      if (step.result == StepResult::Several) {
        located.result = SearchResult::Ambiguous;
        located.candidates = std::move(step.candidates);
        return located;
      }
      located.result = SearchResult::Found;
      located.path = std::move(step.path);
      const bool beside = rule == Found::Name && number == 0 && step.isBeside;
      located.found = beside ? Found::Beside : rule;
      // The first rule goes no further than it must; for all others every folder was asked before.
      located.unread = UnreadUpTo(rule == Found::Name ? number : searched.size() - 1);
      return located;
    }
  }
  Located missing;
  missing.unread = UnreadUpTo(searched.size() - 1);
  return missing;
}

/// Tells whether the system would find the file if the text were decoded, and what alone hides it.
/// Of several copies the one is taken to which the text leads.
void MediaSearch::Impl::NoteWhatHides(const Wanted& wanted, const Location& location,
                                      Located& located) const {
  const auto leadsThere = [&](const std::string& place) {
    if (place != located.path &&
        !(IsRegularFile(place) && listings.contents.Same(place, located.path))) {
      return false;
    }
    located.path = place;
    return true;
  };
  const bool isQuoted = !wanted.rawLocation.empty() && wanted.rawLocation.front() == '"';
  if (isQuoted && AnyPlace(projectFolder, wanted.location, leadsThere)) {
    const std::string raw(Unquoted(wanted.rawLocation));
    located.hiddenByEncoding = ShiftJisToUtf8(raw.c_str()) != wanted.location;
    // Else the system looked there, and could not open it.
    if (!located.hiddenByEncoding) located.found = Found::Location;
    return;
  }
  // In a clean location a host stands before each of these.
  located.hiddenByForm =
      std::any_of(location.tails.begin(), location.tails.end(), [&](const std::string& tail) {
        return AnyPlace(projectFolder, "localhost/" + tail, leadsThere);
      });
}

MediaSearch::MediaSearch(FolderListings& listings, std::string projectFolder,
                         std::vector<std::string> mediaFolders, std::function<bool()> cancelled) {
  const std::size_t folders = mediaFolders.size() + 1;
  impl_ = std::make_unique<Impl>(Impl{*listings.impl_, std::move(projectFolder),
                                      std::move(mediaFolders), std::move(cancelled),
                                      std::vector<std::shared_ptr<SearchedFolder>>(folders)});
}

MediaSearch::~MediaSearch() = default;

Located MediaSearch::Find(const Wanted& wanted) {
  Located located;
  located.path = FindSourceFile(impl_->projectFolder, wanted.rawLocation.c_str());
  if (!located.path.empty()) {
    located.result = SearchResult::Found;
    return located;
  }
  Location location = DecodeLocation(wanted.location);
  AddSpellings(location, DecodeLocation(Unquoted(wanted.rawLocation)));
  located.path = impl_->AsWritten(location);
  if (!located.path.empty()) {
    located.result = SearchResult::Found;
    located.found = Found::Path;
  } else {
    located = impl_->ByRules(wanted, location);
  }
  if (located.result == SearchResult::Found) {
    impl_->NoteWhatHides(wanted, location, located);
    Impl::DropGuess(wanted, located);
  }
  return located;
}

}  // namespace velmora::media
