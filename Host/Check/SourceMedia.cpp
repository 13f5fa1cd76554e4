#include "Check/SourceMedia.h"

#include <utility>

#include "ADL/SourceSearch.h"
#include "Media/FactsOfSound.h"

namespace velmora::check {
namespace {

/// Nothing is known of it but that it is missing.
bool IsPlainlyMissing(const SourceMedia& media) {
  const media::Located& located = media.located;
  return located.result == media::SearchResult::Missing && located.candidates.empty() &&
         located.unread.empty() && !located.hiddenByForm && !located.hiddenByEncoding &&
         !media.facts && media.obstacle == media::Obstacle::None;
}

}  // namespace

void SourceMediaList::Add(SourceMedia media) {
  known_.push_back(IsPlainlyMissing(media) ? nullptr
                                           : std::make_unique<SourceMedia>(std::move(media)));
}

const SourceMedia& SourceMediaList::Missing() {
  static const SourceMedia kMissing;
  return kMissing;
}

media::Located LocateAsSystem(const std::string& folder, const std::string& rawLocation) {
  media::Located located;
  located.path = FindSourceFile(folder, rawLocation.c_str());
  if (!located.path.empty()) located.result = media::SearchResult::Found;
  return located;
}

SourceMedia ReadSourceFile(const std::string& path, FileStream stream) {
  SourceMedia media;
  media::ComparedFacts compared = media::ReadAndCompare(path, std::move(stream));
  media.facts = std::move(compared.read.facts);
  media.trouble = std::move(compared.read.trouble);
  media.obstacle = compared.obstacle;
  return media;
}

std::optional<field::SourceAudio> AudioOf(const SourceMedia& media) {
  if (!media.facts) return std::nullopt;
  return field::SourceAudio{.sampleRate = static_cast<double>(media.facts->sampleRate),
                            .frames = media.facts->frames,
                            .timeReference = media.facts->timeReference};
}

}  // namespace velmora::check
