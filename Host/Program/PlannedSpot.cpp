#include "Program/PlannedSpot.h"

#include <string>
#include <utility>

#include "BWF/AES31BWF.h"
#include "BWF/OutputPaths.h"
#include "Base/Wrapping.h"
#include "Spot/FadePlaces.h"
#include "Spot/RegionSpotter.h"
#include "Timecode/AdlTime.h"

namespace velmora::program {
namespace {

/// A stretch of an event that a spot would render into a piece of its own.
struct Piece {
  RegionPiece piece;
  const char* suffix;     ///< of the file that it would be
  std::int64_t start;     ///< first sample in the source's file
  std::int64_t position;  ///< in the project, in samples
  std::int64_t length;    ///< samples
};

class Planner {
 public:
  Planner(const SpotProject& project, const SpotOptions& options, RegionHost& host,
          SpotReport& report, SpotRecording& recording)
      : project_(project), options_(options), host_(host), report_(report), recording_(recording) {}

  void PlanCopies() {
    for (std::int32_t i = 0; i < project_.numEvents; ++i) {
      const AES31Event* const event = LiveEvent(i);
      if (event == nullptr || event->sourceFile == nullptr) continue;
      const bool isAsItIs =
          std::cmp_equal(event->sourceFile->GetBitsPerSample(), options_.bitDepth);
      if (options_.copySource != 0 || !isAsItIs) recording_.FilePlanned(FilePass::Depth, i);
    }
    for (std::int32_t i = 0; options_.doGain != 0 && i < project_.numEvents; ++i) {
      const AES31Event* const event = LiveEvent(i);
      if (event == nullptr || event->sourceFile == nullptr || !event->gain.present) continue;
      recording_.FilePlanned(FilePass::Gain, i);
    }
  }

  bool PlanFades() {
    const AES31Event* previous = nullptr;
    for (std::int32_t i = 0; i < project_.numEvents; ++i) {
      if (report_.Aborted()) return false;
      const AES31Event* const event = LiveEvent(i);
      if (event == nullptr) continue;
      PlanFades(i, previous, *event);
      previous = event;
    }
    return true;
  }

 private:
  const AES31Event* LiveEvent(std::int32_t index) {
    const AES31Event* const event = project_.project->GetEvent(index);
    return event != nullptr && IsLive(*event) ? event : nullptr;
  }

  void PlanFades(std::int32_t index, const AES31Event* previous, const AES31Event& event) {
    if (event.sourceFile == nullptr || !event.sourceFile->IsValid()) return;
    const bool crosses = previous != nullptr && ContinuesCrossfade(*previous, event);
    if (event.infade.present && (!crosses || previous->sourceFile != nullptr)) {
      Place(
          index, event,
          {crosses ? RegionPiece::Crossfade : RegionPiece::FadeIn, crosses ? "_XFade" : "_FadeIn",
           FirstSample(event), AdlToSamples(event.cut.destIn), AdlToSamples(event.infade.length)});
    }
    if (event.outfade.present) {
      const std::int64_t length = AdlToSamples(event.outfade.length);
      Place(index, event,
            {RegionPiece::FadeOut, "_FadeOut", FirstSampleOfTail(event, length),
             WrapSubtract(AdlToSamples(event.cut.destOut), length), length});
    }
  }

  void Place(std::int32_t index, const AES31Event& event, const Piece& piece) {
    constexpr std::int16_t kStream = 1;
    constexpr std::int32_t kFirstAttempt = 1;
    recording_.FilePlanned(FilePass::Fade, index);
    const char* const path = event.sourceFile->GetPath();
    const std::string name = CopyBaseName(path) + piece.suffix;
    RegionSpotter spotter(path, piece.start, WrapAdd(piece.start, piece.length), host_);
    const std::int32_t status = spotter.SpotRegion(HostTrack(event, project_.minTrack),
                                                   WrapAdd(piece.position, options_.timelineOffset),
                                                   kStream, name.c_str(), options_.relativeTrack);
    report_.RegionTried(index, piece.piece, kFirstAttempt, status);
    if (status != 0) report_.RegionGivenUp(index, piece.piece, status);
  }

  const SpotProject& project_;
  const SpotOptions& options_;
  RegionHost& host_;
  SpotReport& report_;
  SpotRecording& recording_;
};

}  // namespace

bool PlanSpot(const SpotProject& project, SpotOptions& options, RegionHost& host,
              SpotReport& report, SpotRecording& recording) {
  Planner planner(project, options, host, report, recording);
  if (options.copyFolder.empty()) options.copySource = 0;
  planner.PlanCopies();
  return RunWithoutFiles(project, options, host, report) &&
         (options.doFades == 0 || planner.PlanFades());
}

}  // namespace velmora::program
