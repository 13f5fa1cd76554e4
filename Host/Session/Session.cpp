#include "Session/Session.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace velmora::host {

std::size_t Session::Place(SessionRegion region) {
  const std::size_t index = regions_.size();
  const std::int64_t position = region.position;
  const std::int64_t end = region.End();
  Pieces& pieces = tracks_[region.track];
  regions_.push_back(std::move(region));
  if (end <= position) return index;
  const VisiblePiece piece{index, position, end};
  // Most regions come in the order of the timeline, and then cover nothing.
  if (pieces.empty() || pieces.rbegin()->second.end <= position) {
    pieces.emplace_hint(pieces.end(), position, piece);
  } else {
    Clear(pieces, position, end);
    pieces.emplace(position, piece);
  }
  return index;
}

/// Takes away what lies from `position` to `end`, leaving the parts on either side.
void Session::Clear(Pieces& pieces, std::int64_t position, std::int64_t end) {
  auto next = pieces.lower_bound(position);
  if (next != pieces.begin()) {
    VisiblePiece& before = std::prev(next)->second;
    const std::int64_t beforeEnd = before.end;
    if (beforeEnd > position) before.end = position;
    if (beforeEnd > end) {
      pieces.emplace_hint(next, end, VisiblePiece{before.region, end, beforeEnd});
      return;
    }
  }
  while (next != pieces.end() && next->second.end <= end) next = pieces.erase(next);
  if (next != pieces.end() && next->first < end) {
    auto cut = pieces.extract(next++);
    cut.key() = end;
    cut.mapped().position = end;
    pieces.insert(next, std::move(cut));
  }
}

std::vector<std::int64_t> Session::Tracks() const {
  std::vector<std::int64_t> tracks;
  tracks.reserve(tracks_.size());
  for (const auto& entry : tracks_) tracks.push_back(entry.first);
  return tracks;
}

std::vector<VisiblePiece> Session::Visible(std::int64_t track) const {
  std::vector<VisiblePiece> visible;
  const auto found = tracks_.find(track);
  if (found == tracks_.end()) return visible;
  visible.reserve(found->second.size());
  for (const auto& entry : found->second) visible.push_back(entry.second);
  return visible;
}

SessionSummary Session::Summary() const {
  SessionSummary summary;
  summary.tracks = tracks_.size();
  summary.regions = regions_.size();
  if (regions_.empty()) return summary;

  std::unordered_set<std::string_view> paths;
  summary.first = regions_.front().position;
  summary.end = regions_.front().position;
  for (const SessionRegion& region : regions_) {
    paths.insert(region.path);
    summary.first = std::min(summary.first, region.position);
    summary.end = std::max({summary.end, region.position, region.End()});
  }
  summary.files = paths.size();
  return summary;
}

}  // namespace velmora::host
