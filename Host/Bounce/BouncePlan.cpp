#include "Bounce/BouncePlan.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace velmora::bounce {
namespace {

using host::SessionRegion;

bool IsFadePiece(const SessionRegion& region) {
  return region.origin && region.origin->piece != RegionPiece::Main;
}

}  // namespace

BouncePlan::BouncePlan(const host::TargetInput& input) : input_(input) {
  if (!TakeRate() || !TakeSpan()) return;
  TakeRegions();
  TakeTracks();
  for (const host::Remark& remark : Heard().Remarks()) {
    notes_.push_back(NameOf(Sounding().Regions()[remark.region]) + ": " + remark.text);
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
    if (region.Length() <= 0) {
      notes_.push_back(NameOf(region) + ": has no length; it is left out");
      continue;
    }
    fileOf_[i] = sources_.Add(region.path);
    const std::string cause = WhyNot(fileOf_[i]);
    isLeftOut[i] = !cause.empty();
    if (isLeftOut[i]) {
      leftOut_.push_back(NameOf(region) + ": " + cause);
    } else {
      sounds = true;
      NoteWhatIsOdd(region, fileOf_[i]);
    }
  }
  if (!sounds) trouble_ = "of no region of the session the audio can be played";
  if (!leftOut_.empty()) LeaveOut(isLeftOut);
}

std::string BouncePlan::WhyNot(std::size_t file) const {
  const SourceFacts& facts = sources_.Facts(file);
  if (!facts.trouble.empty()) return "its file cannot be read: " + facts.trouble;
  if (std::int64_t{facts.sampleRate} == std::int64_t{sampleRate_}) return {};
  return "its file has " + std::to_string(facts.sampleRate) + " Hz and the session " +
         std::to_string(sampleRate_) + " Hz";
}

void BouncePlan::NoteWhatIsOdd(const SessionRegion& region, std::size_t file) {
  const SourceFacts& facts = sources_.Facts(file);
  if (region.start < 0) {
    notes_.push_back(NameOf(region) + ": begins at sample " + std::to_string(region.start) +
                     " of its file; it is silent up to the first");
  }
  if (region.stop > facts.frames) {
    notes_.push_back(NameOf(region) + ": ends at sample " + std::to_string(region.stop) +
                     " of a file of " + std::to_string(facts.frames) +
                     "; it is silent where the file has ended");
  }
  if (facts.isUnsigned8 && IsFadePiece(region)) {
    notes_.push_back(NameOf(region) +
                     ": is a fade piece of 8 bits, whose samples have signs where a wave file has "
                     "none; it does not sound right");
  }
}

void BouncePlan::LeaveOut(const std::vector<bool>& isLeftOut) {
  const std::vector<SessionRegion>& regions = input_.session.Regions();
  kept_.emplace();
  std::vector<std::size_t> fileOf;
  for (std::size_t i = 0; i < regions.size(); ++i) {
    if (isLeftOut[i]) continue;
    kept_->Place(regions[i]);
    fileOf.push_back(fileOf_[i]);
  }
  fileOf_ = std::move(fileOf);
  keptHeard_.emplace(*kept_);
}

void BouncePlan::TakeTracks() {
  std::map<std::int64_t, std::size_t> widths;
  for (const std::int64_t track : input_.session.Tracks()) widths[track] = 1;
  const std::vector<SessionRegion>& regions = Sounding().Regions();
  for (std::size_t i = 0; i < regions.size(); ++i) {
    if (regions[i].Length() <= 0) continue;
    std::size_t& width = widths[regions[i].track];
    width = std::max(width, sources_.Facts(fileOf_[i]).channels);
  }
  for (const auto& [track, width] : widths) tracks_.push_back({track, width});
}

std::string BouncePlan::NameOf(const SessionRegion& region) const {
  return "region " + (region.name.empty() ? std::string() : "\"" + region.name + "\" ") + "of " +
         region.path + " (track " + std::to_string(input_.record.TrackNumber(region.track)) +
         ", sample " + std::to_string(region.position) + ")";
}

}  // namespace velmora::bounce
