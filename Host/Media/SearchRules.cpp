#include "Media/SearchRules.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <utility>

#include "Media/AudioFacts.h"

namespace velmora::media {
namespace {

constexpr std::size_t kMostNamed = 20;   // candidates that an ambiguous search names
constexpr std::size_t kLargeGroup = 16;  // from so many candidates on a group is kept

using File = FolderListing::File;

FileHead HeadOf(const std::string& path) {
  FileHead head;
  const FactsOrTrouble read = ReadFacts(path);
  if (!read.facts) return head;
  head.opened = true;
  head.reference = ReferenceKey(read.facts->originatorReference);
  head.frames = read.facts->frames;
  head.sampleRate = read.facts->sampleRate;
  return head;
}

/// A length may be counted at the project's rate or at the file's own.
bool LengthFits(const FileHead& head, const Evidence& evidence) {
  return head.frames == *evidence.length ||
         AtOtherRate(*evidence.length, evidence.sampleRate, head.sampleRate).Holds(head.frames);
}

}  // namespace

bool HasReference(const std::string& path, const std::string& reference) {
  return !reference.empty() && HeadOf(path).reference == reference;
}

Candidates::Candidates(const FolderListing& listing, const std::vector<File>& files,
                       Require require, ContentComparison& contents)
    : contents_(contents) {
  for (const File file : files) {
    std::string path = listing.PathOf(file);
    if (require == Require::Sound) {
      FileHead head = HeadOf(path);
      if (!head.opened) continue;
      heads_.push_back(std::move(head));
    }
    paths_.push_back(std::move(path));
    beside_.push_back(listing.IsBeside(file));
  }
}

void Candidates::ReadHeads() const {
  headsRead_.Do([this] {
    heads_.reserve(paths_.size());
    // None is there, or all are, or those that a lack of memory left.
    std::transform(paths_.begin() + static_cast<std::ptrdiff_t>(heads_.size()), paths_.end(),
                   std::back_inserter(heads_), HeadOf);
    byFrames_.clear();
    byReference_.resize(heads_.size());
    std::iota(byReference_.begin(), byReference_.end(), 0U);
    std::stable_sort(byReference_.begin(), byReference_.end(),
                     [this](std::uint32_t a, std::uint32_t b) {
                       return heads_[a].reference < heads_[b].reference;
                     });
    for (std::uint32_t place = 0; place < heads_.size(); ++place) {
      const FileHead& head = heads_[place];
      if (head.opened) byFrames_.push_back({head.sampleRate, head.frames, place});
    }
    std::sort(byFrames_.begin(), byFrames_.end());
  });
}

std::vector<std::uint32_t> Candidates::Fitting(const Evidence& evidence) const {
  std::vector<std::uint32_t> places;
  if (evidence.Empty()) return places;
  ReadHeads();
  if (!evidence.reference.empty()) {
    auto place = std::lower_bound(byReference_.begin(), byReference_.end(), evidence.reference,
                                  [this](std::uint32_t at, const std::string& reference) {
                                    return heads_[at].reference < reference;
                                  });
    for (; place != byReference_.end() && heads_[*place].reference == evidence.reference; ++place) {
      places.push_back(*place);
    }
  }
  if (evidence.length) AddByLength(evidence, places);
  std::sort(places.begin(), places.end());
  places.erase(std::unique(places.begin(), places.end()), places.end());
  return places;
}

void Candidates::AddByLength(const Evidence& evidence, std::vector<std::uint32_t>& places) const {
  const auto addRange = [&](std::int32_t rate, Span frames) {
    auto row =
        std::lower_bound(byFrames_.begin(), byFrames_.end(), ByFrames{rate, frames.first, 0});
    for (; row != byFrames_.end() && row->sampleRate == rate && row->frames <= frames.last; ++row) {
      places.push_back(row->place);
    }
  };
  for (auto rate = byFrames_.begin(); rate != byFrames_.end();) {
    addRange(rate->sampleRate, {*evidence.length, *evidence.length});
    addRange(rate->sampleRate,
             AtOtherRate(*evidence.length, evidence.sampleRate, rate->sampleRate));
    rate = std::upper_bound(rate, byFrames_.end(), *rate, [](const ByFrames& a, const ByFrames& b) {
      return a.sampleRate < b.sampleRate;
    });
  }
}

bool Candidates::Contradicts(std::size_t place, const Evidence& evidence) const {
  if (evidence.reference.empty() || !evidence.length) return false;
  ReadHeads();
  const FileHead& head = heads_[place];
  return head.opened && !head.reference.empty() && head.reference != evidence.reference &&
         !LengthFits(head, evidence);
}

StepOutcome Candidates::Judge(const std::vector<std::uint32_t>& places) const {
  StepOutcome outcome;
  std::vector<std::string> paths;
  paths.reserve(places.size());
  for (const std::uint32_t place : places) paths.push_back(paths_[place]);
  const std::vector<std::size_t> different = contents_.Different(paths, kMostNamed);
  if (different.size() == 1) {
    outcome.result = StepResult::OneFile;
    outcome.path = paths.front();
    outcome.isBeside = beside_[places.front()];
  } else if (!different.empty()) {
    outcome.result = StepResult::Several;
    for (const std::size_t i : different) outcome.candidates.push_back(paths[i]);
  }
  return outcome;
}

const StepOutcome& Candidates::JudgeAll() const {
  allJudged_.Do([this] {
    std::vector<std::uint32_t> places(paths_.size());
    std::iota(places.begin(), places.end(), 0U);
    all_ = Judge(places);
  });
  return all_;
}

StepOutcome Candidates::Choose(const Evidence& evidence) const {
  if (paths_.empty()) return {};
  // Nothing that the header of a lone candidate says can matter unless both are told.
  const bool isLone = paths_.size() == 1;
  if (!isLone) {
    const std::vector<std::uint32_t> fitting = Fitting(evidence);
    if (!fitting.empty()) return Judge(fitting);
  }
  const StepOutcome& all = JudgeAll();
  if (all.result == StepResult::OneFile && Contradicts(0, evidence)) return {};
  return all;
}

StepOutcome SearchedFolder::Step(Found rule, const std::vector<std::string>& names,
                                 const Wanted& wanted, const Evidence& evidence,
                                 const FolderListing::Cancelled& cancelled) {
  const std::string key = KeyOf(rule, names, wanted, evidence);
  {
    const std::lock_guard lock(mutex_);
    const auto kept = largeGroups_.find(key);
    if (kept != largeGroups_.end()) return kept->second->Choose(evidence);
  }
  const std::vector<File> files = FilesOf(rule, names, wanted, evidence, cancelled);
  if (files.empty()) return {};
  const bool anyName = rule == Found::Name || rule == Found::NameCase;
  const auto group = std::make_shared<const Candidates>(
      *listing_, files, anyName ? Candidates::Require::Nothing : Candidates::Require::Sound,
      contents_);
  if (files.size() >= kLargeGroup) {
    const std::lock_guard lock(mutex_);
    largeGroups_.emplace(key, group);
  }
  return group->Choose(evidence);
}

std::string SearchedFolder::KeyOf(Found rule, const std::vector<std::string>& names,
                                  const Wanted& wanted, const Evidence& evidence) {
  std::string key(1, static_cast<char>(rule));
  if (rule == Found::Reference) return key + evidence.reference;
  if (rule == Found::Length) {
    return key + std::to_string(wanted.length.value_or(-1)) + ' ' +
           std::to_string(wanted.start.value_or(-1)) + ' ' + std::to_string(wanted.sampleRate);
  }
  for (const std::string& name : names) key.append(name).push_back('/');
  return key;
}

std::vector<File> SearchedFolder::FilesOf(Found rule, const std::vector<std::string>& names,
                                          const Wanted& wanted, const Evidence& evidence,
                                          const FolderListing::Cancelled& cancelled) {
  using NameRule = FolderListing::NameRule;
  switch (rule) {
    case Found::Name:
      return listing_->ByName(NameRule::Exact, names);
    case Found::NameCase:
      return listing_->ByName(NameRule::IgnoringCase, names);
    case Found::Stem:
      return listing_->ByName(NameRule::Stem, names);
    case Found::Reference:
      return listing_->ByReference(evidence.reference, cancelled);
    case Found::Length:
      if (!wanted.length || !wanted.start) return {};
      return listing_->ByLengthAndTime(*wanted.length, *wanted.start, wanted.sampleRate, cancelled);
    default:
      return {};
  }
}

}  // namespace velmora::media
