#pragma once

#include <cstdint>
#include <string>

#include "ADL/AES31Project.h"
#include "Spot/RegionMessage.h"
#include "Spot/SpotOptions.h"

namespace velmora {

/// What a spot works on. The project must live until the run has ended.
struct SpotProject {
  AES31Project* project;
  std::int32_t numEvents;
  std::int32_t minTrack;   ///< becomes track 0 of the host
  const char* firstEvent;  ///< timestamp of the earliest cut
};

enum class FilePass { Depth, Gain, Fade };
enum class RegionPiece { Main, FadeIn, Crossfade, FadeOut };

/// As JSON has it: "main", "infade", "crossfade", "outfade".
[[nodiscard]] const char* NameOf(RegionPiece piece);

/// What becomes of a run's files and regions. All calls come from the worker's thread.
class SpotEvents {
 public:
  virtual ~SpotEvents() = default;
  /// A file was made, or could not be: `status` is CopyTo's, and 0 or 2 for a renderer.
  virtual void FileMade(FilePass, std::int32_t /*event*/, const std::string& /*path*/,
                        std::int32_t /*status*/) {}
  /// A region was sent once; attempts count from 1.
  virtual void RegionTried(std::int32_t /*event*/, RegionPiece, std::int32_t /*attempt*/,
                           std::int32_t /*status*/) {}
  /// A region got its last attempt and was refused.
  virtual void RegionGivenUp(std::int32_t /*event*/, RegionPiece, std::int32_t /*status*/) {}
  /// A ticked cut gets no main region: its file is missing (`path` empty) or not valid.
  virtual void CutLeftOut(std::int32_t /*event*/, const std::string& /*path*/) {}
};

/// What a run tells. All calls come from the worker's thread.
class SpotObserver : public SpotEvents {
 public:
  virtual bool Aborted() = 0;  ///< polled once an event in most passes, and in long pieces
  virtual void Report(std::int32_t progress) = 0;  ///< steps done, or -1 at the end
  virtual void Log(const std::string& line) = 0;   ///< for the system log, without a line feed
};

/// The whole of a spot: five passes over the events, in which files are made and regions sent, each
/// up to 80 times. Failures are per event or piece, and the run goes on.
/// @return false if it ended early: by the observer's abort, or for lack of memory, and then with a
///         last report all the same. Files and regions that were made stay.
bool RunSpot(const SpotProject& project, SpotOptions& options, RegionHost& host,
             SpotObserver& observer);

/// A spot that makes no file: the region of each live cut is sent with its source's file, whatever
/// the options say of depth, gain and fades. Else as RunSpot.
bool RunWithoutFiles(const SpotProject& project, SpotOptions& options, RegionHost& host,
                     SpotObserver& observer);

/// Destroys what an aborted run left at the events. Whoever deletes a project calls this before.
/// The files on disk stay.
void ReleaseRenderedFiles(AES31Project& project);

/// The track of a cut on the host, counted from the project's lowest.
[[nodiscard]] std::int16_t HostTrack(const AES31Event& event, std::int32_t minTrack);

/// True for an event that a spot works on: a cut whose two boxes are ticked.
[[nodiscard]] bool IsLive(const AES31Event& event);

}  // namespace velmora
