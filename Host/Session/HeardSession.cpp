#include "Session/HeardSession.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "Base/Text.h"

namespace velmora::host {

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
    if (region.SoundingLength() > 0) byTrack_[region.track].push_back(i);
  }
  for (const auto& [track, regions] : byTrack_) DropCoveredFadeOuts(regions);
}

void HeardSession::CutToLength(std::size_t index) {
  const SessionRegion& region = session_.Regions()[index];
  AppliedShape& shape = shapes_[index];
  const double gain = std::pow(10.0, region.shape.gainDb / 20);
  if (std::isfinite(gain)) {
    shape.gain = gain;
  } else {
    remarks_.push_back({index, "its gain is no number that can be applied; it is left as it is"});
  }
  const std::int64_t length = std::max<std::int64_t>(region.SoundingLength(), 0);
  const auto cut = [&](const char* name, std::int64_t wanted, std::int64_t most) {
    if (wanted > most) {
      remarks_.push_back({index, std::string("its ") + name + " of " +
                                     Counted(static_cast<std::size_t>(wanted), "sample") +
                                     " is longer than what it has; it is cut to " +
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
  HeardTrack stretches(*this, track);
  HeardStretch stretch;
  while (stretches.Next(stretch) && visit(stretch)) {
  }
}

HeardTrack::HeardTrack(const HeardSession& heard, std::int64_t track) : heard_(heard) {
  const auto regions = heard.byTrack_.find(track);
  if (regions == heard.byTrack_.end()) return;
  const bool fades =
      std::any_of(regions->second.begin(), regions->second.end(),
                  [&](std::size_t region) { return heard.shapes_[region].HasFades(); });
  if (fades) {
    CollectEdges(regions->second);
  } else {
    pieces_ = heard.session_.Visible(track);
  }
}

bool HeardTrack::Next(HeardStretch& stretch) {
  if (!edges_.empty()) return NextFaded(stretch);
  if (next_ == pieces_.size()) return false;
  const VisiblePiece& piece = pieces_[next_++];
  stretch = {piece.position, piece.end, {&piece.region, 1}};
  return true;
}

void HeardTrack::CollectEdges(const std::vector<std::size_t>& regions) {
  edges_.reserve(regions.size() * 4);
  for (const std::size_t index : regions) {
    const SessionRegion& region = heard_.session_.Regions()[index];
    const AppliedShape& shape = heard_.shapes_[index];
    edges_.push_back({region.position, index, Edge::Begins});
    if (shape.fadeIn > 0) edges_.push_back({region.position + shape.fadeIn, index, Edge::Changes});
    if (shape.fadeOut > 0) edges_.push_back({region.End() - shape.fadeOut, index, Edge::Changes});
    edges_.push_back({region.End(), index, Edge::Ends});
  }
  std::stable_sort(edges_.begin(), edges_.end(),
                   [](const Edge& a, const Edge& b) { return a.position < b.position; });
}

bool HeardTrack::NextFaded(HeardStretch& stretch) {
  while (next_ < edges_.size()) {
    const std::int64_t position = edges_[next_].position;
    for (; next_ < edges_.size() && edges_[next_].position == position; ++next_) {
      const Edge& edge = edges_[next_];
      if (edge.kind == Edge::Begins) sounding_.insert(edge.region);
      if (edge.kind == Edge::Ends) sounding_.erase(edge.region);
    }
    if (sounding_.empty()) continue;
    CollectLayers(position);
    // What sounds has an end, so an edge follows.
    stretch = {position, edges_[next_].position, layers_};
    return true;
  }
  return false;
}

void HeardTrack::CollectLayers(std::int64_t position) {
  layers_.clear();
  for (auto region = sounding_.rbegin(); region != sounding_.rend(); ++region) {
    layers_.push_back(*region);
    if (Hides(*region, position)) break;
  }
  std::reverse(layers_.begin(), layers_.end());
}

bool HeardTrack::Hides(std::size_t index, std::int64_t position) const {
  const SessionRegion& region = heard_.session_.Regions()[index];
  const AppliedShape& shape = heard_.shapes_[index];
  return position >= region.position + shape.fadeIn && position < region.End() - shape.fadeOut;
}

}  // namespace velmora::host
