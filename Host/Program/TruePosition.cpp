#include "Program/TruePosition.h"

#include "Base/Wrapping.h"

namespace velmora::program {

void CancelCompensation(SpotOptions& options, const char* firstEvent) {
  const std::int64_t compensation = Compensation(options, firstEvent);
  switch (options.positionMode) {
    case PositionAsProject:
      // The same with an offset, which takes the compensation back.
      options.positionMode = PositionWithOffset;
      options.offsetSamples = WrapSubtract<std::int64_t>(0, compensation);
      break;
    case PositionWithOffset:
      options.offsetSamples = WrapSubtract(options.offsetSamples, compensation);
      break;
    case PositionAtStart:
      options.startSamples = WrapSubtract(options.startSamples, compensation);
      break;
    default:  // from the first cut on: nothing is compensated
      break;
  }
}

}  // namespace velmora::program
