#include "Ardour/SessionJob.h"

#include <algorithm>
#include <utility>

namespace velmora::ardour {
namespace {

/// With its length in front, so that it may hold any bytes.
std::string Counted(const std::string& text) {
  return std::to_string(text.size()) + ' ' + text + '\n';
}

std::string Line(std::int64_t number) {
  return std::to_string(number) + '\n';
}

}  // namespace

TimeWords::TimeWords(const ArdourPlan& plan) {
  samples_ = {0, plan.First(), plan.End()};
  for (const PlannedFile& file : plan.Files()) samples_.push_back(file.frames);
  for (const PlannedTrack& track : plan.Tracks()) {
    for (const PlannedRegion& region : track.regions) {
      samples_.insert(samples_.end(), {region.position, region.start, region.length,
                                       region.fadeIn.length, region.fadeOut.length});
    }
  }
  std::sort(samples_.begin(), samples_.end());
  samples_.erase(std::unique(samples_.begin(), samples_.end()), samples_.end());
}

bool TimeWords::Add(std::string word) {
  if (IsWhole()) return false;
  words_.push_back(std::move(word));
  return true;
}

const std::string& TimeWords::Of(std::int64_t samples) const {
  const auto found = std::lower_bound(samples_.begin(), samples_.end(), samples);
  return words_[static_cast<std::size_t>(found - samples_.begin())];
}

std::string JobText(const std::string& folder, const std::string& name, const ArdourPlan& plan,
                    const TimeWords& times) {
  std::string text = Counted(folder) + Counted(name) + Line(plan.SampleRate());
  text += Line(static_cast<std::int64_t>(plan.Tracks().size()));
  for (const PlannedTrack& track : plan.Tracks()) {
    text += Line(track.channels) + Counted(track.name);
  }
  text += Line(static_cast<std::int64_t>(times.Samples().size()));
  for (const std::int64_t samples : times.Samples()) text += Line(samples);
  return text;
}

}  // namespace velmora::ardour
