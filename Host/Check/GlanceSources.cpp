#include "Check/GlanceSources.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Field/Keyword.h"
#include "Media/PlainWave.h"

namespace velmora::check {

std::optional<std::int32_t> ReadPlainNumber(const field::Value& value) {
  constexpr std::size_t kMostDigits = 9;
  if (value.quoted || value.text.empty() || value.text.size() > kMostDigits) return std::nullopt;
  std::int32_t number = 0;
  for (const char c : value.text) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + (c - '0');
  }
  return number;
}

bool GlanceSources::Take(const PlainLine& line) {
  if (field::IsKeyword(line.label, "Index")) {
    if (line.valueCount == 0 || (!sources_.empty() && !sources_.back().hasFile)) return false;
    const std::optional<std::int32_t> index = ReadPlainNumber(line.values[0]);
    if (index) sources_.emplace_back().index = *index;
    return index.has_value();
  }
  return !field::IsKeyword(line.label, "F") || TakeFile(line);
}

/// The location and the start stand where the system takes them from: a location of several words
/// without quotation marks may move the start.
bool GlanceSources::TakeFile(const PlainLine& line) {
  constexpr std::size_t kNeeded = 4;
  if (sources_.empty() || sources_.back().hasFile || line.valueCount < kNeeded) return false;
  Source& source = sources_.back();
  const field::Value& location = line.values[0];
  const field::Value& start = line.values[2];
  source.start = ReadPlainTime(start);
  if (!source.start && start.IsGiven()) return false;
  const bool isOneWord = !field::LooksLikeTime(line.values[1].text) && source.start &&
                         field::LooksLikeTime(line.values[3].text);
  if (!location.quoted && !isOneWord) return false;
  source.hasFile = true;
  source.locationAt = locations_.size();
  if (location.quoted) locations_ += '"';
  locations_ += location.text;
  if (location.quoted) locations_ += '"';
  source.locationSize = locations_.size() - source.locationAt;
  return true;
}

bool GlanceSources::Close() {
  if (!sources_.empty() && !sources_.back().hasFile) return false;
  const auto rises = [](const Source& a, const Source& b) { return a.index < b.index; };
  if (!std::is_sorted(sources_.begin(), sources_.end(), rises)) {
    std::sort(sources_.begin(), sources_.end(), rises);
  }
  const auto same = [](const Source& a, const Source& b) { return a.index == b.index; };
  return std::adjacent_find(sources_.begin(), sources_.end(), same) == sources_.end();
}

/// Most projects number their sources without gaps, so that a number tells the place.
GlanceSources::Source* GlanceSources::Find(std::int32_t index) {
  if (sources_.empty() || index < sources_.front().index) return nullptr;
  const auto place = static_cast<std::size_t>(index - sources_.front().index);
  if (place < sources_.size() && sources_[place].index == index) return &sources_[place];
  const auto at =
      std::lower_bound(sources_.begin(), sources_.end(), index,
                       [](const Source& source, std::int32_t i) { return source.index < i; });
  return at != sources_.end() && at->index == index ? &*at : nullptr;
}

bool GlanceSources::Play(const Use& use, Glance& found) {
  Source* const source = Find(use.source);
  if (source == nullptr) {
    found.loses = true;
    return true;
  }
  if (!source->isOpen && !Open(*source, use.projectRate, found)) return false;
  // The file is placed with all its channels, and the first is the only one that a mono file has.
  const bool hasOtherChannels = source->channels > 1 || use.channel != 1;
  if (source->channels > 0 && hasOtherChannels) found.loses = true;
  if (!source->file) return true;
  std::optional<std::int64_t> given;
  if (source->start) given = source->start->samples;
  source->cuts.Count(use.sourceIn, use.length, given, *source->file);
  if (use.length > 0) source->placedCuts.Count(use.sourceIn, use.length, given, *source->file);
  return true;
}

bool GlanceSources::Open(Source& source, double projectRate, Glance& found) {
  if (source.start && source.start->rates.sampleRate != projectRate) return false;
  source.isOpen = true;
  const std::string location = locations_.substr(source.locationAt, source.locationSize);
  FoundSource located = OpenSourceFile(folder_, location.c_str());
  if (located.path.empty()) {
    found.loses = true;
    return true;
  }
  const SourceMedia& media = MediaOf(std::move(located));
  if (media.obstacle != media::Obstacle::None) found.loses = true;
  const std::optional<field::SourceAudio> audio = AudioOf(media);
  if (!audio) return true;
  if (std::llround(projectRate) != media.facts->sampleRate) found.misplaces = true;
  source.channels = media.facts->channels;
  source.file = field::SpanOf(*audio, projectRate);
  return true;
}

const SourceMedia& GlanceSources::MediaOf(FoundSource found) {
  const auto [row, isNew] = media_.try_emplace(found.path);
  SourceMedia& media = row->second;
  if (!isNew) return media;
  media.facts = media::FactsOfPlainWave(found.stream.get());
  if (!media.facts) media = ReadSourceFile(found.path, std::move(found.stream));
  return media;
}

void GlanceSources::Judge(Glance& found) const {
  for (const Source& source : sources_) {
    if (!source.isOpen) continue;
    const field::FileStart start = DecideFileStart(source.cuts, source.start.has_value());
    if (start != field::FileStart::Given) found.misplaces = true;
    const field::StartTally& placed = source.placedCuts;
    const std::size_t inside = start == field::FileStart::Given       ? placed.underGiven
                               : start == field::FileStart::Reference ? placed.underReference
                                                                      : placed.underZero;
    if (inside < placed.cuts) found.loses = true;
  }
}

}  // namespace velmora::check
