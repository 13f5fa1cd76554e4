#include "Session/HeardSession.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

namespace velmora::host {
namespace {

/// Not more than the region sounds, however far its message says that it reaches.
std::int64_t SoundingLength(const SessionRegion& region) {
  return region.End() - region.position;
}

}  // namespace

FadeFactor AppliedShape::FactorAt(std::int64_t sample, std::int64_t length) const {
  if (sample < fadeIn) return {sample, fadeIn};
  const std::int64_t left = length - sample;
  if (left <= fadeOut) return {left, fadeOut};
  return {};
}

HeardSession::HeardSession(const Session& session)
    : session_(session), shapes_(session.Regions().size()) {
  for (std::size_t i = 0; i < shapes_.size(); ++i) {
    CutToLength(i);
    const SessionRegion& region = session.Regions()[i];
    if (SoundingLength(region) > 0) byTrack_[region.track].push_back(i);
  }
  for (const auto& [track, regions] : byTrack_) DropCoveredFadeOuts(regions);
}

void HeardSession::CutToLength(std::size_t index) {
  const SessionRegion& region = session_.Regions()[index];
  AppliedShape& shape = shapes_[index];
  if (region.shape.gainDb != 0) shape.gain = std::pow(10.0, region.shape.gainDb / 20);
  const std::int64_t length = std::max<std::int64_t>(SoundingLength(region), 0);
  const auto cut = [&](const char* name, std::int64_t wanted, std::int64_t most) {
    if (wanted > most) {
      remarks_.push_back({index, std::string("its ") + name + " of " + std::to_string(wanted) +
                                     " samples is longer than what it has; it is cut to " +
                                     std::to_string(most)});
    }
    return std::clamp<std::int64_t>(wanted, 0, most);
  };
  shape.fadeIn = cut("fade-in", region.shape.fadeIn, length);
  shape.fadeOut = cut("fade-out", region.shape.fadeOut, length - shape.fadeIn);
}

void HeardSession::DropCoveredFadeOuts(const std::vector<std::size_t>& regions) {
  // The longest fade-in that ends at a place, among the regions that are later than the one looked
  // at.
  std::map<std::int64_t, std::int64_t> fadeInEndingAt;
  for (auto region = regions.rbegin(); region != regions.rend(); ++region) {
    const SessionRegion& facts = session_.Regions()[*region];
    AppliedShape& shape = shapes_[*region];
    const auto later = fadeInEndingAt.find(facts.End());
    if (later != fadeInEndingAt.end() && shape.fadeOut <= later->second) shape.fadeOut = 0;
    if (shape.fadeIn > 0) {
      std::int64_t& longest = fadeInEndingAt[facts.position + shape.fadeIn];
      longest = std::max(longest, shape.fadeIn);
    }
  }
}

void HeardSession::Walk(std::int64_t track,
                        const std::function<bool(const HeardStretch&)>& visit) const {
  const auto regions = byTrack_.find(track);
  if (regions == byTrack_.end()) return;
  const bool fades = std::any_of(regions->second.begin(), regions->second.end(),
                                 [this](std::size_t region) { return shapes_[region].HasFades(); });
  if (fades) return WalkFades(regions->second, visit);
  for (const VisiblePiece& piece : session_.Visible(track)) {
    if (!visit({piece.position, piece.end, {&piece.region, 1}})) return;
  }
}

void HeardSession::WalkFades(const std::vector<std::size_t>& regions,
                             const std::function<bool(const HeardStretch&)>& visit) const {
  struct Edge {
    std::int64_t position;
    std::size_t region;
    enum { Begins, Changes, Ends } kind;
  };
  std::vector<Edge> edges;
  edges.reserve(regions.size() * 4);
  for (const std::size_t index : regions) {
    const SessionRegion& region = session_.Regions()[index];
    const AppliedShape& shape = shapes_[index];
    edges.push_back({region.position, index, Edge::Begins});
    if (shape.fadeIn > 0) edges.push_back({region.position + shape.fadeIn, index, Edge::Changes});
    if (shape.fadeOut > 0) edges.push_back({region.End() - shape.fadeOut, index, Edge::Changes});
    edges.push_back({region.End(), index, Edge::Ends});
  }
  std::stable_sort(edges.begin(), edges.end(),
                   [](const Edge& a, const Edge& b) { return a.position < b.position; });

  std::set<std::size_t> sounding;
  std::vector<std::size_t> layers;
  const auto hides = [this](std::size_t index, std::int64_t position) {
    const SessionRegion& region = session_.Regions()[index];
    return position >= region.position + shapes_[index].fadeIn &&
           position < region.End() - shapes_[index].fadeOut;
  };
  for (std::size_t i = 0; i < edges.size();) {
    const std::int64_t position = edges[i].position;
    for (; i < edges.size() && edges[i].position == position; ++i) {
      if (edges[i].kind == Edge::Begins) sounding.insert(edges[i].region);
      if (edges[i].kind == Edge::Ends) sounding.erase(edges[i].region);
    }
    if (sounding.empty()) continue;
    layers.clear();
    for (auto region = sounding.rbegin(); region != sounding.rend(); ++region) {
      layers.push_back(*region);
      if (hides(*region, position)) break;
    }
    std::reverse(layers.begin(), layers.end());
    if (!visit({position, edges[i].position, layers})) return;
  }
}

}  // namespace velmora::host
