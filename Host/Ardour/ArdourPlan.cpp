#include "Ardour/ArdourPlan.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>

#include "Base/Text.h"
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

/// So many silent regions may stand for the part of a region that its file does not have.
constexpr std::int64_t kMostSilences = 64;

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

/// A part of a region: samples counted from the region's start, `end` exclusive.
struct Part {
  std::int64_t begin = 0;
  std::int64_t end = 0;
  [[nodiscard]] bool IsEmpty() const { return end <= begin; }
};

/// What a region's file has of it.
Part SoundingPart(const SessionRegion& region, const PlannedFile& file) {
  return {std::max<std::int64_t>(-region.start, 0),
          region.Length() - std::max<std::int64_t>(region.stop - file.frames, 0)};
}

double Share(std::int64_t part, std::int64_t whole) {
  return static_cast<double>(part) / static_cast<double>(whole);
}

/// What a region's fade-in is in a part of it.
Ramp FadeInOf(const Part& part, std::int64_t fadeIn) {
  if (fadeIn <= part.begin) return {};
  const std::int64_t end = std::min(fadeIn, part.end);
  return {end - part.begin, Share(part.begin, fadeIn), Share(end, fadeIn)};
}

/// The same of a fade-out, in a region of `length` samples.
Ramp FadeOutOf(const Part& part, std::int64_t fadeOut, std::int64_t length) {
  const std::int64_t begin = std::max(part.begin, length - fadeOut);
  if (fadeOut == 0 || begin >= part.end) return {};
  return {part.end - begin, Share(length - begin, fadeOut), Share(length - part.end, fadeOut)};
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
    if (!cause.empty()) {
      leftOut_.push_back(RegionLabel(input, i) + ": " + cause);
      continue;
    }
    if (SoundingPart(regions[i], files_[file]).IsEmpty()) {
      leftOut_.push_back(RegionLabel(input, i) + ": no part of it lies in " + regions[i].path +
                         ", which has " +
                         Counted(static_cast<std::size_t>(files_[file].frames), "sample"));
    }
    candidates.push_back({i, file});
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
  return facts.frames > 0 ? "" : region.path + " has no samples";
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
    tracks_.emplace_back().name = "Track " + std::to_string(input.record.TrackNumber(track));
  }
  bool isFirst = true;
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    PlannedTrack& track = tracks_[numbers.at(kept.Regions()[i].track)];
    Place(input, candidates[i], heard.Shapes()[i], track);
    first_ = isFirst ? track.first : std::min(first_, track.first);
    end_ = std::max(end_, track.end);
    isFirst = false;
  }
}

void ArdourPlan::Place(const TargetInput& input, const Candidate& candidate,
                       const host::AppliedShape& shape, PlannedTrack& track) {
  const SessionRegion& region = input.session.Regions()[candidate.region];
  const PlannedFile& file = files_[candidate.file];
  const std::int64_t length = region.Length();
  const auto place = [&](const Part& part, std::int64_t start, double gain, const char* suffix) {
    PlannedRegion planned;
    planned.region = candidate.region;
    planned.file = candidate.file;
    planned.position = region.position + part.begin;
    planned.start = start;
    planned.length = part.end - part.begin;
    planned.fadeIn = FadeInOf(part, shape.fadeIn);
    planned.fadeOut = FadeOutOf(part, shape.fadeOut, length);
    planned.gain = gain;
    planned.name = NameOf(region) + suffix;
    track.regions.push_back(std::move(planned));
  };
  const auto placeSilence = [&](const Part& missing) {
    const std::int64_t pieces = (missing.end - missing.begin + file.frames - 1) / file.frames;
    const bool liesOver =
        region.position + missing.begin < track.end && region.position + missing.end > track.first;
    if (!liesOver || pieces == 0) return;
    if (pieces > kMostSilences) {
      notes_.push_back(RegionLabel(input, candidate.region) +
                       ": its file is too short to hide what lies under the missing part");
      return;
    }
    for (std::int64_t at = missing.begin; at < missing.end; at += file.frames) {
      place({at, std::min(at + file.frames, missing.end)}, 0, 0, " (silence)");
    }
  };
  track.channels = std::max(track.channels, file.channels);
  const Part sounding = SoundingPart(region, file);
  if (sounding.IsEmpty()) {
    placeSilence({0, length});
    return;
  }
  placeSilence({0, sounding.begin});
  placeSilence({sounding.end, length});
  place(sounding, region.start + sounding.begin, shape.gain, "");
  NoteWhatIsOdd(input, track.regions.back(), sounding.begin, length - sounding.end);
  track.first = std::min(track.first, region.position);
  track.end = std::max(track.end, region.End());
}

void ArdourPlan::NoteWhatIsOdd(const TargetInput& input, const PlannedRegion& planned,
                               std::int64_t cutBefore, std::int64_t cutAfter) {
  const SessionRegion& region = input.session.Regions()[planned.region];
  const PlannedFile& file = files_[planned.file];
  const auto note = [&](const std::string& text) {
    notes_.push_back(RegionLabel(input, planned.region) + ": " + text);
  };
  if (cutBefore > 0) {
    note("it begins " + Counted(static_cast<std::size_t>(cutBefore), "sample") + " before " +
         file.path + "; it is cut to what is there");
  }
  if (cutAfter > 0) {
    note("it runs past " + file.path + ", which has " +
         Counted(static_cast<std::size_t>(file.frames), "sample") + "; it is cut to what is there");
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
