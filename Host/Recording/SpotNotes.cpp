#include "Recording/SpotNotes.h"

#include <cstddef>
#include <limits>
#include <set>
#include <utility>

#include "BWF/AES31BWF.h"
#include "Base/Text.h"
#include "Base/Wrapping.h"
#include "Model/ProjectSummary.h"
#include "Session/SessionClock.h"
#include "Timecode/AdlTime.h"

namespace velmora::recording {
namespace {

using Relation = RateComparison::Relation;

bool IsPlaced(const AES31Event& cut) {
  return IsLive(cut) && cut.sourceFile != nullptr;
}

std::string MoveText(std::int64_t samples, const SpotOptions& options, bool truePosition) {
  std::string text = "The project's timestamps read in the session's timebase are " +
                     std::to_string(samples) + " samples away from their own";
  const bool applies = options.positionMode != PositionFromFirst;
  if (applies && truePosition) {
    return text + ": that is taken back, and everything lands at its true position.";
  }
  return text + (applies ? ": everything moves by that." : ", which this position leaves out.");
}

/// The numbers of tracks, no more of them than fit a line.
std::string TrackList(const std::set<std::int32_t>& tracks) {
  constexpr std::size_t kListed = 5;
  std::string list;
  std::size_t listed = 0;
  for (const std::int32_t track : tracks) {
    if (listed++ == kListed)
      return list + " and " + std::to_string(tracks.size() - kListed) + " more";
    list += (list.empty() ? "" : ", ") + std::to_string(track);
  }
  return list;
}

/// A message has 16 bits with a sign for a track, and hosts count tracks from 1.
constexpr std::int16_t kMostTracks = std::numeric_limits<std::int16_t>::max();

bool IsTrackOfNoHost(std::int16_t track, bool fromFirst) {
  return track < 0 || (!fromFirst && track == kMostTracks);
}

/// Says which cuts every host refuses for their tracks; empty if there are none.
std::string RefusedTracksText(const SpotProject& project, const SpotOptions& options) {
  std::set<std::int32_t> tracks;
  std::size_t cuts = 0;
  for (std::int32_t i = 0; i < project.numEvents; ++i) {
    const AES31Event& event = *project.project->GetEvent(i);
    if (!IsPlaced(event) || !IsTrackOfNoHost(HostTrack(event, project.minTrack),
                                             options.positionMode == PositionFromFirst)) {
      continue;
    }
    tracks.insert(event.cut.destChannel);
    ++cuts;
  }
  if (cuts == 0) return {};
  return Counted(cuts, "cut") + (tracks.size() == 1 ? " on track " : " on tracks ") +
         TrackList(tracks) + " will be refused, each after 80 attempts: a session counts at most " +
         std::to_string(kMostTracks) + " tracks from the project's lowest, " +
         std::to_string(project.minTrack) + ". Skip such tracks to save the time.";
}

}  // namespace

std::string PositionText(std::int32_t positionMode) {
  switch (positionMode) {
    case PositionAsProject:
      return "as in the project";
    case PositionWithOffset:
      return "as in the project, with the offset";
    case PositionAtStart:
      return "first cut at the start time";
    case PositionFromFirst:
      return "first cut at 0";
    default:
      return "not moved";
  }
}

std::vector<std::string> SpotNotes(const SpotProject& project, const host::SessionRates& session,
                                   const SpotOptions& options, bool truePosition) {
  std::vector<std::string> notes;
  const RateComparison rates =
      CompareRates(project.firstEvent, session.sampleRate, session.frameRate);
  if (rates.relation == Relation::AsCloseAsAHostTells) {
    notes.push_back("The session's rate is the project's, as closely as a host tells it.");
  } else if (rates.relation != Relation::Same) {
    notes.push_back(
        "The project is at " +
        (rates.projectRate > 0 ? host::SampleRateName(rates.projectRate) : "no known sample rate") +
        ", the session at " + host::SampleRateName(rates.sessionRate) + ".");
  }
  if (rates.movedSamples != 0) notes.push_back(MoveText(rates.movedSamples, options, truePosition));
  const AES31Cut* const first = SpanOfCuts(*project.project, IsPlaced).earliest;
  if (!notes.empty() && first != nullptr) {
    const std::int64_t position = WrapAdd(AdlToSamples(first->destIn), options.timelineOffset);
    const host::SessionClock clock(session);
    notes.push_back("The first region lands at sample " + std::to_string(position) + ", " +
                    clock.Timecode(position) + ".");
  }
  std::string refused = RefusedTracksText(project, options);
  if (!refused.empty()) notes.push_back(std::move(refused));
  return notes;
}

void FindSilentCuts(const SpotProject& project, LeftOut& leftOut) {
  for (std::int32_t i = 0; i < project.numEvents; ++i) {
    const AES31Event& event = *project.project->GetEvent(i);
    if (!IsLive(event) || event.sourceFile == nullptr || !event.sourceFile->IsValid()) continue;
    if (event.sourceFile->GetFormat()->formatTag != kIntegerPcm) leftOut.NotPcm(i);
  }
}

}  // namespace velmora::recording
