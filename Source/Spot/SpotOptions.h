#pragma once

#include <cstdint>
#include <string>

namespace velmora {

/// Where the events land; any other number means no displacement at all.
enum PositionMode : std::int32_t {
  PositionAsProject = 0,   ///< where the project has them, read in the session's timebase
  PositionWithOffset = 1,  ///< the same plus `offsetSamples`
  PositionAtStart = 2,     ///< the earliest cut at `startSamples`, plus the compensation
  PositionFromFirst = 3,   ///< the earliest cut at 0, on tracks counted from the host's first
};

/// The options of one spot.
struct SpotOptions {
  std::int32_t sessionRate = 0;  ///< Hz, truncated
  std::int32_t positionMode = PositionAsProject;
  std::int32_t frameRate = 0;      ///< the host's frame-rate code, 0 to 7
  std::int32_t doFades = 0;        ///< non-zero: fade and crossfade pieces
  std::int32_t doGain = 0;         ///< non-zero: gain files
  std::int64_t offsetSamples = 0;  ///< signed
  std::int64_t startSamples = 0;
  std::int32_t bitDepth = 24;
  std::string depthSuffix = "_24bit";
  std::string copyFolder;
  std::int32_t copySource = 0;      ///< taken as off while copyFolder is empty
  std::int64_t timelineOffset = 0;  ///< computed: added to every position, in samples
  bool relativeTrack = false;       ///< computed: true for PositionFromFirst alone
};

/// Fills in `timelineOffset` and `relativeTrack` from the other options and from the timestamp of
/// the earliest cut. With a null `firstEvent` nothing is displaced; the track form is the same.
void ComputePosition(SpotOptions& options, const char* firstEvent);

/// By how many samples the session's timebase moves the project: the timestamp read in the
/// session's timebase less the same read in its own. 0 for a null timestamp.
[[nodiscard]] std::int64_t Compensation(const SpotOptions& options, const char* firstEvent);

}  // namespace velmora
