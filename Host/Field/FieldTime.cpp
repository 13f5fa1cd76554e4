#include "Field/FieldTime.h"

namespace velmora::field {

double TimeRates::FrameRate() const {
  return pulledDown ? framesPerSecond * 1000.0 / 1001.0 : framesPerSecond;
}

}  // namespace velmora::field
