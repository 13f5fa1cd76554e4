#include "Bounce/BouncePlan.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "Session/RegionLabel.h"

namespace velmora::bounce {

using host::RegionLabel;
using host::SessionRegion;

BouncePlan::BouncePlan(const host::TargetInput& input) : input_(input) {
  if (!TakeRate() || !TakeSpan()) return;
  TakeRegions();
  TakeTracks();
  for (const host::Remark& remark : Heard().Remarks()) {
    notes_.push_back(RegionLabel(input, kept_->Original(remark.region)) + ": " + remark.text);
  }
}

bool BouncePlan::TakeRate() {
  const float rate = input_.rates.sampleRate;
  if (rate >= 1 && rate < 2147483648.0F) {
    sampleRate_ = static_cast<std::uint32_t>(std::lround(rate));
    return true;
  }
  trouble_ = "the session has no sample rate that a wave file could have";
  return false;
}

bool BouncePlan::TakeSpan() {
  const host::SessionSummary span = input_.session.Summary();
  first_ = span.first;
  end_ = span.end;
  if (first_ < 0) {
    trouble_ =
        "the session begins at sample " + std::to_string(first_) +
        ", before zero, and a Broadcast Wave file cannot say so; spot it at a later position";
  } else if (first_ == end_) {
    trouble_ = "no region of the session has a length";
  }
  return trouble_.empty();
}

void BouncePlan::TakeRegions() {
  const std::vector<SessionRegion>& regions = input_.session.Regions();
  std::vector<bool> isLeftOut(regions.size());
  bool sounds = false;
  fileOf_.resize(regions.size());
  for (std::size_t i = 0; i < regions.size(); ++i) {
    const SessionRegion& region = regions[i];
    const auto tell = [&](std::vector<std::string>& lines, const std::string& text) {
      lines.push_back(RegionLabel(input_, i) + ": " + text);
    };
    if (region.Length() <= 0) {
      tell(notes_, host::kHasNoLength);
      continue;
    }
    fileOf_[i] = sources_.Add(region.path);
    const std::string cause = WhyNot(region, fileOf_[i]);
    isLeftOut[i] = !cause.empty();
    if (isLeftOut[i]) {
      tell(leftOut_, cause);
      continue;
    }
    sounds = true;
    const SourceFacts& facts = sources_.Facts(fileOf_[i]);
    for (const std::string& odd : host::OddAbout(region, facts.frames, facts.isWaveOf8Bits)) {
      tell(notes_, odd);
    }
  }
  if (!sounds) trouble_ = "of no region of the session the audio can be played";
  kept_.emplace(input_, isLeftOut);
}

std::string BouncePlan::WhyNot(const SessionRegion& region, std::size_t file) const {
  const SourceFacts& facts = sources_.Facts(file);
  if (!facts.trouble.empty()) return region.path + " cannot be read: " + facts.trouble;
  if (std::int64_t{facts.sampleRate} == std::int64_t{sampleRate_}) return {};
  return host::OfAnotherRate(region, facts.sampleRate, sampleRate_);
}

void BouncePlan::TakeTracks() {
  std::map<std::int64_t, std::size_t> widths;
  for (const std::int64_t track : input_.session.Tracks()) widths[track] = 1;
  const std::vector<SessionRegion>& regions = Sounding().Regions();
  for (std::size_t i = 0; i < regions.size(); ++i) {
    if (regions[i].Length() <= 0) continue;
    std::size_t& width = widths[regions[i].track];
    width = std::max(width, sources_.Facts(FileOf(i)).channels);
  }
  for (const auto& [track, width] : widths) tracks_.push_back({track, width});
}

}  // namespace velmora::bounce
