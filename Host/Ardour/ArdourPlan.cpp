#include "Ardour/ArdourPlan.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>

#include "Media/SoundFile.h"
#include "Session/RegionLabel.h"
#include "Session/XmlText.h"

namespace velmora::ardour {
namespace {

using host::RegionLabel;
using host::SessionRegion;
using host::TargetInput;

/// Ardour counts time in units far smaller than samples, so that its timeline ends far below the
/// last sample that 64 bits can count. This is well below that, and some thirty years.
constexpr std::int64_t kMostSeconds = 1'000'000'000;

PlannedFile Probe(const std::string& path) {
  PlannedFile file;
  file.path = path;
  if (host::XmlText(path) != path) {
    file.trouble = "the path holds bytes that a session file cannot tell";
    return file;
  }
  const auto sound = media::SoundFile::Open(path, file.trouble);
  if (sound == nullptr) return file;
  if (sound->IsMended()) {
    file.trouble = "Ardour does not read a wave file whose chunks stand in this order";
    return file;
  }
  file.frames = sound->Info().frames;
  file.channels = sound->Info().channels;
  file.sampleRate = sound->Info().samplerate;
  file.isUnsigned8 = sound->Encoding() == SF_FORMAT_PCM_U8;
  return file;
}

/// The part of a fade-in of `length` samples that a region has after losing its first `cut`.
Ramp FadeInAfterCut(std::int64_t length, std::int64_t cut, std::int64_t regionLength) {
  if (length <= cut) return {};
  const std::int64_t left = std::min(length - cut, regionLength);
  const auto factor = [&](std::int64_t sample) {
    return static_cast<double>(sample) / static_cast<double>(length);
  };
  return {left, factor(cut), factor(cut + left)};
}

/// The same of a fade-out and a region's last `cut` samples: time is turned round.
Ramp FadeOutBeforeCut(std::int64_t length, std::int64_t cut, std::int64_t regionLength) {
  const Ramp turned = FadeInAfterCut(length, cut, regionLength);
  return {turned.length, turned.to, turned.from};
}

std::string NameOf(const SessionRegion& region) {
  const std::string name =
      region.name.empty() ? std::filesystem::path(region.path).stem().string() : region.name;
  return host::XmlText(name);
}

}  // namespace

ArdourPlan::ArdourPlan(const TargetInput& input) {
  if (!TakeRate(input.rates.sampleRate)) return;
  const std::vector<Candidate> candidates = TakeCandidates(input);
  TakeTracks(input, candidates);
  if (Regions() == 0) trouble_ = "Ardour can have no region of the session";
}

std::size_t ArdourPlan::Regions() const {
  std::size_t count = 0;
  for (const PlannedTrack& track : tracks_) count += track.regions.size();
  return count;
}

bool ArdourPlan::TakeRate(float rate) {
  if (rate >= 1 && rate < 2147483648.0F) {
    sampleRate_ = static_cast<std::int32_t>(std::lround(rate));
    return true;
  }
  trouble_ = "the session has no sample rate that Ardour could have";
  return false;
}

std::vector<ArdourPlan::Candidate> ArdourPlan::TakeCandidates(const TargetInput& input) {
  std::vector<Candidate> candidates;
  const std::vector<SessionRegion>& regions = input.session.Regions();
  for (std::size_t i = 0; i < regions.size(); ++i) {
    if (regions[i].Length() <= 0) {
      notes_.push_back(RegionLabel(input, i) + ": it has no length and is left out");
      continue;
    }
    std::size_t file = 0;
    const std::string cause = WhyNot(regions[i], file);
    if (cause.empty()) {
      candidates.push_back({i, file});
    } else {
      leftOut_.push_back(RegionLabel(input, i) + ": " + cause);
    }
  }
  return candidates;
}

std::string ArdourPlan::WhyNot(const SessionRegion& region, std::size_t& file) {
  if (region.position < 0) {
    return "it begins at sample " + std::to_string(region.position) +
           ", before the start of Ardour's timeline";
  }
  if (region.End() / sampleRate_ >= kMostSeconds) return "it lies beyond Ardour's timeline";
  file = FileOf(region.path);
  const PlannedFile& facts = files_[file];
  if (!facts.trouble.empty()) return region.path + " cannot be used: " + facts.trouble;
  if (facts.sampleRate != sampleRate_) {
    return region.path + " is of " + std::to_string(facts.sampleRate) + " Hz and the session of " +
           std::to_string(sampleRate_) + " Hz";
  }
  if (region.start >= facts.frames || region.stop <= 0) {
    return "no part of it lies in " + region.path + ", which has " + std::to_string(facts.frames) +
           " samples";
  }
  return {};
}

std::size_t ArdourPlan::FileOf(const std::string& path) {
  const auto [row, isNew] = fileByPath_.try_emplace(path, files_.size());
  if (isNew) files_.push_back(Probe(path));
  return row->second;
}

void ArdourPlan::TakeTracks(const TargetInput& input, const std::vector<Candidate>& candidates) {
  // A fade-out is dropped for the fade-in of a later region, so not for one that is left out.
  host::Session kept;
  for (const Candidate& candidate : candidates) {
    kept.Place(input.session.Regions()[candidate.region]);
  }
  const host::HeardSession heard(kept);
  for (const host::Remark& remark : heard.Remarks()) {
    notes_.push_back(RegionLabel(input, candidates[remark.region].region) + ": " + remark.text);
  }
  std::map<std::int64_t, std::size_t> numbers;
  for (const std::int64_t track : input.session.Tracks()) {
    numbers[track] = tracks_.size();
    tracks_.push_back({"Track " + std::to_string(input.record.TrackNumber(track)), 1, {}});
  }
  bool isFirst = true;
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    PlannedTrack& track = tracks_[numbers.at(kept.Regions()[i].track)];
    Place(input, candidates[i], heard.Shapes()[i], track);
    const PlannedRegion& placed = track.regions.back();
    first_ = isFirst ? placed.position : std::min(first_, placed.position);
    end_ = std::max(end_, placed.position + placed.length);
    isFirst = false;
  }
}

void ArdourPlan::Place(const TargetInput& input, const Candidate& candidate,
                       const host::AppliedShape& shape, PlannedTrack& track) {
  const SessionRegion& region = input.session.Regions()[candidate.region];
  const PlannedFile& file = files_[candidate.file];
  const std::int64_t cutBefore = std::max<std::int64_t>(-region.start, 0);
  const std::int64_t cutAfter = std::max<std::int64_t>(region.stop - file.frames, 0);
  PlannedRegion planned;
  planned.region = candidate.region;
  planned.file = candidate.file;
  planned.position = region.position + cutBefore;
  planned.start = region.start + cutBefore;
  planned.length = region.Length() - cutBefore - cutAfter;
  planned.fadeIn = FadeInAfterCut(shape.fadeIn, cutBefore, planned.length);
  planned.fadeOut = FadeOutBeforeCut(shape.fadeOut, cutAfter, planned.length);
  planned.gain = shape.gain;
  planned.name = NameOf(region);
  NoteWhatIsOdd(input, planned, cutBefore, cutAfter);
  track.channels = std::max(track.channels, file.channels);
  track.regions.push_back(std::move(planned));
}

void ArdourPlan::NoteWhatIsOdd(const TargetInput& input, const PlannedRegion& planned,
                               std::int64_t cutBefore, std::int64_t cutAfter) {
  const SessionRegion& region = input.session.Regions()[planned.region];
  const PlannedFile& file = files_[planned.file];
  const auto note = [&](const std::string& text) {
    notes_.push_back(RegionLabel(input, planned.region) + ": " + text);
  };
  if (cutBefore > 0) {
    note("it begins " + std::to_string(cutBefore) + " samples before " + file.path +
         "; it is cut to what is there");
  }
  if (cutAfter > 0) {
    note("it runs past " + file.path + ", which has " + std::to_string(file.frames) +
         " samples; it is cut to what is there");
  }
  if (planned.length == 1) note("it is one sample long, and Ardour plays such a region as silence");
  const bool isFadePiece = region.origin && region.origin->piece != RegionPiece::Main;
  if (file.isUnsigned8 && isFadePiece) {
    note(
        "it is a fade piece of 8 bits, whose samples have signs where a wave file has none; it "
        "does not sound right");
  }
}

}  // namespace velmora::ardour
