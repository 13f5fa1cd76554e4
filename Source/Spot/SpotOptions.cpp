#include "Spot/SpotOptions.h"

#include "Base/Wrapping.h"
#include "Timecode/AdlTime.h"

namespace velmora {

std::int64_t Compensation(const SpotOptions& options, const char* firstEvent) {
  if (firstEvent == nullptr) return 0;
  return WrapSubtract(TimecodeToSamples(firstEvent, options.frameRate, options.sessionRate),
                      AdlToSamples(firstEvent));
}

void ComputePosition(SpotOptions& options, const char* firstEvent) {
  options.timelineOffset = 0;
  options.relativeTrack = options.positionMode == PositionFromFirst;
  if (firstEvent == nullptr) return;
  const std::int64_t first = AdlToSamples(firstEvent);
  const std::int64_t compensation = Compensation(options, firstEvent);
  switch (options.positionMode) {
    case PositionAsProject:
      options.timelineOffset = compensation;
      break;
    case PositionWithOffset:
      options.timelineOffset = WrapAdd(compensation, options.offsetSamples);
      break;
    case PositionAtStart:
      options.timelineOffset = WrapAdd(compensation, WrapSubtract(options.startSamples, first));
      break;
    case PositionFromFirst:
      options.timelineOffset = WrapSubtract<std::int64_t>(0, first);
      break;
    default:
      break;
  }
}

}  // namespace velmora
