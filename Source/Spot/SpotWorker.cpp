#include "Spot/SpotWorker.h"

#include <new>

#include "Base/Wrapping.h"
#include "Spot/SpotPasses.h"

namespace velmora {
const char* NameOf(RegionPiece piece) {
  switch (piece) {
    case RegionPiece::FadeIn:
      return "infade";
    case RegionPiece::Crossfade:
      return "crossfade";
    case RegionPiece::FadeOut:
      return "outfade";
    case RegionPiece::Main:
      break;
  }
  return "main";
}

namespace {

bool RunPasses(const SpotProject& project, SpotOptions& options, RegionHost& host,
               SpotObserver& observer, bool (SpotPasses::*passes)()) {
  if (project.project == nullptr) return true;
  bool finished = false;
  try {
    if (options.copyFolder.empty()) options.copySource = 0;
    ComputePosition(options, project.firstEvent);
    SpotPasses run(project, options, host, observer);
    if (!(run.*passes)()) return false;
    finished = true;
  } catch (const std::bad_alloc&) {  // an exception that leaves a thread would end the whole host
    observer.Log("out of memory");
  }
  observer.Report(-1);
  return finished;
}

}  // namespace

bool RunSpot(const SpotProject& project, SpotOptions& options, RegionHost& host,
             SpotObserver& observer) {
  return RunPasses(project, options, host, observer, &SpotPasses::Run);
}

bool RunWithoutFiles(const SpotProject& project, SpotOptions& options, RegionHost& host,
                     SpotObserver& observer) {
  return RunPasses(project, options, host, observer, &SpotPasses::RegionPass);
}

void ReleaseRenderedFiles(AES31Project& project) {
  for (AES31Event& event : project.events) {
    delete event.renderedFile;
    event.renderedFile = nullptr;
  }
}

std::int16_t HostTrack(const AES31Event& event, std::int32_t minTrack) {
  return static_cast<std::int16_t>(
      static_cast<std::uint16_t>(WrapSubtract(event.cut.destChannel, minTrack)));
}

bool IsLive(const AES31Event& event) {
  return IsCut(event) && IsOn(event.trackOn) && IsOn(event.eventOn);
}

}  // namespace velmora
