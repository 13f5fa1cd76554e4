#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "Media/FolderListing.h"
#include "Media/MediaSearch.h"
#include "Media/Once.h"
#include "Media/SameContents.h"

namespace velmora::media {

/// What an ADL tells of a file, in the form in which it is compared.
struct Evidence {
  std::string reference;               ///< in the form of ReferenceKey; empty for none
  std::optional<std::int64_t> length;  ///< in samples at `sampleRate`
  double sampleRate = 0;

  [[nodiscard]] bool Empty() const { return reference.empty() && !length; }
};

/// What the header of a candidate says.
struct FileHead {
  bool opened = false;  ///< libsndfile opens it
  std::string reference;
  std::int64_t frames = 0;
  std::int32_t sampleRate = 0;
};

/// True if a file has this reference, which is in the form of ReferenceKey and not empty.
[[nodiscard]] bool HasReference(const std::string& path, const std::string& reference);

enum class StepResult { Nothing, OneFile, Several };

struct StepOutcome {
  StepResult result = StepResult::Nothing;
  std::string path;                     ///< of the one file
  bool isBeside = false;                ///< it stands in the listed folder itself
  std::vector<std::string> candidates;  ///< of several
};

/// The files of one folder and below that one rule leads to. Headers are read when they are first
/// needed, once. Callable from many threads.
class Candidates {
 public:
  enum class Require { Nothing, Sound };

  /// @param contents outlives it
  Candidates(const FolderListing& listing, const std::vector<FolderListing::File>& files,
             Require require, ContentComparison& contents);

  /// Chooses by what the ADL tells: those whose reference or length fit stay, all if none fits.
  [[nodiscard]] StepOutcome Choose(const Evidence& evidence) const;

 private:
  struct ByFrames {
    std::int32_t sampleRate;
    std::int64_t frames;
    std::uint32_t place;
    bool operator<(const ByFrames& other) const {
      return std::tie(sampleRate, frames, place) <
             std::tie(other.sampleRate, other.frames, other.place);
    }
  };

  void ReadHeads() const;
  [[nodiscard]] std::vector<std::uint32_t> Fitting(const Evidence& evidence) const;
  void AddByLength(const Evidence& evidence, std::vector<std::uint32_t>& places) const;
  [[nodiscard]] bool Contradicts(std::size_t place, const Evidence& evidence) const;
  [[nodiscard]] StepOutcome Judge(const std::vector<std::uint32_t>& places) const;
  [[nodiscard]] const StepOutcome& JudgeAll() const;

  ContentComparison& contents_;
  std::vector<std::string> paths_;
  std::vector<bool> beside_;
  mutable Once headsRead_;
  mutable std::vector<FileHead> heads_;
  mutable std::vector<std::uint32_t> byReference_;  ///< places, by reference
  mutable std::vector<ByFrames> byFrames_;
  mutable Once allJudged_;
  mutable StepOutcome all_;
};

/// A listed folder with the candidates that searches have asked for. Large groups are kept: a
/// thousand sources may all look for a name that a thousand takes have. Callable from many threads.
class SearchedFolder {
 public:
  /// @param contents outlives it
  SearchedFolder(std::shared_ptr<const FolderListing> listing, ContentComparison& contents)
      : listing_(std::move(listing)), contents_(contents) {}

  [[nodiscard]] std::size_t FileCount() const { return listing_->FileCount(); }
  [[nodiscard]] const std::vector<UnreadFolder>& Unread() const { return listing_->Unread(); }

  /// One step of the search.
  [[nodiscard]] StepOutcome Step(Found rule, const std::vector<std::string>& names,
                                 const Wanted& wanted, const Evidence& evidence,
                                 const FolderListing::Cancelled& cancelled);

 private:
  [[nodiscard]] static std::string KeyOf(Found rule, const std::vector<std::string>& names,
                                         const Wanted& wanted, const Evidence& evidence);
  [[nodiscard]] std::vector<FolderListing::File> FilesOf(Found rule,
                                                         const std::vector<std::string>& names,
                                                         const Wanted& wanted,
                                                         const Evidence& evidence,
                                                         const FolderListing::Cancelled& cancelled);

  std::shared_ptr<const FolderListing> listing_;
  ContentComparison& contents_;
  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<const Candidates>> largeGroups_;  ///< by KeyOf
};

}  // namespace velmora::media
