#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Media/AudioFacts.h"
#include "Media/UnreadFolder.h"

namespace velmora::media {

/// How a file was found: by the system's own search, at the decoded path, by its name directly in
/// the ADL's folder, or by a rule of the search.
enum class Found { Location, Path, Beside, Name, NameCase, Stem, Reference, Length };

/// The name in JSON: "location", "path", "beside", "name", "name-case", "stem", "reference",
/// "length".
[[nodiscard]] const char* NameOf(Found found);

/// What an ADL tells of a file that is looked for.
struct Wanted {
  std::string rawLocation;  ///< the value's bytes, quotation marks included: what the system sees
  std::string location;     ///< UTF-8, quotation marks off
  std::string reference;    ///< USID; empty for none
  /// Samples at `sampleRate`; none if not given.
  std::optional<std::int64_t> length;
  std::optional<std::int64_t> start;  ///< for the rule of length together with time reference
  double sampleRate = 48000;
};

enum class SearchResult { Missing, Found, Ambiguous };

struct Located {
  SearchResult result = SearchResult::Missing;
  std::string path;  ///< of the file found
  Found found = media::Found::Location;
  /// Of an ambiguous search: the different files, the first 20 of them.
  std::vector<std::string> candidates;
  /// Of a search that found nothing for sure: what it could not read and would have had to. What
  /// is missing may stand there; a lone candidate may have a twin there, and is not taken.
  std::vector<UnreadFolder> unread;
  /// The text of the location names the file, but only once it is decoded: escapes, backslashes,
  /// drive letters or the lack of a slash hide it from the system (location-form).
  bool hiddenByForm = false;
  /// The system would find the file, were the text not in an encoding that it takes for another:
  /// nothing else in the text hides it.
  bool hiddenByEncoding = false;
};

/// The names of everything below a folder, listed once and shared by all searches of a run. Links
/// are followed, no folder twice. Callable from many threads. Media folders stay in memory (see
/// FolderListing for how much), projects' own folders as long as a million files are not exceeded.
class FolderListings {
 public:
  FolderListings();
  ~FolderListings();
  FolderListings(const FolderListings&) = delete;
  FolderListings& operator=(const FolderListings&) = delete;

 private:
  friend class MediaSearch;
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Looks for the audio of one project. Never guesses: see Located.
class MediaSearch {
 public:
  /// @param projectFolder the ADL's folder, absolute, without a slash at its end
  /// @param mediaFolders  further folders, absolute, in the order in which they are searched
  /// @param cancelled     asked now and then while folders are read; may be empty. What a search
  ///                      that was cancelled finds is to be thrown away.
  MediaSearch(FolderListings& listings, std::string projectFolder,
              std::vector<std::string> mediaFolders, std::function<bool()> cancelled = {});
  ~MediaSearch();

  [[nodiscard]] Located Find(const Wanted& wanted);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace velmora::media
