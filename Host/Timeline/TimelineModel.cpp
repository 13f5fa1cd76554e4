#include "Timeline/TimelineModel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace velmora::timeline {
namespace {

struct Suffix {
  std::string_view text;
  PieceKind kind;
};

constexpr auto kSuffixes = std::to_array<Suffix>({{"_FadeIn", PieceKind::FadeIn},
                                                  {"_XFade", PieceKind::Crossfade},
                                                  {"_FadeOut", PieceKind::FadeOut}});

/// The file's name without folder, extension, and the number that makes a taken name free again.
std::string_view BareName(std::string_view path) {
  const std::string_view file = path.substr(path.rfind('/') + 1);
  const std::string_view stem = file.substr(0, file.rfind('.'));
  const std::size_t dot = stem.rfind('.');
  if (dot == std::string_view::npos) return stem;
  const bool numbered = stem.find_first_not_of("0123456789", dot + 1) == std::string_view::npos;
  return numbered ? stem.substr(0, dot) : stem;
}

bool EndsBefore(const host::VisiblePiece& piece, std::int64_t sample) {
  return piece.end <= sample;
}

}  // namespace

PieceKind KindOfRegion(const host::SessionRegion& region) {
  for (const std::string_view name : {std::string_view(region.name), BareName(region.path)}) {
    for (const Suffix& suffix : kSuffixes) {
      if (name.ends_with(suffix.text)) return suffix.kind;
    }
  }
  return PieceKind::Region;
}

void TimelineModel::Clear() {
  session_ = {};
  lanes_.clear();
  first_ = end_ = 0;
}

void TimelineModel::Add(host::SessionRegion region) {
  const bool isFirst = session_.Regions().empty();
  first_ = isFirst ? region.position : std::min(first_, region.position);
  end_ = isFirst ? region.End() : std::max(end_, region.End());

  const std::int64_t track = region.track;
  const auto slot = std::lower_bound(
      lanes_.begin(), lanes_.end(), track,
      [](const Slot& known, std::int64_t wanted) { return known.lane.track < wanted; });
  if (slot == lanes_.end() || slot->lane.track != track) {
    lanes_.insert(slot, Slot{Lane{track, {}}, true});
  } else {
    slot->stale = true;
  }
  session_.Place(std::move(region));
}

const Lane& TimelineModel::LaneAt(std::size_t lane) {
  Slot& slot = lanes_.at(lane);
  if (slot.stale) {
    slot.lane.pieces = session_.Visible(slot.lane.track);
    slot.stale = false;
  }
  return slot.lane;
}

std::vector<LaneSpan> TimelineModel::Spans(std::size_t lane, const TimeScale& scale, double width) {
  std::vector<LaneSpan> spans;
  const std::vector<host::VisiblePiece>& pieces = LaneAt(lane).pieces;
  auto piece =
      std::partition_point(pieces.begin(), pieces.end(),
                           [left = scale.ToSample(0)](const host::VisiblePiece& candidate) {
                             return EndsBefore(candidate, left);
                           });
  const std::int64_t end = scale.ToSample(width);
  bool lastIsNarrow = false;
  for (; piece != pieces.end() && piece->position <= end; ++piece) {
    const double left = scale.ToX(piece->position);
    const double right = scale.ToX(piece->end);
    const bool narrow = right - left < 1;
    if (narrow && lastIsNarrow && left - spans.back().right < 1) {
      LaneSpan& run = spans.back();
      run.right = right;
      run.region = LaneSpan::kMerged;
      ++run.pieces;
      continue;
    }
    spans.push_back({left, right, piece->region, 1});
    lastIsNarrow = narrow;
  }
  return spans;
}

std::optional<std::size_t> TimelineModel::HitTest(std::size_t lane, const TimeScale& scale,
                                                  double x, double reach) {
  const std::vector<host::VisiblePiece>& pieces = LaneAt(lane).pieces;
  const std::int64_t sample = scale.ToSample(x);
  const auto next = std::partition_point(
      pieces.begin(), pieces.end(),
      [sample](const host::VisiblePiece& piece) { return EndsBefore(piece, sample); });
  if (next != pieces.end() && next->position <= sample) return next->region;

  std::optional<std::size_t> nearest;
  double distance = reach;
  const auto consider = [&](const host::VisiblePiece& piece) {
    const double left = scale.ToX(piece.position);
    const double right = scale.ToX(piece.end);
    if (right - left >= reach) return;
    const double gap = x < left ? left - x : x - right;
    if (gap < distance) {
      distance = gap;
      nearest = piece.region;
    }
  };
  if (next != pieces.begin()) consider(*(next - 1));
  if (next != pieces.end()) consider(*next);
  return nearest;
}

}  // namespace velmora::timeline
