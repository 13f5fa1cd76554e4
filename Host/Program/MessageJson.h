#pragma once

#include "Session/JsonText.h"
#include "Spot/RegionMessage.h"

namespace velmora::program {

/// A message to the host as JSON: codes as four characters, data in hexadecimal digits, and the
/// path of the file beside its alias.
[[nodiscard]] host::Json MessageJson(const RegionMessage& message);

}  // namespace velmora::program
