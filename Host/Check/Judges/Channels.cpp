// Cuts that are not one channel of a mono file on one track: the system reads the first number of
// each run of channels, and places a file with all its channels.

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "Base/Text.h"
#include "Check/Judges.h"

namespace velmora::check {
namespace {

constexpr std::size_t kTrackValue = 3;
/// Tracks are sent to the host as 16-bit numbers counted from the lowest one.
constexpr std::int64_t kMostTracks = std::numeric_limits<std::int16_t>::max();

std::optional<std::int32_t> FileChannels(const Case& c, const field::Event& event) {
  if (!event.source || !c.media[*event.source].facts) return std::nullopt;
  return c.media[*event.source].facts->channels;
}

/// What is wrong with the channels of a cut; empty for nothing.
std::string Complaint(const Case& c, const field::Event& event) {
  const std::int32_t channels = std::max(event.sourceChannels.Count(), event.tracks.Count());
  if (channels > 1 || event.sourceChannels.Count() < 1 || event.tracks.Count() < 1) {
    return "The system takes the first channel and track alone.";
  }
  const std::optional<std::int32_t> inFile = FileChannels(c, event);
  if (inFile && *inFile != 1) {
    return "The system places the file with its " +
           Counted(static_cast<std::size_t>(*inFile), "channel") + ", not channel " +
           std::to_string(event.sourceChannels.first) + " alone.";
  }
  if (inFile && event.sourceChannels.first != 1) {
    return "The file has no channel " + std::to_string(event.sourceChannels.first) + ".";
  }
  return {};
}

/// The lowest track number of all cuts, as the system reads them.
std::int64_t LowestTrack(const Case& c) {
  std::int64_t lowest = std::numeric_limits<std::int32_t>::max();
  for (const field::Event& event : c.project.events) {
    if (event.kind != field::EventKind::Cut || !event.edit) continue;
    const std::int64_t track = ToInt32(c.SystemText(*event.edit, kTrackValue).c_str());
    lowest = std::min(lowest, track);
  }
  return lowest;
}

}  // namespace

void JudgeChannels(const Case& c, Findings& findings) {
  const std::int64_t lowest = LowestTrack(c);
  for (std::size_t i = 0; i < c.project.events.size(); ++i) {
    const field::Event& event = c.project.events[i];
    if (event.kind != field::EventKind::Cut || !event.edit) continue;
    std::string complaint = Complaint(c, event);
    if (complaint.empty() && event.tracks.first - lowest >= kMostTracks) {
      complaint = "No host has a track " + std::to_string(event.tracks.first) +
                  ": the region would be refused.";
    }
    if (complaint.empty()) continue;
    Place place = c.AtEdit(i);
    place.source = event.source;
    findings.Add(Code::Channels, Case::OfCut(event, Severity::Lost), place,
                 {c.Show(*event.edit), std::move(complaint),
                  "velmora prepare makes one mono cut and file for each channel."});
  }
}

}  // namespace velmora::check
