#include "Session/HeardClips.h"

#include <algorithm>
#include <limits>
#include <string>
#include <tuple>
#include <utility>

#include "Base/Text.h"

namespace velmora::host {
namespace {

constexpr std::size_t kNoRegion = std::numeric_limits<std::size_t>::max();

enum class Zone { Full, FadeIn, FadeOut };

/// A stretch in which one region lies on top, in one part of its shape, over one other or over
/// silence.
struct Stretch {
  std::int64_t position = 0;
  std::int64_t end = 0;
  std::size_t top = kNoRegion;
  std::size_t under = kNoRegion;
  bool underIsFull =
      true;  ///< nothing of a third region sounds, and `under` is in no fade of its own
  Zone zone = Zone::Full;
  std::size_t owner = kNoRegion;  ///< whose clip has the stretch
  std::int64_t crossfade = 0;     ///< that leads into the clip that begins here

  [[nodiscard]] bool Continues(const Stretch& before) const {
    return position == before.end && top == before.top && under == before.under &&
           underIsFull == before.underIsFull && zone == before.zone;
  }
};

class ClipTeller {
 public:
  ClipTeller(const Session& session, const HeardSession& heard)
      : regions_(session.Regions()), shapes_(heard.Shapes()) {}

  HeardClips Tell(const HeardSession& heard, std::int64_t track) {
    heard.Walk(track, [this](const HeardStretch& stretch) {
      Add(stretch);
      return true;
    });
    // From the last run on: who owns a fade depends on who has what comes after it.
    for (std::size_t end = stretches_.size(); end > 0;) {
      const std::size_t begin = BeginOfRun(end);
      GiveToOwners(begin, end);
      end = begin;
    }
    MakeClips();
    MakeRemarks();
    return std::move(told_);
  }

 private:
  [[nodiscard]] Zone ZoneAt(std::size_t region, std::int64_t position) const {
    if (position < regions_[region].position + shapes_[region].fadeIn) return Zone::FadeIn;
    return position < FadeOutStart(region) ? Zone::Full : Zone::FadeOut;
  }
  [[nodiscard]] std::int64_t FadeOutStart(std::size_t region) const {
    return regions_[region].End() - shapes_[region].fadeOut;
  }

  void Add(const HeardStretch& heard) {
    const std::size_t count = heard.regions.size();
    Stretch stretch;
    stretch.position = heard.position;
    stretch.end = heard.end;
    stretch.top = heard.regions[count - 1];
    stretch.zone = ZoneAt(stretch.top, heard.position);
    if (count > 1) {
      stretch.under = heard.regions[count - 2];
      stretch.underIsFull = ZoneAt(stretch.under, heard.position) == Zone::Full;
    }
    if (!stretches_.empty() && stretch.Continues(stretches_.back())) {
      stretches_.back().end = stretch.end;
    } else {
      stretches_.push_back(stretch);
    }
  }

  /// A run: stretches one after the other that have the same region on top, in the same part of it.
  [[nodiscard]] std::size_t BeginOfRun(std::size_t end) const {
    std::size_t begin = end - 1;
    while (begin > 0 && stretches_[begin - 1].end == stretches_[begin].position &&
           stretches_[begin - 1].top == stretches_[begin].top &&
           stretches_[begin - 1].zone == stretches_[begin].zone) {
      --begin;
    }
    return begin;
  }

  /// A crossfade belongs to the clip that it leads out of. So a fade-in leaves what is under it its
  /// stretches, as long as its own region has some after them, and a fade-out keeps its own.
  void GiveToOwners(std::size_t begin, std::size_t end) {
    Stretch* const run = &stretches_[begin];
    const std::size_t count = end - begin;
    const std::size_t top = run->top;
    Stretch* const after = end < stretches_.size() && run[count - 1].end == run[count].position
                               ? run + count
                               : nullptr;
    for (std::size_t i = 0; i < count; ++i) run[i].owner = top;
    bool told = run->zone == Zone::Full || (count == 1 && run->under == kNoRegion);

    if (run->zone == Zone::FadeIn && run->under != kNoRegion) {
      std::size_t shared = 0;
      while (shared < count && run[shared].under == run->under) ++shared;
      if (shared < count || (after != nullptr && after->owner == top)) {
        for (std::size_t i = 0; i < shared; ++i) run[i].owner = run->under;
        (shared < count ? run + shared : after)->crossfade = run[shared - 1].end - run->position;
        told = count == 1 && run->underIsFull;
      }
    } else if (run->zone == Zone::FadeOut && after != nullptr &&
               after->owner == run[count - 1].under) {
      std::size_t shared = 0;
      while (shared < count && run[count - 1 - shared].under == after->owner) ++shared;
      after->crossfade = after->position - run[count - shared].position;
      told = count == 1 && run->underIsFull;
    }
    if (!told || !IsWhole(*run, run[count - 1].end)) untold_.emplace_back(top, run->zone);
  }

  /// Whether a fade is visible from its first sample to its last.
  [[nodiscard]] bool IsWhole(const Stretch& first, std::int64_t end) const {
    const SessionRegion& region = regions_[first.top];
    if (first.zone == Zone::FadeIn) {
      return first.position == region.position &&
             end == region.position + shapes_[first.top].fadeIn;
    }
    return first.zone == Zone::Full ||
           (first.position == FadeOutStart(first.top) && end == region.End());
  }

  void MakeClips() {
    std::vector<HeardClip>& clips = told_.clips;
    for (const Stretch& stretch : stretches_) {
      const bool follows = !clips.empty() && clips.back().end == stretch.position;
      if (follows && clips.back().region == stretch.owner) {
        clips.back().end = stretch.end;
      } else {
        HeardClip clip{stretch.owner, stretch.position, stretch.end};
        clip.crossfade = stretch.crossfade;
        if (clip.crossfade == 0 && stretch.zone == Zone::FadeIn && stretch.top == stretch.owner) {
          clip.fadeIn =
              regions_[clip.region].position + shapes_[clip.region].fadeIn - clip.position;
        }
        if (follows) FinishClip(clips.back(), clip.crossfade);
        if (!follows && !clips.empty()) FinishClip(clips.back(), 0);
        clips.push_back(clip);
      }
      fadesOut_ = stretch.zone == Zone::FadeOut && stretch.top == stretch.owner;
    }
    if (!clips.empty()) FinishClip(clips.back(), 0);
  }

  /// @param crossfade that leads out of the clip
  void FinishClip(HeardClip& clip, std::int64_t crossfade) const {
    if (fadesOut_ && crossfade == 0) {
      clip.fadeOut = clip.end - std::max(FadeOutStart(clip.region), clip.position);
    }
    clip.fadeIn = std::min(clip.fadeIn, clip.Length() - crossfade);
    clip.fadeOut = std::min(clip.fadeOut, clip.Length() - clip.fadeIn);
  }

  void MakeRemarks() {
    std::sort(untold_.begin(), untold_.end());
    untold_.erase(std::unique(untold_.begin(), untold_.end()), untold_.end());
    for (const auto& [region, zone] : untold_) {
      const bool in = zone == Zone::FadeIn;
      const AppliedShape& shape = shapes_[region];
      const std::int64_t length = in ? shape.fadeIn : shape.fadeOut;
      told_.remarks.push_back(
          {region, std::string("its fade-") + (in ? "in" : "out") + " of " +
                       Counted(static_cast<std::size_t>(length), "sample") +
                       " meets other regions in a way that clips cannot tell; it sounds "
                       "otherwise there"});
    }
  }

  const std::vector<SessionRegion>& regions_;
  const std::vector<AppliedShape>& shapes_;
  std::vector<Stretch> stretches_;
  std::vector<std::pair<std::size_t, Zone>> untold_;  ///< fades, by region
  bool fadesOut_ = false;  ///< the clip made last ends in a fade-out of its own
  HeardClips told_;
};

}  // namespace

HeardClips ClipsOf(const Session& session, const HeardSession& heard, std::int64_t track) {
  return ClipTeller(session, heard).Tell(heard, track);
}

void CutToFiles(const Session& session, const FramesOf& framesOf, std::vector<HeardClip>& clips) {
  for (std::size_t i = 0; i < clips.size(); ++i) {
    HeardClip& clip = clips[i];
    const SessionRegion& region = session.Regions()[clip.region];
    const std::optional<std::int64_t> frames = framesOf(region);
    if (!frames) continue;
    const std::int64_t crossOut = i + 1 < clips.size() ? clips[i + 1].crossfade : 0;
    const std::int64_t start = region.start + (clip.position - region.position);  // in the file
    const std::int64_t before = std::clamp<std::int64_t>(-start, 0, clip.Length());
    const std::int64_t after =
        std::clamp<std::int64_t>(start + clip.Length() - *frames, 0, clip.Length() - before);
    if (clip.fadeOut == 0 && crossOut == 0 && after <= clip.Length() - clip.fadeIn) {
      clip.end -= after;
    }
    if (clip.fadeIn == 0 && clip.crossfade == 0 &&
        before <= clip.Length() - std::max(clip.fadeOut, crossOut)) {
      clip.position += before;
    }
  }
  std::erase_if(clips, [](const HeardClip& clip) { return clip.Length() == 0; });
}

}  // namespace velmora::host
