#include "Spot/FadePlaces.h"

#include <cstring>

#include "Base/Wrapping.h"
#include "Timecode/AdlTime.h"

namespace velmora {
namespace {

bool SameText(const char* a, const char* b) {
  return a != nullptr && b != nullptr && std::strcmp(a, b) == 0;
}

}  // namespace

bool ContinuesCrossfade(const AES31Event& previous, const AES31Event& event) {
  return previous.cut.destChannel == event.cut.destChannel && event.infade.present &&
         previous.outfade.present && SameText(event.infade.length, previous.outfade.length) &&
         AdlDifference(event.cut.destIn, previous.cut.destOut) == AdlToSamples(event.infade.length);
}

std::int64_t FirstSample(const AES31Event& event) {
  return AdlDifference(event.sourceStart, event.cut.sourceIn);
}

std::int64_t FirstSampleOfTail(const AES31Event& event, std::int64_t length) {
  return WrapAdd(WrapSubtract(FirstSample(event), length),
                 AdlDifference(event.cut.destIn, event.cut.destOut));
}

}  // namespace velmora
